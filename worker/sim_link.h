// sim_link.h - what the worker talks to: a simulator, or the built-in aircraft. One thread, the worker's only one.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>
#include "worker/pilot_texts.h"
#include "worker/radio_types.h"

inline constexpr std::uint64_t kStutterMs = 1000;    // of silence: longer than between two frames of a slow simulator
inline constexpr std::uint64_t kFreshMs = 3000;      // a shorter silence is a stutter, and the last data still counts
inline constexpr std::uint64_t kFirstReadMs = 1500;  // after that, what has been read must do

// What the system can wait for: event handles, or null where there is none.
using WakeHandles = std::array<void*, 2>;

class SimLink {
  public:
    virtual ~SimLink() = default;

    // Takes in what has arrived and moves time on. Called every pass; must not block.
    virtual void poll(std::uint64_t nowMs) = 0;

    // The state as of the last poll.
    virtual const SimSnapshot& snapshot() const = 0;

    // Sends one write on its way; whether it took effect shows only in a later snapshot. False if it cannot be sent.
    virtual bool write(const RadioWrite& write, std::uint64_t nowMs) = 0;

    // The write as it is really sent, and then expected in the read-back, if the simulator cannot or must not be told
    // exactly this value.
    virtual RadioWrite adjusted(const RadioWrite& write) const { return write; }

    // How long the simulator has said nothing of its radios: since then no write can have been seen in a snapshot.
    virtual std::uint64_t unheardMs(std::uint64_t /*nowMs*/) const { return 0; }

    // Whether the snapshot says how things are, and not just which step is being taken to find out.
    virtual bool isSettled() const { return true; }

    // Whether there is a simulator at the other end, be it in a flight or not.
    virtual bool isThere() const { return snapshot().ok; }

    // The outcome of the last write: seen in a snapshot in time, or not. Returns what the pilot is told about a write
    // that was not seen, behind the name of its slot.
    virtual std::string noteReadback(const RadioWrite&, bool /*seen*/) { return pilot::kRefused; }

    // Signalled when a poll would find news.
    virtual WakeHandles wakeHandles() const { return {}; }

    // How long the link can do without a poll unless a wake handle is signalled; 0 = not at all.
    virtual std::uint64_t restMs() const { return 0; }

    // What the link wants in the log since the last call, one line each.
    std::vector<std::string> takeNotes() { return std::exchange(notes_, {}); }

  protected:
    std::vector<std::string> notes_;
};
