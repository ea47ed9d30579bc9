# Flags that every target of ours shares. Samples and sums must come out the same on every machine:
# SSE2 baseline, no contraction into fused operations, no fast-math.
add_library(corvalis_warnings INTERFACE)
target_compile_options(corvalis_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wformat=2 -Werror
    -ffp-contract=off)
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    target_compile_options(corvalis_warnings INTERFACE -Wthread-safety)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # GCC 12 sees overlapping copies in plain string concatenation (its bug 105329).
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
    # -O1 and lines only: most of a sanitizer build is spent on optimising and describing what it instruments.
    add_compile_options(-fsanitize=${CORVALIS_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer
        -O1 -gline-tables-only)
    add_link_options(-fsanitize=${CORVALIS_SANITIZE})
endif()
