// host_files_fuzz.cpp - any bytes as each of the small things that others leave for the plugin, beside the rules read
// literally: host_api.txt, capture_mode.txt, the version resource of the voice client, the names in the data folder.
#include <vector>
#include "audio/capture_mode.h"
#include "base/data_files.h"
#include "plugin/host_interface.h"
#include "tests/fuzz/fuzz_input.h"
#include "tests/fuzz/text_mutator.h"
#include "tests/unit/fakes.h"

namespace {

constexpr const char* kFolder = "C:\\d";

constexpr std::string_view kSample =
    "26\n23\n99\n22\n100\n0026\nmark\nfull\noff\n0\n2\n ts3client_win64.exe \nTS3CLIENT.exe\n"
    "settings.ini.4242.tmp\nsettings.ini.tmp\nsettings.ini..tmp\n";

std::vector<std::string> linesOf(std::string_view text) {
    std::vector<std::string> lines(1);
    for (const char c : text) {
        if (c == '\n')
            lines.emplace_back();
        else
            lines.back() += c;
    }
    return lines;
}

std::string trimmed(std::string text) {
    const auto isBlank = [](char c) { return c == ' ' || c == '\t' || c == '\r'; };
    while (!text.empty() && isBlank(text.back())) text.pop_back();
    while (!text.empty() && isBlank(text.front())) text.erase(0, 1);
    return text;
}

// The user's word on the interface: 23..99, or 0 for anything else.
int plainUserWord(std::string text) {
    if (text.starts_with("\xEF\xBB\xBF")) text.erase(0, 3);
    text = trimmed(text.substr(0, text.find_first_of("\r\n")));
    if (text.empty() || text.find_first_not_of("0123456789") != std::string::npos) return 0;
    while (text.size() > 2 && text.front() == '0') text.erase(0, 1);
    if (text.size() > 2) return 0;
    const int number = std::atoi(text.c_str());
    return number >= 23 ? number : 0;
}

void checkHostInterface(const std::string& text, const HostProgram& program) {
    MemoryFiles files;
    files.put(joinPath(kFolder, kHostInterfaceFile), text);
    const auto answer = findHostInterface(program, files, kFolder);
    const int word = plainUserWord(text);
    std::string name = program.fileName.substr(0, 9);
    for (char& c : name)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
    const auto isNew = [](const ProgramVersion& v) { return v.parts[0] * 65536LL + v.parts[1] >= 3 * 65536 + 6; };
    const int known = name == "ts3client" && program.version && isNew(*program.version) ? 26 : 23;
    require(answer.version == (word != 0 ? word : known), "the interface's version", answer.why);
    require(!hostInterfaceLine(answer).empty(), "the answer has a reason");
}

void checkCaptureMode(const std::string& text) {
    const char first = text.empty() ? ' ' : text[0];
    const int mode = first == '0' || first == 'f' ? 0 : first == '2' || first == 'o' ? 2 : 1;
    require(captureModeOf(text) == mode, "the capture mode");
    const auto lines = linesOf(text);
    require(asksForMark(text) == (lines.size() > 1 && trimmed(lines[1]) == "mark"), "the capture mark");
}

std::optional<ProgramVersion> plainVersion(const std::string& bytes) {
    const auto at = [&](std::size_t i) { return static_cast<unsigned>(static_cast<unsigned char>(bytes[i])); };
    for (std::size_t i = 0; i + 16 <= bytes.size(); i += 4) {
        if (bytes.compare(i, 4, "\xBD\x04\xEF\xFE") != 0) continue;
        ProgramVersion version;
        const std::size_t places[] = {10, 8, 14, 12};
        for (std::size_t part = 0; part < 4; part++)
            version.parts[part] = static_cast<std::uint16_t>(at(i + places[part]) | at(i + places[part] + 1) << 8U);
        return version;
    }
    return std::nullopt;
}

void checkTemporaryName(const std::string& name) {
    const std::string start = "settings.ini.", end = ".tmp";
    const bool fits = name.starts_with(start) && name.ends_with(end) && name.size() > start.size() + end.size();
    const auto number = fits ? name.substr(start.size(), name.size() - start.size() - end.size()) : "x";
    const bool isOurs = number.find_first_not_of("0123456789") == std::string::npos;
    require(isTemporaryOf(name, "settings.ini") == isOurs, "a temporary file's name", name);
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned seed) {
    static TextMutator mutator(kSample, "\n. ");
    return mutator.mutate(data, size, maxSize, seed);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const auto version = readVersionResource(std::as_bytes(std::span(data, size)));
    require(version == plainVersion(bytes), "the version of a resource");
    if (version) require(!versionText(*version).empty(), "a version as text");
    checkCaptureMode(bytes);
    const auto lines = linesOf(bytes);
    for (const auto& line : lines) checkTemporaryName(line);
    for (const auto& parts : {version, std::optional(ProgramVersion{{3, 6, 0, 0}}), std::optional<ProgramVersion>()}) {
        checkHostInterface(bytes, {lines.back(), parts});
        checkHostInterface(bytes, {"ts3client_win64.exe", parts});
    }
    return 0;
}
