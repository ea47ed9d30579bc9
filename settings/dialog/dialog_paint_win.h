// dialog_paint_win.h - the settings dialog's picture: shapes by our own code (dialog_shapes.h), words with GDI, onto a
// surface that shows the whole client area.
#pragma once
#include <windows.h>
#include "settings/dialog/dialog_shapes.h"
#include "ui/memory_surface_win.h"
#include "ui/text_fonts_win.h"

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
