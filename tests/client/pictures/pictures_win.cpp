// pictures_win.cpp - takes the pictures of the real windows, in the stand-in voice client.
//   pictures OUT_FOLDER PERCENT [PART]     PERCENT: the screen's resolution, for the files' names; PART: only the
//                                          pictures whose name has it
// Exits with 1 if a picture could not be taken.
#include <cstdio>
#include <string>
#include "panel/gdiplus_win.h"
#include "tests/client/pictures/scenes_win.h"
#include "tests/client/pictures/screen_picture_win.h"

namespace {

constexpr const char* kThemeNames[] = {"general", "boeing", "airbus"};
constexpr LONG kMargin = 24;                // of ground around the window
constexpr DWORD kBetweenMs = 25;            // two looks at the screen
constexpr std::uint64_t kStillMs = 200;     // unchanged for so long is still: six ticks of the panel
constexpr std::uint64_t kWatchedMs = 1200;  // a whole flash, and a bit
constexpr std::uint64_t kDeadlineMs = 6000;

// The window with its tip if one is shown, and some ground around them.
RECT pictureArea(HWND window) {
    RECT area = {}, tip = {};
    GetWindowRect(window, &area);
    if (findPanelTip() && IsWindowVisible(findPanelTip()) && GetWindowRect(findPanelTip(), &tip)) {
        UnionRect(&area, &area, &tip);
    }
    InflateRect(&area, kMargin, kMargin);
    const RECT screen = {0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
    IntersectRect(&area, &area, &screen);
    return area;
}

ScreenPicture takeStill(ClientSession& session, Ground& ground, HWND window) {
    ScreenPicture last;
    std::uint64_t sinceMs = systemTickMs();
    session.waitUntil(
        [&] {
            ground.serve();
            Sleep(kBetweenMs);
            ScreenPicture now = takePicture(pictureArea(window));
            if (now != last) sinceMs = systemTickMs();
            last = std::move(now);
            return systemTickMs() - sinceMs >= kStillMs;
        },
        kDeadlineMs);
    return last;
}

ScreenPicture takeBrightest(ClientSession& session, Ground& ground, HWND window) {
    ScreenPicture brightest = takeStill(session, ground, window);  // a flash stands still between its changes
    ScreenPicture darkest = brightest;
    session.waitUntil(
        [&] {
            ground.serve();
            Sleep(kBetweenMs);
            ScreenPicture now = takePicture(pictureArea(window));
            if (brightnessOf(now) < brightnessOf(darkest)) darkest = now;
            if (brightnessOf(now) > brightnessOf(brightest)) brightest = std::move(now);
            return false;
        },
        kWatchedMs);
    if (brightest == darkest) std::printf("    (nothing flashed)\n");
    return brightest;
}

// Whole and in sight.
bool isOnScreen(HWND window) {
    RECT rect = {}, seen = {};
    if (!window || !IsWindowVisible(window) || !GetWindowRect(window, &rect)) return false;
    const RECT screen = {0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
    return IntersectRect(&seen, &rect, &screen) && EqualRect(&seen, &rect);
}

// Sets the scene in a plugin of its own; an empty picture if it does not come about.
ScreenPicture playScene(const Scene& scene, std::int32_t theme, Ground& ground) {
    ClientSession session;
    session.writeSettings("theme=" + std::to_string(theme) + "\r\npanel_x=60\r\npanel_y=50\r\n" + scene.settings);
    if (scene.prepare) {
        scene.prepare(session.telemetry);
        session.publish();
        session.host.moveByHand(kSchid, kOwnClient, kApproach118005);  // where flyAlong's frequency is talked on
    }
    SetCursorPos(GetSystemMetrics(SM_CXSCREEN) - 1, GetSystemMetrics(SM_CYSCREEN) - 1);  // off every window
    if (!session.start()) return {};
    if (!session.waitUntil([] { return isOnScreen(findPanel()); })) return {};
    if (!session.waitPasses(3)) return {};  // the aircraft is read
    Stage stage{session, {findPanel(), theme}, theme};
    if (scene.act) scene.act(stage);
    if (!session.waitUntil([&] { return isOnScreen(scene.window()); })) return {};
    RECT rect = {};
    GetWindowRect(scene.window(), &rect);
    ground.divideAt((rect.left + rect.right) / 2);
    return scene.moment == Moment::kStill ? takeStill(session, ground, scene.window())
                                          : takeBrightest(session, ground, scene.window());
}

struct Order {
    std::filesystem::path folder;
    std::string percent;
    std::string part;  // of the names wanted
};

class Photographer {
  public:
    explicit Photographer(const Order& order) : order_(order) {}

    // The picture's name begins with what it is of.
    void take(const Scene& scene, std::int32_t theme, const std::string& subject) {
        if (order_.percent != "100" && !scene.atEveryResolution) return;
        const std::string name = subject + "_" + scene.name + "_" + order_.percent + ".png";
        if (name.find(order_.part) == std::string::npos) return;
        const bool saved = savePicture(playScene(scene, theme, ground_), order_.folder / name);
        if (!saved) std::printf("    no picture %s\n", name.c_str());
        (saved ? taken_ : failed_)++;
    }

    // The number of pictures that failed.
    int finish() const {
        std::printf("%d pictures at %s %%, %d failed\n", taken_, order_.percent.c_str(), failed_);
        return failed_;
    }

  private:
    const Order& order_;
    Ground ground_;
    int taken_ = 0;
    int failed_ = 0;
};

int takePictures(const Order& order) {
    Photographer photographer(order);
    for (std::int32_t theme = 0; theme < kThemeCount; theme++) {
        for (const Scene& scene : panelScenes()) {
            if (scene.moment == Moment::kBrightest && theme == kGeneralTheme) continue;  // no lamp of its flashes
            photographer.take(scene, theme, std::string("panel_") + kThemeNames[theme]);
        }
    }
    for (const Scene& scene : messageScenes()) photographer.take(scene, kGeneralTheme, "messages");
    for (const Scene& scene : dialogScenes()) photographer.take(scene, kGeneralTheme, "settings");
    return photographer.finish();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::printf("usage: pictures OUT_FOLDER PERCENT [PART]\n");
        return 2;
    }
    useScreenPixels();
    const GdiPlusSession gdiPlus;
    return takePictures({argv[1], argv[2], argc > 3 ? argv[3] : ""}) == 0 ? 0 : 1;
}
