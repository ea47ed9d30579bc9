#include "settings/interface_texts.h"
#include <gtest/gtest.h>
#include <algorithm>
#include <iterator>
#include <set>
#include <string>
#include <string_view>
#include <vector>
#include "tests/unit/settings/text_characters.h"

namespace {

// The agreed texts, written down a second time, so that a slip in the table shows. The text of a new setting comes
// after these and need not be listed here.
// clang-format off
const char* const kEnglishTexts[] = {
    "Corvalis · Settings",
    "MSFS 2024  ⇄  TeamSpeak 3   radio bridge",
    "Save & Close",
    "Cancel",
    "Apply",
    "General",
    "Voice & audio",
    "Radio & functions",
    "About",
    "Language",
    "Aircraft theme",
    "Panel scale",
    "Panel opacity",
    "Master switch",
    "Turn Corvalis on or off",
    "Floating radio panel",
    "Show the radio panel on top",
    "Reset panel layout",
    "Options",
    "Auto channel switching",
    "Follow the COM frequency in the simulator",
    "TS3 volume follows the aircraft radio",
    "Adjust to the current COM volume",
    "Radio distortion on my voice",
    "Radio distortion on other voices",
    "Squelch tail after my transmission",
    "Squelch tail after others",
    "Receive & gain",
    "Receive volume",
    "Microphone gain",
    "Min volume",
    "Max volume",
    "Radio audio effects",
    "Other",
    "Equalize speakers",
    "Smooth each speaker separately",
    "Spectral noise reduction",
    "My microphone only",
    "Radio",
    "Panel",
    "Always on top",
    "Keep the panel above other windows",
    "TX / RX indicator lamps",
    "Show transmit and receive lamps",
    "Text messages / PDC",
    "Play alert on new message",
    "Play the ACARS alert tone",
    "Open the message window automatically",
    "Show the clearance as soon as it arrives",
    "Message text size",
    "Preview message window",
    "Clear all messages",
    "Custom keys",
    "TEXT message (fixed)",
    "Key A is fixed to TEXT on the BOEING / AIRBUS themes. Its lamp flashes when a message arrives.",
    "Not assigned / Clear",
    "Swap active/standby",
    "Toggle auto switching",
    "Select COM1",
    "Select COM2",
    "Target ACTIVE",
    "Target STANDBY",
    "Toggle always on top",
    "Bridges the simulator COM frequency, TeamSpeak 3 channel switching and radio voice effects: a frequency sent by ATC becomes the channel you are on, and voice traffic sounds like real airband radio.",
    "Author",
    "Support",
    "Platform",
    "Licence",
    "Interface languages: 简体中文 / 繁體中文 / English / 日本語 / 한국어 / Deutsch / Français / Español / Русский",
    "Live",
    "SIMULATOR CONNECTED",
    "STALE DATA",
    "SIM NOT CONNECTED",
    "FROM",
    "TIME",
    "No text messages yet. Clearances appear here as soon as they arrive.",
    "↑↓ page   DEL clear   ESC / TEXT close",
    "",
    "Attach what hopline_worker.exe --diagnose writes",
};

const struct {
    int entry;
    std::int32_t language;
    const char* text;
} kQuotedTexts[] = {
    {0, 0, "Corvalis · 设置"},
    {0, 3, "Corvalis · 設定"},
    {0, 4, "Corvalis · 설정"},
    {0, 5, "Corvalis · Einstellungen"},
    {0, 6, "Corvalis · Paramètres"},
    {0, 7, "Corvalis · Ajustes"},
    {0, 8, "Corvalis · Настройки"},
    {1, 5, "MSFS 2024  ⇄  TeamSpeak 3   Funkschnittstelle"},
    {1, 8, "MSFS 2024  ⇄  TeamSpeak 3   радиомост"},
    {2, 0, "保存并关闭"},
    {2, 3, "保存して閉じる"},
    {2, 4, "저장 후 닫기"},
    {2, 6, "Enregistrer et fermer"},
    {2, 7, "Guardar y cerrar"},
    {4, 5, "Übernehmen"},
    {4, 8, "Применить"},
    {5, 0, "常规设置"},
    {5, 1, "一般設定"},
    {5, 3, "一般設定"},
    {5, 4, "일반 설정"},
    {5, 6, "Général"},
    {5, 7, "General"},
    {5, 8, "Общие"},
    {13, 1, "主開關"},
    {13, 8, "Главный выключатель"},
    {69, 0, "实时状态"},
    {69, 3, "ライブ"},
    {69, 4, "실시간"},
    {69, 6, "Direct"},
    {69, 7, "En vivo"},
    {70, 1, "模擬器已連線"},
    {70, 8, "СИМУЛЯТОР ПОДКЛЮЧЁН"},
    {34, 7, "Igualar volumen de voces"},
    {35, 7, "Suavizar el volumen de cada voz"},
    {47, 7, "Abrir la ventana al llegar un mensaje"},
    {49, 7, "Texto de los mensajes"},
    {50, 7, "Ver la ventana de mensajes"},
    {60, 7, "Seguir ACTIVE"},
    {61, 7, "Seguir STANDBY"},
    {33, 6, "Autres"},
    {45, 6, "Alerte sonore à chaque message"},
    {49, 6, "Taille du texte des messages"},
    {50, 6, "Aperçu de la fenêtre de messages"},
    {60, 6, "Suivre ACTIVE"},
    {61, 6, "Suivre STANDBY"},
    {10, 5, "Flugzeug-Design"},
    {21, 5, "TS3-Lautstärke folgt dem Funkgerät"},
    {52, 5, "Frei belegbare Tasten"},
    {53, 5, "TEXT-Nachricht (fest belegt)"},
    {60, 5, "ACTIVE folgen"},
    {61, 5, "STANDBY folgen"},
    {25, 8, "Хвост squelch после моей передачи"},
    {26, 8, "Хвост squelch после других"},
    {34, 8, "Выравнивание громкости"},
    {35, 8, "Сглаживать громкость каждого голоса"},
    {56, 8, "Обменять ACTIVE/STANDBY"},
    {60, 8, "Слежение: ACTIVE"},
    {61, 8, "Слежение: STANDBY"},
    {8, 3, "バージョン情報"},
    {23, 3, "無線らしい歪み（自分の声）"},
    {24, 3, "無線らしい歪み（他の人の声）"},
    {35, 3, "話者ごとに音量をならす"},
    {45, 4, "새 메시지 알림음"},
    {45, 0, "收到新消息时播放提示音"},
    {45, 1, "收到新訊息時播放提示音"},
};
// clang-format on

// Widths as terminals count them: two for a character as wide as it is high.
int cellsOf(std::string_view text) {
    int cells = 0;
    const auto characters = charactersOf(text).value();
    for (const auto c : characters) {
        cells += isHan(c) || isKana(c) || isHangul(c) || isFullWidth(c) ? 2 : 1;
    }
    return cells;
}

}  // namespace

