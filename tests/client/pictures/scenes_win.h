// scenes_win.h - what tools/screenshots takes pictures of. A new window or state is a new row (scenes_win.cpp).
#pragma once
#include <windows.h>
#include <span>
#include "tests/client/client_session_win.h"
#include "tests/client/panel_driver_win.h"
#include "tests/client/window_picture_win.h"

// The running plugin while a scene is set.
struct Stage {
    ClientSession& session;
    PanelDriver panel;
    std::int32_t theme;
    ArgbImage before;  // the panel's own picture before the act
};

enum class Moment {
    kStill,      // once nothing changes any more
    kBrightest,  // the brightest moment of a flash
};

struct Scene {
    const char* name;                       // part of the file's name
    const char* settings;                   // lines of settings.ini besides the theme
    void (*prepare)(FakeTelemetry& flown);  // the aircraft's radios before the start; null: no simulator
    void (*act)(Stage& stage);              // once the panel is shown; null: nothing
    HWND (*window)();                       // what the picture is of
    Moment moment;
    bool atEveryResolution;  // not only at 100 %
    // Whether the scene shows what it is named for; only then is the picture taken. Null: whatever is there.
    bool (*isReached)(const Stage& stage) = nullptr;
};

// The panel shows the aircraft's frequencies.
bool isConnected(const Stage& stage);

// Each is taken in every theme.
std::span<const Scene> panelScenes();
// Each is taken once.
std::span<const Scene> messageScenes();
// The settings dialog: every page in every language. Each is taken once.
std::span<const Scene> dialogScenes();
