#include "worker/simconnect/simconnect_link.h"
#include <algorithm>
#include <cmath>
#include <utility>
#include "exchange/frequency_grid.h"
#include "worker/pilot_texts.h"
#include "worker/simconnect/com_tables.h"

namespace simconnect {

namespace {

constexpr double kSilence = 0.005;  // a volume below this is 0

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

// What a write to the slot would change.
std::pair<double, double> shown(const RadioReading& radio, RadioSlot slot) {
    switch (slot) {
        case kSlotActive:
            return {radio.active, 0.0};
        case kSlotStandby:
            return {radio.standby, 0.0};
        case kSlotVolume:
            return {radio.volume, 0.0};
        case kSlotSwap:
            return {radio.active, radio.standby};
    }
    return {};
}

std::string shownText(const RadioReading& radio, RadioSlot slot) {
    if (slot == kSlotVolume) return percentText(radio.volume);
    return mhzText(slot == kSlotStandby ? radio.standby : radio.active);
}

std::uint32_t eventData(const RadioWrite& write) {
    if (write.slot == kSlotSwap) return 0;
    const double scale = write.slot == kSlotVolume ? 100.0 : 1000.0;  // percent, Hz
    return static_cast<std::uint32_t>(std::lround(write.value * scale));
}

bool isReadable(const RadioReading& radio, RadioSlot slot) {
    if (slot == kSlotVolume) return radio.volume >= 0.0;
    if (slot == kSlotSwap) return radio.active > 0 && radio.standby > 0;
    return radio.spacing >= 0 && (slot == kSlotActive ? radio.active : radio.standby) > 0;
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
    watchWrites(nowMs);
    snapshot_ = describe(nowMs);
}

std::uint64_t SimConnectLink::unheardMs(std::uint64_t nowMs) const {
    const auto dataMs = session_.dataMs();
    return dataMs ? nowMs - *dataMs : 0;
}

void SimConnectLink::watchWrites(std::uint64_t nowMs) {
    for (auto& written : written_) {
        written.paused = written.paused || session_.isPaused();
        written.stuttered = written.stuttered || unheardMs(nowMs) >= kStutterMs;
    }
}

bool SimConnectLink::isSettled() const {
    if (snapshot_.ok) return true;
    if (!session_.isOpen()) return session_.isSettled();
    return session_.isSimRunning() == false || snapshot_.status == pilot::kNoData;
}

void SimConnectLink::learn(std::uint64_t nowMs) {
    if (session_.aircraft() != aircraft_) {
        aircraft_ = session_.aircraft();
        learnt_ = {};
    }
    const bool isLive = !session_.isPaused() && unheardMs(nowMs) < kStutterMs;
    for (std::size_t radio = 0; radio < kRadioCount; radio++) {
        auto& learnt = learnt_[radio];
        const double volume = toVolume(valueOf(session_, radio, kComVolume));
        const bool silent = volume >= 0.0 && volume < kSilence && condition(radio).empty() && isLive;
        if (!silent) {
            learnt.silentSinceMs = 0;
        } else if (learnt.silentSinceMs == 0) {
            learnt.silentSinceMs = nowMs;
        } else if (nowMs - learnt.silentSinceMs >= kSilentMs) {
            learnt.staysOnAtZero = true;
        }
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
        values.writable[i] = isReadable(values, slot) && session_.isKeyEventKnown(keyEventOf(radio, slot)) &&
                             learnt_[radio].ignored[i] < kIgnoredWrites;
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
    written_[write.radio] = {radio, session_.question(), session_.isPaused(), unheardMs(nowMs) >= kStutterMs};
    return isSent;
}

// Volume goes in whole percent. At 0 a knob that is also the power switch would switch the radio off for good: a radio
// without power takes no volume. So 1 % is the least, until this radio has been seen to stay on at 0.
RadioWrite SimConnectLink::adjusted(const RadioWrite& write) const {
    if (write.slot != kSlotVolume) return write;
    auto sent = write;
    const double least = learnt_[write.radio].staysOnAtZero ? 0.0 : 1.0;
    sent.value = std::max(std::round(write.value * 100.0), least) / 100.0;
    return sent;
}

// What the pilot is told if the simulator may not have carried the write out yet; empty if it had its chance.
std::string_view SimConnectLink::hindrance(const Written& written) const {
    if (!session_.isAnswered(written.question)) return pilot::kUnchangedUnread;
    if (written.paused) return pilot::kUnchangedInPause;
    return written.stuttered ? pilot::kUnchangedInSilence : "";
}

// Only a slot where nothing moved counts as ignored: an aircraft that rounds to its own steps does obey. A radio that
// has lost power by now could not, nor could a simulator that stands still.
std::string SimConnectLink::noteReadback(const RadioWrite& write, bool seen) {
    auto& ignored = learnt_[write.radio].ignored[write.slot];
    auto& radio = snapshot_.radios[write.radio];
    if (seen) ignored = 0;
    if (seen || !radio.writable[write.slot]) return pilot::kRefused;
    const auto& written = written_[write.radio];
    if (shown(radio, write.slot) != shown(written.before, write.slot)) {
        return pilot::refusedText(shownText(radio, write.slot));
    }
    const auto reason = hindrance(written);
    if (!reason.empty()) return std::string(reason);
    if (++ignored < kIgnoredWrites) return pilot::kRefused;
    radio.writable[write.slot] = false;
    notes_.push_back(slotTitle(write.radio, write.slot) + ": the aircraft has ignored " +
                     std::to_string(kIgnoredWrites) + " writes; not writable until the aircraft changes");
    return pilot::kRefusedForGood;
}

}  // namespace simconnect
