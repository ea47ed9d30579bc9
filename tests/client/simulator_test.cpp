// simulator_test.cpp - the real worker program and the stand-in simulator: over TCP with every personality at once,
// each with a worker and a data folder of its own, and over the simulator's pipe.
#include <gtest/gtest.h>
#include <memory>
#include <semaphore>
#include <thread>
#include <vector>
#include "base/clock_win.h"
#include "base/number_text.h"
#include "tests/client/worker_at_work_win.h"
#include "tests/simulator/server.h"

namespace {

using standin::Program;

// One worker with one personality. Runs on a thread of its own, so it collects problems instead of failing.
struct Meeting {
    explicit Meeting(const char* name) : server(*standin::findPersonality(name)) {}

    void begin() {
        const auto port = server.listenTcp(0);
        server.start();
        if (port == 0 || !worker.start(L" --address 127.0.0.1:" + std::to_wstring(port))) problem("does not start");
    }
    void end() {
        worker.program.kill();
        server.stop();
    }
    void check(bool isGood, const char* what) {
        if (!isGood) problem(what);
    }
    void problem(const std::string& what) {
        problems +=
            what + "; ack \"" + worker.telemetry().ackMessage + "\", status \"" + worker.telemetry().status + "\"\n";
    }
    void act(const char* line) {
        std::string error;
        if (!server.act(line, error)) problem(error);
    }
    bool waitActive(std::int32_t kHz) {
        return waitFor([&] { return worker.isOk() && worker.telemetry().radios[0].active == kHz; }, kPatienceMs);
    }
    bool waitStatus(const char* status) {
        return waitFor([&] { return worker.telemetry().status == status; }, kPatienceMs);
    }
    bool hasHeard(const char* event) const {
        for (const auto& report : server.reports()) {
            if (report.find(event) != std::string::npos) return true;
        }
        return false;
    }