TEST(Texts, InEnglishAreTheAgreedOnes) {
    int entry = 0;
    for (const char* agreed : kEnglishTexts) {
        EXPECT_EQ(textOf(kEnglish, entry), agreed) << entry;
        entry++;
    }
    EXPECT_LE(entry, kTextCount);
}

TEST(Texts, OfTheOtherLanguagesAreTheAgreedOnesWhereAgreed) {
    for (const auto& row : kQuotedTexts) {
        EXPECT_EQ(textOf(row.language, row.entry), row.text) << row.entry << ' ' << row.language;
    }
    EXPECT_EQ(textOf(kJapanese, 5), textOf(kTraditionalChinese, 5));
    EXPECT_EQ(textOf(kJapanese, 0), textOf(kTraditionalChinese, 0));
}

TEST(Texts, OfAnIndexOutsideTheNineAreThoseOfTheNearestLanguage) {
    for (int entry = 0; entry < kTextCount; entry++) {
        for (const std::int32_t above : {kLanguageCount, kLanguageCount + 3, INT32_MAX})
            EXPECT_EQ(textOf(above, entry), textOf(kLanguageCount - 1, entry)) << above;
        for (const std::int32_t below : {-1, -3, INT32_MIN}) EXPECT_EQ(textOf(below, entry), textOf(0, entry)) << below;
    }
}

