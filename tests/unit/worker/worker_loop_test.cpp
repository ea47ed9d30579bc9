#include "worker/worker_loop.h"
#include <gtest/gtest.h>
#include "exchange/telemetry_text.h"
#include "tests/unit/worker/worker_fakes.h"
#include "worker/simulated_aircraft.h"

namespace {

// A whole worker over files in memory, advanced by the wait that each pass asks for.
struct Worker {
    explicit Worker(const std::string& script = {})
        : aircraft(parseFlightScript(script), clock.tickMs()), loop("C:\\d", files, folder, aircraft, log) {}

    PassResult pass() {
        const auto result = loop.pass(clock.tickMs(), clock.unixSeconds());
        clock.advance(result.waitMs);
        return result;
    }
    void run(std::uint64_t ms) {
        for (const auto end = clock.tickMs() + ms; clock.tickMs() < end;) pass();
    }
    Telemetry telemetry() { return parseTelemetry(files.text("C:\\d\\telemetry.json")); }
    void command(const std::string& id, int com, const std::string& slot, const std::string& target) {
        files.put("C:\\d\\command.json", commandText(id, com, slot, target, clock.unixSeconds()));
    }
    // Passes until the command with that id is acknowledged; returns the ms it took, -1 if it never was.
    int msUntilAck(const std::string& id) {
        const auto start = clock.tickMs();
        while (clock.tickMs() < start + 4500) {
            pass();
            if (telemetry().ackId == id) return static_cast<int>(clock.tickMs() - start);
        }
        return -1;
    }

    ManualClock clock;
    MemoryFiles files;
    MemoryFolder folder{files};
    MemoryLogFile logFile;
    WorkerLog log{logFile, clock};
    SimulatedAircraft aircraft;
    WorkerLoop loop;
};

}  // namespace

TEST(WorkerLoop, WritesFreshTelemetryFromTheFirstPass) {
    Worker worker;
    worker.pass();
    const auto read = worker.telemetry();
    EXPECT_TRUE(isFresh(read, worker.clock.unixSeconds()));
    EXPECT_EQ(read.radios[0].active, 122800);
    EXPECT_EQ(read.ackId, "");
    EXPECT_TRUE(worker.logFile.has("link up: built-in aircraft"));
}

TEST(WorkerLoop, StaysFreshForAMinuteOfNothing) {
    Worker worker;
    for (int i = 0; i < 2400; i++) {
        const auto result = worker.pass();
        ASSERT_GE(result.waitMs, 1u);
        ASSERT_LE(result.waitMs, kPassMs);
        ASSERT_LT(worker.clock.unixSeconds() - worker.telemetry().updated, 0.55);
    }
    EXPECT_LT(worker.files.replaces, 200);
}

TEST(WorkerLoop, ShowsAScriptedChangeWithinTwoPasses) {
    Worker worker("1 tune COM1 active 118.005\n");
    worker.run(990);
    EXPECT_EQ(worker.telemetry().radios[0].active, 122800);
    worker.run(80);
    EXPECT_EQ(worker.telemetry().radios[0].active, 118005);
}

TEST(WorkerLoop, CarriesACommandThroughToItsAcknowledgement) {
    Worker worker;
    worker.run(600);
    worker.command("1-1", 1, "standby", "118005");
    worker.run(75);
    EXPECT_TRUE(worker.telemetry().commandPending);
    EXPECT_EQ(worker.telemetry().ackId, "");
    EXPECT_EQ(worker.telemetry().radios[0].standby, 121500);
    const int ms = worker.msUntilAck("1-1");
    EXPECT_GT(ms, 0);
    EXPECT_LT(ms, 200);
    const auto read = worker.telemetry();
    EXPECT_TRUE(read.ackOk);
    EXPECT_FALSE(read.commandPending);
    EXPECT_EQ(read.ackMessage, "COM1 STBY 118.005");
    EXPECT_EQ(read.radios[0].standby, 118005);
}

