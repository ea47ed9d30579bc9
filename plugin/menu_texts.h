// menu_texts.h - the plugin's three entries in the host's menu, in nine languages.
#pragma once
#include <cstdint>

enum MenuEntry : std::int32_t {
    kMenuSettings = 1,
    kMenuShowPanel = 2,
    kMenuTextMessages = 3,
};
inline constexpr int kMenuEntryCount = 3;

// UTF-8, below 128 bytes. language is clamped to 0..8 (settings/language.h); entry is 1..3.
const char* menuText(std::int32_t entry, std::int32_t language);
