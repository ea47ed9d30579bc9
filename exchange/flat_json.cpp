#include "exchange/flat_json.h"
#include <algorithm>
#include <cmath>
#include "base/number_text.h"
#include "base/utf8.h"

namespace {

constexpr std::size_t kMaxFields = 64;
constexpr struct {
    std::string_view text;
    FlatKind kind;
} kWords[] = {{"true", FlatKind::kTrue}, {"false", FlatKind::kFalse}, {"null", FlatKind::kNull}};

void skipBlanks(std::string_view& rest) {
    rest.remove_prefix(std::min(rest.find_first_not_of(" \t\r\n"), rest.size()));
}

// Takes the piece, with the blanks before it.
bool take(std::string_view& rest, std::string_view piece) {
    skipBlanks(rest);
    if (!rest.starts_with(piece)) return false;
    rest.remove_prefix(piece.size());
    return true;
}

bool isPlain(char c) {
    return static_cast<unsigned char>(c) >= 0x20 && c != 0x7f && c != '\\';
}

bool takeString(std::string_view& rest, std::string_view& text) {
    if (!take(rest, "\"")) return false;
    const auto end = rest.find('"');
    if (end == std::string_view::npos) return false;
    text = rest.substr(0, end);
    rest.remove_prefix(end + 1);
    return std::all_of(text.begin(), text.end(), isPlain);
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

std::size_t countDigits(std::string_view text) {
    return static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), isDigit) - text.begin());
}

// Advances used past the digits there; false if there are none.
bool takeDigits(std::string_view text, std::size_t& used) {
    const auto digits = countDigits(text.substr(used));
    used += digits;
    return digits > 0;
}

// The length of a number as JSON writes it; 0 if there is none.
std::size_t numberLength(std::string_view text) {
    std::size_t used = text.starts_with('-') ? 1 : 0;
    if (!takeDigits(text, used)) return 0;
    if (used < text.size() && text[used] == '.' && !takeDigits(text, ++used)) return 0;
    if (used < text.size() && (text[used] == 'e' || text[used] == 'E')) {
        used++;
        if (used < text.size() && (text[used] == '+' || text[used] == '-')) used++;
        if (!takeDigits(text, used)) return 0;
    }
    return used;
}

bool takeNumber(std::string_view& rest, double& number) {
    const auto length = numberLength(rest);
    if (length == 0 || !parseDoublePrefix(rest.substr(0, length), number)) return false;
    rest.remove_prefix(length);
    return std::isfinite(number);
}

bool takeValue(std::string_view& rest, FlatField& field) {
    skipBlanks(rest);
    field.kind = FlatKind::kText;
    if (rest.starts_with('"')) return takeString(rest, field.text);
    for (const auto& word : kWords) {
        field.kind = word.kind;
        if (take(rest, word.text)) return true;
    }
    field.kind = FlatKind::kNumber;
    return takeNumber(rest, field.number);
}

bool takeFields(std::string_view& rest, std::vector<FlatField>& fields) {
    do {
        FlatField field;
        if (!takeString(rest, field.name) || !take(rest, ":") || !takeValue(rest, field)) return false;
        if (fields.size() == kMaxFields || findField(fields, field.name)) return false;
        fields.push_back(field);
    } while (take(rest, ","));
    return true;
}

}  // namespace

std::optional<std::vector<FlatField>> readFlatJson(std::string_view text) {
    std::vector<FlatField> fields;
    text = withoutUtf8Mark(text);
    if (!take(text, "{")) return std::nullopt;
    if (!take(text, "}") && !(takeFields(text, fields) && take(text, "}"))) return std::nullopt;
    skipBlanks(text);
    if (!text.empty()) return std::nullopt;
    return fields;
}

const FlatField* findField(const std::vector<FlatField>& fields, std::string_view name) {
    const auto field = std::find_if(fields.begin(), fields.end(), [&](const FlatField& f) { return f.name == name; });
    return field == fields.end() ? nullptr : &*field;
}
