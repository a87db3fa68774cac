# ziptra_add_plugin(NAME SOURCES file... [DEPENDS plugin...] [REQUIRES mask] [LANGUAGE c|c++|rust]
#                   [ENTRIES Initialize Stop Cleanup] [VERSION version] [DESTINATION folder])
#
# Builds the plug-in NAME in the folder "plugins" of the build: the library NAME.dll, which contains its own runtime and
# exports only what is marked (ZIPTRA_EXPORT, in Rust no_mangle), and the description NAME.ini.
#
#   SOURCES      the source files; in Rust the root file
#   DEPENDS      the plug-ins that have to start before this one. Add those of the same build first.
#   REQUIRES     a mask of features, of which the machine must allow at least one; otherwise 1. 2 is remote deployment.
#   LANGUAGE     otherwise determined by the extension of the first source
#   ENTRIES      those of NAMEInitialize, NAMEStop and NAMECleanup that the library has; otherwise all
#   VERSION      of the version resource; otherwise the project's
#   DESTINATION  where `cmake --install` puts the library and its description; otherwise "plugins"
#
# `ziptra check` examines the library as soon as it is linked, and an error that it finds fails the build. The tests
# NAME.check and NAME.run (a whole life, under the emulator when cross-building) exist if the project enables testing;
# NAME.run needs all dependencies in the same build. The test all-plugins.check examines all plug-ins of the build together.
#
# Set ZIPTRA_INSTALL_FOLDER to the folder that will contain the libraries on the machine of the service, such as
# C:\Program Files\Example, if it is not the one to which `cmake --install` copies them.

set(_ZIPTRA_CMAKE "${CMAKE_CURRENT_LIST_DIR}")
include("${_ZIPTRA_CMAKE}/ZiptraArguments.cmake")
include("${_ZIPTRA_CMAKE}/ZiptraDescribe.cmake")
include("${_ZIPTRA_CMAKE}/ZiptraRust.cmake")

function(ziptra_add_plugin name)
    _ziptra_read_arguments("${name}" ${ARGN})
    _ziptra_require_platform(${name} ${plugin_LANGUAGE})
    _ziptra_find_dependencies(${name})
    set(library "${CMAKE_BINARY_DIR}/plugins/${name}.dll")
    _ziptra_write_description(${name} "${library}")
    _ziptra_write_version(${name})
    _ziptra_set_note(${name})
    _ziptra_set_check_command()

    if(plugin_LANGUAGE STREQUAL "rust")
        _ziptra_add_rust_library(${name} "${library}")
    else()
        _ziptra_add_library(${name})
    endif()
    foreach(dependency IN LISTS plugin_DEPENDS)
        if(TARGET ${dependency})
            add_dependencies(${name} ${dependency})
        endif()
    endforeach()
    set_target_properties(${name} PROPERTIES
        ZIPTRA_DESCRIPTIONS "${plugin_descriptions}" ZIPTRA_ASSUMED "${plugin_assumed}")

    _ziptra_add_tests(${name})
    _ziptra_install(${name} "${library}")
endfunction()

# Sets plugin_note, which names the call and its first sources: a command line has room for few.
function(_ziptra_set_note name)
    set(sources "${plugin_SOURCES}")
    list(FILTER sources EXCLUDE REGEX "^\\$<")
    list(LENGTH sources count)
    list(SUBLIST sources 0 3 sources)
    list(JOIN sources ", " sources)
    if(count GREATER 3)
        string(APPEND sources ", ...")
    endif()
    set(plugin_note "${name}.ini was written by ziptra_add_plugin(${name} ...) in ${CMAKE_CURRENT_LIST_FILE}: correct its \
arguments, or its sources: ${sources}" PARENT_SCOPE)
endfunction()

