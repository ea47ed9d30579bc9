// message_keyboard_test.cpp - who gets the keys when the message window is clicked: the aircraft, unless the click is
// into the page, whose keys need the keyboard.
#include <atomic>
#include "tests/client/import_patch_win.h"
#include "tests/client/keyboard_owner_win.h"
#include "tests/client/message_test.h"

namespace {

constexpr const wchar_t* kPlugin = L"corvalis_win64.dll";
constexpr UINT kGetWheelRouting = 0x201C;  // SPI_GETMOUSEWHEELROUTING

std::atomic<std::int64_t> gCursor{0};
std::atomic<int> gWheelRouting{-1};  // -1: not known to the system

BOOL WINAPI cursorAsTold(POINT* at) {
    const std::int64_t cursor = gCursor;
    *at = {static_cast<LONG>(cursor >> 32), static_cast<LONG>(cursor)};
    return TRUE;
}

BOOL WINAPI parametersAsTold(UINT action, UINT size, void* value, UINT flags) {
    if (action != kGetWheelRouting) return SystemParametersInfoW(action, size, value, flags);
    if (gWheelRouting < 0) return FALSE;
    *static_cast<DWORD*>(value) = static_cast<DWORD>(gWheelRouting.load());
    return TRUE;
}

POINT onScreen(double x, double y) {
    const double scale = GetDpiForWindow(findMessageWindow()) / 96.0;
    POINT at = {static_cast<LONG>(x * scale), static_cast<LONG>(y * scale)};
    ClientToScreen(findMessageWindow(), &at);
    return at;
}

// The window's answer to a click at a point of its page.
LRESULT answerTo(double x, double y) {
    const POINT at = onScreen(x, y);
    gCursor = static_cast<std::int64_t>(at.x) << 32 | static_cast<std::uint32_t>(at.y);
    const HWND window = findMessageWindow();
    return SendMessageW(window, WM_MOUSEACTIVATE, reinterpret_cast<WPARAM>(window),
                        MAKELPARAM(HTCLIENT, WM_LBUTTONDOWN));
}

}  // namespace

using MessageKeyboard = MessageTest;

TEST_F(MessageKeyboard, OnlyAClickIntoThePageAsksForIt) {
    ASSERT_TRUE(begin());
    ASSERT_TRUE(open());
    const ImportPatch cursor(kPlugin, "GetCursorPos", reinterpret_cast<void*>(&cursorAsTold));
    const ImportPatch parameters(kPlugin, "SystemParametersInfoW", reinterpret_cast<void*>(&parametersAsTold));
    ASSERT_TRUE(cursor.isInPlace());
    ASSERT_TRUE(parameters.isInPlace());
    const struct {
        const char* what;
        double x, y;
        bool isOnPage;
    } places[] = {{"title", 200, 20, false}, {"close button", 596, 24, false}, {"header's last row", 300, 43, false},
                  {"sender", 100, 50, true}, {"text", 300, 200, true},         {"footer", 300, 390, true}};
    // Without the setting as Wine is, with it as Windows is; then for the two values that mean "switched off".
    for (const int routing : {-1, 2, 0, 1}) {
        gWheelRouting = routing;
        const bool isOff = routing == 0 || routing == 1;  // only the window with the keyboard gets the wheel
        for (const auto& place : places) {
            const LRESULT wanted = place.isOnPage || isOff ? MA_ACTIVATE : MA_NOACTIVATE;
            EXPECT_EQ(answerTo(place.x, place.y), wanted) << place.what << ", " << routing;
        }
    }
}

TEST_F(MessageKeyboard, StaysWithTheAircraftWhenTheWindowOpensAndIsClickedOnItsHeader) {
    ASSERT_TRUE(begin());
    KeyboardOwner aircraft;
    ASSERT_TRUE(aircraft.takeKeyboard());
    receive("hello");
    ASSERT_TRUE(isShown());
    typeKey('A');
    EXPECT_TRUE(session.waitUntil([&] { return aircraft.keys() == "A"; }, kLongMs));
    std::atomic<int> presses{0};
    const HWND window = findMessageWindow();
    const WindowWatch watch(
        window,
        {.onTaken = [&](MSG& message) { presses += message.hwnd == window && message.message == WM_LBUTTONDOWN; },
         .onSent = nullptr});
    ASSERT_TRUE(watch.isWatching());
    clickScreen(onScreen(200, 20));
    EXPECT_TRUE(session.waitUntil([&] { return presses == 1; }, kLongMs));
    typeKey('B');
    EXPECT_TRUE(session.waitUntil([&] { return aircraft.keys() == "AB"; }, kLongMs));
    EXPECT_TRUE(aircraft.hasKeyboard());
    EXPECT_TRUE(shows({.hasKeyboard = false}));
    EXPECT_TRUE(waitForPosted(window));  // a drag that the press began is over
    clickScreen(onScreen(596, 24));
    EXPECT_TRUE(session.waitUntil([] { return !isMessageWindowShown(); }, kLongMs));
    typeKey('C');
    EXPECT_TRUE(session.waitUntil([&] { return aircraft.keys() == "ABC"; }, kLongMs));
    EXPECT_TRUE(aircraft.hasKeyboard());
}

TEST_F(MessageKeyboard, GoesToThePageThatIsClickedAndBackToTheAircraft) {
    ASSERT_TRUE(begin());
    KeyboardOwner aircraft;
    for (const char* text : {"one", "two", "three"}) receive(text);
    ASSERT_TRUE(isShown());
    pressMessageKey(VK_DOWN);
    ASSERT_TRUE(aircraft.takeKeyboard());
    EXPECT_TRUE(shows({.page = 0}));
    clickScreen(onScreen(300, 200));
    EXPECT_TRUE(session.waitUntil([&] { return GetForegroundWindow() == findMessageWindow(); }, kLongMs));
    EXPECT_TRUE(becomes({.page = 0, .hasKeyboard = true}));
    typeKey(VK_UP);
    EXPECT_TRUE(becomes({.page = 1, .hasKeyboard = true}));
    EXPECT_EQ(aircraft.keys(), "");
    ASSERT_TRUE(aircraft.takeKeyboard());
    EXPECT_TRUE(becomes({.page = 1, .hasKeyboard = false}));
    typeKey(VK_UP);
    EXPECT_TRUE(session.waitUntil([&] { return aircraft.keys() == std::string{VK_UP}; }, kLongMs));
    EXPECT_TRUE(shows({.page = 1}));
}