TEST(Texts, OutsideTheTableAreEmpty) {
    for (std::int32_t language = -1; language <= kLanguageCount; language++) {
        for (const int entry : {-1, kTextCount, kTextCount + 1, INT32_MIN, INT32_MAX}) {
            EXPECT_EQ(textOf(language, entry), "") << entry;
        }
    }
}

TEST(Texts, FillEveryCellButTheLastWithUtf8) {
    forEachText([](std::int32_t language, int entry) {
        const auto text = textOf(language, entry);
        ASSERT_FALSE(text.empty()) << nameOf(language, entry);
        const auto characters = charactersOf(text);
        ASSERT_TRUE(characters) << nameOf(language, entry);
        for (const auto c : *characters) {
            EXPECT_GE(c, U' ') << nameOf(language, entry);  // no zero inside, no line break, no tab
            EXPECT_FALSE(isBetween(c, 0x7F, 0x9F) || isBetween(c, 0xE000, 0xF8FF) || c == 0xFFFD || c == 0xFEFF)
                << nameOf(language, entry);
        }
    });
    for (std::int32_t language = 0; language < kLanguageCount; language++) EXPECT_EQ(textOf(language, kTextEmpty), "");
}

TEST(Texts, HaveNoSpaceAtTheEndsAndRunsOfSpacesOnlyWhereAgreed) {
    for (std::int32_t language = 0; language < kLanguageCount; language++) {
        EXPECT_EQ(textOf(language, 1).rfind("MSFS 2024  ⇄  TeamSpeak 3   ", 0), 0u) << nameOf(language, 1);
        EXPECT_EQ(textOf(language, kTextPageKeys).rfind("↑↓ ", 0), 0u) << nameOf(language, kTextPageKeys);
    }
    forEachText([](std::int32_t language, int entry) {
        const auto text = charactersOf(textOf(language, entry)).value();
        for (const auto end : {text.front(), text.back()}) {
            EXPECT_FALSE(end == U' ' || end == 0xA0 || end == 0x202F || end == 0x3000) << nameOf(language, entry);
        }
        std::vector<int> runs;  // lengths of two or more, in order
        int run = 0;
        for (const auto c : text) {
            if (c != U' ' && run > 1) runs.push_back(run);
            run = c == U' ' ? run + 1 : 0;
        }
        const std::vector<int> expected = entry == 1               ? std::vector{2, 2, 3}
                                          : entry == kTextPageKeys ? std::vector{3, 3}
                                                                   : std::vector<int>{};
        EXPECT_EQ(runs, expected) << nameOf(language, entry);
    });
}

TEST(Texts, HaveTheSameLineBreaksPercentSignsAndSlashesInAllLanguages) {
    forEachText([](std::int32_t language, int entry) {
        const auto text = textOf(language, entry), english = textOf(kEnglish, entry);
        for (const char mark : {'\n', '%', '{', '}', '\\', '"'}) {
            EXPECT_EQ(std::count(text.begin(), text.end(), mark), std::count(english.begin(), english.end(), mark))
                << nameOf(language, entry);
        }
        EXPECT_EQ(text.find(" / ") == std::string_view::npos, english.find(" / ") == std::string_view::npos)
            << nameOf(language, entry);
    });
}

