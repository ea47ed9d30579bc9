// worker_loop.h - one pass of the worker: the link, the command, the telemetry. Whoever runs it sleeps in between.
#pragma once
#include <cstdint>
#include <string>
#include "worker/command_handler.h"
#include "worker/command_inbox.h"
#include "worker/folder_look.h"
#include "worker/telemetry_writer.h"

// Between two passes: command.json is read within 25 ms. A link that may rest (SimLink::restMs) and a folder that can
// be watched make it longer; then the new file itself begins the pass.
inline constexpr std::uint64_t kPassMs = 23;

struct PassResult {
    bool folderGone = false;    // the worker has nothing left to do
    std::uint64_t waitMs = 1;   // 1..kPassMs until the next pass
    std::uint64_t quietMs = 1;  // the same if news from the link and a new command.json end the wait early
};

class WorkerLoop {
  public:
    // Everything handed in outlives the loop. The last acknowledged id in an existing telemetry.json counts as handled.
    WorkerLoop(const std::string& dataDir, DataFiles& files, WorkerFolder& folder, SimLink& link, WorkerLog& log);

    PassResult pass(std::uint64_t nowMs, double unixSeconds);

  private:
    void logLink();

    FolderLook folderLook_;
    SimLink& link_;
    WorkerLog& log_;
    CommandInbox inbox_;
    CommandHandler handler_;
    TelemetryWriter writer_;
    bool linkLogged_ = false;
    bool loggedOk_ = false;
    std::string loggedStatus_;
};
