#include "worker/host_names.h"
#include <algorithm>
#include <cstddef>
#include <optional>
#include "base/ascii_text.h"
#include "worker/host_port.h"
#include "worker/masked_text.h"
#include "worker/pilot_texts.h"

namespace {

constexpr std::string_view kMask = "<host>";
constexpr std::string_view kBlanks = " \t\r";
constexpr std::string_view kBeforePaths = " \t\"'=,;([{|";  // anything else is part of the path itself
constexpr std::string_view kIniKey = "address";
constexpr std::string_view kThisComputer[] = {"localhost", "127.0.0.1", "::1"};

enum class Naming {
    kAddress,  // HOST:PORT
    kRefused,  // what was refused as an address, up to the line's end: it may hold blanks
    kHost,     // a host alone, perhaps cut
};

// What the worker writes in front of a computer, in worker_options.cpp and pilot_texts.cpp.
struct Lead {
    std::string_view text;
    Naming naming;
};
constexpr Lead kLeads[] = {
    {"simulator at ", Naming::kAddress},     {"as in simpc:500 or [fe80::1]:500, not ", Naming::kRefused},
    {pilot::kNoAnswerFrom, Naming::kHost},   {pilot::kNoSuchComputer, Naming::kHost},
    {pilot::kNoThreadToLook, Naming::kHost},
};
constexpr std::string_view kBehindHost = " \t\r\"',";

// A part of a line: first byte and the one behind the last.
struct Span {
    std::size_t begin, end;
    bool isHost = false;  // and no address
};

bool isSame(char left, char right) {
    return lowerAscii(left) == lowerAscii(right);
}

bool startsWith(std::string_view text, std::string_view wanted) {
    return text.size() >= wanted.size() && std::equal(wanted.begin(), wanted.end(), text.begin(), isSame);
}

std::size_t findFrom(std::string_view line, std::string_view wanted, std::size_t from) {
    const auto found = std::search(line.begin() + static_cast<std::ptrdiff_t>(std::min(from, line.size())), line.end(),
                                   wanted.begin(), wanted.end(), isSame);
    return found == line.end() ? std::string_view::npos : static_cast<std::size_t>(found - line.begin());
}

std::size_t skip(std::string_view line, std::string_view characters, std::size_t from) {
    return std::min(line.find_first_not_of(characters, from), line.size());
}

// Without blanks and quotes at its end.
Span trimmedSpan(std::string_view line, std::size_t begin, std::size_t end) {
    while (end > begin && (kBlanks.find(line[end - 1]) != std::string_view::npos || line[end - 1] == '"')) end--;
    return {begin, end};
}

// The value of a line "address = value", wherever the key stands in it.
std::optional<Span> iniAddress(std::string_view line) {
    const auto key = findFrom(line, kIniKey, 0);
    if (key == std::string_view::npos) return std::nullopt;
    const auto equals = skip(line, kBlanks, key + kIniKey.size());
    if (equals == line.size() || line[equals] != '=') return std::nullopt;
    return trimmedSpan(line, skip(line, " \t\"", equals + 1), line.size());
}

// The computer that is named from here on.
Span spanBehind(std::string_view line, std::size_t begin, Naming naming) {
    if (naming == Naming::kRefused) return trimmedSpan(line, begin, line.size());
    if (naming == Naming::kAddress) return trimmedSpan(line, begin, std::min(line.find(' ', begin), line.size()));
    auto end = std::min(line.find_first_of(kBehindHost, begin), line.size());
    while (end > begin && line[end - 1] == '.') end--;  // the sentence's
    return {begin, end, true};
}

// The computers named in a line, in the order in which they stand there.
std::vector<Span> computersIn(std::string_view line) {
    std::vector<Span> spans;
    if (const auto span = iniAddress(line)) return {*span};
    for (const auto& lead : kLeads) {
        for (auto at = findFrom(line, lead.text, 0); at != std::string_view::npos;) {
            const auto span = spanBehind(line, at + lead.text.size(), lead.naming);
            spans.push_back(span);
            at = findFrom(line, lead.text, span.end);
        }
    }
    std::sort(spans.begin(), spans.end(), [](const Span& left, const Span& right) { return left.begin < right.begin; });
    return spans;
}

bool isThisComputer(std::string_view host) {
    return std::any_of(std::begin(kThisComputer), std::end(kThisComputer),
                       [&](std::string_view own) { return own.size() == host.size() && startsWith(host, own); });
}

bool isNumber(std::string_view host) {
    return host.find_first_not_of("0123456789") == std::string_view::npos;
}

// The address with its host masked; its port stays.
std::string maskedAddress(std::string_view address) {
    const auto parsed = parseHostPort(address);
    if (!parsed) return address.empty() || address.starts_with(kMask) ? std::string(address) : std::string(kMask);
    if (isThisComputer(parsed->host)) return std::string(address);
    return hostPortText({std::string(kMask), parsed->port});
}

std::string maskedHost(std::string_view host) {
    const bool staysAsItIs = host.empty() || host.starts_with(kMask) || isThisComputer(host);
    return std::string(staysAsItIs ? host : kMask);
}

std::string maskComputers(std::string_view line) {
    std::string masked;
    std::size_t at = 0;
    for (const auto& span : computersIn(line)) {
        if (span.begin < at) continue;
        const auto text = line.substr(span.begin, span.end - span.begin);
        masked.append(line.substr(at, span.begin - at)).append(span.isHost ? maskedHost(text) : maskedAddress(text));
        at = span.end;
    }
    return masked.append(line.substr(at));
}

// Bytes up to the server's name if a network path begins here; none for \\?\C:\, \\.\pipe\ and the like.
std::size_t networkPathBytes(std::string_view text) {
    auto bytes = skip(text, kPathSeparators, 0);
    if (bytes < 2) return 0;
    if (!startsWith(text.substr(bytes), "?")) return bytes;
    bytes = skip(text, kPathSeparators, bytes + 1);
    return startsWith(text.substr(bytes), "UNC") ? skip(text, kPathSeparators, bytes + 3) : 0;
}

std::size_t serverBytes(std::string_view text) {
    const auto isPart = [](char c) { return isWordByte(c) || c == '.' || c == '-' || c == '_'; };
    const auto end = std::find_if_not(text.begin(), text.end(), isPart);
    return std::any_of(text.begin(), end, isWordByte) ? static_cast<std::size_t>(end - text.begin()) : 0;
}

std::string maskServers(std::string_view line) {
    std::string masked;
    for (std::size_t at = 0; at < line.size();) {
        const bool mayBegin = at == 0 || kBeforePaths.find(line[at - 1]) != std::string_view::npos;
        const auto lead = mayBegin ? networkPathBytes(line.substr(at)) : 0;
        const auto server = lead > 0 ? serverBytes(line.substr(at + lead)) : 0;
        if (server > 0) {
            masked.append(line.substr(at, lead)).append(kMask);
            at += lead + server;
        } else {
            masked += line[at++];
        }
    }
    return masked;
}

// Bytes of the host name that stands here as a whole; none where there is none, or a mask already.
std::size_t hostBytes(char before, std::string_view text, const std::vector<std::string>& names) {
    for (const auto& name : names) {
        if (!startsWith(text, name)) continue;
        const char after = name.size() < text.size() ? text[name.size()] : ' ';
        if (!isWordByte(after) && !(before == '<' && after == '>')) return name.size();
    }
    return 0;
}

}  // namespace

std::vector<std::string> findHostNames(std::string_view line) {
    std::vector<std::string> names;
    for (const auto& span : computersIn(line)) {
        if (span.isHost) continue;  // perhaps half a name
        const auto address = parseHostPort(line.substr(span.begin, span.end - span.begin));
        if (address && !isThisComputer(address->host) && !isNumber(address->host)) names.push_back(address->host);
    }
    return names;
}

std::string maskHostNames(std::string_view line, const std::vector<std::string>& hostNames) {
    auto names = hostNames;
    std::erase(names, "");
    // The longest first: simpc.home before simpc.
    std::sort(names.begin(), names.end(),
              [](const std::string& left, const std::string& right) { return left.size() > right.size(); });
    const auto text = maskServers(maskComputers(line));
    std::string masked;
    for (std::size_t at = 0; at < text.size();) {
        const char before = at > 0 ? text[at - 1] : ' ';
        const auto host = isWordByte(before) ? 0 : hostBytes(before, std::string_view(text).substr(at), names);
        if (host > 0) {
            masked.append(kMask);
            at += host;
        } else {
            masked += text[at++];
        }
    }
    return masked;
}
