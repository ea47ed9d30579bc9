#include "worker/simconnect/simconnect_link.h"
#include <algorithm>
#include <cmath>
#include <utility>
#include "exchange/frequency_grid.h"
#include "worker/pilot_texts.h"
#include "worker/simconnect/com_tables.h"

namespace simconnect {

namespace {

// A known value; nothing while it is awaited or if the simulator does not know it.
std::optional<double> valueOf(const Session& session, std::size_t radio, ComVariable variable) {
    const auto& reading = session.reading(variableOf(radio, variable));
    return reading.state == Reading::State::kKnown ? std::optional(reading.value) : std::nullopt;
}

bool isAwaited(const Session& session, std::size_t radio, ComVariable variable) {
    return session.reading(variableOf(radio, variable)).state == Reading::State::kAwaited;
}

// Rounded, since the simulator's 118.005 may be 118.00499; 0 outside the band and if it is not a number.
std::int32_t toKHz(std::optional<double> mhz) {
    const double khz = std::round(mhz.value_or(0.0) * 1000.0);
    return khz >= kBandMinKHz && khz <= kBandMaxKHz ? static_cast<std::int32_t>(khz) : 0;
}

std::int32_t toSpacing(std::optional<double> mode) {
    if (mode == 0.0) return kSpacing25;
    return mode == 1.0 ? kSpacing833 : -1;
}

double toVolume(std::optional<double> percent) {
    constexpr double kSlack = 0.5;  // rounding errors on the way: 100.0000001 is full
    if (!percent || !(*percent >= -kSlack && *percent <= 100.0 + kSlack)) return -1.0;
    return std::clamp(*percent, 0.0, 100.0) / 100.0;
}

std::uint32_t eventData(const RadioWrite& write) {
    if (write.slot == kSlotSwap) return 0;
    const double scale = write.slot == kSlotVolume ? 100.0 : 1000.0;  // percent, Hz
    return static_cast<std::uint32_t>(std::lround(write.value * scale));
}

}  // namespace

SimConnectLink::SimConnectLink(std::unique_ptr<Transport> transport)
    : transport_(std::move(transport)), session_(*transport_, {kVariables, kKeyEvents}) {
    snapshot_.status = session_.status();
}

void SimConnectLink::poll(std::uint64_t nowMs) {
    session_.poll(nowMs);
    for (auto& line : session_.takeNotes()) notes_.push_back(std::move(line));
    learn(nowMs);
    snapshot_ = describe(nowMs);
}

std::uint64_t SimConnectLink::unheardMs(std::uint64_t nowMs) const {
    const auto dataMs = session_.dataMs();
    return dataMs ? nowMs - *dataMs : 0;
}

Standstill SimConnectLink::standstill(std::uint64_t nowMs) const {
    return {session_.isPaused(), unheardMs(nowMs) >= kStutterMs};
}

bool SimConnectLink::isSettled() const {
    if (snapshot_.ok) return true;
    if (!session_.isOpen()) return session_.isSettled();
    return session_.isSimRunning() == false || snapshot_.status == pilot::kNoData;
}

void SimConnectLink::learn(std::uint64_t nowMs) {
    if (session_.aircraft() != aircraft_) {
        aircraft_ = session_.aircraft();
        learnt_.forget();
    }
    for (std::size_t radio = 0; radio < kRadioCount; radio++) {
        const double volume = toVolume(valueOf(session_, radio, kComVolume));
        learnt_.watch(radio, volume, condition(radio).empty(), standstill(nowMs), nowMs);
    }
}

// Why there is no telemetry; empty if there is.
std::string SimConnectLink::groundStatus(std::uint64_t nowMs) const {
    if (!session_.isOpen()) return session_.status();
    if (!session_.isSimRunning()) return pilot::kConnecting;
    if (!*session_.isSimRunning()) return pilot::kInMenu;
    const auto dataMs = session_.dataMs();
    if (nowMs - dataMs.value_or(session_.requestedMs()) >= kFreshMs) return pilot::kNoData;
    const bool enough = session_.isAllRead() || nowMs - session_.requestedMs() >= kFirstReadMs;
    return dataMs && enough ? "" : pilot::kReadingRadios;
}

SimSnapshot SimConnectLink::describe(std::uint64_t nowMs) const {
    SimSnapshot sim;
    sim.status = groundStatus(nowMs);
    sim.ok = sim.status.empty();
    if (!sim.ok) return sim;
    sim.status = radioStatus();
    bool any = false;
    bool all25 = true;
    for (std::size_t radio = 0; radio < kRadioCount; radio++) {
        const auto& shownRadio = sim.radios[radio] = describeRadio(radio);
        any = any || shownRadio.spacing >= 0;
        all25 = all25 && (shownRadio.spacing == kSpacing25 || shownRadio.active == 0);
    }
    sim.rangeMaxKHz = any && all25 ? kBandMax25KHz : kBandMaxKHz;
    return sim;
}

RadioReading SimConnectLink::describeRadio(std::size_t radio) const {
    RadioReading values;
    const auto fault = condition(radio);
    if (fault == pilot::kNotFitted) return values;
    values.active = toKHz(valueOf(session_, radio, kComActive));
    values.standby = toKHz(valueOf(session_, radio, kComStandby));
    values.spacing = toSpacing(valueOf(session_, radio, kComSpacing));
    values.volume = static_cast<float>(toVolume(valueOf(session_, radio, kComVolume)));
    for (std::size_t i = 0; i < kSlotCount && fault.empty(); i++) {
        const auto slot = static_cast<RadioSlot>(i);
        values.writable[i] =
            isReadable(values, slot) && session_.isKeyEventKnown(keyEventOf(radio, slot)) && learnt_.takes(radio, slot);
    }
    return values;
}

// What makes the radio unusable; empty if nothing does. If the simulator lacks one of the two variables, the other one
// decides.
std::string_view SimConnectLink::condition(std::size_t radio) const {
    const auto available = valueOf(session_, radio, kComAvailable);
    const auto status = valueOf(session_, radio, kComStatus);
    if (available == 0.0 || status == kStatusNone) return pilot::kNotFitted;
    if (status == kStatusNoPower) return pilot::kUnpowered;
    if (status == kStatusFailed) return pilot::kFailed;
    if (status.value_or(kStatusOk) != kStatusOk) return pilot::kNotUsable;
    const bool awaited = isAwaited(session_, radio, kComAvailable) || isAwaited(session_, radio, kComStatus);
    return awaited || (!available && !status) ? pilot::kNotKnown : "";
}

std::string SimConnectLink::radioStatus() const {
    const auto faults = pilot::radioFaultsText(condition(0), condition(1));
    return faults.empty() ? pilot::kFlying : faults;
}

bool SimConnectLink::write(const RadioWrite& write, std::uint64_t nowMs) {
    const auto& radio = snapshot_.radios[write.radio];
    if (!snapshot_.ok || !radio.writable[write.slot] || !isValueFor(snapshot_, write)) return false;
    const bool isSent = session_.sendKeyEvent(keyEventOf(write.radio, write.slot), eventData(write), nowMs);
    questions_[write.radio] = session_.question();
    learnt_.noteWrite(write, radio, standstill(nowMs));
    return isSent;
}

std::string SimConnectLink::noteReadback(const RadioWrite& write, bool seen) {
    const bool isRead = session_.isAnswered(questions_[write.radio]);
    return learnt_.noteReadback(write, seen, snapshot_.radios[write.radio], isRead ? "" : pilot::kUnchangedUnread,
                                notes_);
}

}  // namespace simconnect
