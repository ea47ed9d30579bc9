// panel_picture_test.cpp - what the radio panel's own picture shows of what goes on, and that it reaches the screen.
#include <algorithm>
#include <cmath>
#include "tests/client/panel_test.h"

namespace {

std::uint32_t redOf(std::uint32_t pixel) {
    return pixel >> 16U & 0xFFU;
}
std::uint32_t greenOf(std::uint32_t pixel) {
    return pixel >> 8U & 0xFFU;
}
std::uint32_t blueOf(std::uint32_t pixel) {
    return pixel & 0xFFU;
}

bool isAmber(std::uint32_t pixel) {
    return redOf(pixel) > 0x90 && redOf(pixel) > greenOf(pixel) + 0x20 && greenOf(pixel) > blueOf(pixel);
}
bool isGreen(std::uint32_t pixel) {
    return greenOf(pixel) > 0x90 && greenOf(pixel) > redOf(pixel) + 0x20;
}

struct Lamps {
    std::uint32_t tx = 0;  // the colour in the middle
    std::uint32_t rx = 0;
    bool operator==(const Lamps&) const = default;
};

}  // namespace

class PanelLamps : public PanelTest {
  protected:
    Lamps lamps(std::int32_t theme) const {
        const ArgbImage picture = askForPicture(findPanel());
        const auto middle = [&](const UnitRect& lamp) -> std::uint32_t {
            const POINT at = panel().toClient({lamp.x + lamp.width / 2, lamp.y + lamp.height / 2});
            return picture.isEmpty() ? 0 : picture.row(at.y)[at.x];
        };
        return {middle(themeLayout(theme).txLamp), middle(themeLayout(theme).rxLamp)};
    }
    // After the plugin has the event and the panel shows its effect.
    Lamps lampsAfter(std::int32_t theme, std::uint16_t clientId, bool talking) {
        host.setTalking(kSchid, clientId, talking);
        session.pump();
        presentNow();
        return lamps(theme);
    }
};

TEST_F(PanelLamps, LightWhileSomebodyTalksInEveryTheme) {
    for (std::int32_t theme = 0; theme < kThemeCount; theme++) {
        SCOPED_TRACE(themeName(theme));
        ASSERT_TRUE(show(theme));
        ASSERT_TRUE(session.waitPasses(1));  // the plugin knows its own client
        presentNow();
        const Lamps dark = lamps(theme);
        EXPECT_FALSE(isAmber(dark.tx));
        EXPECT_FALSE(isGreen(dark.rx));
        const Lamps transmitting = lampsAfter(theme, kOwnClient, true);
        EXPECT_TRUE(isAmber(transmitting.tx)) << std::hex << transmitting.tx;
        EXPECT_EQ(transmitting.rx, dark.rx);
        const Lamps both = lampsAfter(theme, kOtherClient, true);
        EXPECT_EQ(both.tx, transmitting.tx);
        EXPECT_TRUE(isGreen(both.rx)) << std::hex << both.rx;
        EXPECT_EQ(lampsAfter(theme, kOwnClient, false), (Lamps{dark.tx, both.rx}));
        EXPECT_EQ(lampsAfter(theme, kOtherClient, false), dark);
        session.stop();
    }
}

TEST_F(PanelLamps, StayDarkWhereTheyAreNotWanted) {
    ASSERT_TRUE(show(kBoeingTheme, "radio_lamps=0\r\n"));
    ASSERT_TRUE(session.waitPasses(1));
    presentNow();
    const Lamps dark = lamps(kBoeingTheme);
    EXPECT_EQ(lampsAfter(kBoeingTheme, kOwnClient, true), dark);
    EXPECT_EQ(lampsAfter(kBoeingTheme, kOtherClient, true), dark);
}

// Whoever talks when the plugin ends talks to nobody after a new start: no lamp is lit, and the end has no tail.
TEST_F(PanelLamps, AreDarkAfterARestartWhoeverTalkedBeforeIt) {
    ASSERT_TRUE(show(kAirbusTheme));
    ASSERT_TRUE(session.waitPasses(1));
    presentNow();
    const Lamps dark = lamps(kAirbusTheme);
    ASSERT_TRUE(isGreen(lampsAfter(kAirbusTheme, kOtherClient, true).rx));
    ASSERT_TRUE(session.waitTicks(150));  // long enough for a tail
    session.stop();
    ASSERT_TRUE(show(kAirbusTheme));
    ASSERT_TRUE(session.waitPasses(1));
    presentNow();
    EXPECT_EQ(lamps(kAirbusTheme), dark);
    EXPECT_EQ(lampsAfter(kAirbusTheme, kOtherClient, false), dark);
    ASSERT_TRUE(session.waitPasses(2));
    EXPECT_TRUE(host.playedSounds().empty());
}

