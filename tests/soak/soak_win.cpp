// soak_win.cpp - the real plugin in the stand-in voice client for as long as asked: 64 speakers on four audio threads
// in real time, talk, texts, tabs and broken connections; the real worker on the stand-in simulator's pipe, and in
// turns with it, hung, a worker's files at their worst; a pilot who operates everything. A line every ten seconds, in
// OUT_FOLDER/soak.csv too, and at the end the verdict, which is the exit code: 0 if nothing grew, hung or broke.
//   soak OUT_FOLDER [--minutes N] [--seed N] [--every SECONDS] [--leak memory|handle|gdi|user|thread]
// --leak lets the soak itself leak once a second, to see the verdict find it.
#include <windows.h>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include "base/number_text.h"
#include "tests/client/new_client_win.h"
#include "tests/client/test_machine_win.h"
#include "tests/soak/soak_run_win.h"
#include "tests/soak/standstill_watch_win.h"
#include "tests/soak/stopwatch_win.h"

namespace {

constexpr UINT kCrashCode = 3;

// After a crash the program prints a line and ends; a debugger's window, as Wine opens one, would wait to be closed.
LONG WINAPI onCrash(EXCEPTION_POINTERS* crash) {
    const EXCEPTION_RECORD& record = *crash->ExceptionRecord;
    std::printf("crashed: exception %08lx at %p\n", record.ExceptionCode, record.ExceptionAddress);
    std::fflush(stdout);
    TerminateProcess(GetCurrentProcess(), kCrashCode);
    return EXCEPTION_CONTINUE_SEARCH;
}

// A file that is there until the verdict: a Wine process that is ended by others may still report success, and
// tools/run_wine.sh, which names the file, then knows better.
class UnfinishedMark {
  public:
    UnfinishedMark() {
        const char* const name = std::getenv("TEST_PREMATURE_EXIT_FILE");
        if (name) file_ = name;
        if (!file_.empty()) writeFile(file_, "unfinished");
    }
    ~UnfinishedMark() {
        std::error_code ignored;
        if (!file_.empty()) std::filesystem::remove(file_, ignored);
    }
    UnfinishedMark(const UnfinishedMark&) = delete;
    UnfinishedMark& operator=(const UnfinishedMark&) = delete;

  private:
    std::filesystem::path file_;
};

}  // namespace

int main(int argc, char** argv) {
    SetConsoleOutputCP(CP_UTF8);
    if (const auto code = runAsNewClient()) return *code;
    SetUnhandledExceptionFilter(onCrash);
    const auto options = parseSoakOptions({argv + 1, argv + argc});
    if (!options) {
        say("usage: soak OUT_FOLDER [--minutes N] [--seed N] [--every SECONDS] [--leak memory|handle|gdi|user|thread]");
        return 2;
    }
    const UnfinishedMark mark;
    const std::uint64_t seed = options->seed.value_or(nowNs());
    say("Soaking for " + formatFixed(options->minutes, 1) + " minutes, --seed " + std::to_string(seed) +
        (isNewClient() ? ", in a 3.6 client" : ""));
    const auto outFolder = std::filesystem::absolute(options->outFolder);
    std::error_code ignored;
    std::filesystem::remove_all(outFolder / "appdata", ignored);  // or the seed would not repeat its choices
    std::filesystem::create_directories(outFolder, ignored);
    Progress progress;
    const StandstillWatch watch(progress);
    return SoakRun(*options, seed, outFolder, progress).run();
}
