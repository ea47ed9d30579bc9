// plain_word_wrap.h - the wrapping rules followed literally, measuring at every token: the judge of the fast version.
#pragma once
#include <string>
#include <vector>
#include "base/display_text.h"
#include "ui/word_wrap.h"

inline std::vector<std::u16string> plainWrap(const std::u16string& text, float maxWidth, const MeasureText& measure) {
    std::vector<std::u16string> lines;
    std::u16string line;
    const auto endLine = [&] {
        lines.push_back(line);
        line.clear();
    };
    for (std::size_t at = 0; at < text.size();) {
        if (text[at] == u'\n') {
            endLine();
            at++;
            continue;
        }
        if (text[at] == u' ') {
            line += text[at++];
            continue;
        }
        // A token: one wide character, or everything up to the next space, line feed or wide character.
        std::vector<std::u16string> characters;
        do {
            const std::size_t end = characterEnd(text, at);
            characters.push_back(text.substr(at, end - at));
            at = end;
        } while (!isWide(characters[0][0]) && at < text.size() && text[at] != u' ' && text[at] != u'\n' &&
                 !isWide(text[at]));
        std::u16string token;
        for (const std::u16string& character : characters) token += character;
        if (!line.empty() && measure(line + token) > maxWidth) endLine();
        if (line.empty() && characters.size() >= 2 && measure(token) > maxWidth) {
            for (const std::u16string& character : characters) {
                if (!line.empty() && measure(line + character) > maxWidth) endLine();
                line += character;
            }
        } else {
            line += token;
        }
    }
    if (!line.empty()) endLine();
    return lines;
}
