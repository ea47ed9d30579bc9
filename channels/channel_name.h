// channel_name.h - which frequencies a voice channel's name carries.
#pragma once
#include <cstdint>
#include <string_view>

// [any] True if name (UTF-8) holds frequencyKHz as a free-standing "122.800" or "122,800": three digits, point or
// comma, three digits, no digit before or after. "122.8" and "1122.800" carry nothing.
bool channelNameCarries(std::string_view name, std::int32_t frequencyKHz);
