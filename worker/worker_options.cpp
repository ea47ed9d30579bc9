#include "worker/worker_options.h"
#include <algorithm>
#include <array>
#include <charconv>
#include <utility>
#include "base/ascii_text.h"
#include "base/data_files.h"
#include "base/utf8.h"

namespace {

constexpr std::size_t kMaxRemarks = 20;

bool isOption(const std::string& argument) {
    return argument.starts_with("--");
}

bool parsePid(const std::string& text, std::uint32_t& pid) {
    std::uint32_t number = 0;
    const auto* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc{} || stop != end || number == 0) return false;
    pid = number;
    return true;
}

std::string_view unquoted(std::string_view text) {
    const bool quoted = text.size() >= 2 && text.front() == '"' && text.back() == '"';
    return quoted ? text.substr(1, text.size() - 2) : text;
}

// In the order of LinkKind.
constexpr std::array<std::string_view, 4> kLinkNames = {"auto", "simconnect", "xplane", "simulate"};
constexpr const char* kLinkWords = "auto, simconnect, xplane or simulate";
constexpr const char* kAddressWords = "an address as in simpc:500 or [fe80::1]:500";
constexpr const char* kBeaconWords = "an IPv4 address as in 239.255.1.1:49707";

bool parseLink(std::string_view name, std::optional<LinkKind>& link) {
    const auto found = std::find(kLinkNames.begin(), kLinkNames.end(), name);
    if (found == kLinkNames.end()) return false;
    link = static_cast<LinkKind>(found - kLinkNames.begin());
    return true;
}

// Of a link as far as it is known.
std::optional<HostPort> parseAddress(std::string_view text, std::optional<LinkKind> link) {
    return parseHostPort(text, link == LinkKind::kXPlane ? xplane::kUsualPort : 0);
}

bool parseBeacon(std::string_view text, std::optional<xplane::Endpoint>& beacon) {
    const auto address = parseHostPort(text);
    const auto parsed = address ? xplane::parseIpv4(address->host) : std::nullopt;
    if (!parsed) return false;
    beacon = {*parsed, address->port};
    return true;
}

struct IniLine {
    std::string_view key, value;
    bool hasEquals = false;
};

IniLine partsOf(std::string_view line) {
    const auto equals = line.find('=');
    if (equals == std::string_view::npos) return {};
    return {withoutBlanks(line.substr(0, equals)), unquoted(withoutBlanks(line.substr(equals + 1))), true};
}

// Reads the line into file, the options as the file alone would set them. What its address may look like depends on the
// link, wherever that stands. Returns what is wrong with the line, or nothing.
std::string readIniLine(const IniLine& line, std::optional<LinkKind> link, WorkerOptions& file) {
    if (!line.hasEquals) return "has no =";
    if (line.key == "script") {
        file.script = line.value;
        return {};
    }
    if (line.key == "address") {
        const auto address = parseAddress(line.value, link);
        if (address) file.address = address;
        return address ? "" : std::string("needs ") + kAddressWords;
    }
    if (line.key == "beacon") return parseBeacon(line.value, file.beacon) ? "" : std::string("needs ") + kBeaconWords;
    if (line.key != "link") return "has an unknown key";
    return parseLink(line.value, file.link) ? "" : std::string("needs ") + kLinkWords;
}

// What is wrong with the value of an option that must have one; empty if it was accepted. An address is only looked at
// when the link is known.
std::string readOptionValue(const std::string& name, const std::string& value, WorkerOptions& options) {
    if (name == "--data-dir") {
        options.dataDir = value;
        return {};
    }
    if (name == "--watch-pid") {
        return parsePid(value, options.watchPid) ? "" : "--watch-pid needs a process id, not " + value;
    }
    if (name == "--link") {
        return parseLink(value, options.link) ? "" : std::string("--link needs ") + kLinkWords + ", not " + value;
    }
    return parseBeacon(value, options.beacon) ? "" : std::string("--beacon needs ") + kBeaconWords + ", not " + value;
}

bool hasValueOption(const std::string& name) {
    return name == "--data-dir" || name == "--watch-pid" || name == "--link" || name == "--beacon";
}

