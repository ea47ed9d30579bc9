// panel_rig.h - the radio panel's model with all that it works on: a connected aircraft, settings in memory, and hands
// that press, drag and turn at the middle of an element.
#pragma once
#include <gtest/gtest.h>
#include <limits>
#include "panel/panel_model.h"
#include "tests/unit/bridge/rig.h"

inline constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
inline constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();

class CountedActions : public PanelActions {
  public:
    void openSettings() override { settingsOpened++; }
    void toggleTextWindow() override { textToggled++; }
    int settingsOpened = 0;
    int textToggled = 0;
};

class PanelTest : public testing::Test {
  protected:
    PanelTest() {
        setState(sim, connectedState());
        setStatusText(radios.status, "CONNECTED");
    }

    void change(const std::function<void(Settings&)>& edit) { updateSettings(settings, edit); }
    void useTheme(std::int32_t theme) {
        change([&](Settings& live) { live.theme = theme; });
    }
    void changeState(const std::function<void(SimState&)>& edit) {
        MutexLock lock(sim.mutex);
        edit(sim.state);
    }
    Settings now() { return copySettings(settings); }
    std::string status() { return copyStatus(radios.status).statusText; }
    std::vector<Command> queued() { return commandsOf(commands); }
    Command only() {
        const auto waiting = queued();
        EXPECT_EQ(waiting.size(), 1U);
        return waiting.empty() ? Command{} : waiting.front();
    }
    void forgetCommands() {
        MutexLock lock(commands.mutex);
        commands.commands.clear();
    }

    // The client pixel at a point of the artwork, at the model's scale.
    PixelPoint clientOf(UnitPoint point) {
        const UnitPoint origin = themeLayout(now().theme).origin;
        const float scale = model.panel_scale_factor;
        return {static_cast<std::int32_t>((point.x - origin.x) * scale),
                static_cast<std::int32_t>((point.y - origin.y) * scale)};
    }
    // A client pixel well inside the element; the large knob's is to the right of the small one.
    PixelPoint middleOf(std::int32_t element) {
        const ThemeLayout& layout = themeLayout(now().theme);
        const auto inside = [](const UnitRect& rect, float shareX) {
            return UnitPoint{rect.x + rect.width * shareX, rect.y + rect.height / 2};
        };
        if (element >= kActiveMhzDigits && element <= kStandbyChannelDigits) {
            const int field = element - kActiveMhzDigits;
            const FrequencyCells cells = layoutFrequency(layout.displays[static_cast<std::size_t>(field / 2)]);
            return clientOf(inside(field % 2 == 0 ? cells.mhzField : cells.channelField, 0.5f));
        }
        if (element == kFrequencyDisplay) return clientOf({layout.displays[0].x + 5, layout.displays[0].y + 5});
        const PanelHotspot* hotspot = findHotspot(layout, element);
        EXPECT_TRUE(hotspot) << element;
        if (!hotspot) return kNowhere;
        return clientOf(inside(hotspot->rect, element == kLargeKnob ? 0.9f : 0.5f));
    }
    PressResult press(PixelPoint at) {
        mouse = at;
        return pressPanel(model, context, at, clock.tickMs());
    }
    PressResult press(std::int32_t element) { return press(middleOf(element)); }
    void move(PixelPoint at) {
        mouse = at;
        movePanel(model, context, at, clock.tickMs());
    }
    void release(PixelPoint at) { releasePanel(model, context, at, clock.tickMs()); }
    void click(std::int32_t element) {
        const PixelPoint at = middleOf(element);
        press(at);
        release(at);
    }
    // The held mouse moves up by this many pixels (down if negative).
    void dragUp(std::int32_t pixels) { move({mouse.x, mouse.y - pixels}); }
    void wheel(std::int32_t element, std::int32_t delta) {
        wheelPanel(model, context, middleOf(element), delta, clock.tickMs());
    }

    static constexpr PixelPoint kNowhere{-30000, -30000};
    ManualClock clock;
    MemoryFiles files;
    SettingsStore settings{files};
    SimRadios radios;
    SharedSimState& sim = radios.sim;
    CommandQueue& commands = radios.commands;
    CountedActions actions;
    PanelContext context{settings, radios, actions};
    PanelModel model;
    PixelPoint mouse;  // where it was pressed or moved to last
};
