// text_mutator.h - libFuzzer changes bytes; this also changes lines, keys and values, with the words of a file format.
// Include it in one source of a target and call mutateText from LLVMFuzzerCustomMutator.
#pragma once
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

// Numbers and words at which readers tend to go wrong, in any format.
inline constexpr std::string_view kHardValues[] = {
    "",
    "0",
    "1",
    "-1",
    "2147483647",
    "-2147483648",
    "99999999999999999999",
    "0.5",
    "1e38",
    "1e309",
    "1e-99",
    "-0",
    "0x1p5",
    "118.005",
    "136.99",
    "nan",
    "inf",
    "true",
    "false",
    "null",
    "\xEF\xBB\xBF",
    "\xC3\xBC",
    "\xFF",
    "\t",
    "\r",
    "\xE2\x80\xAE",
    "\xF0\x9F\x98\x80",
    "[fe80::1]:500",
    "a:b:c=d:65535",
    "\\\\server\\share",
    "C:\\Users\\jane\\x",
    "//",
    "\"",
};

class TextMutator {
  public:
    // separators: what stands between the words of the format. The words come from a sample of it.
    TextMutator(std::string_view sample, std::string_view separators)
        : separators_(separators), lines_(piecesOf(sample, "\n")), words_(piecesOf(sample, separators)) {
        words_.insert(words_.end(), std::begin(kHardValues), std::end(kHardValues));
    }

    std::size_t mutate(std::uint8_t* data, std::size_t size, std::size_t maxSize, unsigned seed) {
        random_.seed(seed);
        if (below(3) == 0) return LLVMFuzzerMutate(data, size, maxSize);
        std::string text(reinterpret_cast<const char*>(data), size);
        do change(text);
        while (below(3) == 0);
        size = std::min(text.size(), maxSize);
        if (size > 0) std::memcpy(data, text.data(), size);
        return size;
    }

  private:
    struct Span {
        std::size_t begin, end;
    };

    static std::vector<std::string> piecesOf(std::string_view text, std::string_view separators) {
        std::vector<std::string> pieces;
        while (!text.empty()) {
            const auto end = std::min(text.find_first_of(separators), text.size());
            if (end > 0) pieces.emplace_back(text.substr(0, end));
            text.remove_prefix(std::min(end + 1, text.size()));
        }
        return pieces;
    }

    std::size_t below(std::size_t limit) { return limit == 0 ? 0 : random_() % limit; }

    // The piece around a random place.
    Span pick(const std::string& text, std::string_view separators) {
        const auto at = below(text.size() + 1);
        const auto before = at == 0 ? std::string::npos : text.find_last_of(separators, at - 1);
        const auto begin = before == std::string::npos ? 0 : before + 1;
        return {begin, std::min(text.find_first_of(separators, at), text.size())};
    }

    void change(std::string& text) {
        const auto word = pick(text, separators_);
        const auto line = pick(text, "\n");
        const auto part = [&](const Span& span) { return text.substr(span.begin, span.end - span.begin); };
        switch (below(8)) {
            case 0:
            case 1:
                text.replace(word.begin, word.end - word.begin, words_[below(words_.size())]);
                break;
            case 2:
                text.insert(word.begin, words_[below(words_.size())] + separators_[below(separators_.size())]);
                break;
            case 3:
                text.erase(word.begin, word.end - word.begin + (word.end < text.size() ? 1 : 0));
                break;
            case 4: {
                const auto copy = part(word);
                const auto other = pick(text, separators_);
                text.replace(other.begin, other.end - other.begin, copy);
                break;
            }
            case 5:
                text.insert(line.begin, (lines_.empty() ? part(line) : lines_[below(lines_.size())]) + '\n');
                break;
            case 6: {
                const auto moved = part(line) + '\n';
                text.erase(line.begin, line.end - line.begin + (line.end < text.size() ? 1 : 0));
                text.insert(pick(text, "\n").begin, moved);
                break;
            }
            default:
                text.erase(line.begin, line.end - line.begin + (line.end < text.size() ? 1 : 0));
        }
    }

    std::string separators_;
    std::vector<std::string> lines_, words_;
    std::minstd_rand random_;
};
