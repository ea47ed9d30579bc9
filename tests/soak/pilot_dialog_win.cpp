// pilot_dialog_win.cpp - what the pilot does with the settings dialog.
#include "settings/dialog/dialog_rows.h"
#include "settings/language.h"
#include "tests/client/test_machine_win.h"
#include "tests/soak/pilot_win.h"

namespace {

constexpr int kDialogEntry = 1;            // of the menu
constexpr std::uint64_t kOpenMs = 60'000;  // for what takes no time on an idle machine
constexpr std::size_t kCommitEvery = 12;   // changes
constexpr std::size_t kLookEvery = 10;     // the same
constexpr float kLargestScale = 200.0f;

}  // namespace

bool Pilot::openDialog() {
    page_ = 0;
    dialogs_ += !findDialog();
    if (!findDialog() && dice_.isOneIn(4)) beginConfiguring();
    // While the previous dialog's thread is ending, the menu entry does nothing and must be chosen again.
    return waitFor(
        [&] {
            if (!findDialog() && !isConfiguring_) chooseMenu(kDialogEntry);
            return isDialogShown();
        },
        kOpenMs);
}

// Like the host's list of plugins: its thread shows the dialog and comes back when it is closed.
void Pilot::beginConfiguring() {
    if (configuring_.joinable()) configuring_.join();
    isConfiguring_ = true;
    configuring_ = std::thread([this] {
        plugin_.exports().configure(nullptr, nullptr);
        isConfiguring_ = false;
    });
}

bool Pilot::closeDialog() {
    const bool isClosed = waitFor(
        [&] {
            if (findDialog()) DialogDriver(findDialog(), page_).command(kCancel);
            return !findDialog() && !isConfiguring_;
        },
        kOpenMs);
    if (isClosed && configuring_.joinable()) configuring_.join();
    return isClosed;
}

void Pilot::changeInDialog() {
    DialogDriver dialog(findDialog(), page_);
    if (dice_.isOneIn(kCommitEvery)) {
        constexpr int kEnds[] = {kApply, kApply, kSaveAndClose, kCancel};
        return dialog.command(dice_.oneOf(kEnds));
    }
    if (dice_.isOneIn(kLookEvery)) return changeLook(dialog);
    if (dice_.isOneIn(10)) return dragDialog();
    if (dice_.isOneIn(10)) {
        constexpr WPARAM kKeys[] = {VK_TAB, VK_SPACE, VK_LEFT, VK_RIGHT, VK_UP, VK_DOWN, VK_PRIOR, VK_NEXT};
        return dialog.key(dice_.oneOf(kKeys));
    }
    changeRow(dialog);
}

void Pilot::changeRow(const DialogDriver& dialog) {
    const DialogRow& row = dice_.oneOf(dialogRows());
    switch (row.kind) {
        case RowKind::kTab: {
            DialogDriver(dialog).turnTo(row.id - kGeneralTab);
            page_ = row.id - kGeneralTab;
            return;
        }
        case RowKind::kSlider: {
            const auto span = static_cast<double>(row.range.max - row.range.min);
            const auto value = row.range.min + static_cast<float>(span * dice_.between(0, 100) / 100.0);
            if (dialog.pointOn(row.id).x >= 0) dialog.drag(row.id, row.range.min, value);
            return;
        }
        case RowKind::kChoice:
        case RowKind::kSelector:
            return dialog.command(row.id, dice_.between(0, optionCount(row) - 1));
        case RowKind::kButton:
            // The ends have their own turn.
            if (row.id < kApply) dialog.command(row.id);
            return;
        default:
            if (dialog.pointOn(row.id).x >= 0) return dialog.click(row.id);
            return dialog.command(row.id);
    }
}

void Pilot::changeLook(const DialogDriver& dialog) {
    looks_++;
    dialog.command(languageControl(dice_.between(0, kLanguageCount - 1)));
    dialog.command(kThemeChoice, dice_.between(0, kThemeCount - 1));
    dialog.command(kApply);
}

void Pilot::dragDialog() {
    const DialogDriver dialog(findDialog(), page_);
    POINT at = dialog.pointOnTitle();
    dialog.post(WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(at.x, at.y));
    for (int i = dice_.between(0, 5); i > 0; i--) {
        at.x += dice_.between(-20, 20);
        dialog.post(WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(at.x, at.y));
        pauseBriefly();
    }
    dialog.post(WM_LBUTTONUP, 0, MAKELPARAM(at.x, at.y));
    dialog.post(WM_CANCELMODE, 0, 0);
}

bool Pilot::tour() {
    progress_.at("the tour");
    if (!openDialog()) return false;
    DialogDriver dialog(findDialog(), page_);
    dialog.command(kResetPanel);
    dialog.turnTo(0);
    dialog.drag(kPanelScaleSlider, 100.0f, kLargestScale);
    for (int i = 0; i < 2; i++) {
        dialog.command(kWindowButton);  // as large as the screen, and back
        dialog.send(WM_PAINT, 0, 0);
    }
    for (std::int32_t language = 0; language < kLanguageCount; language++) {
        progress_.at("the tour");
        dialog.command(languageControl(language));
        for (int page = kPageCount - 1; page >= 0; page--) {
            dialog.turnTo(page);
            dialog.send(WM_PAINT, 0, 0);
        }
        dialog.command(kThemeChoice, language % kThemeCount);
        dialog.command(kApply);
        if (!waitWindowsIdle()) return false;
        pauseBriefly();
    }
    return rest();
}
