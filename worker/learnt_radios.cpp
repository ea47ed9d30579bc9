#include "worker/learnt_radios.h"
#include <algorithm>
#include <cmath>
#include <utility>
#include "worker/pilot_texts.h"

namespace {

constexpr double kSilence = 0.005;  // a volume below this is 0

// What a write to the slot would change.
std::pair<double, double> shownIn(const RadioReading& radio, RadioSlot slot) {
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

}  // namespace

bool isReadable(const RadioReading& radio, RadioSlot slot) {
    if (slot == kSlotVolume) return radio.volume >= 0.0;
    if (slot == kSlotSwap) return radio.active > 0 && radio.standby > 0;
    return radio.spacing >= 0 && (slot == kSlotActive ? radio.active : radio.standby) > 0;
}

bool hasMoved(const RadioReading& before, const RadioReading& now, RadioSlot slot) {
    return shownIn(before, slot) != shownIn(now, slot);
}

void LearntRadios::watch(std::size_t radio, double volume, bool isUsable, Standstill now, std::uint64_t nowMs) {
    auto& since = written_[radio].since;
    since.isPaused = since.isPaused || now.isPaused;
    since.isStuttering = since.isStuttering || now.isStuttering;

    auto& learnt = learnt_[radio];
    const bool isLive = !now.isPaused && !now.isStuttering;
    const bool silent = volume >= 0.0 && volume < kSilence && isUsable && isLive;
    if (!silent) {
        learnt.silentSinceMs = 0;
    } else if (learnt.silentSinceMs == 0) {
        learnt.silentSinceMs = nowMs;
    } else if (nowMs - learnt.silentSinceMs >= kSilentMs) {
        learnt.staysOnAtZero = true;
    }
}

// At 0 a knob that is also the power switch would switch the radio off for good: a radio without power takes no volume.
// So 1 % is the least, until this radio has been seen to stay on at 0.
RadioWrite LearntRadios::adjusted(const RadioWrite& write) const {
    if (write.slot != kSlotVolume) return write;
    auto sent = write;
    const double least = learnt_[write.radio].staysOnAtZero ? 0.0 : 1.0;
    sent.value = std::max(std::round(write.value * 100.0), least) / 100.0;
    return sent;
}

void LearntRadios::noteWrite(const RadioWrite& write, const RadioReading& before, Standstill now) {
    written_[write.radio] = {before, now};
}

// Only a slot where nothing moved counts as ignored: an aircraft that rounds to its own steps does obey. A radio that
// has lost power by now could not, nor could a simulator that stands still.
std::string LearntRadios::noteReadback(const RadioWrite& write, bool seen, RadioReading& shown,
                                       std::string_view hindrance, std::vector<std::string>& notes) {
    auto& ignored = learnt_[write.radio].ignored[write.slot];
    if (seen) ignored = 0;
    if (seen || !shown.writable[write.slot]) return pilot::kRefused;
    const auto& written = written_[write.radio];
    if (hasMoved(written.before, shown, write.slot)) return pilot::refusedText(shownText(shown, write.slot));
    if (!hindrance.empty()) return std::string(hindrance);
    if (written.since.isPaused) return pilot::kUnchangedInPause;
    if (written.since.isStuttering) return pilot::kUnchangedInSilence;
    if (++ignored < kIgnoredWrites) return pilot::kRefused;
    shown.writable[write.slot] = false;
    notes.push_back(slotTitle(write.radio, write.slot) + ": the aircraft has ignored " +
                    std::to_string(kIgnoredWrites) + " writes; not writable until the aircraft changes");
    return pilot::kRefusedForGood;
}
