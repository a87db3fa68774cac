# Boost 1.81: Filesystem, System, Function and String Algorithm. A Boost that is already installed is used as it is
# (with its BoostConfig.cmake); the one that scripts/dependencies.sh builds for Windows has a package per library.
find_package(Boost 1.81 CONFIG QUIET COMPONENTS filesystem)
if(Boost_FOUND)
    set(zuziptra_boost Boost::headers Boost::filesystem)
else()
    find_package(boost_filesystem 1.81 CONFIG REQUIRED)
    find_package(boost_function 1.81 CONFIG REQUIRED)
    find_package(boost_algorithm 1.81 CONFIG REQUIRED)
    set(zuziptra_boost Boost::filesystem Boost::function Boost::algorithm)
endif()

# GoogleTest and GoogleMock: an installed package on Windows, otherwise Debian's sources, built with our own flags so
# that sanitizers see through them.
if(ZUZIPTRA_TESTS)
    find_path(zuziptra_googletest googletest/CMakeLists.txt PATHS /usr/src/googletest NO_CMAKE_FIND_ROOT_PATH)
    if(zuziptra_googletest)
        set(INSTALL_GTEST OFF)
        set(gtest_force_shared_crt ON)
        add_subdirectory(${zuziptra_googletest} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
        if(NOT TARGET GTest::gmock)
            add_library(GTest::gmock ALIAS gmock)
        endif()
    else()
        find_package(GTest CONFIG REQUIRED)
    endif()
endif()
