#include "plugin/host_interface.h"
#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include "base/utf8.h"

namespace {

constexpr std::string_view kClientName = "ts3client";
constexpr std::uint32_t kFixedInfoSignature = 0xFEEF04BD;  // VS_FIXEDFILEINFO
constexpr std::size_t kVersionOffset = 8;                  // of dwFileVersionMS and LS in it
constexpr int kLowestAnswer = 23;
constexpr int kHighestAnswer = 99;

std::uint32_t wordAt(std::span<const std::byte> bytes, std::size_t at) {
    std::uint32_t word = 0;
    std::memcpy(&word, bytes.data() + at, sizeof word);  // little-endian, as we are
    return word;
}

char lowerOf(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool isClient(std::string_view fileName) {
    return fileName.size() >= kClientName.size() &&
           std::equal(kClientName.begin(), kClientName.end(), fileName.begin(),
                      [](char wanted, char c) { return wanted == lowerOf(c); });
}

bool isFrom36(const ProgramVersion& version) {
    return version.parts[0] > 3 || (version.parts[0] == 3 && version.parts[1] >= 6);
}

std::string textOf(const ProgramVersion& version) {
    return std::to_string(version.parts[0]) + '.' + std::to_string(version.parts[1]) + '.' +
           std::to_string(version.parts[2]);
}

// The whole first line, without blanks around it.
std::optional<int> wordOfUser(std::string_view text) {
    text = withoutUtf8Mark(text);
    auto line = text.substr(0, text.find_first_of("\r\n"));
    const auto begin = std::min(line.find_first_not_of(" \t"), line.size());
    line = line.substr(begin, line.find_last_not_of(" \t") + 1 - begin);
    int number = 0;
    const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), number);
    if (line.empty() || error != std::errc{} || end != line.data() + line.size()) return std::nullopt;
    if (number < kLowestAnswer || number > kHighestAnswer) return std::nullopt;
    return number;
}

}  // namespace

std::optional<ProgramVersion> readVersionResource(std::span<const std::byte> resource) {
    // The fixed part stands on a multiple of four bytes behind a key of text.
    for (std::size_t at = 0; at + kVersionOffset + 8 <= resource.size(); at += 4) {
        if (wordAt(resource, at) != kFixedInfoSignature) continue;
        const std::uint32_t high = wordAt(resource, at + kVersionOffset);
        const std::uint32_t low = wordAt(resource, at + kVersionOffset + 4);
        ProgramVersion version;
        version.parts[0] = static_cast<std::uint16_t>(high >> 16U);
        version.parts[1] = static_cast<std::uint16_t>(high & 0xFFFFU);
        version.parts[2] = static_cast<std::uint16_t>(low >> 16U);
        version.parts[3] = static_cast<std::uint16_t>(low & 0xFFFFU);
        return version;
    }
    return std::nullopt;
}

HostInterface chooseHostInterface(const HostProgram& program, std::string_view userText) {
    if (const auto number = wordOfUser(userText)) return {*number, std::string("set in ") + kHostInterfaceFile};
    std::string name = program.fileName.empty() ? "unknown program" : program.fileName;
    const std::string version = program.version ? textOf(*program.version) : "without a version";
    const bool isNew = isClient(program.fileName) && program.version && isFrom36(*program.version);
    return {isNew ? kNewHostInterface : kOldHostInterface, std::move(name) + ' ' + version};
}

std::string hostInterfaceLine(const HostInterface& answer) {
    return "answers interface version " + std::to_string(answer.version) + ": " + answer.why;
}
