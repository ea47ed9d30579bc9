#include "tests/client/command_reader.h"
#include <windows.h>

namespace {

// When the file was written, without opening it; 0 if it is not there.
std::uint64_t writtenAt(const std::filesystem::path& file) {
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (!GetFileAttributesExW(file.c_str(), GetFileExInfoStandard, &data)) return 0;
    return ULARGE_INTEGER{{data.ftLastWriteTime.dwLowDateTime, data.ftLastWriteTime.dwHighDateTime}}.QuadPart;
}

}  // namespace

std::string jsonValue(const std::string& json, const std::string& key) {
    const std::size_t at = json.find("\"" + key + "\":");
    if (at == std::string::npos) return "";
    const std::size_t start = at + key.size() + 3;
    const bool isText = json[start] == '"';
    const std::size_t from = isText ? start + 1 : start;
    return json.substr(from, json.find_first_of(isText ? "\"" : ",}", from) - from);
}

std::string CommandReader::next(std::uint64_t deadlineMs) {
    const auto file = session_.dataFolder / "command.json";
    std::string command;
    session_.waitUntil(
        [&] {
            const auto written = writtenAt(file);
            if (written == lastWritten_) return false;
            command = readFile(file);
            lastWritten_ = command.empty() ? 0 : written;
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
