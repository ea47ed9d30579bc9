// command_text.h - one command from the plugin, as command.json carries it:
// {"id":"4242-91234567","com":1,"slot":"standby","target":121500,"created":1790000000.125}
#pragma once
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include "worker/radio_types.h"

inline constexpr std::size_t kMaxCommandBytes = 4096;  // a larger file is no command
inline constexpr std::size_t kMaxIdBytes = 128;

struct CommandRequest {
    std::string id;        // 1..128 printable ASCII characters, no double quote or backslash
    RadioWrite write;      // value: any finite number, not yet judged
    double created = 0.0;  // seconds since 1970-01-01 UTC, any finite number
};

// Fields in any order and blanks between them are taken, further fields ignored; a field that is missing, of another
// type or out of its list, or a text cut short, is no command.
std::optional<CommandRequest> parseCommandText(std::string_view text);

// The "ack_id" of a telemetry file; empty if the text is not one or holds none.
std::string lastAckId(std::string_view telemetryText);
