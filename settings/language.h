// language.h - which of the nine interface languages is shown. The index is the column of every text table.
#pragma once
#include <cstdint>
#include <optional>
#include <string_view>

enum Language : std::int32_t {
    kSimplifiedChinese = 0,
    kTraditionalChinese = 1,
    kEnglish = 2,
    kJapanese = 3,
    kKorean = 4,
    kGerman = 5,
    kFrench = 6,
    kSpanish = 7,
    kRussian = 8,
};
inline constexpr std::int32_t kLanguageCount = 9;

// The index for a `language` setting, by exact comparison; nothing for "auto" and for any text not in the table.
std::optional<std::int32_t> languageOfCode(std::string_view code);

// The index for a Windows language identifier (primary language in bits 0..9, sublanguage in bits 10..15).
std::int32_t languageOfSystem(std::uint16_t languageIdentifier);

// The setting's language, or the system's when the setting names none.
std::int32_t chooseLanguage(std::string_view code, std::uint16_t systemLanguageIdentifier);
