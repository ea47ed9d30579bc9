// poll_outputs_test.cpp - what a pass publishes besides following: receive gain, own talk, tails, capture mode.
#include <gtest/gtest.h>
#include <new>
#include "audio/capture_mode.h"
#include "exchange/command_text.h"
#include "tests/unit/bridge/rig.h"

namespace {

class PollOutputs : public testing::Test {
  protected:
    float gain() const { return rig.voice.ReceiveGain; }
    std::int32_t captureMode() const { return rig.voice.CaptureMode; }
    int readsIn(std::uint64_t ms) {  // other than of the telemetry
        const int before = rig.files.reads;
        rig.passFor(ms);
        return rig.files.reads - before - static_cast<int>(ms / kPollPeriodMs);
    }
    PollRig rig;
};

}  // namespace

TEST_F(PollOutputs, TheReceiveGainFollowsTheChosenRadiosVolume) {
    rig.pass();
    EXPECT_FLOAT_EQ(gain(), 0.75f);
    rig.change([](Settings& live) { live.radio = 2; });
    rig.pass();
    EXPECT_FLOAT_EQ(gain(), 0.5f);
}

TEST_F(PollOutputs, TheReceiveGainFollowsTheVolumeWithFollowingSwitchedOff) {
    rig.change([](Settings& live) { live.enabled = false; });
    rig.telemetry.set("com1_volume", "0.25");
    rig.passFor(1000);
    EXPECT_FLOAT_EQ(gain(), 0.25f);
    EXPECT_TRUE(rig.looks().empty());
}

TEST_F(PollOutputs, TheReceiveGainIsUnityWithMasterOffOrWithoutTheSimulator) {
    rig.change([](Settings& live) { live.master = false; });
    rig.pass();
    EXPECT_EQ(gain(), 1.0f);
    rig.change([](Settings& live) { live.master = true; });
    rig.pass();
    EXPECT_FLOAT_EQ(gain(), 0.75f);
    rig.workerAlive = false;
    rig.files.remove(pathOf(kTelemetryFile));
    rig.pass();
    EXPECT_EQ(gain(), 1.0f);
}

TEST_F(PollOutputs, AVolumeAcknowledgedInThisPassCountsInItAlready) {
    rig.change([](Settings& live) { live.receive_volume = 100.0f; });
    rig.pass();
    EXPECT_NEAR(gain(), 0.75 * 1.99526, 1e-4);
    ASSERT_TRUE(enqueue(rig.radios, 1, kSlotVolume, 0.4, 40.0f, rig.clock.tickMs()));
    rig.passFor(350);
    const std::string text = rig.files.text(pathOf(kCommandFile));
    const auto id = text.substr(7, text.find('"', 7) - 7);
    rig.telemetry.set("ack_id", '"' + id + '"').set("com1_volume", "0.4");
    rig.pass();
    EXPECT_FLOAT_EQ(gain(), 0.4f);  // receive_volume is 80 now: the boost is gone
}

TEST_F(PollOutputs, APassThatIsLostToMemoryShowsTheBridgeAsGoneUntilTheNextOne) {
    bool isScarce = false;
    rig.host.setBeforeCall([&](const HostCall&) {
        if (isScarce) throw std::bad_alloc();
    });
    const auto pass = [&] { tryPass(rig.radios, [&] { pollOnce(rig.memory, rig.context); }); };
    rig.pass();
    ASSERT_EQ(rig.statusText(), "Tuned");
    isScarce = true;
    pass();
    EXPECT_EQ(rig.statusText(), "DISCONNECTED: out of memory");
    EXPECT_FALSE(copySimState(rig.sim).connected);
    EXPECT_EQ(copySimState(rig.sim).radios[0].active, 0);
    isScarce = false;
    pass();
    EXPECT_EQ(rig.statusText(), "CONNECTED");
    EXPECT_EQ(copySimState(rig.sim).radios[0].active, 122800);
    tryPass(rig.radios, [] { throw 7; });  // nothing gets past it
}

