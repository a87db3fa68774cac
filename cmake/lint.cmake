# Checks of the sources and of the built files, as tests labelled "lint", or "tidy" for static analysis. The native
# build checks the sources, the Windows build the executables.

# zuziptra_check(NAME COMMAND...)
function(zuziptra_check name)
    add_test(NAME ${name} COMMAND ${ARGN} WORKING_DIRECTORY ${CMAKE_SOURCE_DIR})
    set_tests_properties(${name} PROPERTIES LABELS lint TIMEOUT 600)
endfunction()

if(WIN32)
    set(executable ${CMAKE_BINARY_DIR}/bin/zuZiptraRemoteService.exe)
    set(tool ${CMAKE_BINARY_DIR}/bin/ziptra.exe)
    zuziptra_check(executable-imports-system-libraries-only scripts/lint-executable imports ${executable})
    zuziptra_check(executable-can-be-relocated-and-protected scripts/lint-executable flags ${executable})
    zuziptra_check(tool-imports-system-libraries-only scripts/lint-executable imports ${tool})
    zuziptra_check(tool-can-be-relocated-and-protected scripts/lint-executable flags ${tool})
    zuziptra_check(tool-has-its-functions-in-ascending-order scripts/lint-executable functions ${tool})
    return()
endif()

zuziptra_check(clang-format scripts/lint-format)
zuziptra_check(shellcheck scripts/lint-shell)
zuziptra_check(pyflakes scripts/lint-python)
zuziptra_check(github scripts/lint-github)
# Each check covers the files that are compiled by this build and by none before it.
foreach(build native-asan windows-release native-bench windows-bench)
    zuziptra_check(clang-tidy-${build} scripts/lint-tidy ${build})
    set_tests_properties(clang-tidy-${build} PROPERTIES LABELS tidy PROCESSORS 2 TIMEOUT 7200)
endforeach()
execute_process(COMMAND ${CMAKE_SOURCE_DIR}/scripts/lint-rules rules OUTPUT_VARIABLE rules
    OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
string(REPLACE "\n" ";" rules "${rules}")
if(NOT rules)
    message(FATAL_ERROR "scripts/lint-rules names no rule")
endif()
foreach(rule ${rules})
    zuziptra_check(${rule} scripts/lint-rules ${rule})
endforeach()
