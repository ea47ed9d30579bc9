// pilot_texts_test.cpp - all that the worker can tell the pilot fits on the panel's left status line.
#include "worker/pilot_texts.h"
#include <gtest/gtest.h>
#include <algorithm>
#include <limits>
#include <string>
#include <vector>
#include "tests/unit/worker/worker_fakes.h"
#include "worker/command_handler.h"
#include "worker/host_names.h"
#include "worker/telemetry_writer.h"

namespace {

constexpr std::uint32_t kLongestError = 4294967295;  // the system's are shorter
const std::string kLongHost = "johannes-flight-simulator-in-the-cellar.fritz.box";

// Each with the longest it may name.
std::vector<std::string> allStatuses() {
    std::vector<std::string> all(pilot::kFixedStatuses.begin(), pilot::kFixedStatuses.end());
    for (const auto& host :
         {kLongHost, std::string(255, 'w'), std::string("fe80:1234:5678:9abc:def0:1234:5678:9abc%12")}) {
        all.push_back(pilot::noAnswerText(host));
        all.push_back(pilot::noSuchComputerText(host));
        all.push_back(pilot::noThreadText(host));
    }
    all.push_back(pilot::notReachableText(kLongestError));
    all.push_back(pilot::readingFailedText(kLongestError));
    for (const auto com1 : pilot::kRadioFaults) {
        for (const auto com2 : pilot::kRadioFaults) {
            const auto faults = pilot::radioFaultsText(com1, com2);
            all.push_back(faults);
            for (const auto* name : {"X-Plane", "X-Plane 12.2.0", "X-Plane 99.9.9"})
                all.push_back(pilot::radiosText(name, faults));
        }
    }
    return all;
}

// A link that says of a write that was not seen what it is told to say.
struct SayingLink : ManualLink {
    std::string noteReadback(const RadioWrite&, bool) override { return says; }
    std::string says;
};

struct PilotTexts : testing::Test {
    ManualClock clock;
    MemoryLogFile logFile;
    WorkerLog log{logFile, clock};
    SayingLink link;
    CommandHandler handler{link, log};
    std::vector<std::string> all = {pilot::kNewWorker};

    void collect(const RadioWrite& write) {
        handler.accept({"1-2", write, 0.0}, 1000);
        handler.pass(2000);  // the simulator is heard of once a second
        handler.pass(3000);
        handler.pass(1000 + kReadbackLastMs);
        ASSERT_FALSE(handler.isPending());
        all.push_back(handler.ack().message);
    }
    // What the handler says of this slot, with the longest values that a command can ask for or a radio can show.
    void collectAll(std::size_t radio, RadioSlot slot) {
        constexpr double kMost = std::numeric_limits<double>::max();
        const double fitting = slot == kSlotVolume ? 0.4 : 118105;
        for (const double value : {-kMost, kMost, -9999999.0, 9999999.0, 118020.0, -1e-300})
            collect({radio, slot, value});
        for (const auto says : {pilot::kRefused, pilot::kRefusedForGood, pilot::kUnchangedInPause,
                                pilot::kUnchangedInSilence, pilot::kUnchangedUnread}) {
            link.says = says;
            collect({radio, slot, fitting});
        }
        for (const auto& shown : {mhzText(136990), mhzText(0), percentText(1.0)}) {
            link.says = pilot::refusedText(shown);
            collect({radio, slot, fitting});
        }
        link.takesWrites = false;
        collect({radio, slot, fitting});
        link.takesWrites = true;
        link.sim.radios[radio].writable = {};
        collect({radio, slot, fitting});
        link.sim.radios[radio].writable = {true, true, true, true};
        link.sim.ok = false;
        for (const auto& status : allStatuses()) {
            link.sim.status = status;
            collect({radio, slot, fitting});
        }
        link.sim.ok = true;
        link.sim.radios[radio] = {118105, 118105, 1, 0.4f, {true, true, true, true}};  // done at once
        collect({radio, slot, fitting});
        link.sim.radios[radio] = {122800, 121500, 1, 0.5f, {true, true, true, true}};
    }
};

}  // namespace

