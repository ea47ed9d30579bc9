// settings.ini in every state a crash, an editor or a bad disk may leave it in.
#include <gtest/gtest.h>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <vector>
#include "settings/settings_text.h"
#include "tests/unit/settings/settings_ranges.h"

namespace {

// A record that differs from the defaults in every line.
Settings unusual() {
    Settings s;
    s.master = s.enabled = s.follow_volume = s.distort_self = s.distort_others = s.tail_self = s.tail_others = false;
    s.panel_visible = s.radio_lamps = s.text_alert = s.text_auto_open = false;
    s.nrSelf = s.pin = s.equalize = true;
    s.radio = 2;
    s.target = 1;
    s.theme = 2;
    s.volume_min = 0.25f;
    s.volume_max = 0.75f;
    s.panel_scale = 150.0f;
    s.opacity = 62.5f;
    s.receive_volume = 37.5f;
    s.transmit_gain = 6.5f;
    s.text_scale = 20.5f;
    s.panel_x = -1920;
    s.panel_y = 1234;
    s.bind_A = 1;
    s.bind_B = 2;
    s.bind_C = 3;
    s.bind_D = 4;
    s.bind_E = 5;
    s.python = "py.exe";
    s.language = "ja";
    return s;
}

std::vector<std::string> linesOf(const Settings& settings) {
    std::vector<std::string> lines;
    std::string text = writeSettingsText(settings);
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = text.find("\r\n", at);
        lines.push_back(text.substr(at, end - at));
        at = end + 2;
    }
    return lines;
}

std::size_t linesThatDiffer(const Settings& a, const Settings& b) {
    const auto as = linesOf(a);
    const auto bs = linesOf(b);
    if (as.size() != bs.size()) return as.size() + bs.size();
    std::size_t count = 0;
    for (std::size_t i = 0; i < as.size(); i++) count += as[i] != bs[i];
    return count;
}

bool coin(std::mt19937& random) {
    return random() % 2 == 0;
}
float between(std::mt19937& random, float min, float max) {
    return std::uniform_real_distribution<float>(min, max)(random);
}
std::int32_t whole(std::mt19937& random, std::int32_t min, std::int32_t max) {
    return std::uniform_int_distribution<std::int32_t>(min, max)(random);
}

std::string randomText(std::mt19937& random) {
    std::string text;
    const int length = whole(random, 1, 40);
    while (static_cast<int>(text.size()) < length) {
        const char c = static_cast<char>(whole(random, 1, 255));
        if (c != '\n') text += c;
    }
    return text + "!";  // blanks at the very end would be trimmed
}

Settings randomRecord(std::mt19937& random) {
    Settings s;
    for (bool* flag :
         {&s.master, &s.enabled, &s.nrSelf, &s.follow_volume, &s.distort_self, &s.distort_others, &s.tail_self,
          &s.tail_others, &s.panel_visible, &s.pin, &s.equalize, &s.radio_lamps, &s.text_alert, &s.text_auto_open})
        *flag = coin(random);
    s.radio = whole(random, 1, 2);
    s.target = whole(random, 0, 1);
    s.theme = whole(random, 0, 2);
    for (std::int32_t* key : {&s.bind_A, &s.bind_B, &s.bind_C, &s.bind_D, &s.bind_E}) *key = whole(random, 0, 7);
    s.panel_x = whole(random, INT32_MIN, INT32_MAX);
    s.panel_y = whole(random, INT32_MIN, INT32_MAX);
    s.volume_min = between(random, 0, 1);
    s.volume_max = between(random, s.volume_min, 1);
    s.panel_scale = between(random, 50, 200);
    s.opacity = between(random, 30, 100);
    s.receive_volume = between(random, 0, 100);
    s.transmit_gain = between(random, 0, 18);
    s.text_scale = between(random, 12, 22);
    s.python = randomText(random);
    s.language = randomText(random);
    return s;
}

// The number that six significant digits keep.
float sixDigits(float value) {
    char text[64];
    std::snprintf(text, sizeof text, "%g", static_cast<double>(value));
    return static_cast<float>(std::atof(text));
}

}  // namespace

TEST(SettingsDamage, AFileCutAnywhereKeepsTheValuesOfItsWholeLines) {
    const std::string text = writeSettingsText(unusual());
    const auto defaults = linesOf(Settings{});
    const auto full = linesOf(unusual());
    for (std::size_t length = 0; length <= text.size(); length++) {
        const Settings s = readSettingsText(std::string_view(text).substr(0, length));
        ASSERT_EQ(fieldOutOfRange(s), "") << length;
        const auto lines = linesOf(s);
        std::size_t start = 0;  // of line i in the whole file
        for (std::size_t i = 0; i < full.size(); i++) {
            const std::size_t end = start + full[i].size();
            const std::size_t nextEnd = i + 1 < full.size() ? end + 2 + full[i + 1].size() : end;
            // A maximum cut down to 0 changes places with the minimum before it.
            const bool mayBeSwapped = full[i] == "volume_min=0.25" && length > end + 2 && length < nextEnd;
            if (end <= length && !mayBeSwapped) {
                EXPECT_EQ(lines[i], full[i]) << length;
            } else if (start >= length) {
                EXPECT_EQ(lines[i], defaults[i]) << length;
            }
            start = end + 2;
        }
    }
    EXPECT_EQ(readSettingsText(text), unusual());
}

