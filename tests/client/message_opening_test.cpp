// message_opening_test.cpp - what the message window shows once it has opened: the newest message, however many arrive
// meanwhile, and the preview's sample, whatever was there before. The steps in between are taken apart in
// message_arrival_test.cpp.
#include <atomic>
#include <random>
#include "tests/client/dialog_driver_win.h"
#include "tests/client/message_test.h"

namespace {

constexpr int kSettingsEntry = 1;  // of the menu
constexpr const char* kSample =
    "PDC 2026-09-28 ZBAA\nCLR TO ZSPD VIA ELKUR W40 YQO\nINITIAL CLB 3000M\nSQUAWK 4312\nDEP RWY 36L\n"
    "WHEN READY CONTACT 121.600";

// The host's thread has something else to do for so long.
void keepBusy(double ms) {
    LARGE_INTEGER begin, now, perSecond;
    QueryPerformanceFrequency(&perSecond);
    QueryPerformanceCounter(&begin);
    do QueryPerformanceCounter(&now);
    while (1000.0 * static_cast<double>(now.QuadPart - begin.QuadPart) / static_cast<double>(perSecond.QuadPart) < ms);
}

class MessageOpening : public MessageTest {
  protected:
    ::testing::AssertionResult openDialog() {
        session.plugin.exports().onMenuItemEvent(kSchid, 0, kSettingsEntry, 0);
        if (session.waitUntil([] { return isDialogShown(); }, kLongMs)) return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure() << "no dialog";
    }
    static HostTextMessage newMessage(int number) {
        HostTextMessage message;
        message.message = "arriving " + std::to_string(number);
        message.fromName = "Tower";
        message.targetMode = kChannelMessage;
        return message;
    }
    void preview() {
        const double before = session.clock.unixSeconds();
        DialogDriver(findDialog(), 0).command(kPreviewMessages);
        wanted_.add("Beijing Control", kSample, kPrivateMessage, before, session.clock.unixSeconds());
    }
    // That many messages arrive just before the window carries the request out, on its own thread.
    void previewWhile(int arriving) {
        const double before = session.clock.unixSeconds();
        const HWND window = findMessageWindow();
        std::atomic<int> toCome{arriving};
        const auto deliver = [&](MSG& message) {
            if (message.hwnd != window || message.message != kShowMessage) return;
            for (; toCome > 0; toCome--) session.plugin.deliver(newMessage(toCome));
        };
        const WindowWatch watch(window, {.onTaken = deliver, .onSent = nullptr});
        ASSERT_TRUE(watch.isWatching());
        preview();
        ASSERT_TRUE(session.waitUntil([&] { return toCome == 0; }, kLongMs));
        for (int i = arriving; i > 0; i--)
            wanted_.add("Tower", newMessage(i).message, kChannelMessage, before, session.clock.unixSeconds());
    }
};

}  // namespace

TEST_F(MessageOpening, ShowsTheNewerOfTwoMessagesUpToTwentyMillisecondsApart) {
    constexpr int kOpenings = 30;
    ASSERT_TRUE(begin());
    std::mt19937 random(20'260'928);
    std::uniform_real_distribution<double> gapsMs(0.0, 20.0);
    for (int i = 0; i < kOpenings; i++) {
        SendMessageW(findMessageWindow(), WM_CLOSE, 0, 0);
        const double gapMs = gapsMs(random);
        receive("first " + std::to_string(i));
        keepBusy(gapMs);
        const bool wasShown = isMessageWindowShown();  // then the second cannot have been seen as it opened
        receive("second " + std::to_string(i));
        const auto showsSecond = [&] {
            const HWND window = findMessageWindow();
            if (wanted_.isShownBy(window, {.page = 0, .unread = 1})) return true;
            return !wasShown && wanted_.isShownBy(window, {.page = 0, .unread = 0});
        };
        ASSERT_TRUE(session.waitUntil(showsSecond, kLongMs)) << "opening " << i << ", " << gapMs << " ms apart";
        ASSERT_TRUE(isShown());
    }
}

TEST_F(MessageOpening, APreviewEndsWithItsSampleWhateverWasShownBefore) {
    for (const char* settings : {"", kNoAutoOpen}) {
        ASSERT_TRUE(begin(settings));
        ASSERT_TRUE(openDialog());
        const auto showsSample = [&](const char* before) {
            EXPECT_TRUE(isShown()) << before;
            EXPECT_TRUE(shows({.page = 0})) << before;
        };
        preview();
        showsSample("hidden");
        receive("newer");
        preview();
        showsSample("open");
        SendMessageW(findMessageWindow(), WM_CLOSE, 0, 0);
        preview();
        showsSample("closed");
        for (int i = 0; i < 3; i++) pressMessageKey(VK_UP);
        EXPECT_TRUE(shows({.page = 3}));
        preview();
        showsSample("another page");
        for (int i = 0; i < 2; i++) pressMessageKey(VK_UP);
        pressMessageKey(VK_ESCAPE);
        preview();
        showsSample("another page, hidden");
        session.stop();
        wanted_.clear();
    }
}

TEST_F(MessageOpening, APreviewEndsWithItsSampleAlsoWhenMessagesComeBeforeItIsShown) {
    constexpr int kArriving = 3;
    for (const bool isOpenBefore : {false, true}) {
        ASSERT_TRUE(begin());
        ASSERT_TRUE(openDialog());
        receive("before");
        ASSERT_TRUE(isShown());
        if (!isOpenBefore) SendMessageW(findMessageWindow(), WM_CLOSE, 0, 0);
        previewWhile(kArriving);
        EXPECT_TRUE(isShown());
        EXPECT_TRUE(shows({.page = kArriving, .unread = kArriving}));
        session.stop();
        wanted_.clear();
    }
}
