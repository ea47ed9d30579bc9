#include "tests/client/command_reader.h"

std::string jsonValue(const std::string& json, const std::string& key) {
    const std::size_t at = json.find("\"" + key + "\":");
    if (at == std::string::npos) return "";
    const std::size_t start = at + key.size() + 3;
    const bool isText = json[start] == '"';
    const std::size_t from = isText ? start + 1 : start;
    return json.substr(from, json.find_first_of(isText ? "\"" : ",}", from) - from);
}

std::string CommandReader::next(std::uint64_t deadlineMs) {
    std::string command;
    session_.waitUntil(
        [&] {
            command = readFile(session_.dataFolder / "command.json");
            return !command.empty() && jsonValue(command, "id") != lastId_;
        },
        deadlineMs);
    if (command.empty() || jsonValue(command, "id") == lastId_) return "";
    lastId_ = jsonValue(command, "id");
    return command;
}

void CommandReader::acknowledge(bool ok) {
    session_.telemetry.ackId = lastId_;
    session_.telemetry.ackOk = ok;
    session_.telemetry.ackMessage = ok ? "done" : "not accepted";
    session_.publish();
}
