#include "worker/xplane/session.h"
#include <algorithm>
#include <array>
#include <cmath>
#include "base/number_text.h"
#include "exchange/frequency_grid.h"
#include "worker/radio_types.h"

namespace xplane {

namespace {

constexpr std::int32_t kFirstIndex = 1;        // of ours, in requests and answers
constexpr std::size_t kDatagramBytes = 2'048;  // more than a network carries in one piece
constexpr std::uint64_t kCloseMs = 5;          // less than this apart belong together
constexpr int kDatagramsPerPass = 256;         // a flood waits for the next pass
constexpr std::size_t kMaxNotes = 50;          // per session: endless nonsense does not fill the log

// What the value means; nothing if it cannot be one of its kind.
std::optional<double> soundValue(ValueKind kind, float value) {
    constexpr double kSlack = 0.005;  // of a volume: half a percent
    if (!std::isfinite(value)) return std::nullopt;
    const double number = value;
    switch (kind) {
        case ValueKind::kChannel: {
            const double khz = std::round(number);
            const bool inBand = khz >= kBandMinKHz && khz <= kBandMaxKHz;
            return inBand && isOnGrid(static_cast<std::int32_t>(khz), kSpacing833) ? std::optional(khz) : std::nullopt;
        }
        case ValueKind::kVolume:
            if (number < -kSlack || number > 1.0 + kSlack) return std::nullopt;
            return std::clamp(number, 0.0, 1.0);
        case ValueKind::kSwitch:
            return number != 0.0 ? 1.0 : 0.0;
    }
    return std::nullopt;
}

}  // namespace

Session::Session(Datagrams& datagrams, std::span<const DataRef> refs)
    : datagrams_(datagrams), refs_(refs), readings_(refs.size()) {}

void Session::begin(const Simulator& simulator, bool isHeard, std::uint64_t nowMs) {
    end();
    simulator_ = simulator;
    begunMs_ = nowMs;
    hasSpoken_ = false;
    answersFromItsPort_ = false;
    aircraft_++;
    noted_.clear();
    probedMs_.reset();
    if (!isHeard) return ask(nowMs);
    probedMs_ = nowMs;
    for (std::size_t i = 0; i < refs_.size(); i++) request(i, nowMs);
}

void Session::end() {
    if (!simulator_) return;
    for (std::size_t i = 0; i < refs_.size(); i++) {
        if (readings_[i].askedMs) send(encodeRequest(0, kFirstIndex + static_cast<std::int32_t>(i), refs_[i].name));
    }
    datagrams_.closeOurs();
    simulator_.reset();
    dataMs_.reset();
    std::fill(readings_.begin(), readings_.end(), Reading{});
}

void Session::poll(std::uint64_t nowMs) {
    if (!simulator_) return;
    receive(nowMs);
    forgetOldValues(nowMs);
    ask(nowMs);
}

// Most often there is one datagram, and nothing behind it; if there is, it wakes us again, and then all are taken.
void Session::receive(std::uint64_t nowMs) {
    std::array<std::uint8_t, kDatagramBytes> buffer;
    for (int i = 0; i < kDatagramsPerPass; i++) {
        const auto received = datagrams_.receiveAnswer(buffer);
        if (!received) return;
        const bool isLone = nowMs - std::exchange(receivedMs_, nowMs) >= kCloseMs && datagrams_.wakeHandle();
        if (!isOurs(received->from)) {
            noteOnce("something that X-Plane has not sent was ignored");
            continue;
        }
        const auto values = decodeValues(ByteView(buffer).first(received->bytes));
        if (!values) {
            noteOnce("something that X-Plane has sent makes no sense and was ignored");
            continue;
        }
        for (const auto& value : values->whole) onValue(value.index, value.value, nowMs);
        if (values->endsInHalf) noteOnce("X-Plane has sent half a value, which was ignored");
        if (isLone) return;
    }
}

// The answers need not come from the port that was asked. Once they do, what comes from another is another program's:
// a second X-Plane goes on answering a worker that was killed, and we ask from that worker's port. On this computer any
// of its own addresses.
bool Session::isOurs(const Endpoint& from) {
    if (from.address != simulator_->at.address && !(simulator_->isHere && datagrams_.isHere(from.address)))
        return false;
    answersFromItsPort_ = answersFromItsPort_ || from.port == simulator_->at.port;
    return !answersFromItsPort_ || from.port == simulator_->at.port;
}

void Session::onValue(std::int32_t index, float value, std::uint64_t nowMs) {
    const auto ref = static_cast<std::size_t>(index) - kFirstIndex;
    if (index < kFirstIndex || ref >= refs_.size()) {
        return noteOnce("X-Plane has sent a value that nobody here has asked for");
    }
    if (!dataMs_) speaksSinceMs_ = nowMs;
    dataMs_ = nowMs;
    hasSpoken_ = true;
    auto& reading = readings_[ref];
    reading.heardMs = nowMs;
    reading.tries = 0;
    const auto sound = soundValue(refs_[ref].kind, value);
    if (!sound) {
        if (!std::exchange(reading.isBadNoted, true)) {
            notes_.push_back(std::string("what X-Plane has sent as ") + refs_[ref].name +
                             " makes no sense and was ignored: " + formatGeneral(value));
        }
        return;
    }
    reading.value = sound;
    reading.valueMs = nowMs;
}

void Session::forgetOldValues(std::uint64_t nowMs) {
    for (auto& reading : readings_) {
        if (reading.value && nowMs - reading.valueMs >= kFreshMs) reading.value.reset();
    }
    if (!dataMs_ || nowMs - *dataMs_ < kFreshMs) return;
    dataMs_.reset();
    aircraft_++;
}

// One that speaks is asked for all that it does not say; one that does not, for one thing after the other.
void Session::ask(std::uint64_t nowMs) {
    if (dataMs_) {
        for (std::size_t i = 0; i < refs_.size(); i++) {
            if (isDue(readings_[i], nowMs)) request(i, nowMs);
        }
    } else if (!probedMs_ || nowMs - *probedMs_ >= kAskAgainMs) {
        request(nextProbe_, nowMs);
        nextProbe_ = (nextProbe_ + 1) % refs_.size();
        probedMs_ = nowMs;
    }
}

bool Session::isDue(const Reading& reading, std::uint64_t nowMs) const {
    if (!reading.askedMs) return true;
    const auto patienceMs = reading.tries < kHopefulTries ? kAskAgainMs : kRarelyAskedMs;
    return nowMs - std::max(*reading.askedMs, reading.heardMs) >= patienceMs;
}

void Session::request(std::size_t ref, std::uint64_t nowMs) {
    auto& reading = readings_[ref];
    reading.askedMs = nowMs;
    reading.tries++;
    send(encodeRequest(refs_[ref].timesPerSecond, kFirstIndex + static_cast<std::int32_t>(ref), refs_[ref].name));
}

bool Session::isAllRead() const {
    return dataMs_ && std::all_of(readings_.begin(), readings_.end(),
                                  [&](const Reading& reading) { return reading.heardMs >= speaksSinceMs_; });
}

bool Session::send(std::span<const std::uint8_t> datagram) {
    return simulator_ && datagrams_.send(simulator_->at, datagram);
}

void Session::noteOnce(const std::string& line) {
    if (noted_.size() < kMaxNotes && noted_.insert(line).second) notes_.push_back(line);
}

}  // namespace xplane
