# GoogleTest from Debian's source package (googletest), built with each preset's own compiler and flags.
set(CORVALIS_GTEST_SOURCE /usr/src/googletest CACHE PATH "Where Debian's googletest package puts its sources")
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
set(gtest_disable_pthreads OFF CACHE BOOL "" FORCE)
add_subdirectory(${CORVALIS_GTEST_SOURCE} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
target_compile_options(gtest PRIVATE -O0)  # optimised, a tenth of a build goes into a runner that waits for its tests
include(GoogleTest)
enable_testing()
