// xplane_link.h - X-Plane's two COM radios. Shows what X-Plane has said and nothing else; writes, says a write again
// while nothing of it is to be seen, since datagrams get lost, and leaves the judgement to the read-back.
#pragma once
#include <array>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include "worker/learnt_radios.h"
#include "worker/sim_link.h"
#include "worker/xplane/beacon_watch.h"
#include "worker/xplane/named_simulator.h"
#include "worker/xplane/session.h"

namespace xplane {

inline constexpr std::uint64_t kNoAnswerMs = 2'000;  // to our questions: then something keeps X-Plane from answering
inline constexpr std::uint64_t kJoinMs = 30'000;     // from one look for new networks to the next
inline constexpr std::uint64_t kPollMs = 200;        // news wake us; this is for what is missing

class XPlaneLink : public SimLink {
  public:
    // Without an address the beacon says where X-Plane is.
    explicit XPlaneLink(std::unique_ptr<Datagrams> datagrams, const std::optional<HostPort>& address = {},
                        AddressLookUp lookUp = ::lookUp);

    void poll(std::uint64_t nowMs) override;
    const SimSnapshot& snapshot() const override { return snapshot_; }
    bool write(const RadioWrite& write, std::uint64_t nowMs) override;
    RadioWrite adjusted(const RadioWrite& write) const override { return learnt_.adjusted(write); }
    std::uint64_t unheardMs(std::uint64_t nowMs) const override;
    bool isSettled() const override;
    bool isThere() const override;
    std::string noteReadback(const RadioWrite& write, bool seen) override;
    WakeHandles wakeHandles() const override { return {datagrams_->wakeHandle()}; }
    std::uint64_t restMs() const override { return kPollMs; }

  private:
    // A write whose effect is not to be seen yet.
    struct Unseen {
        RadioSlot slot = kSlotActive;
        Bytes datagram;
        std::uint64_t sentMs = 0;  // last
        int repeats = 0;           // left
    };

    void seekByBeacon(std::uint64_t nowMs);
    void seekByName(std::uint64_t nowMs);
    void hearBeacons(std::uint64_t nowMs);
    void follow(const std::optional<Simulator>& simulator, bool isHeard, std::uint64_t nowMs);
    void learn(std::uint64_t nowMs);
    void repeatUnseen(std::uint64_t nowMs);
    Standstill standstill(std::uint64_t nowMs) const;
    std::string name() const;
    std::string groundStatus(std::uint64_t nowMs) const;
    std::string silentStatus(std::uint64_t nowMs) const;
    SimSnapshot describe(std::uint64_t nowMs) const;
    RadioReading describeRadio(std::size_t radio) const;
    std::string_view condition(std::size_t radio) const;
    std::string radioStatus() const;

    std::unique_ptr<Datagrams> datagrams_;  // never null
    std::optional<NamedSimulator> named_;   // if there is an address
    std::optional<BeaconWatch> watch_;      // if not, from the first poll
    std::uint64_t listenDueMs_ = 0;
    std::optional<std::uint64_t> heardMs_;  // when it was last looked for beacons
    bool isListenNoted_ = false;
    Session session_;
    bool hasFlown_ = false;       // has been up
    std::uint32_t aircraft_ = 0;  // the session's number for the aircraft that learnt_ belongs to
    LearntRadios learnt_;
    std::array<std::optional<Unseen>, kRadioCount> unseen_;
    std::uint64_t nowMs_ = 0;  // of the last poll
    SimSnapshot snapshot_;
};

}  // namespace xplane
