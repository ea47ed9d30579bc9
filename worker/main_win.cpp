// main_win.cpp - hopline_worker.exe --data-dir DIR [--watch-pid PID]
//                                   [--simulate [SCRIPT] | [--link KIND] [--address HOST:PORT] [--beacon IPV4:PORT]]
//            or: hopline_worker.exe --diagnose [--data-dir DIR] [...]: diagnosis_win.h
// Exit codes: 0 the watched process or the data folder is gone, 1 unexpected failure (in the log), 2 bad command line.
#include <exception>
#include <new>
#include "base/data_files_win.h"
#include "base/data_folder_win.h"
#include "base/identity.h"
#include "exchange/telemetry_text.h"
#include "worker/diagnosis_win.h"
#include "worker/folder_look.h"
#include "worker/make_link.h"
#include "worker/simconnect/pipe_win.h"
#include "worker/simconnect/tcp_transport.h"
#include "worker/system_win.h"
#include "worker/worker_loop.h"
#include "worker/worker_options.h"
#include "worker/xplane/udp_datagrams.h"

// Keeps the C runtime from expanding * and ? in our arguments: paths are taken literally.
extern "C" {
extern int _dowildcard;
int _dowildcard = 0;
}

namespace {

enum ExitCode { kEnded = 0, kFailed = 1, kBadArguments = 2 };

// A reloaded plugin starts its new worker while the killed one is still ending: no line for the log.
constexpr std::uint64_t kQuietClaimMs = 500;

std::string describeOptions(const WorkerOptions& options) {
    std::string text = "data folder " + options.dataDir;
    text += options.watchPid ? ", watching process " + std::to_string(options.watchPid) : ", watching no process";
    return text + ", " + describeLink(options);
}

void readIni(WorkerOptions& options, DataFiles& files, WorkerFolder& folder, WorkerLog& log) {
    const auto path = joinPath(options.dataDir, "worker.ini");
    const auto stamp = folder.stamp(path);
    if (!stamp.exists) return;
    std::string text;
    if (stamp.bytes > kMaxIniBytes || !files.read(path, text))
        return log.line("worker.ini cannot be used: unreadable or larger than 64 KB");
    for (const auto& remark : applyIni(text, options)) log.line(remark);
}

std::unique_ptr<simconnect::Transport> makeTransport(const std::optional<HostPort>& address) {
    if (address) return std::make_unique<simconnect::TcpTransport>(*address);
    return std::make_unique<simconnect::PipeTransport>();
}

LinkWays linkWays() {
    return {makeTransport,
            [](const xplane::Endpoint& beacon) { return std::make_unique<xplane::UdpDatagrams>(beacon); }};
}

// Without memory a pass is lost; the next one may have some.
PassResult tryPass(WorkerLoop& loop, const Clock& clock, PassCause cause) {
    try {
        return loop.pass(clock.tickMs(), clock.unixSeconds(), cause);
    } catch (const std::bad_alloc&) {
        return {.waitMs = kPassMs, .quietMs = kPassMs};
    }
}

int runLoop(WorkerLoop& loop, const SimLink& link, WorkerSleep& sleep, const Clock& clock, WorkerLog& log) {
    auto cause = PassCause::kAnything;
    while (true) {
        const PassResult result = tryPass(loop, clock, cause);
        if (result.folderGone) {
            log.line("ending: the data folder is gone");
            return kEnded;
        }
        const auto woken = sleep.sleep(result, link.wakeHandles());
        if (!woken) {
            log.line("ending: the watched process has ended");
            return kEnded;
        }
        cause = *woken;
    }
}

// Two voice clients have two workers and one folder: the second waits until the first has gone. False if there is
// nobody left to serve.
bool waitForFolder(FolderClaim& claim, HANDLE watched, const std::string& dataDir, const Clock& clock, WorkerLog& log) {
    WindowsFolder folder;
    FolderLook look(folder, dataDir);
    bool isWaiting = false;
    while (true) {
        switch (claim.wait(watched, isWaiting ? look.msUntilDue(clock.tickMs()) : kQuietClaimMs)) {
            case FolderClaim::Outcome::kOurs:
                if (isWaiting) log.line("the other worker has gone");
                return true;
            case FolderClaim::Outcome::kWatchedEnded:
                log.line("ending: the watched process has ended");
                return false;
            case FolderClaim::Outcome::kTaken:
                break;
        }
        if (!isWaiting) log.line("another worker already serves " + dataDir + "; waiting for it to go");
        isWaiting = true;
        if (!look.isGone(clock.tickMs())) continue;
        log.line("ending: the data folder is gone");
        return false;
    }
}

int serve(WorkerOptions options, WorkerLog& log, const Clock& clock) {
    OwnedHandle watched;
    if (options.watchPid) {
        watched.reset(OpenProcess(SYNCHRONIZE, FALSE, options.watchPid));
        if (!watched) {
            log.line("ending: process " + std::to_string(options.watchPid) + " cannot be opened (error " +
                     std::to_string(GetLastError()) + "), so it is gone");
            return kEnded;
        }
    }
    FolderClaim claim(options.dataDir);
    if (!waitForFolder(claim, watched.get(), options.dataDir, clock, log)) return kEnded;
    removeOldTemporaries(options.dataDir, kTelemetryFile);
    WindowsDataFiles files(MoveOnto::kCache);
    WindowsFolder folder;
    readIni(options, files, folder, log);
    log.line(describeOptions(options));
    const auto link = makeLink(options, files, folder, log, linkWays(), clock.tickMs());
    WorkerLoop loop(options.dataDir, files, folder, *link, log);
    WorkerSleep sleep(watched.get(), options.dataDir);
    return runLoop(loop, *link, sleep, clock, log);
}

}  // namespace

int main(int argc, char** argv) {
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);  // nobody sees a box
    WorkerOptions options;
    std::string error;
    const bool understood = parseArguments({argv + 1, argv + argc}, options, error);
    options.dataDir = options.dataDir.empty() ? "" : fullPath(options.dataDir);
    options.script = options.script.empty() ? "" : fullPath(options.script);
    if (options.diagnose) return diagnose(options, error, linkWays()) ? kEnded : kBadArguments;
    if (options.dataDir.empty() || !WindowsFolder::folderExists(options.dataDir)) return kBadArguments;
    leaveCurrentDirectory();

    const FineClock clock;
    WindowsLogFile file(options.dataDir);
    WorkerLog log(file, clock);
    log.line("hopline_worker " + std::string(kPluginVersion) + " started, process " +
             std::to_string(GetCurrentProcessId()));
    if (!understood) {
        log.line("ending: bad command line: " + error);
        return kBadArguments;
    }
    try {
        return serve(std::move(options), log, clock);
    } catch (const std::exception& failure) {
        log.line(std::string("ending: unexpected failure: ") + failure.what());
        return kFailed;
    }
}
