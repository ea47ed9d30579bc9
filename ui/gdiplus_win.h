// gdiplus_win.h - GDI+ and COM for one thread, as owners. <gdiplus.h> needs the headers included before it here.
#pragma once
#include <algorithm>
#include <optional>
// clang-format off
#include <windows.h>
#include <objbase.h>
#include <propidl.h>
// Microsoft's <gdiplus.h> relies on the min and max macros that NOMINMAX leaves out.
namespace Gdiplus {
using std::max;
using std::min;
}
#include <gdiplus.h>
// clang-format on

// Runs GDI+ version 1 for as long as it lives. If GDI+ cannot be started, every later call of it fails.
class GdiPlusSession {
  public:
    GdiPlusSession() {
        const Gdiplus::GdiplusStartupInput version1;
        isStarted_ = Gdiplus::GdiplusStartup(&token_, &version1, nullptr) == Gdiplus::Ok;
    }
    ~GdiPlusSession() {
        if (isStarted_) Gdiplus::GdiplusShutdown(token_);
    }
    GdiPlusSession(const GdiPlusSession&) = delete;
    GdiPlusSession& operator=(const GdiPlusSession&) = delete;

  private:
    ULONG_PTR token_ = 0;
    bool isStarted_ = false;
};

// COM for this thread, single-threaded apartment.
class ComApartment {
  public:
    ComApartment() : isEntered_(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {}
    ~ComApartment() {
        if (isEntered_) CoUninitialize();
    }
    ComApartment(const ComApartment&) = delete;
    ComApartment& operator=(const ComApartment&) = delete;

  private:
    bool isEntered_;
};

// Both, in the order in which they need each other: GDI+ starts first, and it ends first as well, because it may use
// COM until then.
class GraphicsSession {
  public:
    GraphicsSession() {
        gdiPlus_.emplace();
        com_.emplace();
    }

  private:
    std::optional<ComApartment> com_;  // destroyed last
    std::optional<GdiPlusSession> gdiPlus_;
};