TEST_F(PollOutputs, AVolumeTurnedOnThePanelIsSavedWhenItsTimeHasComeNotWithEveryPass) {
    int saves = 0;
    rig.files.trouble = [&](FileStep step, const std::string& path) {
        if (step == FileStep::kMove && path.ends_with("settings.ini")) saves++;
        return FileResult{};
    };
    const std::uint64_t dueMs = rig.clock.tickMs() + 300;
    changeSettings(
        rig.settings, [](Settings& live) { live.receive_volume = 33.0f; }, dueMs);
    rig.passFor(300);  // the last pass is 50 ms early
    EXPECT_EQ(saves, 0);
    rig.pass();
    EXPECT_EQ(saves, 1);
    rig.passFor(1000);
    EXPECT_EQ(saves, 1);
}

TEST_F(PollOutputs, AfterTheLastPassReceivedVoicesAreLeftAsTheyAre) {
    rig.pass();
    ASSERT_NE(gain(), 1.0f);
    finishPolling(rig.voice);
    EXPECT_EQ(gain(), 1.0f);
}

TEST_F(PollOutputs, TheOwnClientIdAndTalkAreTakenFromTheHost) {
    rig.pass();
    EXPECT_EQ(rig.talk.ownClientId, 5);
    EXPECT_FALSE(rig.talk.ownTransmit);
    rig.host.setOwnTalkingFlag(1, true);
    rig.pass();
    EXPECT_TRUE(rig.talk.ownTransmit);
    EXPECT_FALSE(rig.talk.othersReceiving);
}

TEST_F(PollOutputs, TheOwnReleasePlaysATailInTheSamePass) {
    rig.host.setOwnTalkingFlag(1, true);
    rig.passFor(150);
    rig.host.setOwnTalkingFlag(1, false);
    rig.pass();
    EXPECT_EQ(rig.host.playedSounds(), (std::vector<std::string>{"C:/Data/radio_tail.wav"}));
    EXPECT_FALSE(rig.talk.ownTransmit);
}

TEST_F(PollOutputs, AnOwnTransmissionUnder120MsHasNoTail) {
    rig.host.setOwnTalkingFlag(1, true);
    rig.passFor(100);  // seen talking at 0 and 50 ms, silent at 100 ms
    rig.host.setOwnTalkingFlag(1, false);
    rig.pass();
    EXPECT_TRUE(rig.host.playedSounds().empty());
}

TEST_F(PollOutputs, OthersTailsArePlayedByTheNextPass) {
    rig.host.addClient(1, 9, 10);
    rig.pass();
    rig.host.setTalking(1, 9, true);
    rig.passFor(200);
    EXPECT_TRUE(rig.talk.othersReceiving);
    rig.host.setTalking(1, 9, false);
    rig.deliver();
    EXPECT_TRUE(rig.host.playedSounds().empty());
    rig.pass();
    EXPECT_EQ(rig.host.playedSounds().size(), 1U);
    EXPECT_FALSE(rig.talk.othersReceiving);
}

TEST_F(PollOutputs, OfFortyReleasesBetweenTwoPassesSixteenAreTakenAndOneIsHeard) {
    const auto talk = [&](bool talks) {
        for (std::uint16_t client = 20; client < 60; client++)
            talkChanged(rig.talk, 1, client, talks, rig.clock.tickMs());
    };
    rig.server = 0;  // only the tails ask for the own id
    talk(true);
    rig.passFor(150);
    talk(false);
    rig.passFor(500);
    EXPECT_EQ(rig.host.callsOf("getClientID").size(), 16U);
    EXPECT_EQ(rig.host.playedSounds().size(), 1U);
}

