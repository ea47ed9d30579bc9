// dialog_rig.h - for the tests of the settings dialog: a model with its layout, and a hand that moves over it.
#pragma once
#include <optional>
#include "settings/dialog_interaction.h"
#include "settings/dialog_view.h"

inline DialogPoint middleOf(const PixelRect& rect) {
    return {(rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2};
}

struct DialogRig {
    DialogModel model;
    DialogInput input;
    std::int32_t width = kDialogWidth;
    std::int32_t height = kDialogHeight;
    unsigned dpi = 96;

    DialogLayout layout() const { return layoutDialog(width, height, dpi, model.page, input.scroll); }
    const DialogRow& row(int id) const { return *findRow(id); }

    void run(const std::optional<DialogCommand>& command) {
        if (command) last = runDialogCommand(model, command->id, command->option);
    }
    void click(DialogPoint at) {
        pressMouse(input, model, layout(), at);
        run(releaseMouse(input, model, layout(), at));
    }
    void click(int id, int part = 0) {
        const DialogLayout now = layout();
        click(middleOf(partRect(now, *findControl(now, id), part)));
    }
    void press(DialogKey key) { run(pressKey(input, model, layout(), key)); }
    void focus(int id) { input.focus = id; }
    void wheel(int id, int delta) {
        const DialogLayout now = layout();
        turnWheel(input, model, now, middleOf(findControl(now, id)->rect), delta);
    }

    DialogAction last = DialogAction::kNone;
};
