// flat_json.h - reads one flat JSON object: names with text, numbers, true, false or null; no nesting, no escapes.
// Whole or nothing, so that half a file never passes. [any] Keeps no state.
#pragma once
#include <optional>
#include <string_view>
#include <vector>

enum class FlatKind { kText, kNumber, kTrue, kFalse, kNull };

// Views into the text that was read.
struct FlatField {
    std::string_view name;
    FlatKind kind = FlatKind::kNull;
    std::string_view text;  // Text: between the quotes, printable bytes or bytes above 127, no backslash
    double number = 0.0;    // Number: finite
};

// At most 64 fields, blanks and line ends anywhere between the tokens. Nothing if the text is anything else, goes on
// after the object, or has a name twice.
std::optional<std::vector<FlatField>> readFlatJson(std::string_view text);

// The field of that name, or null.
const FlatField* findField(const std::vector<FlatField>& fields, std::string_view name);
