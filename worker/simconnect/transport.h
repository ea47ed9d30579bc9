// transport.h - the bytes to and from a simulator: a named pipe on this computer, TCP to another one.
// One thread, the worker's only one; nothing here blocks.
#pragma once
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace simconnect {

inline constexpr std::size_t kMaxUnsentBytes = 262'144;  // ten times what a session sends at its start

enum class TransportState { kClosed, kConnecting, kOpen };

class Transport {
  public:
    virtual ~Transport() = default;

    // Begins a new connection; closes an existing one first.
    virtual void connect() = 0;
    virtual void close() = 0;

    // Advances a connection that is being made, and gives it up in good time if nothing comes of it. Closed: never
    // connected, failed, or ended by the other side.
    virtual TransportState poll(std::uint64_t nowMs) = 0;

    // Takes up to into.size() bytes that have arrived; 0 = none just now, or none any more.
    virtual std::size_t receive(std::span<std::uint8_t> into) = 0;

    // Takes the whole packet and sends it as soon as the other side can take it. False if the connection is gone, or if
    // kMaxUnsentBytes are waiting: then it stays open, and the problem is pilot::kDoesNotRead.
    virtual bool send(std::span<const std::uint8_t> packet) = 0;

    // Why it is closed, in the words of pilot_texts.h; empty if there is nobody to connect to.
    virtual std::string problem() const = 0;

    // Something the system can wait for, signalled when bytes have arrived: an event handle, or null.
    virtual void* wakeHandle() const { return nullptr; }
};

}  // namespace simconnect
