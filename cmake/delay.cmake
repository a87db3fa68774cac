# The target loads this library when it calls one of these functions for the first time, and not when it starts: shell32
# alone, with what it brings along, would take longer to load than everything else at the start of the program.
function(zuziptra_delay target library)
    if(MSVC)
        target_link_options(${target} PRIVATE /DELAYLOAD:${library})
        target_link_libraries(${target} PRIVATE delayimp)
        return()
    endif()
    set(stem ${CMAKE_CURRENT_BINARY_DIR}/${target}-${library})
    list(JOIN ARGN "\n" functions)
    file(CONFIGURE OUTPUT ${stem}.def CONTENT "LIBRARY ${library}\nEXPORTS\n${functions}\n" @ONLY)
    # The prefix names what lies in the archive; left to itself, that is a number from the process.
    add_custom_command(OUTPUT ${stem}.a
        COMMAND ${CMAKE_DLLTOOL} --input-def ${stem}.def --output-delaylib ${stem}.a --temp-prefix delayed
        DEPENDS ${stem}.def
        COMMENT "Making ${library}'s delayed import library")
    add_custom_target(${target}_${library} DEPENDS ${stem}.a)
    add_dependencies(${target} ${target}_${library})
    target_link_libraries(${target} PRIVATE ${stem}.a)
endfunction()
