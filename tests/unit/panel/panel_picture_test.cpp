#include "panel/panel_picture.h"
#include "tests/unit/panel/panel_rig.h"

class PanelPictureTest : public PanelTest {
  protected:
    PanelPicture picture() {
        inputs.settings = now();
        inputs.sim = copySimState(sim);
        inputs.commands = copyCommands(commands);
        inputs.status = copyStatus(radios.status);
        return makePicture(inputs, model, placement);
    }
    void order(std::int32_t com, std::int32_t slot, double value = 0.0) {
        enqueue(radios, com, slot, value, -1.0f, clock.tickMs());
    }
    void markOldestWritten(const std::string& id) {
        MutexLock lock(commands.mutex);
        commands.commands.front().id = id;
        commands.commands.front().writtenAt = 1;
    }
    // ACTIVE and STANDBY as shown.
    void expectShown(std::int32_t active, FrequencyState activeState, std::int32_t standby,
                     FrequencyState standbyState) {
        const PanelPicture shown = picture();
        EXPECT_EQ(shown.frequencies[0].frequencyKHz, active);
        EXPECT_EQ(shown.frequencies[0].state, activeState);
        EXPECT_EQ(shown.frequencies[1].frequencyKHz, standby);
        EXPECT_EQ(shown.frequencies[1].state, standbyState);
    }
    static bool isLit(const PanelPicture& shown, std::int32_t element) {
        return (shown.litElements >> static_cast<unsigned>(element) & 1U) != 0;
    }

    using enum FrequencyState;
    PanelInputs inputs;
    PanelPlacement placement;
};

TEST_F(PanelPictureTest, ShowsTheSelectedRadiosFrequencies) {
    expectShown(122800, kConfirmed, 121500, kConfirmed);
    change([](Settings& live) { live.radio = 2; });
    expectShown(118005, kConfirmed, 127250, kConfirmed);
}

TEST_F(PanelPictureTest, ShowsZeroWhileDisconnected) {
    order(1, kSlotStandby, 121600);
    setDisconnected({}, sim, radios.status);
    expectShown(0, kDisconnected, 0, kDisconnected);
    setState(sim, connectedState());
    changeState([](SimState& state) { state.connected = false; });  // readings are still there
    expectShown(0, kDisconnected, 0, kDisconnected);
    EXPECT_EQ(frequencyDigits(picture().frequencies[0]), "000000");
}

TEST_F(PanelPictureTest, ShowsAQueuedFrequencyAsPendingInItsOwnField) {
    order(1, kSlotStandby, 121600);
    expectShown(122800, kConfirmed, 121600, kPending);
    order(1, kSlotActive, 119000);
    expectShown(119000, kPending, 121600, kPending);
    order(1, kSlotStandby, 121700);
    expectShown(119000, kPending, 121700, kPending);
}

TEST_F(PanelPictureTest, TheOtherRadiosOrdersAndVolumesAreNoFrequencies) {
    order(2, kSlotStandby, 121600);
    order(2, kSlotSwap);
    enqueue(radios, 1, kSlotVolume, 0.5, 40.0f, clock.tickMs());
    expectShown(122800, kConfirmed, 121500, kConfirmed);
}

TEST_F(PanelPictureTest, APendingSwapShowsBothExchanged) {
    order(1, kSlotSwap);
    expectShown(121500, kPending, 122800, kPending);
    order(1, kSlotSwap);
    expectShown(122800, kPending, 121500, kPending);
}

TEST_F(PanelPictureTest, OrdersShowInTheOrderInWhichTheyWillBeCarriedOut) {
    order(1, kSlotSwap);
    order(1, kSlotStandby, 119000);  // after the swap: becomes the new standby
    expectShown(121500, kPending, 119000, kPending);
    forgetCommands();
    order(1, kSlotStandby, 119000);  // before the swap: becomes active with it
    order(1, kSlotSwap);
    expectShown(119000, kPending, 122800, kPending);
}

TEST_F(PanelPictureTest, AStepChangesTheNumberThatIsShownAndNoOther) {
    const std::vector<std::vector<std::int32_t>> pendingSlots = {
        {},
        {kSlotSwap},
        {kSlotStandby, kSlotSwap},
        {kSlotActive, kSlotSwap, kSlotSwap},
        {kSlotSwap, kSlotStandby},
        {kSlotStandby, kSlotSwap, kSlotActive, kSlotSwap},
    };
    for (const auto& slots : pendingSlots)
        for (const std::int32_t tuned : {kSlotActive, kSlotStandby}) {
            forgetCommands();
            double frequency = 130000;
            for (const std::int32_t slot : slots) order(1, slot, slot == kSlotSwap ? 0.0 : frequency += 500);
            auto expected = picture().frequencies;
            auto& turned = expected[static_cast<std::size_t>(tuned)];
            turned = {turned.frequencyKHz + 1000, kPending};
            tune_step(context, 1, tuned, 1, true, clock.tickMs());
            EXPECT_EQ(picture().frequencies, expected) << slots.size() << " pending, slot " << tuned;
        }
}