bool isIgnoredLine(std::string_view line) {
    return line.empty() || line.front() == '#' || line.front() == ';' || (line.front() == '[' && line.back() == ']');
}

// Calls take(line, number) for each line that says something.
template <typename Take>
void eachIniLine(std::string_view text, const Take& take) {
    text = withoutUtf8Mark(text);
    for (int number = 1; !text.empty(); number++) {
        const auto end = std::min(text.find('\n'), text.size());
        const auto line = withoutBlanks(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (!isIgnoredLine(line)) take(partsOf(line), number);
    }
}

}  // namespace

bool parseArguments(const std::vector<std::string>& arguments, WorkerOptions& options, std::string& error) {
    error.clear();
    const auto complain = [&](std::string reason) {
        if (error.empty()) error = std::move(reason);
    };
    std::optional<std::string> address;
    for (std::size_t i = 0; i < arguments.size(); i++) {
        const auto& name = arguments[i];
        const bool hasValue = i + 1 < arguments.size() && !isOption(arguments[i + 1]);
        if (name == "--diagnose") {
            options.diagnose = true;
        } else if (name == "--simulate") {
            options.link = LinkKind::kSimulate;
            if (hasValue) options.script = arguments[++i];
        } else if ((name == "--address" || hasValueOption(name)) && !hasValue) {
            complain(name + " needs a value");
        } else if (name == "--address") {
            address = arguments[++i];
        } else if (hasValueOption(name)) {
            auto reason = readOptionValue(name, arguments[++i], options);
            if (!reason.empty()) complain(std::move(reason));
        } else {
            complain("unknown argument " + name);
        }
    }
    if (address && options.link == LinkKind::kSimulate) complain("--simulate and --address exclude each other");
    if (address) {
        options.address = parseAddress(*address, options.link);
        if (!options.address) complain(std::string("--address needs ") + kAddressWords + ", not " + *address);
        if (!options.link) options.link = LinkKind::kAuto;  // whatever worker.ini says about the link
    }
    if (options.dataDir.empty() && !options.diagnose) complain("--data-dir is missing");
    return error.empty();
}

std::vector<std::string> applyIni(std::string_view text, WorkerOptions& options) {
    std::vector<std::string> remarks;
    if (text.size() > kMaxIniBytes) return {"worker.ini ignored: larger than 64 KB"};
    WorkerOptions file;
    eachIniLine(text, [&](const IniLine& line, int) {
        if (line.key == "link") parseLink(line.value, file.link);
    });
    const auto link = options.link ? options.link : file.link;
    eachIniLine(text, [&](const IniLine& line, int number) {
        const auto reason = readIniLine(line, link, file);
        if (reason.empty() || remarks.size() == kMaxRemarks) return;
        remarks.push_back("worker.ini line " + std::to_string(number) + " ignored: it " + reason);
    });
    options.link = link;
    if (!options.address) options.address = file.address;
    if (!options.beacon) options.beacon = file.beacon;
    if (options.script.empty() && !file.script.empty()) {
        options.script = isAbsolutePath(file.script) ? file.script : joinPath(options.dataDir, file.script);
    }
    return remarks;
}

std::string describeLink(const WorkerOptions& options) {
    const auto link = options.link.value_or(LinkKind::kAuto);
    const auto text = "link " + std::string(kLinkNames[static_cast<std::size_t>(link)]);
    if (link == LinkKind::kSimulate) return text + ", script " + (options.script.empty() ? "none" : options.script);
    const char* const unnamed = link == LinkKind::kXPlane ? "where it is heard" : "on this computer";
    const auto place = options.address ? "at " + hostPortText(*options.address) : std::string(unnamed);
    const auto other = link == LinkKind::kAuto ? " or X-Plane where it is heard" : "";
    const bool listens = link == LinkKind::kAuto || (link == LinkKind::kXPlane && !options.address);
    const auto beacon = listens && options.beacon ? ", listening at " + xplane::endpointText(*options.beacon) : "";
    return text + ", simulator " + place + other + beacon;
}

bool isAbsolutePath(std::string_view path) {
    return path.starts_with('\\') || path.starts_with('/') || (path.size() > 1 && path[1] == ':');
}
