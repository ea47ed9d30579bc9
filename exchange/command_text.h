// command_text.h - "command.json": one write that the plugin asks of the worker.
// {"id":"4242-91234567","com":1,"slot":"standby","target":121500,"created":1790000000.125}
#pragma once
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include "exchange/com_radio.h"
#include "exchange/flat_json.h"

inline constexpr const char* kCommandFile = "command.json";
inline constexpr std::size_t kMaxCommandBytes = 4096;  // a larger file is not a command
inline constexpr std::size_t kMaxIdBytes = 128;

struct CommandRequest {
    std::string id;        // 1..128 printable ASCII characters, no double quote or backslash
    RadioWrite write;      // value: any finite number, not yet checked
    double created = 0.0;  // seconds since 1970-01-01 UTC, any finite number: the wall clock at writing
};

// [any] The file's one line. The value has six significant digits, "created" three decimals; both use a decimal point
// in every locale.
std::string writeCommandText(const CommandRequest& command);

// [any] Accepts fields in any order with blanks between them and ignores further ones. Nothing if a field is missing,
// of the wrong type or not one of its values, or if the text is cut short.
std::optional<CommandRequest> parseCommandText(std::string_view text);

// False when the field (may be null) does not hold a command's id; id may have changed even then.
bool readCommandId(const FlatField* field, std::string& id);
