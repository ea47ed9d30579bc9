// simconnect_link.h - the simulator's two COM radios over SimConnect. Shows what the simulator has said and nothing
// else; writes by key events, as a cockpit does, and leaves the judgement to the read-back.
#pragma once
#include <array>
#include <memory>
#include <string>
#include <string_view>
#include "worker/learnt_radios.h"
#include "worker/sim_link.h"
#include "worker/simconnect/session.h"
#include "worker/simconnect/transport.h"

namespace simconnect {

inline constexpr std::uint64_t kRestMs = 200;  // data wakes us; this is for retries and for missing data

class SimConnectLink : public SimLink {
  public:
    explicit SimConnectLink(std::unique_ptr<Transport> transport);

    void poll(std::uint64_t nowMs) override;
    const SimSnapshot& snapshot() const override { return snapshot_; }
    bool write(const RadioWrite& write, std::uint64_t nowMs) override;
    RadioWrite adjusted(const RadioWrite& write) const override { return learnt_.adjusted(write); }
    std::uint64_t unheardMs(std::uint64_t nowMs) const override;
    bool isSettled() const override;
    bool isThere() const override { return session_.isOpen(); }
    std::string noteReadback(const RadioWrite& write, bool seen) override;
    WakeHandles wakeHandles() const override { return {transport_->wakeHandle()}; }
    std::uint64_t restMs() const override { return kRestMs; }

  private:
    std::string groundStatus(std::uint64_t nowMs) const;
    void learn(std::uint64_t nowMs);
    Standstill standstill(std::uint64_t nowMs) const;
    SimSnapshot describe(std::uint64_t nowMs) const;
    RadioReading describeRadio(std::size_t radio) const;
    std::string_view condition(std::size_t radio) const;
    std::string radioStatus() const;

    std::unique_ptr<Transport> transport_;  // never null
    Session session_;
    std::uint32_t aircraft_ = 0;  // the session's number for the aircraft that learnt_ belongs to
    LearntRadios learnt_;
    std::array<std::uint32_t, kRadioCount> questions_{};  // the session's, each asked behind the radio's last write
    SimSnapshot snapshot_;
};

}  // namespace simconnect
