#include "worker/simconnect/tcp_transport.h"
#include <algorithm>
#include <system_error>
#include <thread>
#include <utility>
#include "base/mutex.h"

namespace simconnect {

// The lookup may outlast the transport and even its next connection; the last to let go frees it.
struct TcpTransport::Lookup {
    Mutex mutex;  // for one assignment, by the worker's thread or the lookup's own
    bool done GUARDED_BY(mutex) = false;
    std::vector<NetAddress> found GUARDED_BY(mutex);
};

TcpTransport::TcpTransport(HostPort address, AddressLookUp lookUp)
    : address_(std::move(address)), lookUp_(std::move(lookUp)) {}

TcpTransport::~TcpTransport() = default;

void TcpTransport::connect() {
    close();
    problem_.clear();
    state_ = TransportState::kConnecting;
    untried_ = lookUp_(address_, true);
    std::reverse(untried_.begin(), untried_.end());
    if (!untried_.empty()) return tryNextAddress();
    if (lookup_) return;  // the previous connection's lookup is still running
    lookup_ = std::make_shared<Lookup>();
    try {
        std::thread([lookup = lookup_, lookUp = lookUp_, address = address_] {
            auto found = lookUp(address, false);
            const MutexLock lock(lookup->mutex);
            lookup->found = std::move(found);
            lookup->done = true;
        }).detach();
    } catch (const std::system_error&) {
        lookup_.reset();
        end("no thread to look " + address_.host + " up");
    }
}

void TcpTransport::close() {
    socket_.close();
    unsent_.clear();
    untried_.clear();
    state_ = TransportState::kClosed;
}

TransportState TcpTransport::poll() {
    if (state_ == TransportState::kConnecting && lookup_) takeAddresses();
    if (state_ == TransportState::kConnecting && !lookup_) {
        const auto progress = socket_.connectProgress();
        if (progress == SocketProgress::kReady) state_ = TransportState::kOpen;
        if (progress == SocketProgress::kFailed) tryNextAddress();
    }
    if (state_ == TransportState::kOpen) flush();
    return state_;
}

void TcpTransport::takeAddresses() {
    {
        const MutexLock lock(lookup_->mutex);
        if (!lookup_->done) return;
        untried_ = std::move(lookup_->found);
    }
    lookup_.reset();
    std::reverse(untried_.begin(), untried_.end());
    if (untried_.empty()) return end("no such computer: " + address_.host);
    tryNextAddress();
}

// Nobody listening is not reported as a problem: the simulator is just not running.
void TcpTransport::tryNextAddress() {
    while (!untried_.empty()) {
        const auto address = untried_.back();
        untried_.pop_back();
        socket_.close();
        if (socket_.startConnect(address)) return;
    }
    end({});
}

std::size_t TcpTransport::receive(std::span<std::uint8_t> into) {
    if (state_ != TransportState::kOpen) return 0;
    std::size_t count = 0;
    const auto progress = socket_.receive(into, count);
    if (progress == SocketProgress::kFailed) end({});
    return progress == SocketProgress::kReady ? count : 0;
}

bool TcpTransport::send(std::span<const std::uint8_t> packet) {
    if (state_ != TransportState::kOpen || unsent_.size() + packet.size() > kMaxUnsentBytes) return false;
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
