# Used while a plug-in is configured, and again when it is installed.

# _ziptra_windows_path(RESULT PATH): the path of a file of this machine as Windows sees it. Wine has / on drive Z.
function(_ziptra_windows_path result path)
    if(path MATCHES "^/[^/]")
        string(PREPEND path "Z:")
    endif()
    string(REPLACE "/" "\\" path "${path}")
    set(${result} "${path}" PARENT_SCOPE)
endfunction()

# _ziptra_describe(TEMPLATE DESCRIPTION LIBRARY): writes the description of the library with this Windows path.
function(_ziptra_describe template description ZIPTRA_LIBRARY)
    configure_file("${template}" "${description}" @ONLY)
endfunction()

# _ziptra_describe_installed(NAME TEMPLATE DESTINATION FOLDER): the same for the installed library NAME.dll, which Windows
# will see in this folder; otherwise in the one to which it is installed.
function(_ziptra_describe_installed name template destination folder)
    get_filename_component(prefix "${CMAKE_INSTALL_PREFIX}" ABSOLUTE)
    get_filename_component(destination "${destination}" ABSOLUTE BASE_DIR "${prefix}")
    if(NOT folder)
        set(folder "${destination}")
    endif()
    string(REGEX REPLACE "[/\\\\]+$" "" folder "${folder}")
    _ziptra_windows_path(library "${folder}/${name}.dll")
    set(description "$ENV{DESTDIR}${destination}/${name}.ini")
    message(STATUS "Installing: ${description}")
    _ziptra_describe("${template}" "${description}" "${library}")
endfunction()
