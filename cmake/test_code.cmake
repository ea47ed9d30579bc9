# For code that only tests run, and for builds that are only run by tests. Where the product itself is built, its own
# sources are compiled without either.

# Not optimised, whatever the build type: it is the product that must be fast.
function(is_test_code)
    foreach(target ${ARGN})
        # After the build type's own level, so this one counts; MSVC says so every time (D9025).
        target_compile_options(${target} PRIVATE $<IF:$<BOOL:${MSVC}>,/Od,-O0>)
    endforeach()
endfunction()

# With the headers read once that took most of its compilation. Pays from some twenty sources on.
function(has_precompiled_headers target)
    target_precompile_headers(${target} PRIVATE
        <algorithm> <array> <atomic> <cmath> <cstdint> <cstring> <filesystem> <fstream> <functional>
        <map> <memory> <optional> <random> <sstream> <string> <string_view> <utility> <vector> ${ARGN})
endfunction()
