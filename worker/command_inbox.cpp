#include "worker/command_inbox.h"
#include "base/number_text.h"

std::optional<CommandRequest> CommandInbox::next(std::uint64_t nowMs, double unixSeconds) {
    if (!readNewText(nowMs)) return std::nullopt;
    try {
        return commandIn(unixSeconds);
    } catch (...) {  // mostly no memory: the next pass reads it again
        stamp_ = {};
        text_.clear();
        throw;
    }
}

std::optional<CommandRequest> CommandInbox::commandIn(double unixSeconds) {
    auto command = parseCommandText(text_);
    if (!command) {
        logProblem("command.json ignored: not a whole command");
        return std::nullopt;
    }
    problemLogged_ = false;
    if (isRefused(*command, unixSeconds)) return std::nullopt;
    handledId_ = command->id;
    return command;
}

// The stamp is taken before the text: a file replaced in between is read again on the next pass.
bool CommandInbox::readNewText(std::uint64_t nowMs) {
    const auto stamp = folder_.stamp(path_);
    isQuiet_ = !stamp.exists || (stamp == stamp_ && nowMs - lookMs_ < kCommandLookMs);
    if (isQuiet_) return false;
    std::string text;
    if (stamp.bytes > kMaxCommandBytes) {
        logProblem("command.json ignored: larger than a command");
    } else if (!files_.readBeginning(path_, kMaxCommandBytes + 1, text)) {
        logProblem("command.json cannot be read");
        return false;  // the next pass tries again
    }
    stamp_ = stamp;
    lookMs_ = nowMs;
    if (text == text_ || stamp.bytes > kMaxCommandBytes) return false;
    text_ = std::move(text);
    return true;
}

bool CommandInbox::isRefused(const CommandRequest& command, double unixSeconds) {
    if (command.id == refusedId_) return true;
    const double age = unixSeconds - command.created;
    std::string reason;
    if (command.id == handledId_) reason = "already handled";
    if (reason.empty() && age > kMaxCommandAgeSeconds) reason = formatFixed(age, 1) + " s old";
    if (reason.empty() && age < -kMaxCommandAgeSeconds) reason = "stamped " + formatFixed(-age, 1) + " s in the future";
    if (reason.empty()) return false;
    refusedId_ = command.id;
    log_.line("command " + command.id + " refused: " + reason);
    return true;
}

void CommandInbox::logProblem(const std::string& problem) {
    if (!problemLogged_) log_.line(problem);
    problemLogged_ = true;
}