TEST_F(PanelPictureTest, AnOrderTheSimulatorHasAnsweredIsNotPendingAnyMore) {
    order(1, kSlotSwap);
    markOldestWritten("4242-7");
    expectShown(121500, kPending, 122800, kPending);
    changeState([](SimState& state) {  // the answer comes together with the new readings
        state.ackId = "4242-7";
        std::swap(state.radios[0].active, state.radios[0].standby);
    });
    expectShown(121500, kConfirmed, 122800, kConfirmed);
}

TEST_F(PanelPictureTest, AnOrderNotYetWrittenIsNotTakenForAnAnsweredOne) {
    changeState([](SimState& state) { state.ackId.clear(); });
    order(1, kSlotStandby, 121600);
    expectShown(122800, kConfirmed, 121600, kPending);
}

TEST_F(PanelPictureTest, AFrequencyIsSixDigitsOrDashesWhenItIsUnknown) {
    const struct {
        std::int32_t kHz;
        std::string digits;
    } rows[] = {{122800, "122800"}, {118005, "118005"}, {8500, "008500"},    {1, "000001"},          {999999, "999999"},
                {0, "------"},      {-1, "------"},     {1000000, "------"}, {-2147483647, "------"}};
    for (const FrequencyState state : {kConfirmed, kPending})
        for (const auto& row : rows) EXPECT_EQ(frequencyDigits({row.kHz, state}), row.digits);
    EXPECT_EQ(frequencyDigits({122800, kDisconnected}), "000000");
}

TEST_F(PanelPictureTest, AnUnknownFrequencyIsShownAsUnknown) {
    changeState([](SimState& state) { state.radios[0].standby = 0; });
    expectShown(122800, kConfirmed, 0, kConfirmed);
    EXPECT_EQ(frequencyDigits(picture().frequencies[1]), "------");
}

TEST_F(PanelPictureTest, AnOrderBeyondAnyNumberIsUnknown) {
    for (const double kHz : {1e300, -1e300, std::nan("")}) {
        forgetCommands();
        order(1, kSlotStandby, kHz);
        expectShown(122800, kConfirmed, 0, kPending);
    }
}

TEST_F(PanelPictureTest, TheVolumeKnobTurnsFromMinus135To135Degrees) {
    const struct { float percent, angle; } rows[] = {{0, -135}, {50, 0}, {100, 135}, {80, 81}};
    for (const auto& row : rows) {
        change([&](Settings& live) {
            live.follow_volume = false;
            live.receive_volume = row.percent;
        });
        EXPECT_FLOAT_EQ(picture().volumePercent, row.percent);
        EXPECT_NEAR(picture().volumeAngle, row.angle, 1e-3f) << row.percent;
    }
}

TEST_F(PanelPictureTest, TheVolumeIsTheSelectedRadiosPendingOneFirst) {
    EXPECT_FLOAT_EQ(picture().volumePercent, 60.0f);
    change([](Settings& live) { live.radio = 2; });
    EXPECT_FLOAT_EQ(picture().volumePercent, 40.0f);
    enqueue(radios, 2, kSlotVolume, 1.0, 93.0f, clock.tickMs());
    EXPECT_FLOAT_EQ(picture().volumePercent, 93.0f);
}

TEST_F(PanelPictureTest, KeysAreLitByWhatIsSelected) {
    for (std::int32_t theme = 0; theme < kThemeCount; theme++)
        for (const bool other : {false, true}) {
            change([&](Settings& live) {
                live.theme = theme;
                live.radio = other ? 2 : 1;
                live.target = other ? 1 : 0;
                live.enabled = !other;
            });
            const PanelPicture shown = picture();
            EXPECT_EQ(isLit(shown, kCom1Key), !other) << theme;
            EXPECT_EQ(isLit(shown, kCom2Key), other) << theme;
            EXPECT_EQ(isLit(shown, kActiveKey), !other) << theme;
            EXPECT_EQ(isLit(shown, kStandbyKey), other) << theme;
            EXPECT_EQ(isLit(shown, kAutoKey), !other) << theme;
            EXPECT_EQ(shown.litElements, other ? 0b101000U : 0b1010100U) << theme;  // and nothing else
        }
}

