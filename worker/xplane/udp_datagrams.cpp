#include "worker/xplane/udp_datagrams.h"
#include <charconv>
#include <system_error>

namespace xplane {

namespace {

constexpr bool isGroup(std::uint32_t address) {
    return address >> 28U == 0xE;  // 224.0.0.0 to 239.255.255.255
}

constexpr bool isLoopback(std::uint32_t address) {
    return address >> 24U == 127;
}

}  // namespace

std::string endpointText(const Endpoint& endpoint) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        text += std::to_string(endpoint.address >> shift & 0xFFU);
        text += shift > 0 ? '.' : ':';
    }
    return text + std::to_string(endpoint.port);
}

std::optional<std::uint32_t> parseIpv4(std::string_view text) {
    std::uint32_t address = 0;
    for (int part = 0; part < 4; part++) {
        std::uint8_t number = 0;
        const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        if (error != std::errc{}) return std::nullopt;
        text.remove_prefix(static_cast<std::size_t>(stop - text.data()));
        address = address << 8U | number;
        if (part == 3) break;
        if (!text.starts_with('.')) return std::nullopt;
        text.remove_prefix(1);
    }
    return text.empty() ? std::optional(address) : std::nullopt;
}

// A network that one takes part in already is not joined twice.
bool UdpDatagrams::listen() {
    const bool isForGroup = isGroup(beacon_.address);
    if (!beaconSocket_.isOpen()) {
        problem_ = beaconSocket_.open({isForGroup ? 0 : beacon_.address, beacon_.port}, true, event_.handle());
    }
    if (problem_ == 0 && isForGroup) {
        for (const auto address : ownAddresses()) beaconSocket_.join(beacon_.address, address);
    }
    return problem_ == 0;
}

std::optional<Received> UdpDatagrams::receiveBeacon(std::span<std::uint8_t> into) {
    return beaconSocket_.isOpen() ? beaconSocket_.receive(into) : std::nullopt;
}

std::optional<Received> UdpDatagrams::receiveAnswer(std::span<std::uint8_t> into) {
    return ours_.isOpen() ? ours_.receive(into) : std::nullopt;
}

bool UdpDatagrams::send(const Endpoint& to, std::span<const std::uint8_t> datagram) {
    if (ours_.isOpen() || openOurs()) return ours_.send(to, datagram);
    return false;
}

bool UdpDatagrams::openOurs() {
    return ours_.open({0, kOwnPort}, false, event_.handle()) == 0 || ours_.open({}, false, event_.handle()) == 0;
}

// A socket can only be bound to an address of this computer.
bool UdpDatagrams::isHere(std::uint32_t address) {
    if (isLoopback(address)) return true;
    if (!lastAsked_ || lastAsked_->first != address) {
        UdpSocket trial;
        lastAsked_ = {address, address != 0 && !isGroup(address) && trial.open({address, 0}, false, nullptr) == 0};
    }
    return lastAsked_->second;
}

void* UdpDatagrams::wakeHandle() const {
    return beaconSocket_.isOpen() || ours_.isOpen() ? event_.handle() : nullptr;
}

}  // namespace xplane