    standin::Server server;
    WorkerAtWork worker;
    std::string problems;
};

void meetStock(Meeting& m) {
    m.act("tune COM1 active 118.005");
    m.check(m.waitActive(118005), "the cockpit's frequency");
    m.check(m.worker.command(1, "standby", "128855").ackOk, "standby");
    m.check(m.worker.command(1, "swap", "0").radios[0].active == 128855, "swap");
    m.check(m.worker.command(2, "volume", "0.4").radios[1].volume == 0.4f, "volume");
    m.check(m.hasHeard("event COM_STBY_RADIO_SET_HZ 128855000"), "heard the standby");
    m.check(m.hasHeard("event COM1_RADIO_SWAP 0"), "heard the swap");
    m.check(m.hasHeard("event COM2_VOLUME_SET 40"), "heard the volume");
    m.check(!m.hasHeard("refused"), "nothing refused");
}

void meetIgnoredSwaps(Meeting& m) {
    m.check(!m.worker.command(1, "swap", "0").ackOk, "an ignored swap is not acknowledged");
    m.check(m.worker.command(1, "standby", "119000").ackOk, "standby");
}

void meetSnapping(Meeting& m) {
    const auto answer = m.worker.command(1, "active", "118105");
    m.check(!answer.ackId.empty() && !answer.ackOk && answer.radios[0].active == 118100, "shows what the radio took");
}

void meetUnpowered(Meeting& m) {
    const auto shown = m.worker.telemetry();
    m.check(shown.radios[0].writable[0] && !shown.radios[1].writable[0], "only COM1 is writable");
    m.check(shown.status.find("COM2 unpowered") != std::string::npos, "says so");
}

void meetLateAnswers(Meeting& m) {
    const auto startMs = systemTickMs();
    m.check(m.worker.command(1, "standby", "119000").ackOk, "standby");
    m.check(systemTickMs() - startMs >= 850, "not before the simulator shows it");
}

void meetLoss(Meeting& m) {
    const auto answer = m.worker.command(1, "standby", "119000");
    m.check(!answer.ackId.empty() && !answer.ackOk && !answer.ok, "not acknowledged, and the loss reported");
    m.check(m.worker.waitOk(), "back");
}

void meetRoughPackets(Meeting& m) {
    m.check(m.worker.command(1, "standby", "119000").ackOk, "standby");
    m.check(m.worker.command(1, "swap", "0").ackOk, "swap");
}

void meetVersion(Meeting& m) {
    m.check(m.worker.log().find("protocol 6") != std::string::npos, "another version");
}

// What it says is not taken for an answer, and the next simulator is found.
void meetNobody(Meeting& m) {
    m.check(waitFor([&] { return m.hasHeard("opened"); }, kPatienceMs), "introduces itself");
    const double openedAt = SystemClock().unixSeconds();
    m.check(waitFor([&] { return m.worker.telemetry().updated > openedAt; }, kPatienceMs), "goes on");
    m.check(!m.worker.telemetry().ok, "not ok");
    m.check(m.worker.program.isRunning(), "alive");
    m.act("personality stock");
    m.check(m.worker.waitOk(), "ok with the next one");
}

void meetMenu(Meeting& m) {
    m.check(m.worker.telemetry().radios[0].active == 122800, "in flight once the first menu is over");
    m.act("sim menu");
    m.check(m.waitStatus("simulator in menu"), "in the menu");
    m.check(!m.worker.isOk() && m.worker.telemetry().radios[0].active == 0, "no frequency in the menu");
    m.act("sim running");
    m.check(m.waitActive(122800), "then flying");
}

void meetAircraftChange(Meeting& m) {
    m.check(m.waitActive(123500), "the aircraft that has come by itself");
    m.act("aircraft twin");
    m.check(m.waitActive(122800) && m.worker.telemetry().radios[1].active == 121500, "another");
    m.act("aircraft glider");
    m.check(m.waitActive(123500), "and a third");
    const auto shown = m.worker.telemetry();
    m.check(shown.radios[1].active == 0 && !shown.radios[1].writable[0], "it has no COM2");
}

void meetPause(Meeting& m) {
    m.act("pause on");
    const auto answer = m.worker.command(1, "standby", "119000");
    m.check(!answer.ackId.empty() && !answer.ackOk && answer.ok, "not done in the pause");
    m.check(answer.ackMessage.ends_with("; simulator paused"), "says why");
    m.act("pause off");
    const auto isShown = [&] { return m.worker.telemetry().radios[0].standby == 119000; };
    m.check(waitFor(isShown, kPatienceMs), "shown after it");
}

void meetStutter(Meeting& m) {
    m.check(waitFor([&] { return m.hasHeard("stutters"); }, kPatienceMs), "stutters");
    m.check(m.worker.command(1, "standby", "119000").ackOk, "written all the same");
    const auto log = m.worker.log();
    m.check(log.find("link up") == log.rfind("link up"), "the link holds");
}

void meetDeafness(Meeting& m) {
    m.check(waitFor([&] { return m.hasHeard("reads nothing"); }, kPatienceMs), "reads nothing");
    const auto answer = m.worker.command(1, "standby", "119000");
    m.check(answer.ackMessage.ends_with("; simulator not reading"), "says so");
    m.check(answer.ok && answer.radios[0].active == 122800, "is listened to all the same");
}

void meetFlood(Meeting& m) {
    m.check(m.waitStatus("reading the radios"), "knows nothing during the flood");
    m.check(m.worker.waitOk(), "and all after it");
    m.check(m.worker.command(1, "standby", "119000").ackOk, "standby");
    const auto log = m.worker.log();
    std::vector<double> seconds;  // of the minute, at which each line was written
    for (auto at = log.find("aircraft loaded"); at != log.npos; at = log.find("aircraft loaded", at + 1))
        seconds.push_back(
            leadingDouble(log.substr(log.rfind('\n', at) + 1 + std::string_view("2026-11-22 06:04:").size())));
    m.check(!seconds.empty(), "says so");
    // Two lines may come a moment less than a second apart if the first was late in being written.
    for (std::size_t i = 2; i < seconds.size(); i++) {
        const double gap = seconds[i] - seconds[i - 2];
        m.check(gap < 0 ? gap + 60 > 1.5 : gap > 1.5, "a line a second");
    }
}

void meetPowerKnob(Meeting& m) {
    m.worker.command(1, "volume", "0");
    m.check(m.hasHeard("event COM1_VOLUME_SET 1") && m.worker.telemetry().radios[0].writable[0], "the radio stays on");
}

}  // namespace

