// main_win.cpp - client_tests: the tests, and on request a voice client process of its own that a test can kill.
//   client_tests --play-host DLL READYFILE    loads and starts the plugin, writes READYFILE, waits to be killed
//   client_tests --play-jobless-host DLL READYFILE   the same on a system that gives the plugin no job object
//   client_tests --leave-host DLL READYFILE   the same, but its main returns at once, with the plugin still running
#include <gtest/gtest.h>
#include <windows.h>
#include <cstdio>
#include <string_view>
#include "base/clock_win.h"
#include "tests/client/host_model.h"
#include "tests/client/import_patch_win.h"
#include "tests/client/new_client_win.h"
#include "tests/client/plugin_library_win.h"
#include "tests/client/test_machine_win.h"

namespace {

HANDLE WINAPI createNoJob(SECURITY_ATTRIBUTES*, const char*) {
    return nullptr;
}

int playHost(std::string_view role, const char* dll, const char* readyFile) {
    static const SystemClock clock;
    static HostModel host(clock);                       // static: there until the process is gone,
    static PluginLibrary& plugin = *new PluginLibrary;  // and the DLL is not unloaded earlier
    if (!plugin.load(dll) || !plugin.introduce(host)) return 1;
    if (role == "--play-jobless-host") {
        static const ImportPatch patch(L"corvalis_win64.dll", "CreateJobObjectA", reinterpret_cast<void*>(createNoJob));
        if (!patch.isInPlace()) return 1;
    }
    plugin.exports().registerPluginID("played-host");
    plugin.exports().init();
    if (!replaceFile(readyFile, "ready")) return 1;
    if (role == "--leave-host") return 0;
    waitFor([] { return false; }, 60'000);  // a forgotten one ends by itself
    plugin.exports().shutdown();
    return 0;
}

// After a crash the program prints a line and ends; a debugger's window, as Wine opens one, would wait to be closed.
LONG WINAPI onCrash(EXCEPTION_POINTERS* crash) {
    const EXCEPTION_RECORD& record = *crash->ExceptionRecord;
    std::printf("crashed: exception %08lx at %p\n", record.ExceptionCode, record.ExceptionAddress);
    std::fflush(stdout);
    TerminateProcess(GetCurrentProcess(), 3);
    return EXCEPTION_CONTINUE_SEARCH;
}

}  // namespace

int main(int argc, char** argv) {
    if (const auto code = runAsNewClient()) return *code;
    SetUnhandledExceptionFilter(onCrash);
    const std::string_view role = argc == 4 ? argv[1] : "";
    if (role.ends_with("-host")) return playHost(role, argv[2], argv[3]);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
