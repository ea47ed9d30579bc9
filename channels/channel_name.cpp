#include "channels/channel_name.h"

namespace {

constexpr std::size_t kTokenLength = 7;  // "122.800"
constexpr std::size_t kPointPlace = 3;

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isDigitAt(std::string_view name, std::size_t at) {
    return at < name.size() && isDigit(name[at]);
}

// The kHz of the token that begins at start; -1 if none does. name has kTokenLength characters from there.
std::int32_t tokenAt(std::string_view name, std::size_t start) {
    if ((start > 0 && isDigit(name[start - 1])) || isDigitAt(name, start + kTokenLength)) return -1;
    std::int32_t value = 0;
    for (std::size_t i = 0; i < kTokenLength; i++) {
        const char c = name[start + i];
        if (i == kPointPlace) {
            if (c != '.' && c != ',') return -1;
            continue;
        }
        if (!isDigit(c)) return -1;
        value = value * 10 + (c - '0');
    }
    return value;
}

}  // namespace

bool channelNameCarries(std::string_view name, std::int32_t frequencyKHz) {
    if (frequencyKHz < 0) return false;
    for (std::size_t start = 0; start + kTokenLength <= name.size(); start++)
        if (tokenAt(name, start) == frequencyKHz) return true;
    return false;
}
