# find_package(ZiptraRemoteService): the headers as ZiptraRemoteService::headers, and ziptra_add_plugin().
if(CMAKE_VERSION VERSION_LESS 3.20)
    set(ZiptraRemoteService_FOUND FALSE)
    set(ZiptraRemoteService_NOT_FOUND_MESSAGE "it needs CMake 3.20 or later; this is ${CMAKE_VERSION}")
    return()
endif()
cmake_policy(PUSH)
cmake_policy(VERSION 3.20)

# The SDK is used where it is: lib/cmake/ZiptraRemoteService is three folders below its root.
get_filename_component(ZIPTRA_SDK "${CMAKE_CURRENT_LIST_DIR}/../../.." ABSOLUTE)
if(NOT TARGET ZiptraRemoteService::headers)
    add_library(ZiptraRemoteService::headers INTERFACE IMPORTED)
    target_include_directories(ZiptraRemoteService::headers INTERFACE "${ZIPTRA_SDK}/include")
endif()

if(CMAKE_SYSTEM_NAME STREQUAL "Windows")
    # For the version resource. Without C and C++, CMake does not know the prefix of the cross-compiler's tools.
    if(CMAKE_CROSSCOMPILING AND NOT CMAKE_RC_COMPILER)
        find_program(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
    endif()
    enable_language(RC)
endif()

include("${CMAKE_CURRENT_LIST_DIR}/ZiptraAddPlugin.cmake")
cmake_policy(POP)
