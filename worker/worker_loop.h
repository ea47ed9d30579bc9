// worker_loop.h - one pass of the worker: the link, the command, the telemetry. Whoever runs it sleeps in between.
#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include "worker/command_handler.h"
#include "worker/command_inbox.h"
#include "worker/folder_look.h"
#include "worker/telemetry_writer.h"

// Between two passes: command.json is read within 25 ms. A link that may rest (SimLink::restMs) and a folder that can
// be watched make it longer; then the new file itself begins the pass.
inline constexpr std::uint64_t kPassMs = 23;

// A link that comes and goes all the time does not fill the log: after so many lines on states that did not last,
inline constexpr int kHastyLinkLines = 6;
inline constexpr std::uint64_t kLastingLinkMs = 1500;  // only one that has lasted so long has a line again

// Why a pass begins.
enum class PassCause {
    kAnything,
    kLinkNews,  // only the link has news: nothing has changed in the folder, which is watched
};

struct PassResult {
    bool folderGone = false;    // the worker has nothing left to do
    std::uint64_t waitMs = 1;   // 1..kPassMs until the next pass
    std::uint64_t quietMs = 1;  // the same if news from the link and a new command.json end the wait early
};

class WorkerLoop {
  public:
    // Everything handed in outlives the loop. The last acknowledged id in an existing telemetry.json counts as handled.
    WorkerLoop(const std::string& dataDir, DataFiles& files, WorkerFolder& folder, SimLink& link, WorkerLog& log);

    PassResult pass(std::uint64_t nowMs, double unixSeconds, PassCause cause = PassCause::kAnything);

  private:
    void logLink(std::uint64_t nowMs);

    FolderLook folderLook_;
    SimLink& link_;
    WorkerLog& log_;
    CommandInbox inbox_;
    // For a command: a simulator with news many times a second is no reason to look for a file as often. Holds until a
    // look has found nothing more.
    bool isLookDue_ = true;
    CommandHandler handler_;
    TelemetryWriter writer_;
    struct LinkState {
        bool ok = false;
        std::string status;
        bool operator==(const LinkState&) const = default;
    };
    std::optional<LinkState> seenLink_, loggedLink_;
    std::uint64_t linkSinceMs_ = 0;  // when seenLink_ began
    int hastyLinkLines_ = 0;         // since a state has lasted
};
