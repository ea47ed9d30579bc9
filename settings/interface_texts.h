// texts.h - every text of the plugin's own windows in nine languages, and the font family each language is drawn in.
// Static data; UTF-8, without a zero inside. [any]
#pragma once
#include <cstdint>
#include <string_view>
#include "settings/language.h"

inline constexpr int kTextCount = 78;

// The entries code refers to by itself; the others are named by the rows of the settings dialog.
enum TextId : int {
    kTextWindowTitle = 0,
    kTextActionFirst = 55,  // + bind_* code 0..7: what a custom key does
    kTextSimConnected = 70,
    kTextStaleData = 71,
    kTextSimNotConnected = 72,
    kTextFrom = 73,
    kTextTime = 74,
    kTextNoMessages = 75,
    kTextPageKeys = 76,
    kTextEmpty = 77,
};

// A text in a language; the index is clamped to the nine languages. An entry outside the table is empty.
std::string_view textOf(std::int32_t language, int entry);

// The family that text in this language is drawn in, with the same clamp.
std::string_view fontFamilyOf(std::int32_t language);
