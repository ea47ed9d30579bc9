// dialog_interaction.h - mouse and keyboard of the settings dialog: what they do to the model, and which command they
// give. The keyboard reaches everything that the mouse reaches. Points are client pixels; nothing here knows a window.
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
    bool isFocusShown = false;  // from a key until the next mouse press
    bool isDragging = false;    // a slider, or the scroll bar
    std::int32_t grab = 0;      // pixels from the scroll thumb's top to where it was grabbed
    std::int32_t scroll = 0;    // pixels wanted; the layout clamps it
    int wheelRest = 0;          // wheel movement short of a notch (120)

    bool operator==(const DialogInput&) const = default;
};

// What the window is to run (runCommand).
struct DialogCommand {
    int id = kNothingHit;
    int option = -1;

    bool operator==(const DialogCommand&) const = default;
};

// Forgets what is hovered, dragged and pressed: for a new page or language.
void forgetMouse(DialogInput& input);
// Forgets what is dragged and pressed: the mouse capture is lost, but the mouse is still where it was.
void letGo(DialogInput& input);

// Carries out a command from any source (runDialogCommand). A new page begins at its top; a new page or language
// forgets the mouse, because other controls are under it now.
DialogAction runCommand(DialogInput& input, DialogModel& model, const DialogCommand& command,
                        std::uint16_t systemLanguage);

void moveMouse(DialogInput& input, DialogModel& model, const DialogLayout& layout, PixelPoint at);
// The mouse has left the window; a drag goes on.
void leaveMouse(DialogInput& input);
// True: the caller captures the mouse until its release. False: nothing was hit, or the title bar (pressed never
// becomes kTitleBarHit).
bool pressMouse(DialogInput& input, DialogModel& model, const DialogLayout& layout, PixelPoint at);
// A press counts when it ends where it began.
std::optional<DialogCommand> releaseMouse(DialogInput& input, DialogModel& model, const DialogLayout& layout,
                                          PixelPoint at);
// delta: 120 per notch, positive away from the user. Scrolls the page; the slider or the selector under the mouse is
// stepped instead if it has the focus, or if the page fits: a page on its way below the pointer changes no setting.
void turnWheel(DialogInput& input, DialogModel& model, const DialogLayout& layout, PixelPoint at, int delta);

// Moves the focus, steps values and scrolls as the key asks; returns the command that it gives, if any. Space and Enter
// press what has the focus while its ring is to be seen; otherwise Enter is Save & Close. isRepeated: the key was down
// already, perhaps before there was a dialog; it moves and steps on, but presses nothing.
std::optional<DialogCommand> pressKey(DialogInput& input, DialogModel& model, const DialogLayout& layout, DialogKey key,
                                      bool isRepeated = false);
