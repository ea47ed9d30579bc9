# GoogleTest, built with each preset's own compiler and flags: from Debian's source package (googletest), or where that
# is not, as on Windows, the same version downloaded. FETCHCONTENT_SOURCE_DIR_GOOGLETEST names a copy for machines
# without network; with vcpkg's toolchain and a static triplet (x64-windows-static) its gtest is taken.
set(CORVALIS_GTEST_SOURCE /usr/src/googletest CACHE PATH "Where Debian's googletest package puts its sources")
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
set(BUILD_GMOCK OFF CACHE BOOL "" FORCE)
set(gtest_disable_pthreads OFF CACHE BOOL "" FORCE)
set(gtest_force_shared_crt ON CACHE BOOL "Leave the choice of the runtime to warnings.cmake" FORCE)
set(CMAKE_POLICY_DEFAULT_CMP0091 NEW)  # or it would not look there
if(EXISTS ${CORVALIS_GTEST_SOURCE}/CMakeLists.txt)
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
    is_test_code(gtest)  # optimised, a tenth of a build goes into a runner that waits for its tests
    if(MSVC)
        # Its own build makes errors of warnings, also of those that came with compilers younger than it is.
        target_compile_options(gtest PRIVATE /WX-)
        target_compile_options(gtest_main PRIVATE /WX-)
    endif()
endif()
include(GoogleTest)
enable_testing()
