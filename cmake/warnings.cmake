# Flags that all our targets share. Samples and sums must come out the same on every machine:
# SSE2 baseline, no contraction into fused operations, no fast-math.
add_library(corvalis_warnings INTERFACE)
if(MSVC)
    # The runtime is linked statically, as with mingw-w64: the DLL and the worker need nothing but Windows.
    set(CMAKE_MSVC_RUNTIME_LIBRARY "MultiThreaded$<$<CONFIG:Debug>:Debug>")
    # x64 always has SSE2, and without /arch there are no fused operations to contract into.
    # Warnings in headers included with <> are left to their authors. Disabled in /W4 is what -Wall -Wextra leave out
    # too: 4127 a constant condition, 4244 4267 narrowing, 4310 a constant cut by a cast, 4324 padding for alignas, 4702
    # code that inlining makes unreachable, 5030 other compilers' attributes.
    target_compile_options(corvalis_warnings INTERFACE "$<$<COMPILE_LANGUAGE:CXX>:\
/W4;/WX;/external:anglebrackets;/external:W0;/wd4127;/wd4244;/wd4267;/wd4310;/wd4324;/wd4702;/wd5030;\
/permissive-;/utf-8;/Zc:__cplusplus;/Zc:preprocessor;/fp:precise>")
    # Without it, the C library's warnings recommend its own variants of standard functions.
    target_compile_definitions(corvalis_warnings INTERFACE _CRT_SECURE_NO_WARNINGS)
else()
    target_compile_options(corvalis_warnings INTERFACE
        -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wformat=2 -Werror
        -ffp-contract=off)
endif()
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    target_compile_options(corvalis_warnings INTERFACE -Wthread-safety)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # GCC 12 falsely reports overlapping copies in plain string concatenation (its bug 105329).
    target_compile_options(corvalis_warnings INTERFACE -Wno-restrict)
endif()
if(WIN32)
    target_compile_definitions(corvalis_warnings INTERFACE
        WIN32_LEAN_AND_MEAN NOMINMAX UNICODE _UNICODE _WIN32_WINNT=0x0A00 WINVER=0x0A00)
else()
    find_package(Threads REQUIRED)
    target_link_libraries(corvalis_warnings INTERFACE Threads::Threads)
endif()
if(CORVALIS_SANITIZE)
    # For every target, GoogleTest included: a sanitizer must see all of a program.
    # -O1 and line tables only: a sanitizer build spends most of its time optimising and describing instrumented code.
    add_compile_options(-fsanitize=${CORVALIS_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer
        -O1 -gline-tables-only)
    add_link_options(-fsanitize=${CORVALIS_SANITIZE})
endif()
