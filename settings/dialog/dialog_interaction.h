// dialog_interaction.h - mouse and keyboard of the settings dialog: what they do to the model, and which command they
// give. Everything the mouse reaches, the keyboard reaches. Points are client pixels; nothing here knows a window.
// [dialog]
#pragma once
#include <optional>
#include "settings/dialog/dialog_layout.h"
#include "settings/dialog/dialog_model.h"

enum class DialogKey {
    kTab,
    kBackTab,  // Shift + Tab
    kLeft,
    kRight,
    kUp,
    kDown,
    kPageUp,
    kPageDown,
    kHome,
    kEnd,
    kSpace,
    kEnter,
    kEscape,
};

struct DialogInput {
    DialogHit hover;
    DialogHit pressed;          // while the left button is down
    int focus = kNothingHit;    // identifier of a control
    bool isFocusShown = false;  // since the keyboard was used
    bool isDragging = false;    // a slider, or the scroll bar
    std::int32_t grab = 0;      // pixels from the scroll thumb's top to where it was taken
    std::int32_t scroll = 0;    // pixels wanted; the layout clamps it
    int wheelRest = 0;          // of 120, not yet a notch

    bool operator==(const DialogInput&) const = default;
};

// What the window is to run (runCommand).
struct DialogCommand {
    int id = kNothingHit;
    int option = -1;

    bool operator==(const DialogCommand&) const = default;
};

// What is hovered, dragged and pressed is forgotten: another page, another language, a lost mouse capture.
void forgetMouse(DialogInput& input);

// Carries a command out, whoever gave it (runDialogCommand). Another page begins at its top; with another page or
// language the mouse stands on other controls than those it took hold of.
DialogAction runCommand(DialogInput& input, DialogModel& model, const DialogCommand& command,
                        std::uint16_t systemLanguage);

void moveMouse(DialogInput& input, DialogModel& model, const DialogLayout& layout, DialogPoint at);
// The window's edge is left; a drag goes on.
void leaveMouse(DialogInput& input);
// True: the mouse is to be captured until it is released. False: nothing was hit, or the title bar (kTitleBarHit in
// pressed stays unset).
bool pressMouse(DialogInput& input, DialogModel& model, const DialogLayout& layout, DialogPoint at);
// A press counts when it ends where it began.
std::optional<DialogCommand> releaseMouse(DialogInput& input, DialogModel& model, const DialogLayout& layout,
                                          DialogPoint at);
// delta: 120 a notch, away from the user positive. Steps the slider or the selector under the mouse, else scrolls.
void turnWheel(DialogInput& input, DialogModel& model, const DialogLayout& layout, DialogPoint at, int delta);

// What a key does beyond moving the focus and sliders, which happens here.
std::optional<DialogCommand> pressKey(DialogInput& input, DialogModel& model, const DialogLayout& layout,
                                      DialogKey key);
