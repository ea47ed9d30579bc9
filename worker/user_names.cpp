#include "worker/user_names.h"
#include <algorithm>
#include <optional>
#include "base/display_text.h"
#include "base/utf8.h"
#include "worker/masked_text.h"

namespace {

constexpr std::string_view kMask = "<user>";
// No name on Windows has these, nor a question mark; but the question mark is what the system code page makes of a
// letter that it lacks.
constexpr std::string_view kEnds = "\\/:*\"<>|";
// The folders that hold one folder per person.
constexpr std::string_view kRoots[] = {"Users", "home", "Documents and Settings"};

// Where the alphabets that Windows' own user names come in keep their capitals, and how far off the small letters are.
struct Capitals {
    char32_t first, last;
    char32_t step;  // from one capital to the next
    char32_t toSmall;
};
constexpr Capitals kCapitals[] = {
    {'A', 'Z', 1, 32},        // ASCII
    {0x00C0, 0x00DE, 1, 32},  // Latin-1; it does no harm that multiplication and division sign are equal
    {0x0100, 0x0136, 2, 1},   // Latin Extended-A, capitals even
    {0x0139, 0x0147, 2, 1},   // capitals odd
    {0x014A, 0x0176, 2, 1},   // even again
    {0x0179, 0x017D, 2, 1},   // odd again
    {0x0391, 0x03AB, 1, 32},  // Greek
    {0x0400, 0x040F, 1, 80},  // Cyrillic
    {0x0410, 0x042F, 1, 32},  //
    {0x0460, 0x0480, 2, 1},   // Cyrillic, historic
    {0x048A, 0x04BE, 2, 1},   // Cyrillic of other languages
    {0x0531, 0x0556, 1, 48},  // Armenian
    {0x1E00, 0x1EFE, 2, 1},   // Latin Extended Additional: Vietnamese
    {0xFF21, 0xFF3A, 1, 32},  // full-width Latin
};

char32_t smallLetter(char32_t point) {
    for (const auto& row : kCapitals) {
        if (point >= row.first && point <= row.last && (point - row.first) % row.step == 0) return point + row.toSmall;
    }
    return point;
}

// How many bytes at the start of text are name, in whatever case; none if it begins with something else.
std::optional<std::size_t> matchedBytes(std::string_view text, std::string_view name) {
    std::size_t at = 0;
    while (!name.empty()) {
        if (at == text.size()) return std::nullopt;
        const auto left = decodePoint(text.substr(at));
        const auto right = decodePoint(name);
        if (smallLetter(left.point) != smallLetter(right.point)) return std::nullopt;
        at += left.bytes;
        name.remove_prefix(right.bytes);
    }
    return at;
}

std::size_t skipSeparators(std::string_view text, std::size_t at) {
    return std::min(text.find_first_not_of(kPathSeparators, at), text.size());
}

// Bytes up to the person's folder if a folder of such folders begins here.
std::optional<std::size_t> rootBytes(std::string_view text) {
    for (const auto root : kRoots) {
        const auto bytes = matchedBytes(text, root);
        if (!bytes) continue;
        const auto end = skipSeparators(text, *bytes);
        if (end > *bytes) return end;
    }
    return std::nullopt;
}

std::size_t componentBytes(std::string_view text) {
    const auto isEnd = [](char c) { return (c >= 0 && c < 0x20) || kEnds.find(c) != std::string_view::npos; };
    return static_cast<std::size_t>(std::find_if(text.begin(), text.end(), isEnd) - text.begin());
}

// Bytes of the account name that is a part of a path here. before: the character in front, a blank at the start.
std::optional<std::size_t> accountBytes(char before, std::string_view text, const std::vector<std::string>& names) {
    for (const auto& name : names) {
        const auto bytes = matchedBytes(text, name);
        if (!bytes) continue;
        const char after = *bytes < text.size() ? text[*bytes] : ' ';
        if (!isWordByte(after) && (isPathSeparator(before) || isPathSeparator(after))) return bytes;
    }
    return std::nullopt;
}

bool isNoName(const std::string& name) {
    return name.empty() || name == "." || name == ".." || name.find_first_of(kPathSeparators) != std::string::npos;
}

}  // namespace

std::string maskUserNames(std::string_view line, std::vector<std::string> accountNames) {
    std::erase_if(accountNames, isNoName);
    // The longest first: Jane Doe before Jane.
    std::sort(accountNames.begin(), accountNames.end(),
              [](const std::string& left, const std::string& right) { return left.size() > right.size(); });
    std::string masked;
    for (std::size_t at = 0; at < line.size();) {
        const char before = at > 0 ? line[at - 1] : ' ';
        const auto rest = line.substr(at);
        if (!isWordByte(before)) {
            if (const auto root = rootBytes(rest)) {
                const auto name = componentBytes(rest.substr(*root));
                masked.append(rest.substr(0, *root));
                if (name > 0) masked.append(kMask);
                at += *root + name;
                continue;
            }
            if (const auto account = accountBytes(before, rest, accountNames)) {
                masked.append(kMask);
                at += *account;
                continue;
            }
        }
        masked += line[at++];
    }
    return masked;
}
