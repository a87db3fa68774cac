# The compile options of all targets of this project.
function(zuziptra_compile target)
    target_compile_features(${target} PUBLIC cxx_std_20)
    set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)
    if(MSVC)
        # 5030: it does not know [[gnu::format]], which serves the other compilers.
        target_compile_options(${target} PRIVATE /W4 /WX /utf-8 /permissive- /wd5030)
        # Otherwise /WX makes errors of _wfopen, sscanf and _ctime64, which it considers deprecated.
        target_compile_definitions(${target} PRIVATE _CRT_SECURE_NO_WARNINGS)
    else()
        target_compile_options(${target} PRIVATE
            -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror
            $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Wold-style-cast -Wcast-function-type>
            # Keeps the output independent of the source folder.
            -ffile-prefix-map=${CMAKE_SOURCE_DIR}/=)
    endif()
    if(WIN32)
        target_compile_definitions(${target} PRIVATE WIN32_LEAN_AND_MEAN NOMINMAX _WIN32_WINNT=0x0601)
    endif()
    target_compile_options(${target} PRIVATE ${ZUZIPTRA_SANITIZE})
    target_link_options(${target} PRIVATE ${ZUZIPTRA_SANITIZE})
endfunction()

# The link options of the executables that are shipped.
function(zuziptra_link_product target)
    if(MINGW)
        # Page-aligned sections can be mapped from the file; others may have to be read completely.
        target_link_options(${target} PRIVATE
            -static -Wl,--dynamicbase,--nxcompat,--tsaware,--high-entropy-va,--no-insert-timestamp,--gc-sections,--file-alignment,4096
            $<$<CONFIG:Release>:$<IF:$<BOOL:${ZUZIPTRA_SYMBOLS}>,-Wl$<COMMA>--build-id,-s>>)
    elseif(MSVC)
        # The manifest is among the resources; the linker's own would be a second one with the same name.
        target_link_options(${target} PRIVATE /MANIFEST:NO)
    endif()
endfunction()