TEST_F(PanelPictureTest, CustomKeysAreLitByWhatIsBoundToThem) {
    useTheme(kAirbusTheme);
    const struct {
        std::int32_t code;
        std::function<void(Settings&)> on, off;  // empty: never lit
    } rows[] = {
        {0, {}, {}},
        {1, {}, {}},
        {2, [](Settings& s) { s.enabled = true; }, [](Settings& s) { s.enabled = false; }},
        {3, [](Settings& s) { s.radio = 1; }, [](Settings& s) { s.radio = 2; }},
        {4, [](Settings& s) { s.radio = 2; }, [](Settings& s) { s.radio = 1; }},
        {5, [](Settings& s) { s.target = 0; }, [](Settings& s) { s.target = 1; }},
        {6, [](Settings& s) { s.target = 1; }, [](Settings& s) { s.target = 0; }},
        {7, [](Settings& s) { s.pin = true; }, [](Settings& s) { s.pin = false; }},
        {8, {}, {}},
        {-1, {}, {}},
    };
    std::int32_t Settings::*const bindings[] = {&Settings::bind_B, &Settings::bind_C, &Settings::bind_D,
                                                &Settings::bind_E};
    for (std::int32_t key = 0; key < 4; key++)
        for (const auto& row : rows) {
            change([&](Settings& live) {
                live = Settings{};
                live.theme = kAirbusTheme;
                live.*bindings[key] = row.code;
            });
            if (row.on) change(row.on);
            EXPECT_EQ(isLit(picture(), kCustomKeyB + key), static_cast<bool>(row.on)) << key << ' ' << row.code;
            if (row.off) change(row.off);
            EXPECT_FALSE(isLit(picture(), kCustomKeyB + key)) << key << ' ' << row.code;
        }
}

TEST_F(PanelPictureTest, OnlyIndicatorsOfTheThemeAreLit) {
    change([](Settings& live) {
        live.pin = true;
        live.bind_A = live.bind_B = live.bind_C = live.bind_D = live.bind_E = 7;
    });
    const std::uint32_t always = 0b1010100;  // COM1, ACTIVE, AUTO
    EXPECT_EQ(picture().litElements, always);
    useTheme(kBoeingTheme);
    EXPECT_EQ(picture().litElements, always | 1U << 15U);
    useTheme(kAirbusTheme);
    EXPECT_EQ(picture().litElements, always | 0b1111U << 15U);
}

TEST_F(PanelPictureTest, ThePinKeyShowsAlwaysOnTop) {
    EXPECT_FALSE(picture().pinned);
    change([](Settings& live) { live.pin = true; });
    EXPECT_TRUE(picture().pinned);
}

TEST_F(PanelPictureTest, TheLampsShowTransmissionsOnlyWhileTheyAreWanted) {
    for (const bool wanted : {true, false})
        for (const bool tx : {true, false})
            for (const bool rx : {true, false}) {
                change([&](Settings& live) { live.radio_lamps = wanted; });
                inputs.ownTransmit = tx;
                inputs.othersReceiving = rx;
                EXPECT_EQ(picture().txLit, wanted && tx);
                EXPECT_EQ(picture().rxLit, wanted && rx);
            }
}

TEST_F(PanelPictureTest, TheTextLampOfBoeingAndAirbusFlashesWhileTextsAreUnread) {
    for (std::int32_t theme = 0; theme < kThemeCount; theme++) {
        useTheme(theme);
        int flashes = 0;
        bool before = false;
        for (inputs.nowMs = 500; inputs.nowMs < 10500; inputs.nowMs += 33) {
            inputs.unreadTexts = 3;
            const bool lit = picture().textLit;
            EXPECT_EQ(lit, theme != kGeneralTheme && inputs.nowMs / 500 % 2 == 0) << inputs.nowMs;
            if (lit && !before) flashes++;
            before = lit;
            inputs.unreadTexts = 0;
            EXPECT_FALSE(picture().textLit);
            inputs.unreadTexts = -1;
            EXPECT_FALSE(picture().textLit);
        }
        EXPECT_EQ(flashes, theme == kGeneralTheme ? 0 : 10);
    }
}

TEST_F(PanelPictureTest, GeneralsTextLegendIsTintedAsLongAsTextsAreUnread) {
    for (std::int32_t theme = 0; theme < kThemeCount; theme++) {
        useTheme(theme);
        for (inputs.nowMs = 500; inputs.nowMs < 2500; inputs.nowMs += 100) {
            for (const std::int32_t unread : {-1, 0, 1, 40}) {
                inputs.unreadTexts = unread;
                EXPECT_EQ(picture().textTinted, theme == kGeneralTheme && unread > 0) << theme << ", " << unread;
            }
        }
    }
}

