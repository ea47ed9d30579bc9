// interface_texts_wording_test.cpp - the texts as a reader of each language judges them: letters, punctuation, words.
#include <gtest/gtest.h>
#include <algorithm>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>
#include "settings/interface_texts.h"
#include "tests/unit/settings/text_characters.h"

namespace {

// The words of ASCII letters and digits in a text.
std::vector<std::string> asciiWords(std::string_view text) {
    std::vector<std::string> words(1);
    for (const char c : text) {
        const bool inWord = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
        if (inWord) {
            words.back() += c;
        } else if (!words.back().empty()) {
            words.emplace_back();
        }
    }
    if (words.back().empty()) words.pop_back();
    return words;
}

}  // namespace

TEST(Texts, AreTranslatedIntoTheirLanguagesOwnLetters) {
    const std::set<std::string> kept = {"Corvalis", "MSFS",   "2024", "TeamSpeak", "3",       "TS3",   "COM",
                                        "COM1",     "COM2",   "TX",   "RX",        "PDC",     "ACARS", "TEXT",
                                        "BOEING",   "AIRBUS", "A",    "ACTIVE",    "STANDBY", "DEL",   "ESC"};
    for (const auto language : {kSimplifiedChinese, kTraditionalChinese, kJapanese, kKorean, kRussian}) {
        for (const int entry : filledEntries()) {
            const auto text = ownText(language, entry);
            for (const auto& word : asciiWords(text)) {
                const bool isRussianToo = language == kRussian && word == "squelch";
                EXPECT_TRUE(kept.count(word) || isRussianToo) << word << nameOf(language, entry);
            }
            const auto characters = charactersOf(text).value();
            EXPECT_TRUE(std::any_of(characters.begin(), characters.end(), [&](char32_t c) {
                return isOwnLetter(language, c);
            })) << nameOf(language, entry);
        }
    }
    forEachText([](std::int32_t language, int entry) {
        const auto characters = charactersOf(ownText(language, entry)).value();
        for (const auto c : characters) {
            const bool letter = isLatin(c) || isHan(c) || isKana(c) || isHangul(c) || isCyrillic(c);
            EXPECT_TRUE(!letter || isLatin(c) || isOwnLetter(language, c)) << nameOf(language, entry);
        }
    });
}

TEST(Texts, AreEnglishElsewhereOnlyWhereTheWordIsTheSame) {
    // Where German, French or Spanish pilots use the English word.
    const std::set<std::pair<std::int32_t, int>> same = {{kGerman, 39}, {kGerman, 65},  {kGerman, 69},
                                                         {kFrench, 18}, {kFrench, 38},  {kFrench, 67},
                                                         {kSpanish, 5}, {kSpanish, 38}, {kSpanish, 39}};
    forEachText([&](std::int32_t language, int entry) {
        if (language == kEnglish) return;
        EXPECT_EQ(textOf(language, entry) == textOf(kEnglish, entry), same.count({language, entry}) == 1)
            << nameOf(language, entry);
    });
}

TEST(Texts, InChineseKeepToOneScript) {
    // The same characters in both scripts, and mainland words for which Taiwan uses others.
    const std::u32string simplified =
        U"设关应语频发这显声间数经连开时实无线电说话认标静内动换贴调项随飞减谱仅麦风灯顶视页为让护资许协议选择键码"
        U"删历预览获没过闭规处称队务类专单图块头备导层师带广总户执扩报担拟拥摆样检欢汉测浏灭点热状现盘稳笔简级纪纯"
        U"终组细绍结给络绝统继续维缩罗联脚节虑见觉计订训记讲论证评识诉询该详误请读课谁谢负责败账质费";
    const std::u32string traditional =
        U"設關應語頻發這顯聲間數經連開時實無線電說話認標靜內動換貼調項隨飛減譜僅麥風燈頂視頁為讓護資許協議選擇鍵碼"
        U"刪歷預覽獲沒過閉規處稱隊務類專單圖塊頭備導層師帶廣總戶執擴報擔擬擁擺樣檢歡漢測瀏滅點熱狀現盤穩筆簡級紀純"
        U"終組細紹結給絡絕統繼續維縮羅聯腳節慮見覺計訂訓記講論證評識訴詢該詳誤請讀課誰謝負責敗賬質費";
    ASSERT_EQ(simplified.size(), traditional.size());
    for (const int entry : filledEntries()) {
        const auto inTaiwan = charactersOf(ownText(kTraditionalChinese, entry)).value();
        EXPECT_EQ(inTaiwan.find_first_of(simplified), std::u32string::npos) << nameOf(kTraditionalChinese, entry);
        const auto inMainland = charactersOf(ownText(kSimplifiedChinese, entry)).value();
        EXPECT_EQ(inMainland.find_first_of(traditional), std::u32string::npos) << nameOf(kSimplifiedChinese, entry);
        for (const char* word : {"軟件", "設置", "默認", "信息", "消息", "窗口", "音頻", "保存", "視頻", "數據", "文本",
                                 "菜單", "應用", "界面", "支持", "連接"}) {
            EXPECT_EQ(textOf(kTraditionalChinese, entry).find(word), std::string_view::npos)
                << word << " in " << nameOf(kTraditionalChinese, entry);
        }
    }
}

