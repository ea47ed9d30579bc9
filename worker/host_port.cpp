#include "worker/host_port.h"
#include <algorithm>
#include <charconv>

namespace {

constexpr std::size_t kMaxHostBytes = 253;  // the longest name DNS knows

bool isAlphanumeric(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isNameChar(char c) {
    return isAlphanumeric(c) || c == '.' || c == '-' || c == '_';
}

// The zone after a percent sign is an interface's name or number.
bool isIpv6Char(char c) {
    return isNameChar(c) || c == ':' || c == '%';
}

bool parsePort(std::string_view text, std::uint16_t& port) {
    const auto* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, port);
    return error == std::errc{} && stop == end && port > 0;
}

}  // namespace

std::optional<HostPort> parseHostPort(std::string_view text, std::uint16_t usualPort) {
    const bool hasPort = text.find(':') != std::string_view::npos && !text.ends_with(']');
    if (!hasPort && usualPort == 0) return std::nullopt;
    const auto colon = hasPort ? text.rfind(':') : text.size();
    auto host = text.substr(0, colon);
    const bool bracketed = host.size() > 2 && host.front() == '[' && host.back() == ']';
    if (bracketed) host = host.substr(1, host.size() - 2);
    if (host.empty() || host.size() > kMaxHostBytes) return std::nullopt;
    if (!std::all_of(host.begin(), host.end(), bracketed ? isIpv6Char : isNameChar)) return std::nullopt;
    if (bracketed && host.find(':') == std::string_view::npos) return std::nullopt;
    HostPort address{std::string(host), usualPort};
    if (hasPort && !parsePort(text.substr(colon + 1), address.port)) return std::nullopt;
    return address;
}

std::string hostPortText(const HostPort& address) {
    const bool ipv6 = address.host.find(':') != std::string::npos;
    return (ipv6 ? '[' + address.host + ']' : address.host) + ':' + std::to_string(address.port);
}
