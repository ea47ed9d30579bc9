// dialog_shapes.h - what the settings dialog shows besides its words: grounds, cards, switches, thumbs, the focus ring,
// by our own code (ui/shapes.h: smooth on every system). [dialog]
#pragma once
#include "settings/dialog/dialog_interaction.h"
#include "settings/dialog/dialog_view.h"
#include "ui/argb_image.h"

// Everything a picture of the dialog depends on.
struct DialogPicture {
    std::int32_t width = 0;  // of the client area
    std::int32_t height = 0;
    unsigned dpi = 96;
    int page = 0;
    DialogView view;
    DialogInput input;

    bool operator==(const DialogPicture&) const = default;
};

// target has the client area's size; every pixel of it is written. layout is the picture's.
void drawDialogShapes(const ArgbView& target, const DialogLayout& layout, const DialogPicture& picture);
