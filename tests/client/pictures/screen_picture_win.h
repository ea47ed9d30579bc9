// screen_picture_win.h - pictures of the screen as a user sees it, translucent windows blended with what is behind
// them; this needs a compositor on the screen (tools/screenshots starts one). [host] All of it on one thread, which
// sees device pixels (useDevicePixels).
#pragma once
#include <windows.h>
#include <cstdint>
#include <filesystem>
#include <vector>

// A part of the screen at one moment.
struct ScreenPicture {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;  // 0x00RRGGBB, rows from the top

    bool operator==(const ScreenPicture&) const = default;
};

ScreenPicture takePicture(const RECT& part);
double brightnessOf(const ScreenPicture& picture);  // mean of the three colours, 0..255
// As a PNG; false if it cannot be written. GDI+ must be running.
bool savePicture(const ScreenPicture& picture, const std::filesystem::path& file);

// The ground behind the windows: the whole screen, light on the left and dark on the right of a line.
class Ground {
  public:
    Ground();
    ~Ground();
    Ground(const Ground&) = delete;
    Ground& operator=(const Ground&) = delete;

    void divideAt(int screenX);
    void darken() { divideAt(0); }
    // True unless something large is in front of this part of the screen.
    static bool isBare(const RECT& part);
    void serve();  // handles its messages; call it while waiting

  private:
    static LRESULT CALLBACK wndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept;
    void paint() const;

    HWND window_ = nullptr;
    int middle_ = 0;
};
