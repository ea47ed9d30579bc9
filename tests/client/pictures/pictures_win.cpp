// pictures_win.cpp - takes the pictures of the real windows, in the stand-in voice client.
//   pictures OUT_FOLDER PERCENT [PART | --each]     PERCENT: the screen's resolution, for the files' names; PART: only
//                                                   the pictures whose name has it; --each: one of each window
// Exits with 1 if a picture could not be taken.
#include <algorithm>
#include <cctype>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>
#include "tests/client/pictures/scenes_win.h"
#include "tests/client/pictures/screen_picture_win.h"
#include "ui/gdiplus_win.h"

namespace {

constexpr int kMargin = 24;                 // of ground, which shows what is translucent
constexpr int kTakes = 3;                   // Wine sometimes leaves a window behind the ground
constexpr DWORD kBetweenMs = 25;            // two looks at the screen
constexpr std::uint64_t kStillMs = 200;     // still means unchanged for this long: six ticks of the panel
constexpr std::uint64_t kWatchedMs = 1200;  // a whole flash and a bit more
constexpr std::uint64_t kDeadlineMs = 20'000;

// Where the pictures are taken.
struct Studio {
    Ground ground;
    int margin = 0;          // of ground around the window
    bool isDivided = false;  // light left of the window's middle, dark right of it; else dark
};

// The window with its tip if one is shown, and the margin around them.
RECT pictureArea(HWND window, int margin) {
    RECT area = {}, tip = {};
    GetWindowRect(window, &area);
    if (findPanelTip() && IsWindowVisible(findPanelTip()) && GetWindowRect(findPanelTip(), &tip)) {
        UnionRect(&area, &area, &tip);
    }
    InflateRect(&area, margin, margin);
    const RECT screen = {0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
    IntersectRect(&area, &area, &screen);
    return area;
}

ScreenPicture takeStill(ClientSession& session, Studio& studio, HWND window) {
    ScreenPicture last;
    std::uint64_t sinceMs = systemTickMs();
    session.waitUntil(
        [&] {
            studio.ground.serve();
            Sleep(kBetweenMs);
            ScreenPicture now = takePicture(pictureArea(window, studio.margin));
            if (now != last) sinceMs = systemTickMs();
            last = std::move(now);
            return systemTickMs() - sinceMs >= kStillMs;
        },
        kDeadlineMs);
    return last;
}

ScreenPicture takeBrightest(ClientSession& session, Studio& studio, HWND window) {
    ScreenPicture brightest = takeStill(session, studio, window);  // a flash is still between its changes
    ScreenPicture darkest = brightest;
    session.waitUntil(
        [&] {
            studio.ground.serve();
            Sleep(kBetweenMs);
            ScreenPicture now = takePicture(pictureArea(window, studio.margin));
            if (brightnessOf(now) < brightnessOf(darkest)) darkest = now;
            if (brightnessOf(now) > brightnessOf(brightest)) brightest = std::move(now);
            return false;
        },
        kWatchedMs);
    if (brightest == darkest) std::printf("    (nothing flashed)\n");
    return brightest;
}

// Whole and in sight: the system calls a window visible before the screen shows it.
bool isOnScreen(HWND window) {
    RECT rect = {}, seen = {};
    if (!window || !IsWindowVisible(window) || !GetWindowRect(window, &rect)) return false;
    const RECT screen = {0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
    return IntersectRect(&seen, &rect, &screen) && EqualRect(&seen, &rect) && !Ground::isBare(rect);
}

// Plays the scene in a plugin of its own; an empty picture if it does not come about.
ScreenPicture playScene(const Scene& scene, std::int32_t theme, Studio& studio) {
    ClientSession session;
    session.writeSettings("theme=" + std::to_string(theme) + "\r\npanel_x=60\r\npanel_y=50\r\n" + scene.settings);
    if (scene.prepare) {
        scene.prepare(session.telemetry);
        session.publish();
        session.host.moveByHand(kSchid, kOwnClient, kApproach118005);  // the channel of flyAlong's frequency
    }
    SetCursorPos(GetSystemMetrics(SM_CXSCREEN) - 1, GetSystemMetrics(SM_CYSCREEN) - 1);  // off every window
    const auto fail = [](const char* what) {
        std::printf("    %s\n", what);
        return ScreenPicture();
    };
    if (!session.start()) return fail("the plugin does not start");
    if (!session.waitUntil([] { return isOnScreen(findPanel()); }, kDeadlineMs)) return fail("no panel on the screen");
    if (!session.waitPasses(3)) return fail("the aircraft is not read");
    Stage stage{session, {findPanel(), theme}, theme, {}};
    if (scene.prepare && !session.waitUntil([&] { return isConnected(stage); }, kDeadlineMs))
        return fail("the panel is not connected");
    stage.before = askForPicture(findPanel());
    if (scene.act) scene.act(stage);
    if (!session.waitUntil([&] { return isOnScreen(scene.window()); }, kDeadlineMs))
        return fail("the window is not on the screen");
    if (scene.isReached && !session.waitUntil([&] { return scene.isReached(stage); }, kDeadlineMs))
        return fail("it does not show what it is named for");
    RECT rect = {};
    GetWindowRect(scene.window(), &rect);
    if (studio.isDivided) studio.ground.divideAt((rect.left + rect.right) / 2);
    const bool isStill = scene.moment == Moment::kStill || theme == kGeneralTheme;  // GENERAL has no flashing lamp
    return isStill ? takeStill(session, studio, scene.window()) : takeBrightest(session, studio, scene.window());
}

std::string lowerCase(std::string_view name) {
    std::string lower(name);
    for (char& letter : lower) letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    return lower;
}

// One picture of each window or page: the one that says most.
constexpr const char* kOneOfEach[] = {"panel_general_connected", "panel_boeing_connected", "panel_airbus_connected",
                                      "messages_clearance",      "settings_general_en",    "settings_voice_en",
                                      "settings_radio_en",       "settings_about_en"};

struct Order {
    std::filesystem::path folder;
    std::string percent;
    std::string part;  // part of the wanted pictures' names
    bool isOneOfEach = false;
};

struct Picture {
    const Scene* scene;
    std::int32_t theme;
    std::string name;  // begins with its subject
};

bool isWanted(const Picture& picture, const Order& order) {
    if (order.percent != "100" && !picture.scene->atEveryResolution) return false;
    if (!order.isOneOfEach) return picture.name.find(order.part) != std::string::npos;
    return std::any_of(std::begin(kOneOfEach), std::end(kOneOfEach),
                       [&](const char* name) { return picture.name == name; });
}

std::vector<Picture> wantedPictures(const Order& order) {
    std::vector<Picture> pictures;
    const auto add = [&](const Scene& scene, std::int32_t theme, const std::string& subject) {
        Picture picture{&scene, theme, subject + "_" + scene.name};
        if (isWanted(picture, order)) pictures.push_back(std::move(picture));
    };
    for (std::int32_t theme = 0; theme < kThemeCount; theme++) {
        for (const Scene& scene : panelScenes()) {
            add(scene, theme, "panel_" + lowerCase(themeName(theme)));
        }
    }
    for (const Scene& scene : messageScenes()) add(scene, kGeneralTheme, "messages");
    for (const Scene& scene : dialogScenes()) add(scene, kGeneralTheme, "settings");
    return pictures;
}

// False if a picture could not be taken or a window of --each has no scene.
bool takePictures(const Order& order) {
    Studio studio{{}, order.isOneOfEach ? 0 : kMargin, !order.isOneOfEach};
    if (order.isOneOfEach) studio.ground.darken();
    const auto pictures = wantedPictures(order);
    const std::size_t expected = order.isOneOfEach ? std::size(kOneOfEach) : pictures.size();
    std::size_t taken = 0;
    for (std::size_t i = 0; i < pictures.size(); i++) {
        const Picture& picture = pictures[i];
        std::printf("Picture %zu/%zu at %s %%: %s\n", i + 1, pictures.size(), order.percent.c_str(),
                    picture.name.c_str());
        std::fflush(stdout);
        const auto file = order.folder / (picture.name + "_" + order.percent + ".png");
        bool saved = false;
        for (int take = 0; take < kTakes && !saved; take++)
            saved = savePicture(playScene(*picture.scene, picture.theme, studio), file);
        if (saved) taken++;
        if (!saved) std::printf("    no picture %s\n", picture.name.c_str());
    }
    if (taken != expected) std::printf("%zu pictures taken of %zu\n", taken, expected);
    return taken == expected;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::printf("usage: pictures OUT_FOLDER PERCENT [PART | --each]\n");
        return 2;
    }
    useDevicePixels();
    const GdiPlusSession gdiPlus;
    const std::string part = argc > 3 ? argv[3] : "";
    const bool isOneOfEach = part == "--each";
    return takePictures({argv[1], argv[2], isOneOfEach ? "" : part, isOneOfEach}) ? 0 : 1;
}
