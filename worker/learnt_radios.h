// learnt_radios.h - what a link learns of an aircraft's radios: which writes it ignores, and whether a radio keeps its
// power at volume 0. The same for every simulator; the link says what it sees, and what may have kept the simulator
// from carrying a write out.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>
#include "worker/radio_types.h"

inline constexpr std::uint64_t kSilentMs = 2000;  // a radio that has power this long after going to volume 0 keeps it
inline constexpr int kIgnoredWrites = 2;          // in a row; then the slot is not writable in this aircraft

// Whether the radio shows what is needed to write the slot and to judge the read-back.
bool isReadable(const RadioReading& radio, RadioSlot slot);

// Whether the two show different things where a write to the slot would show.
bool hasMoved(const RadioReading& before, const RadioReading& now, RadioSlot slot);

// The simulator at one moment, or at any moment since another.
struct Standstill {
    bool isPaused = false;
    bool isStuttering = false;  // has said nothing for kStutterMs (sim_link.h)
};

class LearntRadios {
  public:
    // Another aircraft: nothing of it is known.
    void forget() { learnt_ = {}; }

    // Each poll, for each radio as it is now. isUsable: fitted, powered, not failed.
    void watch(std::size_t radio, double volume, bool isUsable, Standstill now, std::uint64_t nowMs);

    // False once the aircraft has ignored kIgnoredWrites in a row to the slot.
    bool takes(std::size_t radio, RadioSlot slot) const { return learnt_[radio].ignored[slot] < kIgnoredWrites; }

    // The write as it may be sent: volume in whole percent, and at 0 only to a radio known to keep its power there.
    RadioWrite adjusted(const RadioWrite& write) const;

    // A write goes out to its radio, which looks like that.
    void noteWrite(const RadioWrite& write, const RadioReading& before, Standstill now);
    // The radio as it was when it was last written to.
    const RadioReading& before(std::size_t radio) const { return written_[radio].before; }

    // The outcome of the last write to that radio: seen in time or not. shown is the radio as it is now; a slot that
    // has been ignored too often is not writable in it any more. hindrance: what else may have kept the simulator from
    // carrying the write out, in the words of pilot_texts.h; empty if nothing did. Returns what the pilot is told if it
    // was not seen, and adds a line for the log if that is worth one.
    std::string noteReadback(const RadioWrite& write, bool seen, RadioReading& shown, std::string_view hindrance,
                             std::vector<std::string>& notes);

  private:
    struct Learnt {
        std::array<int, kSlotCount> ignored{};  // writes in a row without effect
        std::uint64_t silentSinceMs = 0;        // at volume 0 with power; 0 = it is not
        bool staysOnAtZero = false;             // has been seen at volume 0 with power for a while
    };
    struct Written {
        RadioReading before;
        Standstill since;  // at any moment since
    };

    std::array<Learnt, kRadioCount> learnt_;
    std::array<Written, kRadioCount> written_;
};