# Sets plugin_descriptions, the descriptions of the plug-in and of all those in this build that it needs, and
# plugin_assumed, the names of those that it needs from elsewhere.
function(_ziptra_find_dependencies name)
    set(descriptions "${CMAKE_BINARY_DIR}/plugins/${name}.ini")
    set(assumed "")
    foreach(dependency IN LISTS plugin_DEPENDS)
        if(TARGET ${dependency})
            get_target_property(more ${dependency} ZIPTRA_DESCRIPTIONS)
            list(APPEND descriptions ${more})
            get_target_property(more ${dependency} ZIPTRA_ASSUMED)
            list(APPEND assumed ${more})
        else()
            list(APPEND assumed "${dependency}")
            set_property(GLOBAL APPEND PROPERTY ZIPTRA_ASSUMED "${dependency}")
        endif()
    endforeach()
    list(REMOVE_DUPLICATES descriptions)
    list(REMOVE_DUPLICATES assumed)
    set(plugin_descriptions "${descriptions}" PARENT_SCOPE)
    set(plugin_assumed "${assumed}" PARENT_SCOPE)
endfunction()

# The description itself, and a template of it for the installation.
function(_ziptra_write_description name library)
    string(REPLACE ";" ", " dependencies "${plugin_DEPENDS}")
    set(text "[Service]\nName=${name}\n")
    if(NOT dependencies STREQUAL "")  # a plug-in may be called Off
        string(APPEND text "Dependencies=${dependencies}\n")
    endif()
    string(APPEND text "Requires=${plugin_REQUIRES}\nPath=@ZIPTRA_LIBRARY@\n")
    foreach(entry IN LISTS plugin_ENTRIES)
        string(APPEND text "${entry}=${name}${entry}\n")
    endforeach()
    set(template "${CMAKE_CURRENT_BINARY_DIR}/${name}.ini.in")
    file(WRITE "${template}" "${text}")
    _ziptra_windows_path(path "${library}")
    _ziptra_describe("${template}" "${CMAKE_BINARY_DIR}/plugins/${name}.ini" "${path}")
endfunction()

function(_ziptra_write_version name)
    set(ZIPTRA_NAME ${name})
    set(ZIPTRA_VERSION ${plugin_VERSION})
    string(REPLACE "." ";" numbers ${plugin_VERSION})
    list(APPEND numbers 0 0 0)
    list(SUBLIST numbers 0 4 numbers)
    string(REPLACE ";" "," ZIPTRA_VERSION_NUMBERS "${numbers}")
    configure_file("${_ZIPTRA_CMAKE}/plugin.rc.in" "${CMAKE_CURRENT_BINARY_DIR}/${name}.rc" @ONLY)
endfunction()

# Sets plugin_check, the command that examines plugin_descriptions, and ends what it reports with plugin_note if that is
# set. No feature is forbidden: the machine of the build says nothing about that of the service.
function(_ziptra_set_check_command)
    set(arguments check --quiet --allowed 0xFFFFFFFF)
    foreach(other IN LISTS plugin_assumed)
        list(APPEND arguments --assume "${other}")
    endforeach()
    if(plugin_note)
        list(APPEND arguments --note "${plugin_note}")
    endif()
    if(CMAKE_CROSSCOMPILING AND EXISTS "${ZIPTRA_SDK}/bin/ziptra")
        set(command "${ZIPTRA_SDK}/bin/ziptra" ${arguments} --map Z:=/ ${plugin_descriptions})
    else()
        _ziptra_windows_ziptra(command ${arguments} ${plugin_descriptions})
    endif()
    set(plugin_check "${command}" PARENT_SCOPE)
endfunction()

# _ziptra_windows_ziptra(RESULT ARGUMENT...): the command that runs ziptra.exe.
function(_ziptra_windows_ziptra result)
    set(arguments "")
    foreach(argument IN LISTS ARGN)
        if(IS_ABSOLUTE "${argument}")
            _ziptra_windows_path(argument "${argument}")
        endif()
        list(APPEND arguments "${argument}")
    endforeach()
    set(${result} ${CMAKE_CROSSCOMPILING_EMULATOR} "${ZIPTRA_SDK}/bin/ziptra.exe" ${arguments} PARENT_SCOPE)
endfunction()

