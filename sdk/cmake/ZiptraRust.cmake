# The library of a plug-in in Rust: one call of rustc, without cargo.

# Sets ZIPTRA_RUSTC, a rustc that can build for Windows: there may be several, and the first one in PATH may have no
# standard library for it.
function(_ziptra_find_rustc name target)
    set(candidates ${ZIPTRA_RUSTC})
    if(NOT candidates)
        find_program(ZIPTRA_RUSTC_IN_PATH rustc)
        set(candidates "${ZIPTRA_RUSTC_IN_PATH}" /usr/bin/rustc "$ENV{HOME}/.cargo/bin/rustc")
    endif()
    foreach(candidate IN LISTS candidates)
        execute_process(COMMAND "${candidate}" --print target-libdir ${target}
            OUTPUT_VARIABLE folder OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET RESULT_VARIABLE result)
        if(result EQUAL 0 AND IS_DIRECTORY "${folder}")
            set(ZIPTRA_RUSTC "${candidate}" CACHE FILEPATH "A rustc that builds for 64-bit Windows")
            return()
        endif()
    endforeach()
    _ziptra_fail(${name} "no rustc for 64-bit Windows found (Debian: rustc and libstd-rust-dev-windows; rustup: target \
add x86_64-pc-windows-gnu); set ZIPTRA_RUSTC if it is elsewhere")
endfunction()

function(_ziptra_add_rust_library name library)
    get_filename_component(root "${plugin_SOURCES}" ABSOLUTE)
    if(NOT EXISTS "${root}")
        _ziptra_fail(${name} "there is no file ${root}; in Rust, SOURCES is one file, the root")
    endif()
    if(NOT CMAKE_GENERATOR MATCHES "Ninja|Makefiles")
        _ziptra_fail(${name} "Rust needs the generator Ninja (cmake -G Ninja)")
    endif()
    set(target "")
    set(runtime -C target-feature=+crt-static)
    if(CMAKE_CROSSCOMPILING)
        find_program(ZIPTRA_RUST_LINKER x86_64-w64-mingw32-gcc REQUIRED)
        set(target --target x86_64-pc-windows-gnu)
        list(APPEND runtime -C "linker=${ZIPTRA_RUST_LINKER}" -C link-arg=-Wl,--no-insert-timestamp)
    endif()
    _ziptra_find_rustc(${name} "${target}")

    add_library(${name}_version OBJECT "${CMAKE_CURRENT_BINARY_DIR}/${name}.rc")
    set_target_properties(${name}_version PROPERTIES LINKER_LANGUAGE RC)
    add_custom_command(OUTPUT "${library}"
        COMMAND "${ZIPTRA_RUSTC}" --crate-type cdylib --crate-name ${name} --edition 2021 -A non_snake_case ${target}
            ${runtime} -C panic=unwind
            -C opt-level=$<IF:$<CONFIG:Debug>,0,2> -C strip=$<IF:$<CONFIG:Debug>,none,symbols>
            "--remap-path-prefix=${CMAKE_CURRENT_SOURCE_DIR}=." -C "link-arg=$<TARGET_OBJECTS:${name}_version>"
            "--emit=link=${library},dep-info=${CMAKE_CURRENT_BINARY_DIR}/${name}.d" "${root}"
        COMMAND ${plugin_check}
        DEPENDS "${root}" "${CMAKE_BINARY_DIR}/plugins/${name}.ini" ${name}_version "$<TARGET_OBJECTS:${name}_version>"
        DEPFILE "${CMAKE_CURRENT_BINARY_DIR}/${name}.d"
        COMMENT "Building Rust plug-in ${name}" VERBATIM)
    add_custom_target(${name} ALL DEPENDS "${library}")
endfunction()
