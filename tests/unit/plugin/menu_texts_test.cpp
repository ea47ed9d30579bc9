#include "plugin/menu_texts.h"
#include <gtest/gtest.h>
#include <cstring>
#include <set>
#include <string>
#include "settings/language.h"

namespace {

// Whole characters in their shortest form, no surrogates, nothing above the last code point.
bool isUtf8(const std::string& text) {
    for (std::size_t at = 0; at < text.size();) {
        const auto first = static_cast<unsigned char>(text[at]);
        const std::size_t bytes = first < 0x80 ? 1 : first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : first >= 0xC2 ? 2 : 0;
        if (bytes == 0 || first > 0xF4 || at + bytes > text.size()) return false;
        char32_t code = bytes == 1 ? first : first & (0x7FU >> bytes);
        for (std::size_t i = 1; i < bytes; i++) {
            const auto next = static_cast<unsigned char>(text[at + i]);
            if ((next & 0xC0U) != 0x80U) return false;
            code = code << 6U | (next & 0x3FU);
        }
        const char32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
        if (code < smallest[bytes] || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) return false;
        at += bytes;
    }
    return true;
}

}  // namespace

TEST(MenuTexts, AreTheAgreedOnes) {
    const struct {
        std::int32_t entry, language;
        const char* text;
    } rows[] = {{1, 0, "Corvalis 设置"},          {1, 1, "Corvalis 設定"},
                {1, 2, "Corvalis Settings"},      {1, 3, "Corvalis 設定"},
                {1, 5, "Corvalis Einstellungen"}, {1, 6, "Corvalis Paramètres"},
                {1, 7, "Corvalis Ajustes"},       {2, 2, "Show radio panel"},
                {2, 5, "Funkpanel anzeigen"},     {2, 6, "Afficher le panneau radio"},
                {2, 7, "Mostrar panel de radio"}, {3, 2, "Show text messages (PDC)"},
                {3, 5, "Textnachrichten (PDC)"},  {3, 6, "Messages texte (PDC)"},
                {3, 7, "Mensajes de texto (PDC)"}};
    for (const auto& row : rows) EXPECT_STREQ(menuText(row.entry, row.language), row.text);
}

TEST(MenuTexts, FillEveryCellWithUtf8ThatFitsTheHostsRecord) {
    for (std::int32_t language = 0; language < kLanguageCount; language++) {
        std::set<std::string> ofLanguage;
        for (std::int32_t entry = 1; entry <= 3; entry++) {
            const std::string text = menuText(entry, language);
            EXPECT_FALSE(text.empty()) << entry << ' ' << language;
            EXPECT_LT(text.size(), 128u) << text;
            EXPECT_TRUE(isUtf8(text)) << text;
            ofLanguage.insert(text);
        }
        EXPECT_EQ(ofLanguage.size(), 3u) << language;
        EXPECT_EQ(std::string(menuText(1, language)).rfind("Corvalis ", 0), 0u) << language;
        EXPECT_NE(std::strstr(menuText(3, language), "(PDC)"), nullptr) << language;
    }
}

TEST(MenuTexts, DifferBetweenLanguagesSaveTheOneThatJapaneseAndTraditionalChineseShare) {
    for (std::int32_t entry = 1; entry <= 3; entry++) {
        std::set<std::string> texts;
        for (std::int32_t language = 0; language < kLanguageCount; language++) texts.insert(menuText(entry, language));
        EXPECT_EQ(texts.size(), kLanguageCount - (entry == 1 ? 1u : 0u)) << entry;
    }
    EXPECT_STREQ(menuText(1, 1), menuText(1, 3));
}

TEST(MenuTexts, OfAnIndexOutsideTheNineAreThoseOfTheNearestLanguage) {
    for (std::int32_t entry = 1; entry <= 3; entry++) {
        EXPECT_STREQ(menuText(entry, kLanguageCount + 3), menuText(entry, kLanguageCount - 1));
        EXPECT_STREQ(menuText(entry, INT32_MAX), menuText(entry, kLanguageCount - 1));
        EXPECT_STREQ(menuText(entry, -3), menuText(entry, 0));
        EXPECT_STREQ(menuText(entry, INT32_MIN), menuText(entry, 0));
    }
}
