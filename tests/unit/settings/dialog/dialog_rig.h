// dialog_rig.h - for the tests of the settings dialog: a model with its layout, and a hand that moves over it.
#pragma once
#include <optional>
#include "settings/dialog/dialog_interaction.h"
#include "settings/dialog/dialog_view.h"

inline PixelPoint middleOf(const PixelRect& rect) {
    return {(rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2};
}

inline constexpr std::uint16_t kRigSystemLanguage = 0x0409;  // English

struct DialogRig {
    DialogModel model;
    DialogInput input;
    std::int32_t width = kDialogWidth;
    std::int32_t height = kDialogHeight;
    unsigned dpi = 96;

    DialogLayout layout() const { return layoutDialog(width, height, dpi, model.page, input.scroll); }
    const DialogRow& row(int id) const { return *findRow(id); }

    void run(const std::optional<DialogCommand>& command) {
        if (command) last = runCommand(input, model, *command, kRigSystemLanguage);
    }
    void click(PixelPoint at) {
        pressMouse(input, model, layout(), at);
        run(releaseMouse(input, model, layout(), at));
        moveMouse(input, model, layout(), at);
    }
    void click(int id, int part = 0) {
        const DialogLayout now = layout();
        click(middleOf(partRect(now, *findControl(now, id), part)));
    }
    void command(int id, int option = -1) { run(DialogCommand{id, option}); }
    void turnTo(int page) { click(kGeneralTab + page); }
    // Takes a slider's thumb where it stands for `from` to where it stands for `to`.
    void drag(int id, float from, float to) {
        const DialogLayout now = layout();
        const DialogControl& control = *findControl(now, id);
        const PixelRect track = trackRect(now, control);
        const std::int32_t y = (track.top + track.bottom) / 2;
        pressMouse(input, model, now, {thumbX(now, control, row(id).range, from), y});
        run(releaseMouse(input, model, now, {thumbX(now, control, row(id).range, to), y}));
    }
    void press(DialogKey key) { run(pressKey(input, model, layout(), key)); }
    // The key is still down.
    void repeat(DialogKey key) { run(pressKey(input, model, layout(), key, true)); }
    // As by the keyboard: with a ring around it.
    void focus(int id) {
        input.focus = id;
        input.isFocusShown = true;
    }
    void wheel(int id, int delta) {
        const DialogLayout now = layout();
        turnWheel(input, model, now, middleOf(findControl(now, id)->rect), delta);
    }

    DialogAction last = DialogAction::kNone;
};
