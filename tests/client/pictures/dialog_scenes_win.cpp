// dialog_scenes_win.cpp - the scenes of the settings dialog: each page in each language, and what a user does there.
#include <array>
#include <deque>
#include <string>
#include <vector>
#include "settings/language.h"
#include "tests/client/dialog_driver_win.h"
#include "tests/client/pictures/scenes_win.h"

namespace {

constexpr const char* kPages[] = {"general", "voice", "radio", "about"};
constexpr const char* kSettings =
    "theme=1\r\nopacity=85\r\ntransmit_gain=6\r\nequalize=1\r\nvolume_max=0.85\r\npanel_visible=1\r\nbind_B=1\r\n"
    "bind_C=2\r\nbind_D=6\r\nbind_E=7\r\nradio=COM1\r\n";

void fly(FakeTelemetry& flown) {
    flown.radios[0] = {.activeKhz = 122800, .standbyKhz = 121500, .spacing = 1, .volume = 0.85};
    flown.radios[1] = {.activeKhz = 124350, .standbyKhz = 135975, .spacing = 0};
}

void openDialog(Stage& stage) {
    stage.session.plugin.exports().onMenuItemEvent(kSchid, 0, 1, 0);
    stage.session.waitUntil([] { return findDialog() && IsWindowVisible(findDialog()); });
}

template <int kPage>
void openPage(Stage& stage) {
    openDialog(stage);
    DialogDriver(findDialog(), kPage).command(kGeneralTab + kPage);
}

void pressAndFocus(Stage& stage) {
    openDialog(stage);
    const DialogDriver dialog(findDialog(), 0);
    for (int i = 0; i < 3; i++) dialog.key(VK_TAB);
    dialog.move(dialog.pointOn(kApply));
}

// The ring around one of several toggles that stand close together.
void focusOnOption(Stage& stage) {
    openDialog(stage);
    const DialogDriver dialog(findDialog(), 0);
    dialog.click(kFollowVolumeToggle);
    dialog.key(VK_TAB);
}

void openInSmallWindow(Stage& stage) {
    openPage<2>(stage);
    SetWindowPos(findDialog(), nullptr, 100, 100, 800, 450, SWP_NOZORDER | SWP_NOACTIVATE);
}

constexpr std::array kOpeners = {openPage<0>, openPage<1>, openPage<2>, openPage<3>};

std::vector<Scene> makeScenes() {
    static std::deque<std::string> texts;  // owns the texts that the scenes point to
    std::vector<Scene> scenes;
    for (std::int32_t language = 0; language < kLanguageCount; language++) {
        const std::string code = languageCode(language);
        // At every resolution: the plain case, the longest words, and ideographs.
        const bool isEverywhere = language == kEnglish || language == kRussian || language == kJapanese;
        texts.push_back(kSettings + ("language=" + code + "\r\n"));
        const char* settings = texts.back().c_str();
        for (std::size_t page = 0; page < kOpeners.size(); page++) {
            texts.push_back(std::string(kPages[page]) + "_" + code);
            scenes.push_back(
                {texts.back().c_str(), settings, fly, kOpeners[page], findDialog, Moment::kStill, isEverywhere});
        }
    }
    scenes.push_back({"unconnected", "language=en\r\n", nullptr, openPage<0>, findDialog, Moment::kStill, false});
    scenes.push_back({"focus", "language=en\r\n", fly, pressAndFocus, findDialog, Moment::kStill, false});
    scenes.push_back({"focus_option", "language=en\r\n", fly, focusOnOption, findDialog, Moment::kStill, true});
    scenes.push_back({"keys_none", "language=en\r\n", fly, openPage<2>, findDialog, Moment::kStill, false});
    scenes.push_back({"keys_all", "language=en\r\ntheme=2\r\nbind_B=1\r\nbind_D=6\r\n", fly, openPage<2>, findDialog,
                      Moment::kStill, false});
    scenes.push_back({"small", "language=en\r\n", fly, openInSmallWindow, findDialog, Moment::kStill, false});
    return scenes;
}

}  // namespace

std::span<const Scene> dialogScenes() {
    static const std::vector<Scene> scenes = makeScenes();
    return scenes;
}
