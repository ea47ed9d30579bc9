#include "tests/simulator/script_words.h"
#include <charconv>
#include <cmath>

namespace standin {

Words splitWords(std::string_view line) {
    constexpr std::string_view kBlanks = " \t\r";
    Words words;
    for (auto start = line.find_first_not_of(kBlanks); start != std::string_view::npos;
         start = line.find_first_not_of(kBlanks)) {
        line.remove_prefix(start);
        const auto end = std::min(line.find_first_of(kBlanks), line.size());
        words.push_back(line.substr(0, end));
        line.remove_prefix(end);
    }
    return words;
}

bool parseNumber(std::string_view word, double& value) {
    const auto* end = word.data() + word.size();
    double number = 0.0;
    const auto [stop, error] = std::from_chars(word.data(), end, number, std::chars_format::fixed);
    if (error != std::errc{} || stop != end || !(number >= 0.0 && number <= 1e9)) return false;
    value = number;
    return true;
}

bool readScriptLines(std::string_view text, const TakeLine& take, std::string& error) {
    for (int number = 1; !text.empty(); number++) {
        const auto end = std::min(text.find('\n'), text.size());
        const auto line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        auto words = splitWords(line.substr(0, line.find('#')));
        if (words.empty()) continue;
        double seconds = 0.0;
        bool isGood = parseNumber(words[0], seconds);
        if (!isGood) error = "the line does not begin with seconds";
        words.erase(words.begin());
        isGood = isGood && take(static_cast<std::uint64_t>(std::llround(seconds * 1000.0)), words, error);
        if (!isGood) {
            error = "line " + std::to_string(number) + ": " + error;
            return false;
        }
    }
    return true;
}

}  // namespace standin