TEST(SettingsDamage, OneDamagedByteChangesAtMostTheTwoValuesBesideIt) {
    for (const Settings& record : {Settings{}, unusual()}) {
        const std::string text = writeSettingsText(record);
        for (std::size_t at = 0; at < text.size(); at++) {
            for (const char byte : {'\0', '\xFF', '\n', '\r', '=', '[', ' ', '0', '9', '-', '.', 'e', 'A',
                                    static_cast<char>(text[at] ^ 1), static_cast<char>(text[at] ^ 0x80)}) {
                std::string damaged = text;
                damaged[at] = byte;
                const Settings s = readSettingsText(damaged);
                ASSERT_EQ(fieldOutOfRange(s), "") << at << ' ' << static_cast<int>(byte);
                ASSERT_LE(linesThatDiffer(s, record), 2u) << at << ' ' << static_cast<int>(byte);
            }
        }
    }
}

TEST(SettingsDamage, AByteLostOrDoubledLeavesEveryValueInRange) {
    const std::string text = writeSettingsText(unusual());
    for (std::size_t at = 0; at < text.size(); at++) {
        const Settings lost = readSettingsText(std::string(text).erase(at, 1));
        const Settings doubled = readSettingsText(std::string(text).insert(at, 1, text[at]));
        EXPECT_EQ(fieldOutOfRange(lost), "") << at;
        EXPECT_EQ(fieldOutOfRange(doubled), "") << at;
        EXPECT_LE(linesThatDiffer(lost, unusual()), 2u) << at;
        EXPECT_LE(linesThatDiffer(doubled, unusual()), 2u) << at;
    }
}

TEST(SettingsDamage, HugeLinesAreReadAndDoNotHideTheNextOne) {
    const std::string huge(4'000'000, 'x');
    const Settings s = readSettingsText(huge + "\ntheme=2\n" + huge + "=1\nunknown=" + huge + "\nopacity=5" +
                                        std::string(1'000'000, '0') + "\npython=" + huge + "\r\nbind_E=3\n");
    EXPECT_EQ(s.theme, 2);
    EXPECT_EQ(s.opacity, 100.0f);
    EXPECT_EQ(s.python, huge);
    EXPECT_EQ(s.bind_E, 3);
    EXPECT_EQ(readSettingsText("bind_A=" + std::string(1'000'000, ' ') + "4").bind_A, 4);
    EXPECT_EQ(readSettingsText(std::string(1'000'000, '\n') + "pin=1").pin, true);
}

TEST(SettingsDamage, BinaryBytesLeaveEveryValueInRange) {
    std::mt19937 random(1);
    const std::string keys = writeSettingsText(Settings{});
    for (int i = 0; i < 500; i++) {
        std::string bytes;
        for (int k = whole(random, 0, 2000); k > 0; k--) bytes += static_cast<char>(random());
        std::string mixed = keys;
        for (int k = whole(random, 1, 60); k > 0; k--) mixed[random() % mixed.size()] = static_cast<char>(random());
        EXPECT_EQ(fieldOutOfRange(readSettingsText(bytes)), "");
        EXPECT_EQ(fieldOutOfRange(readSettingsText(mixed)), "");
    }
}

TEST(SettingsDamage, AZeroByteIsAByteLikeAnyOther) {
    EXPECT_EQ(readSettingsText(std::string_view("theme=1\n\0\nbind_A=4\n", 19)).bind_A, 4);
    EXPECT_EQ(readSettingsText(std::string_view("python=a\0b\n", 11)).python, std::string("a\0b", 3));
}

TEST(SettingsDamage, EveryRecordReadsBackAsItWasWrittenUpToSixDigits) {
    std::mt19937 random(42);
    for (int i = 0; i < 2000; i++) {
        Settings s = randomRecord(random);
        const Settings back = readSettingsText(writeSettingsText(s));
        for (float Settings::*field :
             {&Settings::volume_min, &Settings::volume_max, &Settings::panel_scale, &Settings::opacity,
              &Settings::receive_volume, &Settings::transmit_gain, &Settings::text_scale})
            s.*field = sixDigits(s.*field);
        ASSERT_EQ(back, s) << writeSettingsText(s);
        ASSERT_EQ(readSettingsText(writeSettingsText(back)), back);
    }
}
