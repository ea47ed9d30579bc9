# GoogleTest: Debian's library (libgtest-dev) in programs of this machine, otherwise built with the preset's own compiler
# and flags: from Debian's source package (googletest), or, where that is missing, as on Windows, the same version
# downloaded. FETCHCONTENT_SOURCE_DIR_GOOGLETEST names a copy for machines without network; with vcpkg's toolchain and a
# static triplet (x64-windows-static) vcpkg's own GoogleTest is used.
find_library(CORVALIS_GTEST_LIBRARY libgtest.a)
set(CORVALIS_GTEST_SOURCE /usr/src/googletest CACHE PATH "Where Debian's googletest package puts its sources")
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
set(BUILD_GMOCK OFF CACHE BOOL "" FORCE)
set(gtest_disable_pthreads OFF CACHE BOOL "" FORCE)
set(gtest_force_shared_crt ON CACHE BOOL "Leave the choice of the runtime to warnings.cmake" FORCE)
set(CMAKE_POLICY_DEFAULT_CMP0091 NEW)  # or GoogleTest would ignore CMAKE_MSVC_RUNTIME_LIBRARY
# The thread sanitizer must see the locks of the runner as well.
if(NOT CMAKE_CROSSCOMPILING AND CORVALIS_GTEST_LIBRARY AND NOT CORVALIS_SANITIZE STREQUAL "thread")
    find_package(GTest REQUIRED)
elseif(EXISTS ${CORVALIS_GTEST_SOURCE}/CMakeLists.txt)
    add_subdirectory(${CORVALIS_GTEST_SOURCE} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
elseif(VCPKG_TOOLCHAIN)
    find_package(GTest CONFIG REQUIRED)
else()
    include(FetchContent)
    FetchContent_Declare(googletest
        GIT_REPOSITORY https://github.com/google/googletest.git GIT_TAG release-1.12.1 GIT_SHALLOW ON)
    FetchContent_MakeAvailable(googletest)
endif()
if(TARGET gtest)
    is_test_code(gtest)  # optimising it would take a tenth of a build, for a runner that waits for its tests
    if(MSVC)
        # Its own build turns warnings into errors, even those of compilers newer than itself.
        target_compile_options(gtest PRIVATE /WX-)
        target_compile_options(gtest_main PRIVATE /WX-)
    endif()
endif()
include(GoogleTest)
enable_testing()
