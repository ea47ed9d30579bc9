// message_test.h - a test with the message window in the real DLL: text messages from the host, and the page that the
// window must show.
#pragma once
#include <windows.h>
#include <algorithm>
#include <string>
#include "messages/message_requests_win.h"
#include "tests/client/message_driver_win.h"
#include "tests/client/panel_test.h"
#include "tests/client/wanted_page_win.h"
#include "tests/client/window_watch_win.h"

inline constexpr int kMessagesEntry = 3;          // of the menu
inline constexpr std::uint64_t kLongMs = 30'000;  // only a hung program takes that long
inline constexpr const char* kNoAutoOpen = "text_auto_open=0\r\n";

class MessageTest : public PanelTest {
  protected:
    // The plugin is running and has its windows; what the panel shows does not matter.
    ::testing::AssertionResult begin(const std::string& lines = "") {
        const auto started = startWith(kGeneralTheme, "language=en\r\n" + lines);
        if (!started) return started;
        if (session.waitUntil([] { return findMessageWindow() && findPanel(); }, kLongMs)) return started;
        return ::testing::AssertionFailure() << "there is no message window";
    }
    int receive(const std::string& text, const std::string& sender = "Tower", std::uint16_t from = kOtherClient) {
        HostTextMessage message;
        message.message = text;
        message.fromName = sender;
        message.fromClientId = from;
        message.targetMode = kChannelMessage;
        const double before = session.clock.unixSeconds();
        const int answer = session.plugin.deliver(message);
        wanted_.add(sender, text, kChannelMessage, before, session.clock.unixSeconds());
        return answer;
    }
    // Only after every request that the host's thread has posted so far has been carried out.
    static bool isShown() {
        EXPECT_TRUE(waitForPosted(findMessageWindow()));
        return isMessageWindowShown();
    }
    void chooseMenu() { session.plugin.exports().onMenuItemEvent(kSchid, 0, kMessagesEntry, 0); }
    ::testing::AssertionResult open() {
        if (!isShown()) chooseMenu();
        if (!isShown()) return ::testing::AssertionFailure() << "the message window is not shown";
        return ::testing::AssertionSuccess();
    }
    // Whether the window shows this page after looking for changes.
    ::testing::AssertionResult shows(const WantedPage& wanted) {
        SendMessageW(findMessageWindow(), kRepaintMessages, 0, 0);
        return wanted_.isShownBy(findMessageWindow(), wanted);
    }
    // The same as soon as it does.
    ::testing::AssertionResult becomes(const WantedPage& wanted) {
        auto result = shows(wanted);
        session.waitUntil(
            [&] {
                result = shows(wanted);
                return static_cast<bool>(result);
            },
            kLongMs);
        return result;
    }
    bool hasLogged(const std::string& part) const {
        const auto lines = host.logLines();
        return std::any_of(lines.begin(), lines.end(),
                           [&](const std::string& line) { return line.find(part) != std::string::npos; });
    }

    WantedPages wanted_;
};
