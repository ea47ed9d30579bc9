// poll_link_test.cpp - what a pass says of the link: on the panel's left line, in SimState, in the host's log and in
// the file for the report; and how much of telemetry.json it reads.
#include <gtest/gtest.h>
#include "exchange/support_files.h"
#include "tests/unit/bridge/rig.h"

namespace {

using State = WorkerLife::State;

class PollLink : public testing::Test {
  protected:
    // The worker has no live data, and says why.
    void ground(const std::string& status) { rig.telemetry.set("ok", "false").set("status", '"' + status + '"'); }
    std::vector<std::string> endsLogged() const {
        std::vector<std::string> lines;
        for (const std::string& line : rig.host.logLines())
            if (line.starts_with("SimConnect worker ended")) lines.push_back(line);
        return lines;
    }
    std::string linkState() { return rig.files.text(pathOf(kLinkStateFile)); }

    PollRig rig;
};

}  // namespace

TEST_F(PollLink, EachReasonIsOnTheLineInTheSamePass) {
    rig.pass();
    for (const char* status : {"waiting for the simulator", "simulator in menu", "no answer from simpc",
                               "the simulator sends no data", "simulator link lost"}) {
        ground(status);
        rig.pass();
        EXPECT_EQ(rig.statusText(), std::string("DISCONNECTED: ") + status);
        EXPECT_EQ(reasonText(copySimState(rig.sim).reason), status);
    }
    rig.worker = {State::kEnded, 3, false};
    rig.pass();
    EXPECT_EQ(rig.statusText(), "DISCONNECTED: worker not running (code 3)");
    rig.worker = {State::kNotStarted, 2, true};
    rig.pass();
    EXPECT_EQ(rig.statusText(), "DISCONNECTED: worker program missing");
    EXPECT_EQ(reasonText(copySimState(rig.sim).reason), "worker program missing");
}

TEST_F(PollLink, AFileThatIsGoneHasAReasonToo) {
    rig.workerAlive = false;
    rig.pass();
    EXPECT_EQ(rig.statusText(), "DISCONNECTED: waiting for the worker");
    rig.worker = {State::kEnded, 1, false};
    rig.pass();
    EXPECT_EQ(rig.statusText(), "DISCONNECTED: worker not running (code 1)");
    EXPECT_EQ(copySimState(rig.sim).reason.cause, DisconnectCause::kWorkerEnded);
}

TEST_F(PollLink, AReasonIsForgottenOnceThereIsAConnection) {
    ground("simulator in menu");
    rig.pass();
    rig.telemetry.set("ok", "true");
    rig.pass();
    EXPECT_EQ(rig.statusText(), "CONNECTED");
    EXPECT_EQ(copySimState(rig.sim).reason, DisconnectReason{});
}

TEST_F(PollLink, TheWorkersEndIsLoggedOnceWithItsCode) {
    rig.passFor(500);
    EXPECT_EQ(endsLogged(), (std::vector<std::string>{}));
    rig.worker = {State::kEnded, 0xC0000005, false};  // while what it wrote last is fresh
    rig.passFor(5000);
    EXPECT_EQ(endsLogged(), (std::vector<std::string>{"SimConnect worker ended (exit code 0xC0000005)"}));
}

TEST_F(PollLink, AWorkerThatWasNotStartedHasNoEnd) {
    rig.worker = {State::kNotStarted, 2, true};
    rig.passFor(500);
    EXPECT_EQ(endsLogged(), (std::vector<std::string>{}));
}

TEST_F(PollLink, TheStateIsInTheFileForTheReport) {
    rig.pass();
    EXPECT_EQ(linkState(), "CONNECTED\r\n");
    ground("simulator in menu");
    rig.passFor(1000);
    EXPECT_EQ(linkState(), "DISCONNECTED: simulator in menu\r\n");
    rig.telemetry.set("ok", "true");
    rig.passFor(1000);
    EXPECT_EQ(linkState(), "CONNECTED\r\n");
}

// The report masks the names of other computers; half a name would not be known for one.
TEST_F(PollLink, TheFileHasTheWholeReasonAndThePanelItsBeginning) {
    const std::string reason = "no answer from johannes-flight-simulator.fritz.box";
    rig.pass();
    ground(reason);
    rig.passFor(1000);
    EXPECT_EQ(linkState(), "DISCONNECTED: " + reason + "\r\n");
    EXPECT_EQ(rig.statusText(), "DISCONNECTED: " + reason.substr(0, kMaxReasonBytes));
}

TEST_F(PollLink, TheFileIsWrittenForANewStateOnlyAndAtMostOnceASecond) {
    rig.passFor(10'000);
    EXPECT_EQ(rig.files.replaces, 1);
    for (int turn = 0; turn < 200; turn++) {  // ten seconds of a link that comes and goes
        rig.telemetry.set("ok", turn % 2 == 0 ? "false" : "true");
        rig.pass();
    }
    EXPECT_GE(rig.files.replaces, 10);
    EXPECT_LE(rig.files.replaces, 12);
    rig.passFor(1000);
    EXPECT_EQ(linkState(), "CONNECTED\r\n");  // the last state is not lost
}

TEST_F(PollLink, AFileThatCannotBeWrittenIsNotTriedAtEachPass) {
    rig.files.readOnly = true;
    rig.passFor(4900);
    EXPECT_EQ(rig.files.replaces, 1);
    rig.passFor(10'000);
    EXPECT_EQ(rig.files.replaces, 3);
}

TEST_F(PollLink, AFileThatCouldNotBeWrittenGetsTheStateLater) {
    rig.pass();
    ground("simulator in menu");
    rig.files.readOnly = true;
    rig.passFor(2000);
    EXPECT_EQ(linkState(), "CONNECTED\r\n");
    rig.files.readOnly = false;
    rig.passFor(5000);
    EXPECT_EQ(linkState(), "DISCONNECTED: simulator in menu\r\n");
}

TEST_F(PollLink, NoMoreThanFourMegabytesOfTheTelemetryAreRead) {
    const std::string text = rig.telemetry.writtenAt(rig.clock.unixSeconds()).text();
    const auto readBehind = [&](std::size_t blanks) {
        rig.files.put(pathOf(kTelemetryFile), std::string(blanks, ' ') + text);
        const auto reading = readTelemetry(rig.files, kFolder, rig.clock);
        return reading && reading->fresh;
    };
    EXPECT_TRUE(readBehind(4'000'000 - text.size()));
    EXPECT_FALSE(readBehind(4'000'000 - text.find("\"com1_active\"") + 1'000));
}

// A hundred megabytes with every key in front: the text is not closed within what is read.
TEST_F(PollLink, AnEndlessTextInAFreshFileIsNoText) {
    rig.pass();
    rig.telemetry.set("ack_id", "\"4242-901\"").drop("ack_message");
    rig.telemetry.set("ack_message", '"' + std::string(kMaxTelemetryFileBytes, 'a') + '"');
    rig.pass();
    EXPECT_TRUE(copySimState(rig.sim).connected);
    EXPECT_EQ(rig.statusText(), "");
}
