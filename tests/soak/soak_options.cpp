#include "tests/soak/soak_options.h"
#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>

namespace {

constexpr std::array<std::string_view, 6> kLeakNames = {"", "memory", "handle", "gdi", "user", "thread"};
constexpr double kMostMinutes = 7 * 24 * 60;
constexpr double kMostSeconds = 600;

template <class Number>
bool readNumber(const std::string& text, Number& number) {
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc{} && stop == end;
}

bool readLeak(const std::string& text, PlantedLeak& leak) {
    const auto name = std::find(kLeakNames.begin() + 1, kLeakNames.end(), text);
    if (name == kLeakNames.end()) return false;
    leak = static_cast<PlantedLeak>(name - kLeakNames.begin());
    return true;
}

bool readOption(const std::string& option, const std::string& value, SoakOptions& options) {
    if (option == "--minutes")
        return readNumber(value, options.minutes) && options.minutes > 0.0 && options.minutes <= kMostMinutes;
    if (option == "--every")
        return readNumber(value, options.everySeconds) && options.everySeconds >= 1.0 &&
               options.everySeconds <= kMostSeconds;
    if (option == "--seed") return readNumber(value, options.seed.emplace());
    return option == "--leak" && readLeak(value, options.leak);
}

}  // namespace

std::optional<SoakOptions> parseSoakOptions(const std::vector<std::string>& arguments) {
    SoakOptions options;
    if (arguments.empty() || arguments.size() % 2 == 0) return std::nullopt;
    options.outFolder = arguments[0];
    if (options.outFolder.empty() || options.outFolder.starts_with("--")) return std::nullopt;
    for (std::size_t i = 1; i < arguments.size(); i += 2) {
        if (!readOption(arguments[i], arguments[i + 1], options)) return std::nullopt;
    }
    return options;
}
