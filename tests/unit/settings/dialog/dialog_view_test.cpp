#include "settings/dialog/dialog_view.h"
#include <gtest/gtest.h>
#include <algorithm>
#include "settings/interface_texts.h"
#include "settings/language.h"

namespace {

LiveRadio flying() {
    LiveRadio radio;
    radio.isConnected = true;
    radio.isKnown = true;
    radio.readTickMs = 10'000;
    radio.activeKHz = 122800;
    radio.volume = 0.85f;
    return radio;
}

LiveStatus lookAt(const LiveRadio& radio, std::int32_t com, std::uint64_t nowMs = 10'050) {
    LiveMemory memory;
    return liveStatusOf(radio, com, memory, nowMs);
}

}  // namespace

TEST(DialogLive, ShowsTheSelectedRadio) {
    const LiveStatus first = lookAt(flying(), 1);
    EXPECT_EQ(first.frequency, "COM1   122.800 MHz");
    EXPECT_EQ(first.volume, "VOL 85%");
    EXPECT_EQ(first.stateEntry, 70);
    EXPECT_TRUE(first.isConnected);
    LiveRadio other = flying();
    other.activeKHz = 118005;
    other.volume = -1.0f;
    const LiveStatus second = lookAt(other, 2);
    EXPECT_EQ(second.frequency, "COM2   118.005 MHz");
    EXPECT_EQ(second.volume, "");
}

TEST(DialogLive, ShowsDashesWithoutTheSimulator) {
    const LiveStatus live = lookAt(LiveRadio{}, 1);
    EXPECT_EQ(live.frequency, "COM  ---.--- MHz");
    EXPECT_EQ(live.volume, "");
    EXPECT_EQ(live.stateEntry, 72);
    EXPECT_FALSE(live.isConnected);
}

TEST(DialogLive, CallsAVolumeOfZeroKnown) {
    LiveRadio radio = flying();
    radio.volume = 0.0f;
    EXPECT_EQ(lookAt(radio, 1).volume, "VOL 0%");
}

