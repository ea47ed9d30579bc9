#include "tests/soak/pilot_win.h"
#include <utility>
#include "panel/panel_requests.h"
#include "settings/dialog/dialog_rows.h"
#include "settings/language.h"
#include "settings/settings_text.h"
#include "tests/client/message_driver_win.h"
#include "tests/client/test_machine_win.h"
#include "tests/soak/soak_world.h"

namespace {

constexpr int kPanelEntry = 2, kMessagesEntry = 3;  // of the menu
constexpr int kLastElement = kTextKey;
constexpr WPARAM kMessageKeys[] = {VK_UP, VK_DOWN, VK_PRIOR, VK_NEXT, VK_HOME, VK_END, VK_DELETE, VK_ESCAPE, 'X'};
constexpr std::uint64_t kPatienceMs = 60'000;  // for what only a window that hangs does not do
constexpr int kPausesForATick = 20;            // a few of the panel's, unless the machine is very busy

// What would leave hardly anything to do for long, were it to stay off.
constexpr std::pair<int, bool Settings::*> kOnAtRest[] = {
    {kMasterToggle, &Settings::master},
    {kPanelVisibleToggle, &Settings::panel_visible},
    {kDistortOthersToggle, &Settings::distort_others},
    {kDistortSelfToggle, &Settings::distort_self},
};

bool isMoving(HWND window) {
    GUITHREADINFO info = {};
    info.cbSize = sizeof info;
    return GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &info) && (info.flags & GUI_INMOVESIZE);
}

}  // namespace

Pilot::Pilot(const PluginLibrary& plugin, std::filesystem::path settingsFile, Progress& progress, std::uint64_t seed)
    : plugin_(plugin), settingsFile_(std::move(settingsFile)), progress_(progress), dice_(seed) {
    useDevicePixels();
}

Pilot::~Pilot() {
    closeDialog();
    if (configuring_.joinable()) configuring_.join();
}

Settings Pilot::settings() const {
    return readSettingsText(readFile(settingsFile_));
}

void Pilot::act() {
    deeds_++;
    const std::size_t number = dice_.below(20);
    if (findDialog() ? number < 10 : number < 2) {
        progress_.at("the dialog");
        findDialog() ? changeInDialog() : static_cast<void>(openDialog());
    } else if (number < 12) {
        progress_.at("keys");
        useKeys();
    } else if (number < 15) {
        progress_.at("knobs");
        useKnobs();
    } else if (number < 17) {
        progress_.at("requests");
        askPanel();
    } else if (number < 18) {
        progress_.at("a drag");
        dragPanel();
    } else {
        progress_.at("messages");
        readMessages();
    }
    progress_.at("nothing");
}

void Pilot::chooseMenu(int entry) const {
    plugin_.exports().onMenuItemEvent(kServers[0], 0, entry, 0);
}

// A key may hide the panel or open a window; the menu brings the panel back.
void Pilot::useKeys() {
    if (!IsWindowVisible(findPanel())) chooseMenu(kPanelEntry);
    const PanelDriver hand = panel();
    const auto element = static_cast<std::int32_t>(dice_.between(kSwapKey, kLastElement));
    if (hand.pointOn(element).x >= 0) hand.click(element);
}

void Pilot::useKnobs() {
    const PanelDriver hand = panel();
    const auto element = static_cast<std::int32_t>(dice_.between(kBackground, kLastElement));
    if (hand.pointOn(element).x < 0) return;
    if (dice_.isOneIn(2) || element == kBackground) return hand.wheel(element, dice_.between(-5, 5) * WHEEL_DELTA);
    hand.drag(element, dice_.between(-8, 8), dice_.between(1, 20));
}

void Pilot::askPanel() {
    const auto radio = static_cast<WPARAM>(dice_.between(1, 2));
    const PanelDriver hand = panel();
    if (dice_.isOneIn(3)) return hand.post(kPanelSwapMessage, radio);
    if (dice_.isOneIn(2)) return hand.post(kPanelVolumeMessage, radio, dice_.between(0, 100));
    const auto slot = static_cast<WPARAM>(dice_.between(0, 1)), whole = static_cast<WPARAM>(dice_.between(0, 1));
    hand.post(kPanelStepMessage, radio | slot << 8U | whole << 16U, dice_.between(-10, 10));
}

// The system's own loop moves the window until the button is released.
void Pilot::dragPanel() {
    const PanelDriver hand = panel();
    POINT at = hand.pointOn(kBackground);
    if (at.x < 0 || !IsWindowVisible(hand.window())) return;
    drags_++;
    hand.press(at);
    for (int i = dice_.between(0, 10); i > 0; i--) {
        at.x += dice_.between(-30, 30);
        at.y += dice_.between(-30, 30);
        hand.move(at);
        pauseBriefly();
    }
    waitFor(
        [&] {
            hand.release(at);
            return !isMoving(hand.window());
        },
        kPatienceMs);
}

void Pilot::readMessages() {
    if (!isMessageWindowShown() || dice_.isOneIn(4)) return chooseMenu(kMessagesEntry);
    switch (dice_.below(4)) {
        case 0:
            return turnMessageWheel(dice_.between(-5, 5) * WHEEL_DELTA);
        case 1:  // below the header, by which the window would be moved
            return clickMessageWindow(dice_.between(0, 620), dice_.between(60, 400));
        case 2:
            return moveOverMessageWindow(dice_.between(0, 620), dice_.between(0, 400));
        default:
            return pressMessageKey(dice_.oneOf(kMessageKeys));
    }
}

bool Pilot::waitWindowsIdle() const {
    // What was posted before is done when the second answer comes: some of it is passed on by a message.
    DWORD_PTR ignored = 0;
    for (int i = 0; i < 2; i++) {
        if (!SendMessageTimeoutW(findPanel(), WM_NULL, 0, 0, SMTO_NORMAL, kPatienceMs, &ignored)) return false;
    }
    return true;
}

bool Pilot::rest() {
    progress_.at("coming to rest");
    deeds_++;
    if (!closeDialog() || !openDialog()) return false;
    const DialogDriver dialog(findDialog(), 0);
    progress_.at("a last look");
    changeLook(dialog);
    if (!waitWindowsIdle()) return false;
    progress_.at("the settings of rest");
    const Settings now = settings();
    // In the dialog's copy, which the panel may still be changing underneath; the next rest puts that right.
    for (const auto& [toggle, field] : kOnAtRest) {
        if (!(now.*field)) dialog.command(toggle);
    }
    dialog.command(languageControl(kEnglish));
    dialog.command(kResetPanel);
    // The panel keeps the pictures of the theme before, too.
    for (const std::int32_t theme : {kBoeingTheme, kGeneralTheme}) {
        dialog.command(kThemeChoice, theme);
        dialog.command(kApply);
        for (int i = 0; i < kPausesForATick; i++) pauseBriefly();
        if (!waitWindowsIdle()) return false;
    }
    dialog.command(kClearMessages);
    dialog.command(kSaveAndClose);
    if (!closeDialog()) return false;
    if (!isMessageWindowShown()) chooseMenu(kMessagesEntry);
    progress_.at("waiting for the windows");
    return waitWindowsIdle() &&
           waitFor([] { return isMessageWindowShown() && IsWindowVisible(findPanel()); }, kPatienceMs);
}
