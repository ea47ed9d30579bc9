// command_inbox.h - watches command.json and hands out each command once, while somebody still waits for it.
// Refusals only go to the log: the plugin gave up long ago, and an acknowledgement would confuse its next command.
#pragma once
#include <optional>
#include <string>
#include <utility>
#include "base/data_files.h"
#include "exchange/command_text.h"
#include "worker/worker_folder.h"
#include "worker/worker_log.h"

inline constexpr double kMaxCommandAgeSeconds = 10.0;  // older, or as far in the future: not carried out
inline constexpr std::uint64_t kCommandLookMs = 500;   // the text is read this often even if the stamp stays the same

class CommandInbox {
  public:
    CommandInbox(std::string path, DataFiles& files, WorkerFolder& folder, WorkerLog& log)
        : path_(std::move(path)), files_(files), folder_(folder), log_(log) {}

    // A command with this id has been handled, perhaps by an earlier worker.
    void markHandled(std::string id) { handledId_ = std::move(id); }

    // The command that has arrived since the last call, if it is to be carried out; it then counts as handled.
    std::optional<CommandRequest> next(std::uint64_t nowMs, double unixSeconds);

    // The last call found nothing new and could read what there was: until the file changes, neither will the next.
    bool isQuiet() const { return isQuiet_; }

  private:
    bool readNewText(std::uint64_t nowMs);
    std::optional<CommandRequest> commandIn(double unixSeconds);  // text_
    bool isRefused(const CommandRequest& command, double unixSeconds);
    void logProblem(const std::string& problem);

    std::string path_;
    DataFiles& files_;
    WorkerFolder& folder_;
    WorkerLog& log_;
    FileStamp stamp_;           // as of the last reading
    std::uint64_t lookMs_ = 0;  // tick of the last reading
    std::string text_;          // last text read: the same text again is not new
    std::string handledId_;
    std::string refusedId_;
    bool isQuiet_ = false;
    bool problemLogged_ = false;  // until a well-formed command comes
};
