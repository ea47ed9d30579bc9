# Each room is a library of its own, linked only with the rooms it may use; docs/architecture.md has their order and
# tools/check_rooms.py holds the includes to it.

# add_room(NAME [SOURCES ...] [WINDOWS_SOURCES ...] [USES room ...] [WINDOWS_LIBRARIES ...]): corvalis_NAME from what is
# compiled for every machine, and on Windows corvalis_NAME_win from what includes <windows.h>.
function(add_room name)
    cmake_parse_arguments(ROOM "" "" "SOURCES;WINDOWS_SOURCES;USES;WINDOWS_LIBRARIES" ${ARGN})
    list(TRANSFORM ROOM_USES PREPEND corvalis_ OUTPUT_VARIABLE used)
    add_library(corvalis_${name} STATIC ${ROOM_SOURCES})
    target_include_directories(corvalis_${name} PUBLIC ${CMAKE_SOURCE_DIR})
    target_link_libraries(corvalis_${name} PUBLIC corvalis_warnings ${used})
    shares_precompiled_headers(corvalis_${name} corvalis_base)
    if(CORVALIS_SANITIZE)
        # Six files as one take three quarters of the time. So no two files of a room may give a name of their own to
        # different things.
        set_target_properties(corvalis_${name} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 6)
    endif()
    if(CORVALIS_FUZZ)
        # The coverage counters, but not libFuzzer's main.
        target_compile_options(corvalis_${name} PRIVATE -fsanitize=fuzzer-no-link)
    endif()
    if(NOT WIN32 OR NOT ROOM_WINDOWS_SOURCES)
        return()
    endif()
    set(used_windows_parts)
    foreach(room ${used})
        if(TARGET ${room}_win)
            list(APPEND used_windows_parts ${room}_win)
        endif()
    endforeach()
    add_library(corvalis_${name}_win STATIC ${ROOM_WINDOWS_SOURCES})
    target_link_libraries(corvalis_${name}_win PUBLIC corvalis_${name} ${used_windows_parts} ${ROOM_WINDOWS_LIBRARIES})
    shares_precompiled_headers(corvalis_${name}_win corvalis_base_win <windows.h>)
endfunction()
