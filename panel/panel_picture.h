// panel_picture.h - everything the panel shows at one moment, as a value: two equal pictures look the same, so one that
// is on the screen already need not be drawn again. Made from values. Pure functions.
#pragma once
#include <array>
#include <cstdint>
#include <string>
#include "bridge/command_queue.h"
#include "bridge/sim_state.h"
#include "panel/panel_geometry.h"
#include "panel/panel_layout.h"
#include "panel/panel_model.h"
#include "settings/settings.h"

enum class FrequencyState : std::int32_t {
    kDisconnected,  // shows 0 in kDisconnectedArgb
    kConfirmed,     // as the simulator reports it
    kPending,       // on its way to the simulator
};
inline constexpr std::uint32_t kDisconnectedArgb = 0xFF807562;
inline constexpr std::uint32_t kDisplayArgb = 0xFF232728;  // the display's ground

struct FrequencyPicture {
    std::int32_t frequencyKHz = 0;  // 0 unknown
    FrequencyState state = FrequencyState::kDisconnected;

    bool operator==(const FrequencyPicture&) const = default;
};

// "122800" for a frequency, "------" when it is unknown, "000000" while disconnected: six characters.
std::string frequencyDigits(const FrequencyPicture& picture);

struct PanelPicture {
    std::int32_t theme = kGeneralTheme;
    float scale = 1.0f;  // pixels per logical unit
    std::int32_t width = 1;
    std::int32_t height = 1;
    std::array<FrequencyPicture, 2> frequencies;  // ACTIVE, STANDBY of the selected radio
    float volumePercent = 0.0f;                   // 0..100
    float volumeAngle = -135.0f;                  // degrees: percent x 2.7 - 135
    float largeKnobAngle = 0.0f;                  // degrees, 0..360
    float smallKnobAngle = 0.0f;
    std::int32_t pressedElement = kBackground;  // what pressLevel belongs to
    float pressLevel = 0.0f;                    // 0..1
    std::uint32_t litElements = 0;              // bit n: the indicator of element n is lit
    bool pinned = false;                        // key 10 shows it
    bool txLit = false;
    bool rxLit = false;
    bool textLit = false;     // TEXT lamp of BOEING and AIRBUS, in its flash
    bool textTinted = false;  // legend of GENERAL's TEXT key, which has no lamp
    std::string statusText;   // UTF-8
    std::string channelStatus;

    bool operator==(const PanelPicture&) const = default;
};

// What the picture is made of besides the model.
struct PanelInputs {
    Settings settings;
    SimState sim;
    Commands commands;  // writes on their way
    StatusTexts status;
    bool ownTransmit = false;
    bool othersReceiving = false;
    std::int32_t unreadTexts = 0;
    std::uint64_t nowMs = 0;
};

inline constexpr std::uint64_t kTextFlashMs = 500;  // half a period of the TEXT lamp's flash

PanelPicture makePicture(const PanelInputs& inputs, const PanelModel& model, const PanelPlacement& placement);