// Between two ticks of the panel's timer there is time for hundreds of these: if the picture waited for the next tick,
// most would find the old one.
TEST_F(PanelLamps, ShowAtOnceWhatIsNewWhenTheResolutionOrTheScreenChanges) {
    ASSERT_TRUE(show(kAirbusTheme));
    ASSERT_TRUE(session.waitPasses(1));
    const RECT before = screenRect();
    RECT suggested = {17, 19, 1217, 919};  // the panel uses its settings and the monitor's values instead
    for (const UINT message : {WM_DPICHANGED, WM_DISPLAYCHANGE}) {
        const bool isDpi = message == WM_DPICHANGED;
        const WPARAM what = isDpi ? MAKEWPARAM(144, 144) : 32;
        const LPARAM where = isDpi ? reinterpret_cast<LPARAM>(&suggested) : 0;
        for (int i = 0; i < 20; i++) {
            const bool talking = i % 2 == 0;
            host.setTalking(kSchid, kOtherClient, talking);
            session.pump();
            EXPECT_EQ(send(message, what, where), 0);
            EXPECT_EQ(isGreen(lamps(kAirbusTheme).rx), talking) << message << " time " << i;
        }
        const RECT after = screenRect();
        EXPECT_TRUE(EqualRect(&after, &before)) << message;
    }
}

// Black and opaque, behind everything: what shows through the panel adds nothing, whether the system blends the panel
// with this window or with nothing at all.
class Backdrop {
  public:
    Backdrop() {
        WNDCLASSW description = {};
        description.lpfnWndProc = DefWindowProcW;
        description.hInstance = GetModuleHandleW(nullptr);
        description.hbrBackground = static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
        description.lpszClassName = kClass;
        RegisterClassW(&description);
        window_ = CreateWindowExW(WS_EX_TOOLWINDOW | WS_EX_NOACTIVATE, kClass, L"", WS_POPUP, 0, 0,
                                  GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN), nullptr, nullptr,
                                  description.hInstance, nullptr);
        ShowWindow(window_, SW_SHOWNOACTIVATE);
        serve();
    }
    ~Backdrop() {
        DestroyWindow(window_);
        UnregisterClassW(kClass, GetModuleHandleW(nullptr));
    }
    Backdrop(const Backdrop&) = delete;
    Backdrop& operator=(const Backdrop&) = delete;

    static void serve() {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
    }

  private:
    static constexpr const wchar_t* kClass = L"CorvalisTestBackdrop";
    HWND window_ = nullptr;
};

// The share of the pixels whose colour on the screen is the picture's at this alpha, over black.
double shareOfSame(const ArgbImage& picture, const ArgbImage& screen, int alpha) {
    if (picture.isEmpty() || screen.pixels.size() != picture.pixels.size()) return 0.0;
    constexpr int kTolerance = 4;  // of 255: systems round differently
    std::size_t same = 0;
    for (std::size_t i = 0; i < picture.pixels.size(); i++) {
        const auto isNear = [&](unsigned shift) {
            const auto own = static_cast<int>(picture.pixels[i] >> shift & 0xFFU) * alpha / 255;
            return std::abs(own - static_cast<int>(screen.pixels[i] >> shift & 0xFFU)) <= kTolerance;
        };
        same += isNear(0) && isNear(8) && isNear(16);
    }
    return static_cast<double>(same) / static_cast<double>(picture.pixels.size());
}

// The only test that looks at the screen: everything else is checked in the panel's own picture.
using PanelOnScreen = PanelTest;

TEST_F(PanelOnScreen, ThePictureReachesTheScreenWithItsOpacity) {
    const struct {
        const char* percent;
        int alpha;
    } rows[] = {{"100", 255}, {"50", 128}};
    const Backdrop backdrop;
    for (const auto& row : rows) {
        ASSERT_TRUE(show(kBoeingTheme, std::string("pin=1\r\nopacity=") + row.percent + "\r\n"));
        double share = 0.0;
        const bool isThere = session.waitUntil(
            [&] {
                Backdrop::serve();
                const ArgbImage picture = askForPicture(findPanel());
                share = shareOfSame(picture, lookAtScreen(screenRect()), row.alpha);
                // If the picture or its opacity is wrong, so is most of the bright plate.
                return share > 0.99;
            },
            30'000);
        EXPECT_TRUE(isThere) << row.percent << " %: " << share << " of the pixels are right";
        session.stop();
    }
}
