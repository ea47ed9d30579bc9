#include "worker/simconnect/connection.h"
#include <algorithm>
#include "worker/pilot_texts.h"

namespace simconnect {

namespace {

constexpr std::size_t kChunkBytes = 16'384;
constexpr int kChunksPerPass = 64;  // a flood waits for the next pass

}  // namespace

void Connection::poll(std::uint64_t nowMs) {
    if (state_ == ConnectionState::kWaiting) {
        if (nowMs < dueMs_) return;
        transport_.connect();
        state_ = ConnectionState::kConnecting;
    }
    const auto transport = transport_.poll(nowMs);
    if (state_ == ConnectionState::kConnecting) {
        if (transport == TransportState::kClosed) return retryLater(transport_.problem(), nowMs);
        if (transport == TransportState::kConnecting) return;
        introduce(nowMs);
    }
    // What came before the end is handed out first; only then does the end count.
    const bool heard = receive(nowMs);
    const bool ended = (transport == TransportState::kClosed && !heard) || sendFailed_;
    if (state_ == ConnectionState::kOpening) return awaitReply(ended, nowMs);
    if (stream_.isBroken()) return drop("what it sends makes no sense", nowMs);
    if (!ended) return;
    const auto reason = transport_.problem();
    drop(reason.empty() ? "closed by the simulator" : reason, nowMs);
}

void Connection::introduce(std::uint64_t nowMs) {
    stream_.reset();
    sendId_ = 0;
    sendFailed_ = false;
    heardMs_ = nowMs;
    state_ = ConnectionState::kOpening;
    dueMs_ = nowMs + kOpenLimitMs;
    send(encodeOpen(stamp(), version(), application_));
}

// True if anything has arrived.
bool Connection::receive(std::uint64_t nowMs) {
    std::array<std::uint8_t, kChunkBytes> chunk;
    for (int i = 0; i < kChunksPerPass; i++) {
        const auto count = transport_.receive(chunk);
        if (count == 0) return i > 0;
        heardMs_ = nowMs;
        stream_.add(ByteView(chunk).first(count));
    }
    return true;
}

std::optional<Received> Connection::next() {
    const auto packet = stream_.next();
    if (!packet) return std::nullopt;
    return decodePacket(*packet);
}

void Connection::awaitReply(bool ended, std::uint64_t nowMs) {
    while (const auto packet = next()) {
        if (const auto* reply = std::get_if<OpenPacket>(&*packet)) return onOpened(*reply, nowMs);
        if (std::holds_alternative<QuitPacket>(*packet)) return retryLater({}, nowMs);
        const auto* exception = std::get_if<ExceptionPacket>(&*packet);
        if (!exception) continue;
        return tryNextVersion(pilot::kRefusesConnection, nowMs,
                              " (exception " + std::to_string(exception->code) + ", " +
                                  std::string(exceptionName(exception->code)) + ')');
    }
    if (stream_.isBroken()) return tryNextVersion(pilot::kMakesNoSense, nowMs);
    if (ended) return tryNextVersion(pilot::kClosesAtOnce, nowMs);
    if (nowMs >= dueMs_) tryNextVersion(pilot::kDoesNotAnswer, nowMs);
}

void Connection::onOpened(const OpenPacket& reply, std::uint64_t nowMs) {
    state_ = ConnectionState::kOpen;
    dueMs_ = nowMs;
    openings_++;
    versionsTried_ = 0;
    isLost_ = false;
    problem_.clear();
    note("connected to " + (reply.application.empty() ? "a simulator without a name" : reply.application) + ' ' +
         std::to_string(reply.major) + '.' + std::to_string(reply.minor) + ", protocol " +
         std::to_string(version().protocol));
}

void Connection::tryNextVersion(const std::string& problem, std::uint64_t nowMs, const std::string& detail) {
    note(problem + detail + ", protocol " + std::to_string(version().protocol));
    versionIndex_ = (versionIndex_ + 1) % kClientVersions.size();
    if (++versionsTried_ == kClientVersions.size()) return retryLater(problem, nowMs);
    transport_.close();
    state_ = ConnectionState::kWaiting;
    dueMs_ = nowMs;
}

void Connection::retryLater(const std::string& problem, std::uint64_t nowMs) {
    transport_.close();
    stream_.reset();
    state_ = ConnectionState::kWaiting;
    dueMs_ = nowMs + kRetryMs[std::min(failures_, kRetryMs.size() - 1)];
    failures_++;
    versionsTried_ = 0;
    problem_ = problem;
}

void Connection::drop(const std::string& reason, std::uint64_t nowMs) {
    note("connection to the simulator lost: " + reason);
    end(nowMs);
    isLost_ = true;
}

void Connection::quit(std::uint64_t nowMs) {
    note("connection to the simulator lost: the simulator has quit");
    end(nowMs);
}

void Connection::end(std::uint64_t nowMs) {
    if (nowMs - dueMs_ >= kLastingMs) failures_ = 0;
    retryLater({}, nowMs);
}

std::string Connection::status() const {
    if (!problem_.empty()) return problem_;
    // Also between two versions: a line that changes back and forth says less.
    const bool connecting =
        state_ == ConnectionState::kOpening || state_ == ConnectionState::kOpen || versionsTried_ > 0;
    if (connecting) return pilot::kConnecting;
    return isLost_ ? pilot::kLinkLost : pilot::kWaitingForSimulator;
}

// Nobody there counts at the second try: the first may fall between two turns of the simulator's pipe.
bool Connection::isSettled() const {
    return state_ == ConnectionState::kOpen || !problem_.empty() || failures_ > 1;
}

Stamp Connection::stamp() {
    return {version().protocol, ++sendId_};
}

void Connection::send(const Bytes& packet) {
    if (!transport_.send(packet)) sendFailed_ = true;
}

void Connection::note(const std::string& line) {
    if (line != lastNote_) notes_.push_back(line);
    lastNote_ = line;
}

}  // namespace simconnect
