// panel_resources_test.cpp - the radio panel must leave nothing behind. Counts must grow by less than one per step:
// what other threads take and free stays far below that, a leak does not.
#include <string>
#include "base/mutex.h"
#include "panel/status_strip_win.h"
#include "settings/interface_texts.h"
#include "tests/client/import_patch_win.h"
#include "tests/client/panel_test.h"
#include "tests/client/resource_count_win.h"

namespace {

constexpr const wchar_t* kLibrary = L"corvalis_win64.dll";

bool hasPanelClass() {
    WNDCLASSEXW description = {};
    description.cbSize = sizeof description;
    return GetClassInfoExW(GetModuleHandleW(kLibrary), L"CorvalisRadioPanel", &description) != 0;
}

void expectLessThanOneAStep(const ResourceCount& before, const ResourceCount& after, int steps) {
    EXPECT_LT(after.gdiObjects - before.gdiObjects, steps);
    EXPECT_LT(after.userObjects - before.userObjects, steps);
    EXPECT_LT(after.handles - before.handles, steps);
    // A step's pictures take more than a megabyte.
    EXPECT_LT(static_cast<double>(after.privateBytes) - static_cast<double>(before.privateBytes), 0.5e6 * steps);
}

// What the UI thread starts and ends, in order, a letter for each: G and g GDI+, C and c COM.
class GraphicsOrder {
  public:
    GraphicsOrder() {
        const MutexLock lock(sMutex);
        sOrder.clear();
        sStartGdiPlus = startGdiPlus_.original();
        sEndGdiPlus = endGdiPlus_.original();
        sEnterCom = enterCom_.original();
        sLeaveCom = leaveCom_.original();
    }
    bool isWatching() const {
        return startGdiPlus_.isInPlace() && endGdiPlus_.isInPlace() && enterCom_.isInPlace() && leaveCom_.isInPlace();
    }
    static std::string order() {
        const MutexLock lock(sMutex);
        return sOrder;
    }

  private:
    static void note(char step) {
        const MutexLock lock(sMutex);
        sOrder += step;
    }
    static int WINAPI startGdiPlus(ULONG_PTR* token, const void* input, void* output) {
        note('G');
        return reinterpret_cast<decltype(&startGdiPlus)>(sStartGdiPlus)(token, input, output);
    }
    static void WINAPI endGdiPlus(ULONG_PTR token) {
        note('g');
        reinterpret_cast<decltype(&endGdiPlus)>(sEndGdiPlus)(token);
    }
    static HRESULT WINAPI enterCom(void* reserved, DWORD kind) {
        note('C');
        return reinterpret_cast<decltype(&enterCom)>(sEnterCom)(reserved, kind);
    }
    static void WINAPI leaveCom() {
        note('c');
        reinterpret_cast<decltype(&leaveCom)>(sLeaveCom)();
    }

    static inline Mutex sMutex;
    static inline std::string sOrder GUARDED_BY(sMutex);
    static inline void *sStartGdiPlus = nullptr, *sEndGdiPlus = nullptr, *sEnterCom = nullptr, *sLeaveCom = nullptr;
    const ImportPatch startGdiPlus_{kLibrary, "GdiplusStartup", reinterpret_cast<void*>(&startGdiPlus)};
    const ImportPatch endGdiPlus_{kLibrary, "GdiplusShutdown", reinterpret_cast<void*>(&endGdiPlus)};
    const ImportPatch enterCom_{kLibrary, "CoInitializeEx", reinterpret_cast<void*>(&enterCom)};
    const ImportPatch leaveCom_{kLibrary, "CoUninitialize", reinterpret_cast<void*>(&leaveCom)};
};

}  // namespace

class PanelResources : public PanelTest {
  protected:
    // Another theme in another size, drawn anew several times with its knob turning.
    void present(std::int32_t theme, int percent) {
        session.writeSettings("theme=" + std::to_string(theme) + "\r\npanel_scale=" + std::to_string(percent) + "\r\n");
        ASSERT_TRUE(session.start());
        const PanelDriver driver(findPanel(), theme);
        presentNow();
        POINT knob = driver.pointOn(theme == kGeneralTheme ? kStandbyMhzDigits : kLargeKnob);
        ClientToScreen(findPanel(), &knob);
        for (int i = 0; i < 5; i++) {
            send(WM_MOUSEWHEEL, MAKEWPARAM(0, i % 2 ? 120 : -120), MAKELPARAM(knob.x, knob.y));
            presentNow();
        }
    }
    // The number of steps.
    int presentAll() {
        int steps = 0;
        for (const std::int32_t theme : {kBoeingTheme, kAirbusTheme, kGeneralTheme}) {
            for (const int percent : {60, 100, 75}) {
                present(theme, percent);
                steps++;
            }
        }
        return steps;
    }
};

