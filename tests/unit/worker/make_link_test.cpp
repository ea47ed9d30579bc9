#include "worker/make_link.h"
#include <gtest/gtest.h>
#include "tests/unit/worker/simconnect/fake_simulator.h"
#include "tests/unit/worker/worker_fakes.h"
#include "tests/unit/worker/xplane/fake_xplane.h"
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
    int transports = 0;
    xplane::Endpoint beacon;             // as requested
    FakeDatagrams* datagrams = nullptr;  // the latest; the link owns them

    std::unique_ptr<SimLink> made() {
        const LinkWays ways = {[this](const std::optional<HostPort>& wanted) {
                                   address = wanted;
                                   transports++;
                                   return std::make_unique<FakeTransport>();
                               },
                               [this](const xplane::Endpoint& wanted) {
                                   beacon = wanted;
                                   auto made = std::make_unique<FakeDatagrams>();
                                   datagrams = made.get();
                                   return made;
                               }};
        transports = 0;
        datagrams = nullptr;
        auto link = makeLink(options, files, folder, log, ways, 0);
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

TEST_F(MakingALink, ListensForXPlaneBesideTheOtherUnderAuto) {
    const auto link = made();
    EXPECT_EQ(transports, 1);
    ASSERT_NE(datagrams, nullptr);
    EXPECT_EQ(beacon, (xplane::Endpoint{0xEFFF0101, 49707}));
    EXPECT_EQ(datagrams->listens, 1);
    EXPECT_TRUE(datagrams->sent.empty());
    // An address is that of the other simulator.
    options.address = HostPort{"simpc", 500};
    options.beacon = xplane::Endpoint{0x7F000001, 5000};
    const auto addressed = made();
    EXPECT_EQ(address, (HostPort{"simpc", 500}));
    EXPECT_EQ(datagrams->listens, 1);
    EXPECT_EQ(beacon, (xplane::Endpoint{0x7F000001, 5000}));
    EXPECT_TRUE(datagrams->sent.empty());
}

TEST_F(MakingALink, LooksForOneSimulatorOnlyIfToldWhich) {
    options.link = LinkKind::kSimConnect;
    options.address = HostPort{"simpc", 500};
    made();
    EXPECT_EQ(address, (HostPort{"simpc", 500}));
    EXPECT_EQ(transports, 1);
    EXPECT_EQ(datagrams, nullptr);

    options.link = LinkKind::kXPlane;
    options.address.reset();
    const auto heard = made();
    EXPECT_EQ(transports, 0);
    ASSERT_NE(datagrams, nullptr);
    EXPECT_EQ(datagrams->listens, 1);
    EXPECT_EQ(heard->snapshot().status, "waiting for the simulator");

    options.address = HostPort{"192.168.1.32", 49000};
    const auto named = made();
    EXPECT_EQ(datagrams->listens, 0);
    ASSERT_EQ(datagrams->sent.size(), 1u);
    EXPECT_EQ(datagrams->sent[0].first, (xplane::Endpoint{0xC0A80120, 49000}));
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
