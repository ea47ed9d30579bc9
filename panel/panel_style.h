// panel_style.h - the colours of the three themes. Static data, one row per theme; ARGB, opaque.
#pragma once
#include <cstdint>

struct PanelStyle {
    std::uint32_t confirmedDigits;  // a frequency the simulator reports
    std::uint32_t pendingDigits;    // one on its way to the simulator; also underlined, for the colour-blind
    float unlitShare;               // 0..1: how much of the digits' colour an unlit segment shows
    float slant;                    // of the digits, see segment_glyphs.h
    std::uint32_t keyLamp;          // indicators of the keys
    std::uint32_t textLamp;         // of the TEXT key's lamp, and of its legend where it has none
    std::uint32_t pinIcon;          // the always-on-top key's icon while it is on
    std::uint32_t statusText;
    std::uint32_t plate;  // face, keys and engraving of the panel that stands in for missing artwork
    std::uint32_t key;
    std::uint32_t engraving;
};
inline constexpr std::uint32_t kTransmitLamp = 0xFFFF7A30;  // TX amber, RX green: the same in every theme
inline constexpr std::uint32_t kReceiveLamp = 0xFF4CF07A;

// The style of a theme; GENERAL's for an unknown one.
const PanelStyle& panelStyle(std::int32_t theme);
