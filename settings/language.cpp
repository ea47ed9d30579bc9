#include "settings/language.h"

namespace {

struct LanguageCode {
    std::string_view code;
    Language language;
};

constexpr LanguageCode kCodes[] = {
    {"zh-CN", kSimplifiedChinese},
    {"zh-Hans", kSimplifiedChinese},
    {"zh", kSimplifiedChinese},
    {"zh-TW", kTraditionalChinese},
    {"zh-Hant", kTraditionalChinese},
    {"zh-HK", kTraditionalChinese},
    {"ja", kJapanese},
    {"jp", kJapanese},
    {"ko", kKorean},
    {"kr", kKorean},
    {"de", kGerman},
    {"fr", kFrench},
    {"es", kSpanish},
    {"ru", kRussian},
    {"en", kEnglish},
    {"en-US", kEnglish},
    {"en-GB", kEnglish},
};

// Windows' primary language identifiers (winnt.h, LANG_*).
struct SystemLanguage {
    std::uint16_t primary;
    Language language;
};

constexpr std::uint16_t kPrimaryChinese = 0x04;
constexpr SystemLanguage kSystemLanguages[] = {
    {0x07, kGerman}, {0x0A, kSpanish}, {0x0C, kFrench}, {0x11, kJapanese}, {0x12, kKorean}, {0x19, kRussian},
};

// Taiwan 1, Hong Kong 3 and Macao 5 write Traditional Chinese.
bool isTraditional(unsigned sublanguage) {
    return sublanguage == 1 || sublanguage == 3 || sublanguage == 5;
}

}  // namespace

std::optional<std::int32_t> languageOfCode(std::string_view code) {
    for (const auto& row : kCodes)
        if (row.code == code) return row.language;
    return std::nullopt;
}

std::int32_t languageOfSystem(std::uint16_t languageIdentifier) {
    const unsigned primary = languageIdentifier & 0x3FFU;
    if (primary == kPrimaryChinese)
        return isTraditional(languageIdentifier >> 10U) ? kTraditionalChinese : kSimplifiedChinese;
    for (const auto& row : kSystemLanguages)
        if (row.primary == primary) return row.language;
    return kEnglish;
}

std::int32_t chooseLanguage(std::string_view code, std::uint16_t systemLanguageIdentifier) {
    const auto chosen = languageOfCode(code);
    return chosen ? *chosen : languageOfSystem(systemLanguageIdentifier);
}