TEST_F(PanelResources, DoNotGrowOverManyPresentations) {
    ASSERT_TRUE(show(kGeneralTheme));
    for (int i = 0; i < 2; i++) presentAll();  // fills the caches
    const ResourceCount before = countResources();
    ASSERT_GT(before.gdiObjects, 0);
    ASSERT_GT(before.userObjects, 0);
    ASSERT_GT(before.handles, 0);
    int steps = 0;
    for (int i = 0; i < 3; i++) steps += presentAll();
    expectLessThanOneAStep(before, countResources(), steps);
}

// The panel's own status lines, as a user sees them who drags the panel through all its sizes.
TEST(StatusStripResources, AreNotThoseOfEverySizeThatWasShown) {
    StatusStrip strip;
    const ThemeLayout& layout = themeLayout(kGeneralTheme);
    PanelLayers layers(ArgbImage{}, kGeneralTheme, 1.0f, static_cast<std::int32_t>(layout.width),
                       static_cast<std::int32_t>(layout.height));
    const auto paintAt = [&](std::int32_t height) {
        layers.statusRoom = {0, 0, 400, height};
        strip.paint(layers, "Simulator connected", "Tower 118.000", 0);
    };
    paintAt(20);
    const ResourceCount before = countResources();
    for (std::int32_t height = 21; height <= 80; height++) paintAt(height);  // 36 sizes of the font
    EXPECT_LT(countResources().gdiObjects - before.gdiObjects, 18);
}

// Channel names, which are strangers' texts, may bring any character.
TEST(TextFontsResources, DoNotGrowWithEveryCharacterThatWasShown) {
    TextFonts fonts;
    const HDC dc = CreateCompatibleDC(nullptr);
    const TextStyle style = {fontFamiliesOf(0), 12, false};
    const auto askFrom = [&](wchar_t first) {
        for (wchar_t i = 0; i < 10'000; i++) fonts.fontFor(dc, style, static_cast<wchar_t>(first + i));
    };
    askFrom(0x0100);
    const std::size_t before = heapBytes();
    for (const wchar_t first : {0x3000, 0x6000, 0x9000, 0xC000}) askFrom(first);
    // Kept, the answers for 40,000 characters would take one and a half megabytes at least.
    EXPECT_LT(heapBytes(), before + 800'000);
    DeleteDC(dc);
}

TEST_F(PanelResources, AreGivenBackAtShutdown) {
    const auto cycle = [&](std::int32_t theme) {
        ASSERT_TRUE(show(theme));
        session.stop();
    };
    for (int i = 0; i < kThemeCount; i++) cycle(i);
    const ResourceCount before = countResources();
    int steps = 0;
    for (; steps < 3 * kThemeCount; steps++) cycle(steps % kThemeCount);
    expectLessThanOneAStep(before, countResources(), steps);
}

TEST_F(PanelResources, NoClassAndNoWindowIsLeftOverTwoLoads) {
    for (int i = 0; i < kThemeCount; i++) {
        ASSERT_TRUE(show(i));
        EXPECT_TRUE(hasPanelClass());
        session.stop();
        EXPECT_FALSE(hasPanelClass());
        EXPECT_EQ(findPanel(), nullptr);
        EXPECT_EQ(findPanelTip(), nullptr);
        session.plugin.unload();
        EXPECT_EQ(GetModuleHandleW(kLibrary), nullptr);
    }
}

TEST_F(PanelResources, GdiPlusStartsBeforeComAndEndsBeforeIt) {
    ASSERT_TRUE(session.load());
    const GraphicsOrder graphics;
    ASSERT_TRUE(graphics.isWatching());
    ASSERT_TRUE(show(kBoeingTheme));
    EXPECT_EQ(GraphicsOrder::order(), "GC");
    session.stop();
    EXPECT_EQ(GraphicsOrder::order(), "GCgc");
}