TEST(WorkerLoop, CarriesOutEverySlotInTurn) {
    Worker worker;
    const struct {
        int com;
        const char* slot;
        const char* target;
        const char* message;
    } rows[] = {{1, "active", "118105", "COM1 ACTIVE 118.105"},
                {1, "swap", "0", "COM1 swapped to 121.500"},
                {2, "volume", "0.6", "COM2 volume 60 %"},
                {2, "standby", "136975", "COM2 STBY 136.975"}};
    for (const auto& row : rows) {
        worker.command(row.message[3] + std::string(row.slot), row.com, row.slot, row.target);
        EXPECT_GT(worker.msUntilAck(row.message[3] + std::string(row.slot)), 0) << row.message;
        EXPECT_TRUE(worker.telemetry().ackOk);
        EXPECT_EQ(worker.telemetry().ackMessage, row.message);
    }
}

TEST(WorkerLoop, AcknowledgesAnIgnoredWriteAsRefusedBeforeThePluginGivesUp) {
    Worker worker("0 ignore COM1 swap\n");
    worker.command("1-1", 1, "swap", "0");
    const int ms = worker.msUntilAck("1-1");
    EXPECT_GE(ms, 1500);
    EXPECT_LT(ms, 1700);
    EXPECT_FALSE(worker.telemetry().ackOk);
    EXPECT_EQ(worker.telemetry().ackMessage, "COM1 swap refused");
}

TEST(WorkerLoop, RefusesAnUnpoweredRadioWithinTwoWritings) {
    Worker worker("0 power COM1 off\n");
    worker.run(100);
    EXPECT_EQ(worker.telemetry().status, "COM1 unpowered");
    worker.command("1-1", 1, "volume", "0.5");
    const int ms = worker.msUntilAck("1-1");
    EXPECT_GT(ms, 0);
    EXPECT_LT(ms, 110);
    EXPECT_EQ(worker.telemetry().ackMessage, "COM1 volume refused");
}

TEST(WorkerLoop, SaysThatTheLinkWasLostUnderAWrite) {
    Worker worker("0 readback 1000\n1 drop 3\n");
    worker.run(900);
    worker.command("1-1", 1, "standby", "118005");
    EXPECT_GT(worker.msUntilAck("1-1"), 0);
    EXPECT_FALSE(worker.telemetry().ackOk);
    EXPECT_EQ(worker.telemetry().ackMessage, "COM1 STBY not written: link down");
    EXPECT_FALSE(worker.telemetry().ok);
    EXPECT_TRUE(worker.logFile.has("link down: simulator link lost"));
    worker.run(3200);
    EXPECT_TRUE(worker.telemetry().ok);
    EXPECT_EQ(worker.logFile.count("link up"), 2);
}

TEST(WorkerLoop, TakesTheNextCommandOnlyAfterTheFirst) {
    Worker worker("0 ignore COM1 swap\n");
    worker.command("1-1", 1, "swap", "0");
    worker.run(100);
    worker.command("1-2", 1, "standby", "118005");
    EXPECT_GT(worker.msUntilAck("1-1"), 1300);
    EXPECT_GT(worker.msUntilAck("1-2"), 0);
    EXPECT_TRUE(worker.telemetry().ackOk);
}

TEST(WorkerLoop, KeepsReportingWhileACommandIsPending) {
    Worker worker("0 ignore COM1 swap\n0.5 tune COM2 active 118.025\n");
    worker.command("1-1", 1, "swap", "0");
    worker.run(1200);
    const auto read = worker.telemetry();
    EXPECT_TRUE(read.commandPending);
    EXPECT_EQ(read.radios[1].active, 118025);
    EXPECT_LT(worker.clock.unixSeconds() - read.updated, 0.55);
}

