#include "worker/worker_options.h"
#include <algorithm>
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

// Reads the line into file, the options as the file alone would set them. Returns what is wrong with it, or nothing.
std::string readIniLine(std::string_view line, WorkerOptions& file) {
    const auto equals = line.find('=');
    if (equals == std::string_view::npos) return "has no =";
    const auto key = withoutBlanks(line.substr(0, equals));
    const auto value = unquoted(withoutBlanks(line.substr(equals + 1)));
    if (key == "script") {
        file.script = value;
        return {};
    }
    if (key == "address") {
        const auto address = parseHostPort(value);
        if (address) file.address = address;
        return address ? "" : "needs an address as in simpc:500 or [fe80::1]:500";
    }
    if (key != "link") return "has an unknown key";
    if (value != "auto" && value != "simulate") return "needs auto or simulate";
    file.link = value == "auto" ? LinkKind::kAuto : LinkKind::kSimulate;
    return {};
}

// What is wrong with the value of an option that must have one; empty if it was accepted.
std::string readOptionValue(const std::string& name, const std::string& value, WorkerOptions& options) {
    if (name == "--data-dir") {
        options.dataDir = value;
        return {};
    }
    if (name == "--watch-pid") {
        return parsePid(value, options.watchPid) ? "" : "--watch-pid needs a process id, not " + value;
    }
    options.address = parseHostPort(value);
    return options.address ? "" : "--address needs an address as in simpc:500 or [fe80::1]:500, not " + value;
}

bool isIgnoredLine(std::string_view line) {
    return line.empty() || line.front() == '#' || line.front() == ';' || (line.front() == '[' && line.back() == ']');
}

}  // namespace

bool parseArguments(const std::vector<std::string>& arguments, WorkerOptions& options, std::string& error) {
    error.clear();
    const auto complain = [&](std::string reason) {
        if (error.empty()) error = std::move(reason);
    };
    for (std::size_t i = 0; i < arguments.size(); i++) {
        const auto& name = arguments[i];
        const bool hasValue = i + 1 < arguments.size() && !isOption(arguments[i + 1]);
        if (name == "--diagnose") {
            options.diagnose = true;
        } else if (name == "--simulate") {
            options.link = LinkKind::kSimulate;
            if (hasValue) options.script = arguments[++i];
        } else if (name == "--data-dir" || name == "--watch-pid" || name == "--address") {
            auto reason = hasValue ? readOptionValue(name, arguments[++i], options) : name + " needs a value";
            if (!reason.empty()) complain(std::move(reason));
        } else {
            complain("unknown argument " + name);
        }
    }
    if (options.address && options.link) complain("--simulate and --address exclude each other");
    if (options.address) options.link = LinkKind::kAuto;  // whatever worker.ini says about the link
    if (options.dataDir.empty() && !options.diagnose) complain("--data-dir is missing");
    return error.empty();
}

std::vector<std::string> applyIni(std::string_view text, WorkerOptions& options) {
    std::vector<std::string> remarks;
    if (text.size() > kMaxIniBytes) return {"worker.ini ignored: larger than 64 KB"};
    text = withoutUtf8Mark(text);
    WorkerOptions file;
    for (int number = 1; !text.empty(); number++) {
        const auto end = std::min(text.find('\n'), text.size());
        const auto line = withoutBlanks(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (isIgnoredLine(line)) continue;
        const auto reason = readIniLine(line, file);
        if (reason.empty() || remarks.size() == kMaxRemarks) continue;
        remarks.push_back("worker.ini line " + std::to_string(number) + " ignored: it " + reason);
    }
    if (!options.link) options.link = file.link;
    if (!options.address) options.address = file.address;
    if (options.script.empty() && !file.script.empty()) {
        options.script = isAbsolutePath(file.script) ? file.script : joinPath(options.dataDir, file.script);
    }
    return remarks;
}

std::string describeLink(const WorkerOptions& options) {
    if (options.link.value_or(LinkKind::kAuto) == LinkKind::kSimulate) {
        return "link simulate, script " + (options.script.empty() ? "none" : options.script);
    }
    return "link auto, simulator " +
           (options.address ? "at " + hostPortText(*options.address) : std::string("on this computer"));
}

bool isAbsolutePath(std::string_view path) {
    return path.starts_with('\\') || path.starts_with('/') || (path.size() > 1 && path[1] == ':');
}
