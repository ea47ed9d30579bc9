#include "worker/simconnect/tcp_transport.h"
#include <utility>
#include "worker/pilot_texts.h"

namespace simconnect {

TcpTransport::TcpTransport(HostPort address, AddressLookUp lookUp)
    : address_(std::move(address)), lookUp_(std::move(lookUp)) {}

TcpTransport::~TcpTransport() = default;

void TcpTransport::connect() {
    close();
    problem_.clear();
    beganMs_.reset();
    someRefused_ = someUnreached_ = false;
    state_ = TransportState::kConnecting;
    auto known = lookUp_(address_, true);
    const bool isLiteral = !known.empty();
    turns_.begin(std::move(known));
    // The previous connection's lookup may still be running; its result is taken.
    if (!isLiteral && !lookup_.begin(address_, lookUp_)) end(pilot::noThreadText(address_.host));
}

void TcpTransport::close() {
    socket_.close();
    unsent_.clear();
    state_ = TransportState::kClosed;
}

TransportState TcpTransport::poll(std::uint64_t nowMs) {
    if (!beganMs_) beganMs_ = nowMs;
    if (state_ == TransportState::kConnecting && lookup_.isRunning()) awaitAddresses(nowMs);
    if (state_ == TransportState::kConnecting && !lookup_.isRunning()) awaitConnection(nowMs);
    if (state_ == TransportState::kOpen) flush();
    return state_;
}

void TcpTransport::awaitAddresses(std::uint64_t nowMs) {
    auto found = lookup_.take();
    const bool isUnknown = found ? found->empty() : nowMs - *beganMs_ >= kLookUpLimitMs;
    if (found) turns_.begin(std::move(*found));
    if (isUnknown) end(pilot::noSuchComputerText(address_.host));
}

void TcpTransport::awaitConnection(std::uint64_t nowMs) {
    if (!turns_.isBegun()) return tryNextAddress(nowMs);
    switch (socket_.connectProgress()) {
        case ConnectProgress::kPending:
            if (!turns_.isOver(nowMs)) return;
            someUnreached_ = true;
            return tryNextAddress(nowMs);
        case ConnectProgress::kReady:
            state_ = TransportState::kOpen;
            return;
        case ConnectProgress::kRefused:
            someRefused_ = true;
            return tryNextAddress(nowMs);
        case ConnectProgress::kFailed:
            someUnreached_ = true;
            return tryNextAddress(nowMs);
    }
}

// A computer that refuses is there, and its simulator is just not running: no problem worth a word.
void TcpTransport::tryNextAddress(std::uint64_t nowMs) {
    while (const auto address = turns_.next(nowMs)) {
        socket_.close();
        const auto progress = socket_.startConnect(*address);
        if (progress == ConnectProgress::kPending) return;
        (progress == ConnectProgress::kRefused ? someRefused_ : someUnreached_) = true;
    }
    end(someUnreached_ && !someRefused_ ? pilot::noAnswerText(address_.host) : "");
}

std::size_t TcpTransport::receive(std::span<std::uint8_t> into) {
    if (state_ != TransportState::kOpen) return 0;
    std::size_t count = 0;
    const auto progress = socket_.receive(into, count);
    if (progress == SocketProgress::kReady) turns_.noteWorks();
    if (progress == SocketProgress::kFailed) end({});
    return progress == SocketProgress::kReady ? count : 0;
}

bool TcpTransport::send(std::span<const std::uint8_t> packet) {
    if (state_ != TransportState::kOpen) return false;
    if (unsent_.size() + packet.size() > kMaxUnsentBytes) {
        problem_ = pilot::kDoesNotRead;
        return false;
    }
    unsent_.insert(unsent_.end(), packet.begin(), packet.end());
    flush();
    return state_ == TransportState::kOpen;
}

void TcpTransport::flush() {
    while (!unsent_.empty()) {
        std::size_t count = 0;
        const auto progress = socket_.send(unsent_, count);
        if (progress == SocketProgress::kFailed) return end({});
        if (progress == SocketProgress::kPending) return;
        unsent_.erase(unsent_.begin(), unsent_.begin() + static_cast<std::ptrdiff_t>(count));
    }
}

void TcpTransport::end(std::string problem) {
    close();
    problem_ = std::move(problem);
}

void* TcpTransport::wakeHandle() const {
    return state_ == TransportState::kClosed ? nullptr : socket_.wakeHandle();
}

}  // namespace simconnect
