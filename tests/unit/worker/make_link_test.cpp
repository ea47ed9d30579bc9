#include "worker/make_link.h"
#include <gtest/gtest.h>
#include "tests/unit/worker/simconnect/fake_simulator.h"
#include "tests/unit/worker/worker_fakes.h"
#include "worker/flight_script.h"

namespace {

const std::string kScript = "C:\\d\\flight.txt";

struct MakingALink : testing::Test {
    ManualClock clock;
    MemoryFiles files;
    MemoryFolder folder{files};
    MemoryLogFile logFile;
    WorkerLog log{logFile, clock};
    WorkerOptions options;
    std::optional<HostPort> address;  // as requested

    std::unique_ptr<SimLink> made() {
        const auto makeTransport = [this](const std::optional<HostPort>& wanted) {
            address = wanted;
            return std::make_unique<FakeTransport>();
        };
        auto link = makeLink(options, files, folder, log, makeTransport, 0);
        link->poll(0);
        return link;
    }
    // A simulated link with a script of this text.
    std::unique_ptr<SimLink> madeFrom(const std::string& text) {
        files.put(kScript, text);
        options = {"C:\\d", 0, LinkKind::kSimulate, kScript, {}};
        return made();
    }
};

}  // namespace

TEST_F(MakingALink, LooksForTheSimulatorUnlessToldOtherwise) {
    for (const auto kind : {std::optional<LinkKind>(), std::optional(LinkKind::kAuto)}) {
        options.link = kind;
        const auto link = made();
        EXPECT_FALSE(link->snapshot().ok);
        EXPECT_EQ(link->snapshot().status, "connecting to the simulator");
        EXPECT_FALSE(link->write({0, kSlotSwap, 0.0}, 0));
        EXPECT_EQ(address, std::nullopt);
    }
    options.address = HostPort{"simpc", 500};
    made();
    EXPECT_EQ(address, (HostPort{"simpc", 500}));
}

TEST_F(MakingALink, FliesTheScript) {
    const auto link = madeFrom("0 tune COM1 active 118.005\n");
    EXPECT_EQ(link->snapshot().radios[0].active, 118005);
    EXPECT_TRUE(logFile.has("script C:\\d\\flight.txt: 1 actions"));
}

TEST_F(MakingALink, ReportsBadLinesAndCountsTheRest) {
    std::string text = "0 tune COM1 active 118.005\n0 land\n";
    for (int i = 0; i < 30; i++) text += "x\n";
    EXPECT_EQ(madeFrom(text)->snapshot().radios[0].active, 118005);
    EXPECT_EQ(logFile.count("script line 2 skipped: no such action"), 1);
    EXPECT_EQ(logFile.count("script: 11 more lines skipped"), 1);
}

TEST_F(MakingALink, StandsStillWithoutAUsableScript) {
    options = {"C:\\d", 0, LinkKind::kSimulate, kScript, {}};
    EXPECT_EQ(made()->snapshot().radios[0].active, 122800);
    EXPECT_TRUE(logFile.has("script C:\\d\\flight.txt not found; the aircraft stands still"));
    options.script.clear();
    EXPECT_TRUE(made()->snapshot().ok);
    EXPECT_TRUE(madeFrom(std::string("\0\0", 2))->snapshot().ok);
    EXPECT_TRUE(logFile.has("script refused: this is not a text file"));
}

TEST_F(MakingALink, DoesNotEvenReadAHugeScript) {
    folder.pretendBytes[kScript] = 100'000'000;
    EXPECT_TRUE(madeFrom("0 tune COM1 active 118.005\n")->snapshot().ok);
    EXPECT_EQ(files.reads, 0);
    EXPECT_TRUE(logFile.has("is larger than 1 MB; the aircraft stands still"));
}