function(_ziptra_add_library name)
    add_library(${name} SHARED ${plugin_SOURCES} "${CMAKE_CURRENT_BINARY_DIR}/${name}.rc")
    target_link_libraries(${name} PRIVATE ZiptraRemoteService::headers)
    if(plugin_LANGUAGE STREQUAL "c")
        target_compile_features(${name} PRIVATE c_std_11)
    else()
        target_compile_features(${name} PRIVATE cxx_std_17)
    endif()
    set_target_properties(${name} PROPERTIES
        PREFIX "" OUTPUT_NAME ${name} RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/plugins"
        MSVC_RUNTIME_LIBRARY "MultiThreaded$<$<CONFIG:Debug>:Debug>"
        # Another description needs another check.
        LINK_DEPENDS "${CMAKE_BINARY_DIR}/plugins/${name}.ini")
    # A project may have other settings for a configuration, and CMake a folder.
    foreach(configuration IN LISTS CMAKE_BUILD_TYPE CMAKE_CONFIGURATION_TYPES)
        string(TOUPPER "${configuration}" configuration)
        set_target_properties(${name} PROPERTIES
            RUNTIME_OUTPUT_DIRECTORY_${configuration} "${CMAKE_BINARY_DIR}/plugins" ${configuration}_POSTFIX "")
    endforeach()
    if(MINGW)
        target_link_options(${name} PRIVATE -static -Wl,--exclude-all-symbols,--no-insert-timestamp
            $<$<CONFIG:Release,MinSizeRel>:-s>)
    endif()
    add_custom_command(TARGET ${name} POST_BUILD COMMAND ${plugin_check} VERBATIM)
endfunction()

function(_ziptra_add_tests name)
    add_test(NAME ${name}.check COMMAND ${plugin_check})
    if(plugin_assumed STREQUAL "" AND (CMAKE_CROSSCOMPILING_EMULATOR OR NOT CMAKE_CROSSCOMPILING))
        _ziptra_windows_ziptra(run run --allowed 0xFFFFFFFF "${CMAKE_BINARY_DIR}/plugins/${name}.ini")
        add_test(NAME ${name}.run COMMAND ${run})
    endif()
    get_property(hasOthers GLOBAL PROPERTY ZIPTRA_PLUGINS SET)
    if(NOT hasOthers)
        cmake_language(DEFER DIRECTORY "${CMAKE_SOURCE_DIR}" CALL _ziptra_add_common_test)
    endif()
    set_property(GLOBAL APPEND PROPERTY ZIPTRA_PLUGINS ${name})
endfunction()

# Called when all plug-ins of the build are known, from the top folder of the project, which may not have found the
# package itself. Each can be right by itself, and yet one comes too early in the start order of all.
function(_ziptra_add_common_test)
    get_filename_component(ZIPTRA_SDK "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/../../.." ABSOLUTE)
    get_property(plugins GLOBAL PROPERTY ZIPTRA_PLUGINS)
    get_property(plugin_assumed GLOBAL PROPERTY ZIPTRA_ASSUMED)
    list(LENGTH plugins count)
    if(count GREATER 1)
        list(TRANSFORM plugins REPLACE "(.+)" "${CMAKE_BINARY_DIR}/plugins/\\1.ini" OUTPUT_VARIABLE plugin_descriptions)
        list(REMOVE_DUPLICATES plugin_assumed)
        _ziptra_set_check_command()
        add_test(NAME all-plugins.check COMMAND ${plugin_check})
    endif()
endfunction()

# The description is written at installation, when the folder is known.
function(_ziptra_install name library)
    install(FILES "${library}" DESTINATION "${plugin_DESTINATION}")
    install(CODE "
        include([==[${_ZIPTRA_CMAKE}/ZiptraDescribe.cmake]==])
        _ziptra_describe_installed(${name} [==[${CMAKE_CURRENT_BINARY_DIR}/${name}.ini.in]==]
            [==[${plugin_DESTINATION}]==] [==[${ZIPTRA_INSTALL_FOLDER}]==])")
endfunction()
