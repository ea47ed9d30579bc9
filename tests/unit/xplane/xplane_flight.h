// xplane_flight.h - the worker and stand-in X-Planes, which share no code, in one process and on one clock set by hand:
// everything between command.json and telemetry.json except the sockets.
#pragma once
#include <gtest/gtest.h>
#include <algorithm>
#include <deque>
#include <memory>
#include <string>
#include <vector>
#include "tests/unit/simulator/flying_worker.h"
#include "tests/xplane/simulator.h"
#include "worker/xplane/xplane_link.h"

inline constexpr std::uint32_t kOwnComputer = 0x7F000001U;    // 127.0.0.1
inline constexpr std::uint32_t kOtherComputer = 0xC0A80114U;  // 192.168.1.20
inline constexpr std::uint32_t kStranger = 0xC0A80115U;       // 192.168.1.21

// All X-Planes that there are, and the one worker that hears them.
class XplaneNetwork {
  public:
    struct Host {
        xstandin::Endpoint at;
        std::unique_ptr<xstandin::Simulator> simulator;
        std::vector<std::string> reports;
    };
    struct Arrived {
        xplane::Endpoint from;
        std::string bytes;
    };

    void add(const char* personality, const xstandin::Endpoint& at, std::uint64_t nowMs) {
        hosts.push_back(
            {at,
             std::make_unique<xstandin::Simulator>(*xstandin::findPersonality(personality), at.port, "simpc", nowMs),
             {}});
    }
    void send(const xplane::Endpoint& to, std::string_view bytes, std::uint64_t nowMs) {
        sent++;
        for (auto& host : hosts) {
            if (host.at == xstandin::Endpoint{to.address, to.port}) host.simulator->receive(worker, bytes, nowMs);
        }
    }
    void advance(std::uint64_t nowMs) {
        for (auto& host : hosts) {
            host.simulator->advance(nowMs);
            for (auto& datagram : host.simulator->takeOutput()) deliver(host, datagram);
            for (auto& report : host.simulator->takeReports()) host.reports.push_back(report.text);
        }
    }

    std::vector<Host> hosts;
    xstandin::Endpoint worker{kOwnComputer, 50'000};
    std::deque<Arrived> beacons;
    std::deque<Arrived> answers;
    int sent = 0;

  private:
    void deliver(const Host& host, xstandin::Datagram& datagram) {
        using xstandin::Way;
        if (datagram.way != Way::kBeacon && datagram.peer != worker) return;              // to a socket that is closed
        const std::uint16_t port = datagram.way == Way::kAnswer ? host.at.port : 40'000;  // others have their own
        const auto address = datagram.way == Way::kStranger ? kStranger : host.at.address;
        auto& arrived = datagram.way == Way::kBeacon ? beacons : answers;
        arrived.push_back({{address, port}, std::move(datagram.bytes)});
    }
};

// The worker's sockets on that network.
class NetworkDatagrams : public xplane::Datagrams {
  public:
    NetworkDatagrams(XplaneNetwork& network, const ManualClock& clock) : network_(network), clock_(clock) {}

    bool listen() override { return true; }
    std::uint32_t problem() const override { return 0; }
    std::optional<xplane::Received> receiveBeacon(std::span<std::uint8_t> into) override {
        return take(network_.beacons, into);
    }
    std::optional<xplane::Received> receiveAnswer(std::span<std::uint8_t> into) override {
        return take(network_.answers, into);
    }
    bool send(const xplane::Endpoint& to, std::span<const std::uint8_t> datagram) override {
        network_.send(to, {reinterpret_cast<const char*>(datagram.data()), datagram.size()}, clock_.tickMs());
        return true;
    }
    void closeOurs() override {
        network_.answers.clear();
        network_.worker.port++;
    }
    bool isHere(std::uint32_t address) override { return address == kOwnComputer; }
    void* wakeHandle() const override { return &network_; }  // nobody waits for it, but it counts

  private:
    static std::optional<xplane::Received> take(std::deque<XplaneNetwork::Arrived>& arrived,
                                                std::span<std::uint8_t> into) {
        if (arrived.empty()) return std::nullopt;
        const auto [from, bytes] = std::move(arrived.front());
        arrived.pop_front();
        const auto count = std::min(into.size(), bytes.size());
        std::copy_n(bytes.begin(), count, into.begin());
        return xplane::Received{count, from};
    }

    XplaneNetwork& network_;
    const ManualClock& clock_;
};

class XplaneFlight : public FlyingWorker {
  protected:
    // One X-Plane, on this computer.
    void begin(const char* personality) {
        network = {};
        network.add(personality, {kOwnComputer, 49'000}, clock.tickMs());
        startWorker();
    }
    // Until the radios are read.
    void beginAndRead(const char* personality) {
        begin(personality);
        EXPECT_TRUE(flyUntil([&] { return telemetry().ok; }, 6000)) << personality << ": " << telemetry().status;
    }
    void startWorker() {
        loop.reset();
        link.reset();
        clearTelemetry();
        recent_.clear();
        link = std::make_unique<xplane::XPlaneLink>(std::make_unique<NetworkDatagrams>(network, clock));
        takeOff(*link);
    }
    void act(const char* line, std::size_t host = 0) {
        xstandin::Action action;
        std::string error;
        EXPECT_TRUE(xstandin::parseAction(line, action, error) &&
                    network.hosts[host].simulator->act(action, clock.tickMs(), error))
            << error;
    }
    int heard(const std::string& part, std::size_t host = 0) {
        const auto& reports = network.hosts[host].reports;
        return static_cast<int>(std::count_if(reports.begin(), reports.end(), [&](const std::string& text) {
            return text.find(part) != std::string::npos;
        }));
    }
    const xstandin::Cockpit& cockpit() const { return network.hosts[0].simulator->cockpit(); }
    std::size_t requests() const { return network.hosts[0].simulator->requestsOf(network.worker); }
    bool showsActive(std::int32_t khz) {
        const auto shown = telemetry();
        return shown.ok && shown.radios[0].active == khz;
    }

    XplaneNetwork network;
    std::unique_ptr<xplane::XPlaneLink> link;

  private:
    void flySimulators() override { network.advance(clock.tickMs()); }
    // What the telemetry shows must have been true in one of the X-Planes shortly before.
    void judge() override {
        for (const auto& host : network.hosts) recent_.push_back(host.simulator->cockpit());
        while (recent_.size() > network.hosts.size() * mayLagMs / kPassEveryMs) recent_.pop_front();
        const auto shown = telemetry();
        if (!shown.ok) return;
        for (std::size_t i = 0; i < kRadioCount; i++) {
            const auto& radio = shown.radios[i];
            const bool wasSo = std::any_of(recent_.begin(), recent_.end(), [&](const xstandin::Cockpit& cockpit) {
                const auto& real = cockpit.radios[i];
                return (radio.active == 0 || radio.active == real.activeKhz) &&
                       (radio.standby == 0 || radio.standby == real.standbyKhz);
            });
            EXPECT_TRUE(wasSo) << "COM" << i + 1 << " shows " << radio.active << " / " << radio.standby;
        }
    }

    std::deque<xstandin::Cockpit> recent_;
};
