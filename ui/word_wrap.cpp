// word_wrap.cpp - every line is one stretch of the text, so a line is known by where it ends. That end follows from the
// first character that reaches beyond the width: if it is a space, the line goes on to the next token; if it is in a
// token, the line ends before that token, or before the character when the token began the line. So it is enough to
// find that character, by a guess and a search around it, instead of measuring token by token.
#include "ui/word_wrap.h"
#include <algorithm>
#include "base/display_text.h"

namespace {

constexpr std::size_t kFirstGuess = 64;  // characters on a line

bool isIdeograph(char16_t unit) {
    return unit >= 0x3000 && unit <= 0x9FFF;  // Chinese, kana and their punctuation
}

bool isClosing(char16_t unit) {
    return std::u16string_view(u"。、，：；）」ーっャュョッ").find(unit) != std::u16string_view::npos;
}

bool isMessageBreak(char16_t before, char16_t next) {
    return before == u' ' || isWide(before) || isWide(next);
}

bool isDescriptionBreak(char16_t before, char16_t next) {
    return before == u' ' || ((isIdeograph(before) || isIdeograph(next)) && !isClosing(next));
}

class Wrapper {
  public:
    Wrapper(std::u16string_view text, float maxWidth, const MeasureText& measure, const WrapRules& rules)
        : text_(text), maxWidth_(maxWidth), measure_(measure), rules_(rules) {
        for (std::size_t at = 0; at < text.size(); at = characterEnd(text, at)) starts_.push_back(at);
        count_ = starts_.size();
        starts_.push_back(text.size());
    }

    std::vector<std::u16string_view> wrap(std::size_t maxLines) {
        std::vector<std::u16string_view> lines;
        std::size_t begin = 0;
        std::size_t feed = findFeed(0);
        while (begin < count_ && lines.size() < maxLines) {
            if (feed < begin) feed = findFeed(begin);
            const std::size_t end = lineEnd(begin, feed);
            lines.push_back(piece(begin, end));
            begin = end == feed ? end + 1 : end;  // the line feed itself is on no line
        }
        return lines;
    }

  private:
    // All positions below count characters.
    char16_t unitAt(std::size_t i) const { return text_[starts_[i]]; }
    bool isSpace(std::size_t i) const { return unitAt(i) == u' '; }
    bool mayBreakBefore(std::size_t i) const { return rules_.mayBreakBetween(unitAt(i - 1), unitAt(i)); }
    std::u16string_view piece(std::size_t begin, std::size_t end) const {
        return text_.substr(starts_[begin], starts_[end] - starts_[begin]);
    }
    bool fits(std::size_t begin, std::size_t end) const { return measure_(piece(begin, end)) <= maxWidth_; }
    std::size_t findFeed(std::size_t from) const {
        while (from < count_ && unitAt(from) != u'\n') from++;
        return from;
    }

    // Where the line from begin ends if character `over` is the first that reaches beyond the width.
    std::size_t breakFor(std::size_t begin, std::size_t over, std::size_t feed) const {
        if (over >= feed) return feed;
        if (isSpace(over)) {
            while (over < feed && isSpace(over)) over++;
            return over;
        }
        std::size_t token = over;
        while (token > begin && !mayBreakBefore(token)) token--;
        if (token > begin) return token;
        return rules_.breaksTokens ? std::max(over, begin + 1) : tokenEnd(begin, feed);
    }
    // Where the token that begins at begin ends, with the spaces behind it.
    std::size_t tokenEnd(std::size_t begin, std::size_t feed) const {
        std::size_t end = begin + 1;
        while (end < feed && (isSpace(end) || !mayBreakBefore(end))) end++;
        return end;
    }

    // The end of the line from begin, in a paragraph that ends at feed.
    std::size_t lineEnd(std::size_t begin, std::size_t feed) {
        if (begin == feed) return feed;
        // The line holds at least one character, whatever its width: `over` is in [low, high].
        std::size_t low = begin + 1;
        std::size_t high = feed;  // no character reaches beyond the width
        std::size_t guess = begin + guess_;
        std::size_t step = 1;
        while (breakFor(begin, low, feed) != breakFor(begin, high, feed)) {
            const std::size_t end = std::clamp(guess, low + 1, high);
            if (fits(begin, end)) {
                low = end;
                guess = low + step;
            } else {
                high = end - 1;
                guess = high > low + step ? high - step + 1 : low + 1;
            }
            // First by doubling steps away from the guess, then, once both sides are known, by halves.
            if (high < feed && low > begin + 1)
                guess = low + (high - low + 1) / 2;
            else
                step *= 2;
        }
        if (low < feed) guess_ = std::max<std::size_t>(low - begin, 1);
        return breakFor(begin, low, feed);
    }

    std::u16string_view text_;
    float maxWidth_;
    const MeasureText& measure_;
    const WrapRules& rules_;
    std::vector<std::size_t> starts_;  // of each character, in UTF-16 units; one more for the end
    std::size_t count_ = 0;            // of characters
    std::size_t guess_ = kFirstGuess;  // as many characters as the last full line held
};

}  // namespace

const WrapRules kMessageWrap = {isMessageBreak, true};
const WrapRules kDescriptionWrap = {isDescriptionBreak, false};

std::vector<std::u16string_view> wrapText(std::u16string_view text, float maxWidth, const MeasureText& measure,
                                          const WrapRules& rules, std::size_t maxLines) {
    return Wrapper(text, maxWidth, measure, rules).wrap(maxLines);
}
