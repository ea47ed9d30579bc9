# What keeps the builds short.

# Not optimised, whatever the build type: it is the product that must be fast.
function(is_test_code)
    foreach(target ${ARGN})
        # Comes after the build type's own level, so it wins; MSVC warns about that every time (D9025).
        target_compile_options(${target} PRIVATE $<IF:$<BOOL:${MSVC}>,/Od,-O0>)
    endforeach()
endfunction()

# Whether the product itself uses precompiled headers. GCC 14 takes what they hold of the library for ours, and warns
# falsely about it.
set(CORVALIS_PRECOMPILED OFF)
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang" OR
   (WIN32 AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13))
    set(CORVALIS_PRECOMPILED ON)
endif()

# Precompiles the headers that took most of its compilation. Pays off from about twenty sources. Sources include what
# they use all the same: clang-tidy (test.sh --lint) reads each without precompiled headers.
function(has_precompiled_headers target)
    target_precompile_headers(${target} PRIVATE
        <algorithm> <array> <atomic> <cmath> <cstdint> <cstring> <filesystem> <fstream> <functional>
        <map> <memory> <optional> <random> <sstream> <string> <string_view> <utility> <vector> ${ARGN})
endfunction()

# For a target of the product: precompiles its headers, with those named behind it, or takes them from their owner.
function(shares_precompiled_headers target owner)
    if(NOT CORVALIS_PRECOMPILED)
        return()
    endif()
    if(target STREQUAL owner)
        has_precompiled_headers(${target} ${ARGN})
    else()
        target_precompile_headers(${target} REUSE_FROM ${owner})
    endif()
endfunction()
