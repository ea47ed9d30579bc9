// host_port.h - where a simulator on another computer listens: "simpc:500", "192.168.1.20:500", "[fe80::1]:500".
#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

struct HostPort {
    std::string host;        // a name, an IPv4 address, or an IPv6 address without its brackets
    std::uint16_t port = 0;  // 1..65535
    bool operator==(const HostPort&) const = default;
};

// [any] Nothing if the text is anything else: no port, an IPv6 address without brackets, a blank, a scheme in front.
// usualPort: where a program listens if the text names no port, "simpc", "[fe80::1]"; 0 = it has to name one.
std::optional<HostPort> parseHostPort(std::string_view text, std::uint16_t usualPort = 0);

// As parseHostPort reads it.
std::string hostPortText(const HostPort& address);
