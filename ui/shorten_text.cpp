#include "ui/shorten_text.h"
#include <algorithm>
#include "base/display_text.h"

namespace {

constexpr char16_t kEllipsis = u'\u2026';

std::u16string cutAt(std::u16string_view text, std::size_t end) {
    std::u16string cut(text.substr(0, end));
    cut.erase(cut.find_last_not_of(u' ') + 1);
    cut += kEllipsis;
    return cut;
}

}  // namespace

std::u16string shortenText(std::u16string_view text, float room, const MeasureText& measure) {
    if (measure(text) <= room) return std::u16string(text);
    std::vector<std::size_t> ends = {0};
    while (ends.back() < text.size()) ends.push_back(characterEnd(text, ends.back()));
    const auto tooWide = [&](std::size_t end) { return measure(cutAt(text, end)) > room; };
    const auto over =
        std::partition_point(ends.begin() + 1, ends.end(), [&](std::size_t end) { return !tooWide(end); });
    return cutAt(text, *(over - 1));
}
