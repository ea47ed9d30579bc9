// wanted_page_win.h - the message window's picture as it should be, painted here from what the test delivered.
// [host] Used from a test's main thread.
#pragma once
#include <gtest/gtest.h>
#include <windows.h>
#include <string>
#include <vector>
#include "messages/message_paint_win.h"
#include "ui/gdiplus_win.h"

struct WantedPage {
    std::int32_t page = 0;  // 0 the newest
    std::int32_t unread = 0;
    bool isCloseHovered = false;
    bool hasKeyboard = false;
};

class WantedPages {
  public:
    // A message that the plugin was given between two moments, seconds since 1970.
    void add(const std::string& sender, const std::string& text, std::uint32_t target, double from, double to);
    void clear() { messages_.clear(); }

    // The window shows this page, in English and in the usual text size: every pixel except the cursor's, which blinks.
    ::testing::AssertionResult isShownBy(HWND window, const WantedPage& wanted);

  private:
    struct Delivered {
        std::string sender;
        std::string text;
        std::uint32_t target;
        double from;
        double to;
    };
    ::testing::AssertionResult isShownBy(HWND window, const WantedPage& wanted, double receivedAt);

    const GdiPlusSession gdiPlus_;
    MessagePainter painter_;
    std::vector<Delivered> messages_;  // oldest first
};
