// tcp_transport.h - a simulator on another computer. Looks the name up on a thread of its own, tries the addresses one
// after the other and keeps what the network cannot take yet.
#pragma once
#include <functional>
#include <memory>
#include <vector>
#include "worker/host_port.h"
#include "worker/simconnect/sockets.h"
#include "worker/simconnect/transport.h"

namespace simconnect {

// Like lookUp (sockets.h). Called on this thread and on one of its own, which may outlast the transport.
using AddressLookUp = std::function<std::vector<NetAddress>(const HostPort& address, bool literalOnly)>;

class TcpTransport : public Transport {
  public:
    explicit TcpTransport(HostPort address, AddressLookUp lookUp = simconnect::lookUp);
    ~TcpTransport() override;
    TcpTransport(const TcpTransport&) = delete;
    TcpTransport& operator=(const TcpTransport&) = delete;

    void connect() override;
    void close() override;
    TransportState poll() override;
    std::size_t receive(std::span<std::uint8_t> into) override;
    bool send(std::span<const std::uint8_t> packet) override;
    std::string problem() const override { return problem_; }
    std::string silence() const override { return "no answer from " + address_.host; }
    void* wakeHandle() const override;

  private:
    struct Lookup;  // shared with the thread that looks the name up

    void takeAddresses();
    void tryNextAddress();
    void flush();
    void end(std::string problem);

    HostPort address_;
    AddressLookUp lookUp_;
    Sockets sockets_;  // outlives socket_
    std::shared_ptr<Lookup> lookup_;
    std::vector<NetAddress> untried_;  // the last one is next
    Socket socket_;
    TransportState state_ = TransportState::kClosed;
    std::vector<std::uint8_t> unsent_;
    std::string problem_;
};

}  // namespace simconnect
