// simconnect_link.h - the simulator's two COM radios over SimConnect. Shows what the simulator has said and nothing
// else; writes by key events, as a cockpit does, and leaves the judgement to the read-back.
#pragma once
#include <array>
#include <memory>
#include <string>
#include <string_view>
#include "worker/sim_link.h"
#include "worker/simconnect/session.h"
#include "worker/simconnect/transport.h"

namespace simconnect {

inline constexpr std::uint64_t kFreshMs = 3000;      // a shorter silence is a stutter, and the last data still counts
inline constexpr std::uint64_t kFirstReadMs = 1500;  // after that, what has been read must do
inline constexpr std::uint64_t kSilentMs = 2000;  // a radio that has power this long after going to volume 0 keeps it
inline constexpr std::uint64_t kRestMs = 200;     // data wakes us; this is for retries and for missing data
inline constexpr int kIgnoredWrites = 2;          // in a row; then the slot is not writable in this aircraft

class SimConnectLink : public SimLink {
  public:
    explicit SimConnectLink(std::unique_ptr<Transport> transport);

    void poll(std::uint64_t nowMs) override;
    const SimSnapshot& snapshot() const override { return snapshot_; }
    bool write(const RadioWrite& write, std::uint64_t nowMs) override;
    RadioWrite adjusted(const RadioWrite& write) const override;
    std::uint64_t unheardMs(std::uint64_t nowMs) const override;
    bool isSettled() const override;
    std::string noteReadback(const RadioWrite& write, bool seen) override;
    void* wakeHandle() const override { return transport_->wakeHandle(); }
    std::uint64_t restMs() const override { return kRestMs; }

  private:
    // What we have learnt about a radio of this aircraft.
    struct Learnt {
        std::array<int, kSlotCount> ignored{};  // writes in a row without effect
        std::uint64_t silentSinceMs = 0;        // at volume 0 with power; 0 = it is not
        bool staysOnAtZero = false;             // has been seen at volume 0 with power for a while
    };

    // A radio as it was when it was last written to, and what has happened since.
    struct Written {
        RadioReading before;
        std::uint32_t question = 0;  // the session's, asked behind the write
        bool paused = false;         // the simulator, at any moment since
        bool stuttered = false;      // the same
    };

    std::string groundStatus(std::uint64_t nowMs) const;
    void learn(std::uint64_t nowMs);
    void watchWrites(std::uint64_t nowMs);
    std::string_view hindrance(const Written& written) const;
    SimSnapshot describe(std::uint64_t nowMs) const;
    RadioReading describeRadio(std::size_t radio) const;
    std::string_view condition(std::size_t radio) const;
    std::string radioStatus() const;

    std::unique_ptr<Transport> transport_;  // never null
    Session session_;
    std::uint32_t aircraft_ = 0;  // the session's number for the aircraft that learnt_ belongs to
    std::array<Learnt, kRadioCount> learnt_;
    std::array<Written, kRadioCount> written_;
    SimSnapshot snapshot_;
};

}  // namespace simconnect