TEST_F(PollOutputs, OfOneReleaseEachPassThoseAreHeardThatAre350MsApart) {
    for (std::uint16_t client = 20; client < 40; client++) talkChanged(rig.talk, 1, client, true, rig.clock.tickMs());
    rig.passFor(150);
    for (std::uint16_t client = 20; client < 40; client++) {
        talkChanged(rig.talk, 1, client, false, rig.clock.tickMs());
        rig.pass();
    }
    std::vector<std::uint64_t> heardAt;
    for (const HostCall& call : rig.host.callsOf("playWaveFile")) heardAt.push_back(call.atMs - PollRig::kStartMs);
    EXPECT_EQ(heardAt, (std::vector<std::uint64_t>{150, 500, 850}));
}

TEST_F(PollOutputs, WithoutAServerTheHostIsNotAsked) {
    rig.server = 0;
    rig.passFor(3000);
    EXPECT_TRUE(rig.host.calls().empty());
    EXPECT_EQ(rig.talk.ownClientId, 0);
}

TEST_F(PollOutputs, AFailingHostCallSkipsTheRestOfTheOwnTalk) {
    rig.host.setOwnTalkingFlag(1, true);
    rig.host.failFunction(kGetClientIdPosition, kHostErrorNotConnected);
    rig.pass();
    EXPECT_EQ(rig.talk.ownClientId, 0);
    EXPECT_TRUE(rig.host.callsOf("getClientSelfVariableAsInt").empty());
    rig.host.failFunction(kGetClientIdPosition, 0);
    rig.host.failFunction(kGetClientSelfVariableAsIntPosition, kHostErrorUndefined);
    rig.pass();
    EXPECT_EQ(rig.talk.ownClientId, 5);
    EXPECT_FALSE(rig.talk.ownTransmit);
}

TEST_F(PollOutputs, MissingHostFunctionsSkipTheOwnTalk) {
    rig.functions.getClientSelfVariableAsInt = nullptr;
    rig.pass();
    EXPECT_EQ(rig.talk.ownClientId, 0);
    rig.functions = {};
    rig.passFor(1000);
    EXPECT_EQ(rig.channelStatus(), "");
    EXPECT_FLOAT_EQ(gain(), 0.75f);
}

TEST_F(PollOutputs, TheCaptureModeIsReadAtTheStartAndThenMoreThanASecondLater) {
    rig.files.put(pathOf(kCaptureModeFile), "off");
    EXPECT_EQ(readsIn(50), 1);
    EXPECT_EQ(captureMode(), 2);
    rig.files.put(pathOf(kCaptureModeFile), "false");
    EXPECT_EQ(readsIn(1000), 0);  // the pass at exactly 1000 ms still waits
    EXPECT_EQ(captureMode(), 2);
    EXPECT_EQ(readsIn(50), 1);
    EXPECT_EQ(captureMode(), 0);
    EXPECT_EQ(readsIn(10'500), 10);
}

TEST_F(PollOutputs, TheMarkIsReadWithTheCaptureMode) {
    rig.files.put(pathOf(kCaptureModeFile), "0\r\nmark\r\n");
    rig.pass();
    EXPECT_EQ(captureMode(), 0);
    EXPECT_TRUE(rig.voice.MarkEdited);
    rig.files.put(pathOf(kCaptureModeFile), "0\r\n");
    rig.passFor(1100);
    EXPECT_FALSE(rig.voice.MarkEdited);
}

TEST_F(PollOutputs, OfAHugeCaptureModeFileOnlyTheBeginningIsRead) {
    rig.files.put(pathOf(kCaptureModeFile), "2\nmark\n" + std::string(10'000'000, '0'));
    rig.pass();
    EXPECT_EQ(captureMode(), 2);
    EXPECT_TRUE(rig.voice.MarkEdited);
    EXPECT_LE(rig.files.mostRead, 4096U);
}

TEST_F(PollOutputs, AMissingCaptureModeFileMeansOne) {
    rig.files.put(pathOf(kCaptureModeFile), "2");
    rig.pass();
    EXPECT_EQ(captureMode(), 2);
    rig.files.remove(pathOf(kCaptureModeFile));
    rig.passFor(1100);
    EXPECT_EQ(captureMode(), 1);
}
