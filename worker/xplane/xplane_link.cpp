#include "worker/xplane/xplane_link.h"
#include <utility>
#include "exchange/frequency_grid.h"
#include "worker/pilot_texts.h"
#include "worker/xplane/radio_tables.h"

namespace xplane {

namespace {

constexpr std::size_t kBeaconBytes = 512;
constexpr int kBeaconsPerPass = 64;               // a flood waits for the next pass
constexpr std::int32_t kSwitchVersion = 120'000;  // from this one on it can be told not to answer
constexpr std::uint64_t kHeardMs = 200;           // since the last word: X-Plane speaks

// When a write of which nothing is to be seen is said again, and how often. To set a value twice does no harm; to swap
// twice does, so that waits until there can be no doubt.
struct Repeat {
    std::uint64_t afterMs;
    int times;
};
constexpr Repeat repeatOf(RadioSlot slot) {
    return slot == kSlotSwap ? Repeat{1'000, 1} : Repeat{250, 4};
}

constexpr ComRow rowOfSlot(RadioSlot slot) {
    if (slot == kSlotVolume) return kComVolume;
    return slot == kSlotStandby ? kComStandby : kComActive;
}

Bytes datagramOf(const RadioWrite& write) {
    if (write.slot == kSlotSwap) return encodeCommand(kSwapCommands[write.radio]);
    return encodeWrite(static_cast<float>(write.value), kDataRefs[rowOf(write.radio, rowOfSlot(write.slot))].name);
}

std::int32_t channelOf(std::optional<double> khz) {
    return static_cast<std::int32_t>(khz.value_or(0.0));
}

}  // namespace

XPlaneLink::XPlaneLink(std::unique_ptr<Datagrams> datagrams, const std::optional<HostPort>& address,
                       AddressLookUp lookUp)
    : datagrams_(std::move(datagrams)), session_(*datagrams_, kDataRefs) {
    if (address) named_.emplace(*address, std::move(lookUp));
    snapshot_.status = pilot::kWaitingForSimulator;
}

void XPlaneLink::poll(std::uint64_t nowMs) {
    nowMs_ = nowMs;
    session_.poll(nowMs);
    if (named_) {
        seekByName(nowMs);
    } else {
        seekByBeacon(nowMs);
    }
    for (auto& line : session_.takeNotes()) notes_.push_back(std::move(line));
    learn(nowMs);
    snapshot_ = describe(nowMs);
    hasFlown_ = hasFlown_ || snapshot_.ok;
    repeatUnseen(nowMs);
}

void XPlaneLink::seekByName(std::uint64_t nowMs) {
    named_->poll(session_.dataMs().has_value(), nowMs);
    const auto& at = named_->present();
    if (at) follow(Simulator{*at, 0, datagrams_->isHere(at->address)}, false, nowMs);
}

// Networks come later than the worker: a wireless one, a cable that is plugged in.
void XPlaneLink::seekByBeacon(std::uint64_t nowMs) {
    if (!watch_) watch_.emplace(nowMs);
    if (!session_.simulator() && nowMs >= listenDueMs_) {
        listenDueMs_ = nowMs + kJoinMs;
        if (!datagrams_->listen() && !std::exchange(isListenNoted_, true)) {
            notes_.push_back("X-Plane's beacon cannot be listened to (error " + std::to_string(datagrams_->problem()) +
                             ')');
        }
    }
    // What wakes us and is left unread for a moment does not wake us again.
    const bool mayRest = session_.simulator() || datagrams_->wakeHandle();
    if (!mayRest || !heardMs_ || nowMs - *heardMs_ >= kBeaconLookMs) hearBeacons(nowMs);
    watch_->choose(session_.dataMs(), nowMs);
    follow(watch_->chosen(), true, nowMs);
}

void XPlaneLink::hearBeacons(std::uint64_t nowMs) {
    heardMs_ = nowMs;
    std::array<std::uint8_t, kBeaconBytes> buffer;
    for (int i = 0; i < kBeaconsPerPass; i++) {
        const auto received = datagrams_->receiveBeacon(buffer);
        if (!received) return;
        const auto beacon = decodeBeacon(ByteView(buffer).first(received->bytes));
        if (beacon) watch_->hear(*beacon, received->from.address, datagrams_->isHere(received->from.address), nowMs);
    }
}

void XPlaneLink::follow(const std::optional<Simulator>& simulator, bool isHeard, std::uint64_t nowMs) {
    if (simulator == session_.simulator()) return;
    if (isHeard && !simulator) notes_.push_back(name() + " is not heard any more");
    session_.end();
    if (!simulator) return;
    session_.begin(*simulator, isHeard, nowMs);
    if (!isHeard) return;
    notes_.push_back(name() + " found" +
                     (simulator->isHere ? " on this computer, port " + std::to_string(simulator->at.port)
                                        : ", simulator at " + endpointText(simulator->at)));
}

std::uint64_t XPlaneLink::unheardMs(std::uint64_t nowMs) const {
    const auto dataMs = session_.dataMs();
    return dataMs ? nowMs - *dataMs : 0;
}

Standstill XPlaneLink::standstill(std::uint64_t nowMs) const {
    return {session_.value(kPaused) == 1.0, unheardMs(nowMs) >= kStutterMs};
}

bool XPlaneLink::isThere() const {
    return named_ ? session_.dataMs().has_value() : session_.simulator().has_value();
}

bool XPlaneLink::isSettled() const {
    const auto& status = snapshot_.status;
    if (status == pilot::kConnecting || status == pilot::kReadingRadios) return false;
    return status != pilot::kWaitingForSimulator || (watch_ && nowMs_ - watch_->sinceMs() >= kFreshMs);
}

void XPlaneLink::learn(std::uint64_t nowMs) {
    if (session_.aircraft() != aircraft_) {
        aircraft_ = session_.aircraft();
        learnt_.forget();
    }
    for (std::size_t radio = 0; radio < kRadioCount; radio++) {
        const double volume = session_.value(rowOf(radio, kComVolume)).value_or(-1.0);
        learnt_.watch(radio, volume, condition(radio).empty(), standstill(nowMs), nowMs);
    }
}

std::string XPlaneLink::name() const {
    return versionText(session_.simulator() ? session_.simulator()->version : 0);
}

// Why there is no telemetry; empty if there is.
std::string XPlaneLink::groundStatus(std::uint64_t nowMs) const {
    if (!session_.simulator()) {
        if (named_) return named_->problem().empty() ? pilot::kWaitingForSimulator : named_->problem();
        if (datagrams_->problem() != 0) return pilot::notReachableText(datagrams_->problem());
        return hasFlown_ ? pilot::kLinkLost : pilot::kWaitingForSimulator;
    }
    if (!session_.dataMs()) return silentStatus(nowMs);
    const bool enough = session_.isAllRead() || nowMs - session_.speaksSinceMs() >= kFirstReadMs;
    return enough ? "" : pilot::kReadingRadios;
}

// With an address nothing but an answer says that X-Plane is there; its beacon says so even when it answers nothing.
std::string XPlaneLink::silentStatus(std::uint64_t nowMs) const {
    if (named_ && session_.hasSpoken()) return pilot::kLinkLost;
    if (named_) return named_->problem().empty() ? pilot::kConnecting : named_->problem();
    if (!session_.hasSpoken() && nowMs - session_.begunMs() < kNoAnswerMs) return pilot::kConnecting;
    return session_.simulator()->version >= kSwitchVersion ? pilot::kMenuOrSwitch : pilot::kMenuOrLoading;
}

SimSnapshot XPlaneLink::describe(std::uint64_t nowMs) const {
    SimSnapshot sim;
    sim.status = groundStatus(nowMs);
    sim.ok = sim.status.empty();
    if (!sim.ok) return sim;
    sim.status =
        pilot::radiosText(name(), pilot::radioFaultsText(condition(0), condition(1)), standstill(nowMs).isPaused);
    for (std::size_t radio = 0; radio < kRadioCount; radio++) sim.radios[radio] = describeRadio(radio);
    return sim;
}

// X-Plane says nothing of a spacing: its radios take every 8.33 kHz channel.
RadioReading XPlaneLink::describeRadio(std::size_t radio) const {
    RadioReading values;
    values.active = channelOf(session_.value(rowOf(radio, kComActive)));
    values.standby = channelOf(session_.value(rowOf(radio, kComStandby)));
    values.spacing = kSpacing833;
    values.volume = static_cast<float>(session_.value(rowOf(radio, kComVolume)).value_or(-1.0));
    const bool isUsable = condition(radio).empty();
    for (std::size_t i = 0; i < kSlotCount && isUsable; i++) {
        const auto slot = static_cast<RadioSlot>(i);
        values.writable[i] = isReadable(values, slot) && learnt_.takes(radio, slot);
    }
    return values;
}

// What makes the radio unusable; empty if nothing does. If X-Plane says nothing of one of the two switches, the other
// one decides.
std::string_view XPlaneLink::condition(std::size_t radio) const {
    const auto avionics = session_.value(kAvionics);
    const auto power = session_.value(rowOf(radio, kComPower));
    if (avionics == 0.0 || power == 0.0) return pilot::kUnpowered;
    return avionics || power ? "" : pilot::kNotKnown;
}

bool XPlaneLink::write(const RadioWrite& write, std::uint64_t nowMs) {
    const auto& radio = snapshot_.radios[write.radio];
    if (!snapshot_.ok || !radio.writable[write.slot] || !isValueFor(snapshot_, write)) return false;
    Unseen sent{write.slot, datagramOf(write), nowMs, repeatOf(write.slot).times};
    learnt_.noteWrite(write, radio, standstill(nowMs));
    if (!session_.send(sent.datagram)) return false;
    unseen_[write.radio] = std::move(sent);
    return true;
}

// The wait goes on only while X-Plane speaks and time passes there: one that stands still may have the write already,
// and carry it out when it goes on.
void XPlaneLink::repeatUnseen(std::uint64_t nowMs) {
    for (std::size_t radio = 0; radio < kRadioCount; radio++) {
        auto& unseen = unseen_[radio];
        if (!unseen) continue;
        const auto repeat = repeatOf(unseen->slot);
        if (!snapshot_.ok || hasMoved(learnt_.before(radio), snapshot_.radios[radio], unseen->slot)) {
            unseen.reset();
        } else if (standstill(nowMs).isPaused || unheardMs(nowMs) >= kHeardMs) {
            unseen->sentMs = nowMs;
        } else if (unseen->repeats > 0 && nowMs - unseen->sentMs >= repeat.afterMs) {
            session_.send(unseen->datagram);
            unseen->sentMs = nowMs;
            unseen->repeats--;
        }
    }
}

std::string XPlaneLink::noteReadback(const RadioWrite& write, bool seen) {
    unseen_[write.radio].reset();
    return learnt_.noteReadback(write, seen, snapshot_.radios[write.radio], {}, notes_);
}

}  // namespace xplane
