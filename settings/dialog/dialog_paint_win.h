// dialog_paint_win.h - how the settings dialog looks: shapes by our own code (ui/shapes.h: smooth on every system),
// words with GDI, onto a surface that shows the whole client area.
#pragma once
#include <windows.h>
#include "settings/dialog/dialog_interaction.h"
#include "settings/dialog/dialog_view.h"
#include "ui/memory_surface_win.h"
#include "ui/text_fonts_win.h"

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

// How a text of the dialog is drawn.
TextStyle styleOf(const DialogText& text);

// [dialog]
class DialogPainter {
  public:
    // surface has the client area's size.
    void paint(const MemorySurface& surface, const DialogLayout& layout, const DialogPicture& picture);

  private:
    void paintText(HDC dc, const DialogText& text);

    TextFonts fonts_;
};