TEST(Texts, KeepTheNamesThatPilotsKnow) {
    // A letter of another alphabet that only looks the same fails here, too.
    const std::string_view names[] = {"Corvalis", "MSFS 2024", "TeamSpeak 3", "TS3",         "COM1", "COM2",
                                      "COM ",     "TX / RX",   "PDC",         "ACARS",       "TEXT", "BOEING / AIRBUS",
                                      "ACTIVE",   "STANDBY",   "ESC / ",      kReportCommand};
    for (const std::string_view name : names) {
        int kept = 0;
        forEachText([&](std::int32_t language, int entry) {
            if (textOf(kEnglish, entry).find(name) == std::string_view::npos) return;
            const auto text = textOf(language, entry);
            // "COM " is the word, whatever follows it; ESC is whatever the language's keyboards have.
            auto wanted = std::string(name == "COM " ? "COM" : name);
            if (name == "ESC / " && language == kFrench) wanted = "ÉCHAP / ";
            EXPECT_NE(text.find(wanted), std::string_view::npos) << wanted << " in " << nameOf(language, entry);
            kept++;
        });
        EXPECT_GE(kept, kLanguageCount) << name << " is in no text";
    }
    for (std::int32_t language = 0; language < kLanguageCount; language++) {
        const auto text = textOf(language, kLanguageNames);
        const std::string_view english = textOf(kEnglish, kLanguageNames);
        const std::string_view list = english.substr(english.find("简体中文 / "));
        ASSERT_GT(text.size(), list.size());
        EXPECT_EQ(text.substr(text.size() - list.size()), list) << language;
        EXPECT_NE(textOf(language, 56).find(language == kEnglish ? "active/standby" : "ACTIVE/STANDBY"),
                  std::string_view::npos)
            << nameOf(language, 56);
    }
}

TEST(Texts, OfTheCustomKeysStandInTheOrderOfTheirCodes) {  // in English they are among the agreed texts
    for (std::int32_t language = 0; language < kLanguageCount; language++) {
        std::set<std::string_view> labels;
        for (int code = 0; code < 8; code++) labels.insert(textOf(language, kTextActionNone + code));
        EXPECT_EQ(labels.size(), 8u) << language;
        const auto has = [&](int code, const char* word) {
            return textOf(language, kTextActionNone + code).find(word) != std::string_view::npos;
        };
        EXPECT_TRUE(has(0, " / ") && has(3, "COM1") && has(4, "COM2") && has(5, "ACTIVE") && has(6, "STANDBY"))
            << language;
    }
}

TEST(Texts, OfTheStatusRowsDifferFromEachOther) {
    for (std::int32_t language = 0; language < kLanguageCount; language++) {
        std::set<std::string_view> words;
        for (int entry = 69; entry <= kTextTime; entry++) words.insert(textOf(language, entry));
        EXPECT_EQ(words.size(), 6u) << language;
    }
}

TEST(Texts, AreAboutAsShortAsTheEnglish) {
    forEachText([](std::int32_t language, int entry) {
        const int english = cellsOf(textOf(kEnglish, entry));
        EXPECT_LE(cellsOf(textOf(language, entry)), std::max(english + 11, english * 5 / 4)) << nameOf(language, entry);
    });
}

TEST(Texts, FitWhereTheRoomIsGiven) {
    // A cell is half the text size; the message window gives its labels this many, and the compact toggles as many as
    // the longest English label takes.
    const struct {
        int entry, cells;
    } rows[] = {{kTextFrom, 9},
                {kTextTime, 6},
                {kTextNoMessages, 90},
                {kTextPageKeys, 62},
                {19, 37},
                {21, 37},
                {23, 37},
                {24, 37},
                {25, 37},
                {26, 37}};
    for (std::int32_t language = 0; language < kLanguageCount; language++) {
        for (const auto& row : rows) {
            EXPECT_LE(cellsOf(textOf(language, row.entry)), row.cells) << nameOf(language, row.entry);
        }
    }
}

TEST(FontFamily, IsTheLanguagesOwnWithTheSameClamp) {
    const char* const families[] = {"Microsoft YaHei UI",
                                    "Microsoft JhengHei UI",
                                    "Segoe UI",
                                    "Yu Gothic UI",
                                    "Malgun Gothic",
                                    "Segoe UI",
                                    "Segoe UI",
                                    "Segoe UI",
                                    "Segoe UI"};
    ASSERT_EQ(std::size(families), static_cast<std::size_t>(kLanguageCount));
    for (std::int32_t language = 0; language < kLanguageCount; language++) {
        EXPECT_EQ(fontFamilyOf(language), families[language]) << language;
    }
    for (const std::int32_t above : {kLanguageCount + 3, INT32_MAX})
        EXPECT_EQ(fontFamilyOf(above), fontFamilyOf(kLanguageCount - 1)) << above;
    for (const std::int32_t below : {-3, INT32_MIN}) EXPECT_EQ(fontFamilyOf(below), fontFamilyOf(0)) << below;
}