TEST(WorkerLoop, DoesNotRepeatWhatTheLastWorkerAcknowledged) {
    Worker first;
    first.command("1-1", 1, "swap", "0");
    EXPECT_GT(first.msUntilAck("1-1"), 0);

    ManualLink link;
    WorkerLoop second("C:\\d", first.files, first.folder, link, first.log);
    for (int i = 0; i < 50; i++)
        second.pass(first.clock.tickMs() + 25u * static_cast<unsigned>(i), first.clock.unixSeconds());
    EXPECT_TRUE(link.writes.empty());
    EXPECT_EQ(first.logFile.count("command 1-1 refused: already handled"), 1);
    EXPECT_EQ(first.telemetry().ackId, "");  // an old message would hide the panel's "CONNECTED"
}

TEST(WorkerLoop, RefusesALeftoverCommandWithoutAcknowledgingIt) {
    Worker worker;
    worker.files.put("C:\\d\\command.json", commandText("old", 1, "swap", "0", worker.clock.unixSeconds() - 60.0));
    worker.run(2000);
    EXPECT_EQ(worker.telemetry().ackId, "");
    EXPECT_EQ(worker.telemetry().radios[0].active, 122800);
    EXPECT_EQ(worker.logFile.count("command old refused: 60.0 s old"), 1);
}

TEST(WorkerLoop, EndsWithinHalfASecondOfTheFolder) {
    Worker worker;
    worker.run(1000);
    worker.folder.gone = true;
    const auto start = worker.clock.tickMs();
    while (!worker.pass().folderGone) ASSERT_LT(worker.clock.tickMs() - start, 500u);
}

TEST(WorkerLoop, GoesOnWhenASingleLookDoesNotFindTheFolder) {
    Worker worker;
    for (int i = 0; i < 3; i++) {
        worker.run(1000);
        worker.folder.missesToCome = 1;
        for (const auto end = worker.clock.tickMs() + 1000; worker.clock.tickMs() < end;)
            ASSERT_FALSE(worker.pass().folderGone);
        EXPECT_EQ(worker.folder.missesToCome, 0);
    }
}

TEST(WorkerLoop, LooksASecondTimeSoonAfterTheFirstFindsNoFolder) {
    Worker worker;
    worker.run(1000);
    worker.folder.gone = true;
    const int before = worker.folder.checks;
    while (worker.folder.checks == before) worker.pass();
    const auto first = worker.clock.tickMs();
    auto result = worker.pass();
    for (; !result.folderGone; result = worker.pass()) EXPECT_LE(result.quietMs, kPassMs);
    EXPECT_LE(worker.clock.tickMs() - first, kFolderAgainMs + kPassMs);
    EXPECT_EQ(worker.folder.checks, before + 2);
}

TEST(WorkerLoop, SurvivesAReadOnlyFolderAndALogThatCannotBeWritten) {
    Worker worker;
    worker.files.readOnly = true;
    worker.logFile.readOnly = true;
    worker.run(5000);
    worker.files.readOnly = false;
    worker.run(100);
    EXPECT_TRUE(isFresh(worker.telemetry(), worker.clock.unixSeconds()));
}

TEST(WorkerLoop, GoesOnWhenTheClockIsSetBack) {
    Worker worker;
    worker.run(1000);
    worker.clock.seconds = worker.clock.seconds.load() - 86400.0;
    worker.run(500);
    EXPECT_TRUE(isFresh(worker.telemetry(), worker.clock.unixSeconds()));
    worker.command("1-1", 1, "swap", "0");
    EXPECT_GT(worker.msUntilAck("1-1"), 0);
}