TEST_F(PanelPictureTest, StandsStillWhileNothingChanges) {
    change([](Settings& live) { live.theme = kAirbusTheme; });
    inputs.unreadTexts = 1;
    inputs.nowMs = 1000;
    const PanelPicture first = picture();
    for (int i = 0; i < 10; i++) {
        tickPanel(model);
        inputs.nowMs += 33;
        changeState([&](SimState& state) { state.readTick += 33; });  // telemetry goes on with the same content
        EXPECT_EQ(picture(), first) << i;
    }
    inputs.nowMs = 1500;
    const PanelPicture dark = picture();
    EXPECT_NE(dark, first);
    EXPECT_FALSE(dark.textLit);
}

TEST_F(PanelPictureTest, EveryVisibleChangeMakesAnotherPicture) {
    useTheme(kAirbusTheme);
    const PanelPicture first = picture();
    const std::function<void()> changes[] = {
        [&] { order(1, kSlotSwap); },
        [&] { change([](Settings& live) { live.radio = 2; }); },
        [&] { change([](Settings& live) { live.pin = true; }); },
        [&] { change([](Settings& live) { live.receive_volume = 90; }); },
        [&] { change([](Settings& live) { live.theme = 1; }); },
        [&] { setStatusText(radios.status, "Command queue busy"); },
        [&] { setChannelStatus(radios.status, "No channel"); },
        [&] { inputs.ownTransmit = true; },
        [&] { model.large_knob_angle = 12; },
        [&] { model.small_knob_angle = 14; },
        [&] { placement.width = 901; },
        [&] { placement.height = 527; },
        [&] { placement.scale = 1.5f; },
    };
    PanelPicture last = first;
    for (const auto& make : changes) {
        make();
        const PanelPicture next = picture();
        EXPECT_NE(next, last);
        last = next;
    }
}

TEST_F(PanelPictureTest, WhereThePanelIsDoesNotChangeThePicture) {
    const PanelPicture first = picture();
    placement.x = 500;
    placement.y = -500;
    placement.alpha = 77;
    change([](Settings& live) {
        live.panel_x = 500;
        live.opacity = 30;
    });
    EXPECT_EQ(picture(), first);
}

TEST_F(PanelPictureTest, ShowsThePressedKeyUntilItIsUpAgain) {
    press(kCom2Key);
    EXPECT_EQ(picture().pressedElement, kBackground);  // not yet down
    tickPanel(model);
    EXPECT_EQ(picture().pressedElement, kCom2Key);
    EXPECT_FLOAT_EQ(picture().pressLevel, 0.48f);
    for (int i = 0; i < 20; i++) tickPanel(model);
    const PanelPicture held = picture();
    EXPECT_EQ(held.pressLevel, 1.0f);
    tickPanel(model);
    EXPECT_EQ(picture(), held);
    release(kNowhere);
    tickPanel(model);
    EXPECT_EQ(picture().pressedElement, kCom2Key);
    EXPECT_LT(picture().pressLevel, 1.0f);
    for (int i = 0; i < 20; i++) tickPanel(model);
    EXPECT_EQ(picture().pressedElement, kBackground);
    EXPECT_EQ(picture().pressLevel, 0.0f);
}

TEST_F(PanelPictureTest, CarriesPlacementAnglesAndStatusLines) {
    placement.scale = 0.5f;
    placement.width = 982;
    placement.height = 298;
    model.large_knob_angle = 348;
    model.small_knob_angle = 28;
    setStatusText(radios.status, "Tuned");
    setChannelStatus(radios.status, "TWR 122.800");
    const PanelPicture shown = picture();
    EXPECT_EQ(shown.theme, kGeneralTheme);
    EXPECT_EQ(shown.scale, 0.5f);
    EXPECT_EQ(shown.width, 982);
    EXPECT_EQ(shown.height, 298);
    EXPECT_EQ(shown.largeKnobAngle, 348.0f);
    EXPECT_EQ(shown.smallKnobAngle, 28.0f);
    EXPECT_EQ(shown.statusText, "Tuned");
    EXPECT_EQ(shown.channelStatus, "TWR 122.800");
}

TEST_F(PanelPictureTest, AnUnknownThemeIsGeneralAndAnUnknownRadioCom1) {
    const PanelPicture first = picture();
    change([](Settings& live) {
        live.theme = 55;
        live.radio = -1;
    });
    EXPECT_EQ(picture(), first);
}
