# Checks of the sources and of the built files, as tests labelled "lint", or "tidy" for static analysis. The native build checks the sources and the
# portable files, the Windows build the Windows files and the executable.

# zuziptra_check(NAME COMMAND...)
function(zuziptra_check name)
    add_test(NAME ${name} COMMAND ${ARGN} WORKING_DIRECTORY ${CMAKE_SOURCE_DIR})
    set_tests_properties(${name} PROPERTIES LABELS lint TIMEOUT 600)
endfunction()

if(WIN32)
    set(executable ${CMAKE_BINARY_DIR}/bin/zuZiptraRemoteService.exe)
    zuziptra_check(clang-tidy-windows scripts/lint-tidy ${CMAKE_BINARY_DIR}
        "(host|tool)/.*_win32\\.cpp" "(examples|tests/standins)/.*")
    set(tool ${CMAKE_BINARY_DIR}/bin/ziptra.exe)
    zuziptra_check(executable-imports-system-libraries-only scripts/lint-executable imports ${executable})
    zuziptra_check(executable-can-be-relocated-and-protected scripts/lint-executable flags ${executable})
    zuziptra_check(tool-imports-system-libraries-only scripts/lint-executable imports ${tool})
    zuziptra_check(tool-can-be-relocated-and-protected scripts/lint-executable flags ${tool})
    zuziptra_check(executables-have-the-same-bytes-from-another-folder scripts/lint-reproducible ${executable} ${tool})
    set_tests_properties(clang-tidy-windows PROPERTIES LABELS tidy PROCESSORS 2)
    return()
endif()

zuziptra_check(clang-format scripts/lint-format)
zuziptra_check(shellcheck scripts/lint-shell)
zuziptra_check(pyflakes scripts/lint-python)
zuziptra_check(clang-tidy-portable scripts/lint-tidy ${CMAKE_BINARY_DIR}
    "(host|tool)/.*(?<!_win32)\\.cpp")
set_tests_properties(clang-tidy-portable PROPERTIES LABELS tidy PROCESSORS 2)
execute_process(COMMAND ${CMAKE_SOURCE_DIR}/scripts/lint-rules rules OUTPUT_VARIABLE rules
    OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
string(REPLACE "\n" ";" rules "${rules}")
if(NOT rules)
    message(FATAL_ERROR "scripts/lint-rules names no rule")
endif()
foreach(rule ${rules})
    zuziptra_check(${rule} scripts/lint-rules ${rule})
endforeach()