TEST(Texts, InChineseAndJapanesePunctuateInFullWidthAndSpaceLatinWords) {
    int marks = 0;
    for (const auto language : {kSimplifiedChinese, kTraditionalChinese, kJapanese}) {
        const auto own = [&](char32_t c) { return isOwnLetter(language, c); };
        for (const int entry : filledEntries()) {
            const auto text = charactersOf(ownText(language, entry)).value();
            EXPECT_EQ(text.find_first_of(U",.:;!?()&'\"~’“”"), std::u32string::npos) << nameOf(language, entry);
            marks += static_cast<int>(std::count_if(text.begin(), text.end(), isFullWidth));
            for (std::size_t i = 1; i < text.size(); i++) {
                const auto left = text[i - 1], right = text[i];
                const auto ascii = [](char32_t c) { return isLatin(c) || isBetween(c, U'0', U'9'); };
                EXPECT_FALSE((own(left) && ascii(right)) || (ascii(left) && own(right))) << nameOf(language, entry);
                EXPECT_FALSE((isFullWidth(left) && right == U' ') || (left == U' ' && isFullWidth(right)))
                    << nameOf(language, entry);
            }
        }
        const auto paragraph = std::string(textOf(language, 63));
        EXPECT_EQ(paragraph.substr(paragraph.size() - 3), "。");
    }
    EXPECT_GT(marks, 20);
}

TEST(Texts, InFrenchPutANoBreakSpaceBeforeTallPunctuation) {
    int marks = 0;
    for (std::int32_t language = 0; language < kLanguageCount; language++) {
        for (const int entry : filledEntries()) {
            const auto text = charactersOf(ownText(language, entry)).value();
            for (std::size_t i = 0; i < text.size(); i++) {
                const bool tall = std::u32string(U":;!?»").find(text[i]) != std::u32string::npos;
                const auto before = i == 0 ? U'\0' : text[i - 1];
                if (language == kFrench && tall) {
                    marks++;
                    EXPECT_TRUE(before == 0xA0 || before == 0x202F) << nameOf(language, entry);
                } else if (tall) {
                    EXPECT_FALSE(before == U' ' || before == 0xA0 || before == 0x202F) << nameOf(language, entry);
                } else {
                    EXPECT_FALSE(before == 0xA0 || before == 0x202F) << nameOf(language, entry);
                }
            }
        }
    }
    EXPECT_GE(marks, 2);
}

TEST(Texts, UseTypographicApostrophesAndQuotesOnly) {
    int apostrophes = 0;
    forEachText([&](std::int32_t language, int entry) {
        const auto text = charactersOf(textOf(language, entry)).value();
        EXPECT_EQ(text.find_first_of(U"'\"`´‘"), std::u32string::npos) << nameOf(language, entry);
        const auto count = std::count(text.begin(), text.end(), U'’');
        if (language == kFrench) {
            apostrophes += static_cast<int>(count);
        } else {
            EXPECT_EQ(count, 0) << nameOf(language, entry);
        }
    });
    EXPECT_GT(apostrophes, 5);
}

