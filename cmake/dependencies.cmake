# Boost 1.81: Filesystem, System, Function and String Algorithm. An installed Boost is used unchanged, through its
# BoostConfig.cmake; the one that scripts/dependencies.sh builds for Windows has one package per library.
if(UNIX AND NOT DEFINED Boost_USE_STATIC_LIBS)
    set(Boost_USE_STATIC_LIBS ON)  # the tool is one file
endif()
find_package(Boost 1.81 CONFIG QUIET COMPONENTS filesystem)
if(Boost_FOUND)
    set(zuziptra_boost Boost::headers Boost::filesystem)
else()
    find_package(boost_filesystem 1.81 CONFIG REQUIRED)
    find_package(boost_function 1.81 CONFIG REQUIRED)
    find_package(boost_algorithm 1.81 CONFIG REQUIRED)
    set(zuziptra_boost Boost::filesystem Boost::function Boost::algorithm)
endif()

# Libraries that consist of headers. The folder in which they are installed may contain headers of the wrong platform as
# well, so they are reached through links in a folder of their own.
set(zuziptra_headers ${CMAKE_BINARY_DIR}/headers)
file(MAKE_DIRECTORY ${zuziptra_headers})
# zuziptra_headers(LIBRARY HEADER): its headers are in a folder of the library's name.
function(zuziptra_headers library header)
    find_path(${library}_headers ${library}/${header} REQUIRED NO_CMAKE_FIND_ROOT_PATH)
    file(CREATE_LINK ${${library}_headers}/${library} ${zuziptra_headers}/${library} SYMBOLIC COPY_ON_ERROR)
endfunction()
zuziptra_headers(CLI CLI.hpp)
zuziptra_headers(fmt core.h)
zuziptra_headers(nlohmann json.hpp)

# GoogleTest and GoogleMock: an installed package on Windows, otherwise Debian's sources, built with our own
# flags.
if(ZUZIPTRA_TESTS)
    find_path(zuziptra_googletest googletest/CMakeLists.txt PATHS /usr/src/googletest NO_CMAKE_FIND_ROOT_PATH)
    if(zuziptra_googletest)
        set(INSTALL_GTEST OFF)
        set(gtest_force_shared_crt ON)
        add_subdirectory(${zuziptra_googletest} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
        foreach(library gtest gmock gtest_main)
            if(NOT MSVC)
                target_compile_options(${library} PRIVATE -O0)
            endif()
        endforeach()
        if(NOT TARGET GTest::gmock)
            add_library(GTest::gmock ALIAS gmock)
        endif()
    else()
        find_package(GTest CONFIG REQUIRED)
    endif()
endif()