TEST(WorkerLoop, RestsOnlyWhileALinkNeedsNoPollAndNoCommandIsPending) {
    struct RestingLink : ManualLink {
        std::uint64_t restMs() const override { return 90; }
    };
    ManualClock clock;
    MemoryFiles files;
    MemoryFolder folder{files};
    MemoryLogFile logFile;
    WorkerLog log{logFile, clock};
    RestingLink link;
    WorkerLoop loop("C:\\d", files, folder, link, log);
    const auto pass = [&] {
        clock.advance(100);
        return loop.pass(clock.tickMs(), clock.unixSeconds());
    };
    EXPECT_EQ(pass().quietMs, 90u);
    EXPECT_EQ(pass().waitMs, kPassMs);
    files.put("C:\\d\\command.json", commandText("1-1", 1, "swap", "0", clock.unixSeconds()));
    EXPECT_EQ(pass().quietMs, kPassMs);
    link.sim.radios[0].active = 121500;
    link.sim.radios[0].standby = 122800;
    EXPECT_EQ(pass().quietMs, 90u);
    bool soonerForTelemetry = false;
    for (int i = 0; i < 5; i++) soonerForTelemetry = pass().quietMs < 90 || soonerForTelemetry;
    EXPECT_TRUE(soonerForTelemetry);
    ManualLink restless;
    WorkerLoop other("C:\\d", files, folder, restless, log);
    EXPECT_EQ(other.pass(clock.tickMs(), clock.unixSeconds()).quietMs, kPassMs);
}

// A simulator may have news 30 times a second.
TEST(WorkerLoop, LooksForNoCommandWhenOnlyTheLinkHasNews) {
    Worker worker("0.3 ignore COM1 swap\n");
    const auto passFor = [&](PassCause cause) {
        worker.clock.advance(20);
        worker.loop.pass(worker.clock.tickMs(), worker.clock.unixSeconds(), cause);
    };
    const auto newsUntil = [&](const char* id) {
        for (int i = 0; i < 200 && worker.telemetry().ackId != id; i++) passFor(PassCause::kLinkNews);
        return worker.telemetry().ackId == id;
    };
    passFor(PassCause::kAnything);
    const auto before = worker.folder.stamps;
    worker.command("1-1", 1, "standby", "118005");  // the watched folder would say so
    for (int i = 0; i < 20; i++) passFor(PassCause::kLinkNews);
    EXPECT_EQ(worker.folder.stamps, before);
    EXPECT_NE(worker.telemetry().ackId, "1-1");
    passFor(PassCause::kAnything);
    EXPECT_TRUE(newsUntil("1-1"));
    // One that comes while another is pending is not forgotten.
    worker.command("1-2", 1, "swap", "0");
    passFor(PassCause::kAnything);
    worker.command("1-3", 1, "standby", "118010");
    passFor(PassCause::kAnything);
    EXPECT_TRUE(newsUntil("1-2"));
    EXPECT_TRUE(newsUntil("1-3"));
    // Nor one that could not be read.
    worker.files.trouble = [](FileStep, const std::string& path) {
        return path.ends_with("command.json") ? FileResult{FileState::kHeld, 32} : FileResult{};
    };
    worker.command("1-4", 1, "standby", "118015");
    passFor(PassCause::kAnything);
    passFor(PassCause::kLinkNews);
    worker.files.trouble = {};
    EXPECT_TRUE(newsUntil("1-4"));
}

TEST(WorkerLoop, WaitsForTheSimulatorWithEverythingElseAlive) {
    ManualClock clock;
    MemoryFiles files;
    MemoryFolder folder{files};
    MemoryLogFile logFile;
    WorkerLog log{logFile, clock};
    ManualLink link;
    link.sim = SimSnapshot();
    link.sim.status = "waiting for the simulator";
    WorkerLoop loop("C:\\d", files, folder, link, log);
    files.put("C:\\d\\command.json", commandText("1-1", 1, "swap", "0", clock.unixSeconds()));
    loop.pass(clock.tickMs(), clock.unixSeconds());
    const auto read = parseTelemetry(files.text("C:\\d\\telemetry.json"));
    EXPECT_FALSE(read.ok);
    EXPECT_EQ(read.status, "waiting for the simulator");
    EXPECT_EQ(read.ackMessage, "COM1 swap not written: link down");
    EXPECT_TRUE(logFile.has("link down: waiting for the simulator"));
}