TEST(Texts, HaveOneWordPerThing) {
    // What entries are about, and the stem of the word for it in each language.
    // clang-format off
    const struct {
        const char* thing;
        std::vector<int> entries;
        const char* stems[kLanguageCount];
    } rows[] = {
        {"squelch", {25, 26},
         {"静噪", "靜噪", "Squelch", "スケルチ", "스켈치", "Squelch", "squelch", "squelch", "Хвост squelch"}},
        {"panel", {11, 12, 15, 16, 39, 41},
         {"面板", "面板", "anel", "パネル", "패널", "anel", "anneau", "anel", "анел"}},
        {"radio", {1, 7, 15, 16, 38},
         {"无线电", "無線電", "adio", "無線", "무전", "Funk", "adio", "adio", "адио"}},
        {"volume", {21, 22, 28, 30, 31},
         {"音量", "音量", "olume", "音量", "음량", "autstärke", "olume", "olumen", "ромкость"}},
        {"channel", {19, 63},
         {"频道", "頻道", "channel", "チャンネル", "채널", "anal", "canal", "canal", "канал"}},
        {"transmission", {25, 43},
         {"发射", "發射", "trans", "送信", "송신", "Sende", "émission", "transmisión", "передач"}},
        {"lamp", {42, 43},
         {"指示灯", "指示燈", "lamp", "ランプ", "표시등", "lampen", "oyants", "Luces", "ндикаторы"}},
        {"lamp", {54},
         {"指示灯", "指示燈", "lamp", "ランプ", "표시등", "Lampe", "voyant", "luz", "ндикатор"}},
        {"theme", {10, 54},
         {"主题", "主題", "theme", "テーマ", "테마", "Design", "hème", "ema", "ем"}},
        {"message", {44, 47, 51, 75},
         {"消息", "訊息", "essage", "メッセージ", "메시지", "achricht", "essage", "ensaje", "ообщени"}},
        {"clearance", {48, 75},
         {"放行许可", "航管許可", "learance", "クリアランス", "관제 허가", "Freigabe", "lairance", "utorizaci", "азрешени"}},
        {"simulator", {20, 63},
         {"模拟器", "模擬器", "simulator", "シミュレーター", "시뮬레이터", "Simulator", "simulateur", "simulador", "симулятора"}},
        {"simulator", {70, 72},
         {"模拟器", "模擬器", "SIM", "シミュレーター", "시뮬레이터", "SIM", "SIM", "SIM", "СИМУЛЯТОР"}},
        {"clear", {51, 76},
         {"清除", "清除", "lear", "消去", "지우기", "löschen", "ffacer", "orrar", "далить"}},
        {"close", {2, 76},
         {"关闭", "關閉", "lose", "閉じる", "닫기", "schließen", "fermer", "cerrar", "закрыть"}},
        {"on top", {40, 62},
         {"置顶", "最上層", "lways on top", "最前面", "항상 위", "ordergrund", "remier plan", "iempre visible", "оверх"}},
        {"message window", {47, 50},
         {"消息窗口", "訊息視窗", "essage window", "メッセージウィンドウ", "메시지 창", "achrichtenfenster",
          "fenêtre de messages", "la ventana", "окн"}},
        {"message text", {49, 50},
         {"消息", "訊息", "essage", "メッセージ", "메시지", "Nachrichten", "messages", "mensajes", "сообщений"}},
        {"what is levelled", {34, 35},
         {"音量", "音量", "speaker", "音量", "음량", "egel", "voix", "olumen", "громкост"}},
        {"distortion", {23, 24},
         {"无线电失真", "無線電失真", "Radio distortion", "無線らしい歪み", "무전 왜곡", "Funkverzerrung",
          "Distorsion radio", "Distorsión de radio", "Радиоискажения"}},
        {"following", {60, 61},
         {"目标", "目標", "Target", "対象", "대상", "folgen", "Suivre", "Seguir", "Слежение"}},
        {"alert", {45, 46},
         {"提示", "提示", "lert", "通知", "알림", "ignalton", "lerte", "lerta", "игнал"}},
    };
    // clang-format on
    for (const auto& row : rows) {
        for (const int entry : row.entries) {
            for (std::int32_t language = 0; language < kLanguageCount; language++) {
                ASSERT_NE(row.stems[language], nullptr) << row.thing << " has no word in language " << language;
                EXPECT_NE(textOf(language, entry).find(row.stems[language]), std::string_view::npos)
                    << row.thing << ", " << nameOf(language, entry);
            }
        }
    }
}