TEST(Simulator, WorkerGetsAlongWithEveryPersonality) {
    const struct {
        const char* personality;
        void (*meet)(Meeting&);
    } rows[] = {
        {"stock", meetStock},
        {"stock_2024", meetStock},
        {"ignores_swaps", meetIgnoredSwaps},
        {"snaps_frequencies", meetSnapping},
        {"unpowered_radio", meetUnpowered},
        {"answers_late", meetLateAnswers},
        {"quits_mid_write", meetLoss},
        {"crashes", meetLoss},
        {"rough_packets", meetRoughPackets},
        {"refuses_version_5", meetVersion},
        {"freezes_in_pause", meetPause},
        {"knows_one_pause", meetPause},
        {"stutters", meetStutter},
        {"stops_reading", meetDeafness},
        {"floods_aircraft", meetFlood},
        {"silent", meetNobody},
        {"garbage", meetNobody},
        {"in_menu", meetMenu},
        {"aircraft_change", meetAircraftChange},
        {"volume_power_knob", meetPowerKnob},
    };
    EXPECT_EQ(std::size(rows), static_cast<std::size_t>(standin::personalitiesEnd() - standin::personalitiesBegin()));
    std::vector<std::unique_ptr<Meeting>> meetings;
    for (const auto& row : rows) meetings.push_back(std::make_unique<Meeting>(row.personality));
    // A meeting mostly waits, so a few run at a time; all at once would overload the machine, and a write that takes
    // longer than the worker's patience counts as ignored.
    std::counting_semaphore room(3);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < meetings.size(); i++) {
        threads.emplace_back([&meeting = *meetings[i], meet = rows[i].meet, &room] {
            room.acquire();
            meeting.begin();
            if (meet != meetNobody) meeting.check(meeting.worker.waitOk(), "ok");
            meet(meeting);
            meeting.end();
            room.release();
        });
    }
    for (auto& thread : threads) thread.join();
    for (std::size_t i = 0; i < meetings.size(); i++) {
        EXPECT_EQ(meetings[i]->problems, "") << rows[i].personality << '\n' << meetings[i]->worker.log();
    }
}

TEST(Simulator, IsReachedByItsIPv6AddressToo) {
    standin::Server server(*standin::findPersonality("stock"));
    const auto port = server.listenTcp(0, standin::Loopback::kIPv6);
    if (port == 0) GTEST_SKIP() << "this machine has no IPv6";
    server.start();
    WorkerAtWork worker;
    ASSERT_TRUE(worker.start(L" --address [::1]:" + std::to_wstring(port)));
    EXPECT_TRUE(worker.waitOk()) << worker.log();
    EXPECT_TRUE(worker.command(1, "standby", "128855").ackOk) << worker.log();
}

TEST(SimulatorPipe, WorkerFindsTheSimulatorWheneverItComesAndReportsItsEnd) {
    WorkerAtWork worker;
    Program simulator;
    ASSERT_TRUE(worker.start(L""));
    ASSERT_TRUE(waitFor([&] { return worker.telemetry().status == "waiting for the simulator"; }, kPatienceMs));
    const auto command = standin::besideUs(L"stand_in_simulator.exe", L"--pipe");
    ASSERT_TRUE(simulator.start(command));
    EXPECT_TRUE(worker.waitOk()) << worker.log();
    simulator.say("tune COM2 active 136.975");
    EXPECT_TRUE(waitFor([&] { return worker.telemetry().radios[1].active == 136975; }, kPatienceMs));
    EXPECT_TRUE(worker.command(1, "standby", "128855").ackOk);
    EXPECT_TRUE(worker.command(1, "swap", "0").ackOk);

    simulator.kill();
    EXPECT_TRUE(waitFor([&] { return !worker.telemetry().ok; }, kPatienceMs));
    EXPECT_EQ(worker.telemetry().radios[0].active, 0);
    ASSERT_TRUE(simulator.start(command));
    EXPECT_TRUE(worker.waitOk()) << worker.log();
    EXPECT_EQ(worker.telemetry().radios[0].active, 122800);  // a new start, a new aircraft

    worker.program.kill();
    ASSERT_TRUE(worker.start(L""));
    simulator.say("tune COM1 active 118.005");
    EXPECT_TRUE(waitFor([&] { return worker.isOk() && worker.telemetry().radios[0].active == 118005; }, kPatienceMs));
}
