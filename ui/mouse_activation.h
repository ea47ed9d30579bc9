// mouse_activation.h - does a click on one of our windows take the keyboard? Whoever flies needs it for the aircraft:
// only where the wheel would not reach the window otherwise.
#pragma once
#include <cstdint>
#include <optional>

// Which window gets the wheel: the value of Windows' setting "Scroll inactive windows when I hover over them" as
// SPI_GETMOUSEWHEELROUTING reports it.
enum class WheelRouting : std::uint32_t {
    kFocus = 0,    // the one with the keyboard: the setting is off
    kHybrid = 1,   // the same for desktop programs; those of the Store scroll under the pointer
    kPointer = 2,  // the one under the pointer: on, Windows' default
};

// Empty: the system does not know the question, as Wine, which sends the wheel to the window under the pointer.
bool clickActivates(std::optional<std::uint32_t> wheelRouting);
