// tcp_transport.h - a simulator on another computer. Looks the name up on a thread of its own, tries the addresses one
// after the other (address_turns.h) and keeps what the network cannot take yet.
#pragma once
#include <vector>
#include "worker/address_turns.h"
#include "worker/host_lookup.h"
#include "worker/simconnect/sockets.h"
#include "worker/simconnect/transport.h"

namespace simconnect {

class TcpTransport : public Transport {
  public:
    explicit TcpTransport(HostPort address, AddressLookUp lookUp = ::lookUp);
    ~TcpTransport() override;
    TcpTransport(const TcpTransport&) = delete;
    TcpTransport& operator=(const TcpTransport&) = delete;

    void connect() override;
    void close() override;
    TransportState poll(std::uint64_t nowMs) override;
    std::size_t receive(std::span<std::uint8_t> into) override;
    bool send(std::span<const std::uint8_t> packet) override;
    std::string problem() const override { return problem_; }
    void* wakeHandle() const override;

  private:
    void awaitAddresses(std::uint64_t nowMs);
    void awaitConnection(std::uint64_t nowMs);
    void tryNextAddress(std::uint64_t nowMs);
    void flush();
    void end(std::string problem);

    HostPort address_;
    AddressLookUp lookUp_;
    Sockets sockets_;  // outlives socket_
    HostLookup lookup_;
    std::optional<std::uint64_t> beganMs_;  // the first poll of this connection
    AddressTurns turns_;
    bool someRefused_ = false;    // of the addresses tried for this connection
    bool someUnreached_ = false;  // silent until its time was over, or no way leads there
    Socket socket_;
    TransportState state_ = TransportState::kClosed;
    std::vector<std::uint8_t> unsent_;
    std::string problem_;
};

}  // namespace simconnect