TEST_F(PilotTexts, EveryStatusFitsOnThePanelsLine) {
    std::size_t longest = 0;
    for (const auto& text : allStatuses()) {
        EXPECT_LE(text.size(), kMaxPilotBytes) << text;
        EXPECT_FALSE(text.empty());
        longest = std::max(longest, text.size());
    }
    EXPECT_GE(longest, kMaxPilotBytes - 1);  // a cut name uses the room there is
}

TEST_F(PilotTexts, EveryAcknowledgementFitsOnThePanelsLine) {
    for (std::size_t radio = 0; radio < kRadioCount; radio++) {
        for (const RadioSlot slot : {kSlotActive, kSlotStandby, kSlotVolume, kSlotSwap}) collectAll(radio, slot);
    }
    for (const auto& text : all) EXPECT_LE(text.size(), kMaxPilotBytes) << text;
    // The walk has been everywhere: each ending has been heard.
    for (const std::string end : {"CONNECTED", "118.105", " 40 %", "swapped to 118.105", " refused", "; shows 136.990",
                                  "; not tried again", "; simulator paused", "; simulator silent",
                                  "; simulator not reading", ": link down", " is not a channel", " is out of range"}) {
        EXPECT_TRUE(std::any_of(all.begin(), all.end(), [&](const std::string& text) { return text.ends_with(end); }))
            << end;
    }
}

TEST_F(PilotTexts, TheSimulatorIsNamedWhereThereIsRoom) {
    EXPECT_EQ(pilot::radiosText("X-Plane 12.2.0", ""), "flying, X-Plane 12.2.0");
    EXPECT_EQ(pilot::radiosText("X-Plane 12.2.0", "", true), "paused, X-Plane 12.2.0");
    EXPECT_EQ(pilot::radiosText("X-Plane 12.2.0", "COM1 and COM2 unpowered"),
              "X-Plane 12.2.0: COM1 and COM2 unpowered");
    EXPECT_EQ(pilot::radiosText("X-Plane 12.2.0", "COM1 unpowered, COM2 not known"), "COM1 unpowered, COM2 not known");
    EXPECT_EQ(pilot::radiosText(std::string(60, 'x'), ""), "flying");
}

TEST_F(PilotTexts, AHostTooLongForTheLineIsCutAndIsStillMasked) {
    EXPECT_EQ(pilot::noAnswerText("simpc"), "no answer from simpc");
    EXPECT_EQ(pilot::noAnswerText(std::string(29, 'a')), "no answer from " + std::string(29, 'a'));
    EXPECT_EQ(pilot::noAnswerText(std::string(30, 'a')), "no answer from " + std::string(26, 'a') + "...");
    EXPECT_EQ(pilot::noSuchComputerText(kLongHost), "no such computer: johannes-flight-simulat...");
    EXPECT_EQ(pilot::noThreadText("simpc"), "no thread to look simpc up");
    // A character of two bytes at the cut goes as a whole.
    EXPECT_EQ(pilot::noAnswerText(std::string(25, 'a') + "\u00E4\u00E4\u00E4"),
              "no answer from " + std::string(25, 'a') + "...");
    EXPECT_EQ(maskHostNames(pilot::noAnswerText(kLongHost), {}), "no answer from <host>...");
    EXPECT_EQ(maskHostNames(pilot::noSuchComputerText(kLongHost), {}), "no such computer: <host>...");
    EXPECT_EQ(maskHostNames(pilot::noThreadText(kLongHost), {}), "no thread to look <host>... up");
}

TEST_F(PilotTexts, TelemetryHoldsNoLongerTextWhateverTheLinkSays) {
    SimSnapshot sim;
    sim.status = std::string(43, 's') + "\u00E4";
    const auto telemetry = telemetryOf(sim, false, {"1-2", false, std::string(50, 'm')});
    EXPECT_EQ(telemetry.status, std::string(43, 's'));
    EXPECT_EQ(telemetry.ackMessage, std::string(44, 'm'));
}
