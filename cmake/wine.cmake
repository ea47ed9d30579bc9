# Off Windows, Windows programs run under Wine, in a prefix of their own unless the environment names one
# (tools/wine.sh makes the same one). CORVALIS_TEST_ENVIRONMENT goes to every test of such a program.
set(CORVALIS_TEST_ENVIRONMENT "")
if(WIN32 AND CMAKE_CROSSCOMPILING)
    find_program(CORVALIS_WINE NAMES wine wine64 REQUIRED)
    set(CMAKE_CROSSCOMPILING_EMULATOR "${CMAKE_SOURCE_DIR}/tools/run_wine.sh;${CORVALIS_WINE}")
    set(CORVALIS_TEST_ENVIRONMENT WINEDEBUG=-all LC_ALL=C.UTF-8)
    if(NOT DEFINED ENV{WINEPREFIX})
        list(APPEND CORVALIS_TEST_ENVIRONMENT WINEPREFIX=${CMAKE_BINARY_DIR}/wineprefix)
    endif()
endif()
