// settings.h - every user option, in one record. A value: rooms work on a copy (copySettings in settings_store.h). A
// field has the name of its key in settings.ini. Nothing here locks; only the memory of the two strings can throw.
#pragma once
#include <cstdint>
#include <string>

struct Settings {
    bool master = true;            // the whole system's effects
    bool enabled = true;           // follow the COM frequency into its channel
    bool nrSelf = false;           // spectral noise reduction of the user's microphone
    std::int32_t radio = 1;        // 1 COM1, 2 COM2: the radio that is followed
    bool follow_volume = true;     // receive volume follows the aircraft's COM volume
    float volume_min = 0.0f;       // 0..1, lower bound of the followed volume
    float volume_max = 1.0f;       // 0..1, not below volume_min
    bool distort_self = true;      // radio effect on the user's own voice
    bool distort_others = true;    // radio effect on received voices
    bool tail_self = true;         // squelch tail after the user's own transmission
    bool tail_others = true;       // squelch tail after others
    std::int32_t target = 0;       // 0 ACTIVE, 1 STANDBY: the slot that is followed
    std::int32_t theme = 0;        // 0 GENERAL, 1 BOEING, 2 AIRBUS
    float panel_scale = 100.0f;    // 50..200 percent
    float opacity = 100.0f;        // 30..100 percent
    float receive_volume = 80.0f;  // 0..100 percent, 80 is unity
    float transmit_gain = 0.0f;    // 0..18 dB
    bool panel_visible = true;     // the floating radio panel is shown
    bool pin = false;              // panel always on top
    bool equalize = false;         // level equalizer for each speaker
    bool radio_lamps = true;       // TX and RX lamps
    bool text_alert = true;        // sound for a new text message
    bool text_auto_open = true;    // message window opens by itself
    float text_scale = 15.0f;      // 12..22, message text size
    std::int32_t panel_x = 80;     // screen pixels, may be negative
    std::int32_t panel_y = 80;
    std::int32_t bind_A = 0;  // 0..7, action codes of the custom keys
    std::int32_t bind_B = 0;
    std::int32_t bind_C = 0;
    std::int32_t bind_D = 0;
    std::int32_t bind_E = 0;
    std::string python = "pythonw.exe";  // interpreter of the worker script, never empty
    std::string language = "auto";       // interface language code, or "auto"

    bool operator==(const Settings&) const = default;
};
