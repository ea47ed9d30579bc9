// settings_text.h - settings.ini as text, both ways. The file is described in docs/file-formats.md.
// [any] Pure functions; any bytes may be read: none crashes the reader or is refused as a whole.
#pragma once
#include <string_view>
#include "settings/settings.h"

// The whole file, lines in their fixed order, each ended by CR LF.
std::string writeSettingsText(const Settings& settings);

// Reads what it can: unknown keys, sections and broken lines are skipped, values clamped, missing keys keep their
// default. A volume_min above volume_max is swapped with it.
Settings readSettingsText(std::string_view text);
