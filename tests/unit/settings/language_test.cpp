#include "settings/language.h"
#include <gtest/gtest.h>
#include "settings/dialog/dialog_rows.h"

TEST(Language, OfEveryKnownCodeIsTheOneOfItsTable) {
    const struct {
        const char* code;
        std::int32_t index;
    } rows[] = {{"zh-CN", 0}, {"zh-Hans", 0}, {"zh", 0},    {"zh-TW", 1}, {"zh-Hant", 1}, {"zh-HK", 1},
                {"en", 2},    {"en-US", 2},   {"en-GB", 2}, {"ja", 3},    {"jp", 3},      {"ko", 4},
                {"kr", 4},    {"de", 5},      {"fr", 6},    {"es", 7},    {"ru", 8}};
    for (const auto& row : rows) {
        EXPECT_EQ(languageOfCode(row.code), row.index) << row.code;
        EXPECT_EQ(chooseLanguage(row.code, 0x0419), row.index) << row.code;  // whatever the system speaks
        EXPECT_EQ(chooseLanguage(row.code, 0x0407), row.index) << row.code;
    }
    // The dialog stores the first one of each.
    std::int32_t next = 0;
    for (const auto& row : rows) {
        if (row.index != next) continue;
        EXPECT_STREQ(languageCode(row.index), row.code);
        next++;
    }
    EXPECT_EQ(next, kLanguageCount);
}

TEST(Language, OfAutoAndOfCodesOutsideTheTableIsTheSystems) {
    for (const char* code : {"auto", "", "en-AU", "EN", "En", "en-us", "zh-cn", "de-DE", "fr-FR", " de", "de ", "zh-",
                             "z", "english", "2", "ja-JP", "pt"}) {
        EXPECT_EQ(languageOfCode(code), std::nullopt) << code;
        EXPECT_EQ(chooseLanguage(code, 0x0407), 5) << code;
        EXPECT_EQ(chooseLanguage(code, 0x0411), 3) << code;
    }
}

TEST(Language, OfASystemIdentifierFollowsItsPrimaryLanguage) {
    const struct {
        const char* who;
        std::uint16_t identifier;
        std::int32_t index;
    } rows[] = {{"German (Germany)", 0x0407, 5}, {"German (Austria)", 0x0C07, 5}, {"Spanish (Spain)", 0x0C0A, 7},
                {"Spanish (Mexico)", 0x080A, 7}, {"French (France)", 0x040C, 6},  {"French (Canada)", 0x0C0C, 6},
                {"Japanese", 0x0411, 3},         {"Korean", 0x0412, 4},           {"Russian", 0x0419, 8},
                {"English (US)", 0x0409, 2},     {"English (UK)", 0x0809, 2},     {"Italian", 0x0410, 2},
                {"Polish", 0x0415, 2},           {"neutral", 0x0000, 2},          {"highest", 0xFFFF, 2}};
    for (const auto& row : rows) EXPECT_EQ(languageOfSystem(row.identifier), row.index) << row.who;
}

TEST(Language, OfAChineseSystemIsTraditionalOnlyInTaiwanHongKongAndMacao) {
    EXPECT_EQ(languageOfSystem(0x0404), 1);  // Taiwan
    EXPECT_EQ(languageOfSystem(0x0C04), 1);  // Hong Kong
    EXPECT_EQ(languageOfSystem(0x1404), 1);  // Macao
    EXPECT_EQ(languageOfSystem(0x1004), 0);  // Singapore
    for (unsigned sublanguage = 0; sublanguage < 64; sublanguage++) {
        const bool traditional = sublanguage == 1 || sublanguage == 3 || sublanguage == 5;
        EXPECT_EQ(languageOfSystem(static_cast<std::uint16_t>(sublanguage << 10U | 0x04U)), traditional ? 1 : 0)
            << sublanguage;
    }
}

TEST(Language, OfAnySystemIdentifierIsOneOfTheNine) {
    for (unsigned identifier = 0; identifier <= 0xFFFF; identifier++) {
        const auto index = languageOfSystem(static_cast<std::uint16_t>(identifier));
        ASSERT_TRUE(index >= 0 && index < 9) << identifier;
    }
    EXPECT_EQ(kLanguageCount, 9);
}
