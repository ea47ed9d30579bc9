// worker_flight.h - the worker and the stand-in simulator, which share no code, in one process and on one clock
// set by hand: everything between command.json and telemetry.json except the pipe.
#pragma once
#include <gtest/gtest.h>
#include <algorithm>
#include <deque>
#include <memory>
#include <string>
#include <vector>
#include "tests/simulator/simulator.h"
#include "tests/unit/simulator/flying_worker.h"
#include "worker/simconnect/simconnect_link.h"

// The transport of one worker, straight into the simulator.
class SimulatorLine : public simconnect::Transport {
  public:
    SimulatorLine(standin::Simulator& simulator, const ManualClock& clock) : simulator_(simulator), clock_(clock) {}

    void connect() override {
        close();
        if (simulator_.isReachable()) client_ = simulator_.connect(clock_.tickMs());
    }
    void close() override {
        simulator_.disconnect(client_, clock_.tickMs());
        client_ = 0;
        waiting_.clear();
    }
    simconnect::TransportState poll(std::uint64_t) override {
        for (const auto& output : simulator_.takeOutput()) {
            if (output.client != client_ || client_ == 0) continue;
            waiting_ += output.bytes;
            if (output.isLast) client_ = 0;
        }
        return client_ == 0 ? simconnect::TransportState::kClosed : simconnect::TransportState::kOpen;
    }
    std::size_t receive(std::span<std::uint8_t> into) override {
        const auto count = std::min(into.size(), waiting_.size());
        std::copy_n(waiting_.begin(), count, into.begin());
        waiting_.erase(0, count);
        return count;
    }
    bool send(std::span<const std::uint8_t> packet) override {
        simulator_.receive(client_, {reinterpret_cast<const char*>(packet.data()), packet.size()}, clock_.tickMs());
        return client_ != 0;
    }
    std::string problem() const override { return {}; }

  private:
    standin::Simulator& simulator_;
    const ManualClock& clock_;
    int client_ = 0;
    std::string waiting_;
};

class WorkerFlight : public FlyingWorker {
  protected:
    void begin(const char* personality) {
        clearTelemetry();
        simulator = std::make_unique<standin::Simulator>(*standin::findPersonality(personality), clock.tickMs());
        link = std::make_unique<simconnect::SimConnectLink>(std::make_unique<SimulatorLine>(*simulator, clock));
        takeOff(*link);
    }
    // Until the radios are read, as after a few frames.
    void beginAndRead(const char* personality) {
        begin(personality);
        EXPECT_TRUE(flyUntil([&] { return telemetry().ok; }, 6000)) << telemetry().status;
    }
    void act(const char* line) {
        standin::Action action;
        std::string error;
        EXPECT_TRUE(standin::parseAction(line, action, error) && simulator->act(action, clock.tickMs(), error))
            << error;
    }
    int heard(const std::string& event) {
        for (auto& report : simulator->takeReports()) reports.push_back(report.text);
        return static_cast<int>(std::count_if(reports.begin(), reports.end(), [&](const std::string& text) {
            return text.find(" event " + event) != std::string::npos;
        }));
    }

    std::unique_ptr<standin::Simulator> simulator;
    std::unique_ptr<simconnect::SimConnectLink> link;
    std::vector<std::string> reports;
    bool mayTear = false;  // what one frame says may arrive in two parts

  private:
    void flySimulators() override { simulator->advance(clock.tickMs()); }
    // What the telemetry shows must have been true in the simulator shortly before.
    void judge() override {
        recent_.push_back(simulator->aircraft());
        if (recent_.size() > mayLagMs / kPassEveryMs) recent_.pop_front();
        const auto shown = telemetry();
        if (!shown.ok) return;
        for (std::size_t i = 0; i < kRadioCount; i++) {
            const auto& radio = shown.radios[i];
            bool wasActive = false, wasStandby = false, wereBoth = false;
            for (const auto& aircraft : recent_) {
                const auto& real = aircraft.radios[i];
                const bool isActive = radio.active == 0 || radio.active * 1000LL == real.activeHz;
                const bool isStandby = radio.standby == 0 || radio.standby * 1000LL == real.standbyHz;
                wasActive = wasActive || isActive;
                wasStandby = wasStandby || isStandby;
                wereBoth = wereBoth || (isActive && isStandby);
            }
            EXPECT_TRUE(mayTear ? wasActive && wasStandby : wereBoth)
                << "COM" << i + 1 << " shows " << radio.active << " / " << radio.standby;
        }
    }

    std::deque<standin::Aircraft> recent_;
};
