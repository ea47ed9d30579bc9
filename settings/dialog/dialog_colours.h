// dialog_colours.h - the settings dialog's colours. Static data. [any]
#pragma once
#include <cstdint>
#include "settings/dialog/dialog_view.h"

using ARGB = std::uint32_t;  // opaque unless noted

// Near-black with a tint of green, like the message window; one green accent; amber only for what is amiss.
inline constexpr ARGB kGround = 0xFF0B100E;
inline constexpr ARGB kNavigationGround = 0xFF080C0A;
inline constexpr ARGB kTitleGround = 0xFF0E1512;
inline constexpr ARGB kLine = 0xFF1D2A23;
inline constexpr ARGB kFrame = 0xFF1B3A28;
inline constexpr ARGB kCard = 0xFF121A16;
inline constexpr ARGB kCardHovered = 0xFF1A2520;
inline constexpr ARGB kCardPressed = 0xFF0E1411;
inline constexpr ARGB kCardEdge = 0xFF24332B;
inline constexpr ARGB kGroove = 0xFF2B3B33;  // a switch that is off, a slider's empty part
inline constexpr ARGB kKnob = 0xFFA9BDB1;    // the knob of a switch that is off
inline constexpr ARGB kAccent = 0xFF6FDC9C;
inline constexpr ARGB kAccentHovered = 0xFF8AE8B1;
inline constexpr ARGB kAccentPressed = 0xFF57BE82;
inline constexpr ARGB kOnAccent = 0xFF06140C;
inline constexpr ARGB kFocus = 0xFFE6FFF0;
inline constexpr ARGB kAmber = 0xFFFFB84D;
inline constexpr ARGB kClose = 0xFFFF6B6B;
inline constexpr ARGB kPlain = 0xFFDDE8E1;

inline ARGB colourOf(TextTone tone) {
    switch (tone) {
        case TextTone::kStrong:
            return 0xFFF2F8F4;
        case TextTone::kPlain:
            return kPlain;
        case TextTone::kDim:
            return 0xFF93A89C;
        case TextTone::kFaint:
            return 0xFF73877C;
        case TextTone::kAccent:
            return kAccent;
        case TextTone::kAmber:
            return kAmber;
        case TextTone::kOnAccent:
            return kOnAccent;
    }
    return kPlain;
}
