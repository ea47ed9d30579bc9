#include "plugin/host_interface.h"
#include <algorithm>
#include <array>
#include <charconv>
#include "base/ascii_text.h"
#include "base/utf8.h"

namespace {

constexpr std::string_view kClientName = "ts3client";
constexpr int kLowestAnswer = 23;
constexpr int kHighestAnswer = 99;

bool isClient(std::string_view fileName) {
    return fileName.size() >= kClientName.size() &&
           std::equal(kClientName.begin(), kClientName.end(), fileName.begin(),
                      [](char wanted, char c) { return wanted == lowerAscii(c); });
}

bool isFrom36(const ProgramVersion& version) {
    return version.parts[0] > 3 || (version.parts[0] == 3 && version.parts[1] >= 6);
}

// The whole first line, without blanks around it.
std::optional<int> wordOfUser(std::string_view text) {
    text = withoutUtf8Mark(text);
    const auto line = withoutBlanks(text.substr(0, text.find_first_of("\r\n")));
    int number = 0;
    const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), number);
    if (line.empty() || error != std::errc{} || end != line.data() + line.size()) return std::nullopt;
    if (number < kLowestAnswer || number > kHighestAnswer) return std::nullopt;
    return number;
}

}  // namespace

HostInterface chooseHostInterface(const HostProgram& program, std::string_view userText) {
    if (const auto number = wordOfUser(userText)) return {*number, std::string("set in ") + kHostInterfaceFile};
    std::string name = program.fileName.empty() ? "unknown program" : program.fileName;
    const std::string version = program.version ? versionText(*program.version) : "without a version";
    const bool isNew = isClient(program.fileName) && program.version && isFrom36(*program.version);
    return {isNew ? kNewHostInterface : kOldHostInterface, std::move(name) + ' ' + version};
}

HostInterface findHostInterface(const HostProgram& program, DataFiles& files, const std::string& dataFolder) {
    std::string userText;
    files.readBeginning(joinPath(dataFolder, kHostInterfaceFile), kMaxHostInterfaceBytes, userText);
    return chooseHostInterface(program, userText);
}

std::string hostInterfaceLine(const HostInterface& answer) {
    return "answers interface version " + std::to_string(answer.version) + ": " + answer.why;
}