TEST(DialogLive, CallsAnOldSnapshotStale) {
    EXPECT_EQ(lookAt(flying(), 1, 13'000).stateEntry, 70);
    EXPECT_EQ(lookAt(flying(), 1, 13'001).stateEntry, 71);
    EXPECT_EQ(lookAt(flying(), 1, 9'000).stateEntry, 70);  // read after the look began
}

TEST(DialogLive, CallsAConnectionJustLostStaleForTenSeconds) {
    LiveMemory memory;
    LiveRadio radio = flying();
    liveStatusOf(radio, 1, memory, 10'000);
    radio.isConnected = false;
    EXPECT_EQ(liveStatusOf(radio, 1, memory, 10'100).stateEntry, 71);
    EXPECT_EQ(liveStatusOf(radio, 1, memory, 10'100).frequency, "COM  ---.--- MHz");
    EXPECT_EQ(liveStatusOf(radio, 1, memory, 19'999).stateEntry, 71);
    EXPECT_EQ(liveStatusOf(radio, 1, memory, 20'000).stateEntry, 72);
}

TEST(DialogLive, SaysWhyThereIsNoConnection) {
    LiveRadio radio;
    radio.reason = "simulator in menu";
    EXPECT_EQ(lookAt(radio, 1).reason, "simulator in menu");
    radio = flying();
    radio.reason = "of long ago";
    EXPECT_EQ(lookAt(radio, 1).reason, "");
}

TEST(DialogLive, TheReasonStandsBelowTheStateWhereTheVolumeIsOtherwise) {
    const DialogLayout layout = layoutDialog(kDialogWidth, kDialogHeight, 96, 0, 0);
    const auto lastOfRow = [&](const LiveStatus& live) {
        DialogView view;
        view.language = 2;
        view.live = live;
        std::vector<DialogText> row;
        for (const DialogText& text : dialogTexts(layout, view))
            if (text.id == kLiveRow) row.push_back(text);
        EXPECT_EQ(row.size(), 4U);
        return row.back();
    };
    LiveRadio radio;
    radio.reason = "simulator in menu";
    const DialogText reason = lastOfRow(lookAt(radio, 1));
    EXPECT_EQ(reason.text, "simulator in menu");
    EXPECT_TRUE(reason.wraps);
    const DialogText volume = lastOfRow(lookAt(flying(), 1));
    EXPECT_EQ(volume.text, "VOL 85%");
    EXPECT_NEAR(reason.rect.top, volume.rect.top, 1);
}

TEST(DialogViewTexts, BreakAtSpacesAndBetweenIdeographs) {
    DialogText text;
    text.wraps = true;
    text.fontPixels = 10;
    text.rect = {0, 0, 60, 100};
    const auto tenPerByte = [](const DialogText&, const std::string& piece) {
        return static_cast<std::int32_t>(10 * piece.size());
    };
    text.text = "ab cde fg";
    EXPECT_EQ(linesOf(text, tenPerByte), (std::vector<std::string>{"ab cde", "fg"}));
    text.text = "机型主题";  // three bytes each
    EXPECT_EQ(linesOf(text, tenPerByte), (std::vector<std::string>{"机型", "主题"}));
    text.text = "机型。主";  // the full stop goes with its word
    EXPECT_EQ(linesOf(text, tenPerByte), (std::vector<std::string>{"机", "型。", "主"}));
    text.wraps = false;
    text.text = "ab cde fg";
    EXPECT_EQ(linesOf(text, tenPerByte), (std::vector<std::string>{"ab cde fg"}));
}

TEST(DialogViewTexts, DimTheKeysThatTheChosenThemeLacks) {
    const DialogLayout layout = layoutDialog(kDialogWidth, kDialogHeight, 96, 2, 0);
    const int keys[] = {0, 2, 5};  // of GENERAL, BOEING and AIRBUS
    for (int theme = 0; theme < 3; theme++) {
        DialogView view;
        view.language = kEnglish;
        view.settings.theme = theme;
        view.settings.bind_B = view.settings.bind_C = view.settings.bind_D = view.settings.bind_E = 1;
        int dimmed = 0, bright = 0;
        for (const DialogText& text : dialogTexts(layout, view)) {
            if (text.id < kKeyASelector || text.id > kKeyESelector) continue;
            (text.tone == TextTone::kFaint ? dimmed : bright)++;
            EXPECT_EQ(text.tone == TextTone::kFaint, text.id - kKeyASelector >= keys[theme]) << theme << ' ' << text.id;
        }
        EXPECT_EQ(bright, 2 * keys[theme]);  // letter and action of each
        EXPECT_EQ(dimmed, 10 - 2 * keys[theme]);
    }
}

TEST(DialogViewTexts, SayWhatKeyAIsFixedToWhateverIsBoundToIt) {
    const DialogLayout layout = layoutDialog(kDialogWidth, kDialogHeight, 96, 2, 0);
    DialogView view;
    view.language = kFrench;
    view.settings.bind_A = 3;
    std::vector<std::string> words;
    int elsewhere = 0;
    for (const DialogText& text : dialogTexts(layout, view)) {
        if (text.id == kKeyASelector)
            words.push_back(text.text);
        else if (text.text == textOf(kFrench, kTextKeyAFixed))
            elsewhere++;
    }
    EXPECT_EQ(words, (std::vector<std::string>{"A", std::string(textOf(kFrench, kTextKeyAFixed))}));
    EXPECT_EQ(elsewhere, 0);  // once is enough
}

TEST(DialogViewTexts, ShowWhatIsSetInTheLanguageChosen) {
    DialogView view;
    view.language = 5;
    view.settings.opacity = 55.0f;
    const DialogLayout layout = layoutDialog(940, 660, 96, 0, 0);
    bool hasOpacity = false, hasLabel = false, hasOwnFont = false;
    for (const DialogText& text : dialogTexts(layout, view)) {
        if (text.id == kOpacitySlider && text.text == "55 %") hasOpacity = true;
        if (text.id == kMasterToggle && text.text == "Hauptschalter") hasLabel = true;
        if (text.id == languageControl(kJapanese) && text.language == 3) hasOwnFont = true;
    }
    EXPECT_TRUE(hasOpacity);
    EXPECT_TRUE(hasLabel);
    EXPECT_TRUE(hasOwnFont);
}
