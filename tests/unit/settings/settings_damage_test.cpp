// settings_damage_test.cpp - settings.ini in every state in which a crash, an editor or a bad disk may leave it.
#include <gtest/gtest.h>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <utility>
#include <vector>
#include "settings/settings_text.h"
#include "tests/unit/settings/settings_ranges.h"

namespace {

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
    return text + "!";  // blanks at the end would be trimmed
}

void putRandomValue(std::mt19937& random, const SettingCopy& copy, Settings& s) {
    const bool isPixel = copy.rule == ValueRule::kPixel;
    if (const auto* flag = std::get_if<bool Settings::*>(&copy.field)) s.*(*flag) = random() % 2 == 0;
    if (const auto* number = std::get_if<std::int32_t Settings::*>(&copy.field))
        s.*(*number) = whole(random, isPixel ? INT32_MIN : static_cast<std::int32_t>(copy.range.min),
                             isPixel ? INT32_MAX : static_cast<std::int32_t>(copy.range.max));
    if (const auto* real = std::get_if<float Settings::*>(&copy.field))
        s.*(*real) = between(random, copy.range.min, copy.range.max);
    if (const auto* text = std::get_if<std::string Settings::*>(&copy.field)) s.*(*text) = randomText(random);
}

Settings randomRecord(std::mt19937& random) {
    Settings s;
    for (const SettingCopy& copy : settingsCopy()) putRandomValue(random, copy, s);
    if (s.volume_min > s.volume_max) std::swap(s.volume_min, s.volume_max);
    return s;
}

// The number that six significant digits can hold.
float sixDigits(float value) {
    char text[64];
    std::snprintf(text, sizeof text, "%g", static_cast<double>(value));
    return static_cast<float>(std::atof(text));
}

}  // namespace

TEST(SettingsDamage, AFileCutAnywhereKeepsTheValuesOfItsWholeLines) {
    const std::string text = writeSettingsText(otherSettings());
    const auto defaults = linesOf(Settings{});
    const auto full = linesOf(otherSettings());
    for (std::size_t length = 0; length <= text.size(); length++) {
        const Settings s = readSettingsText(std::string_view(text).substr(0, length));
        ASSERT_EQ(fieldOutOfRange(s), "") << length;
        const auto lines = linesOf(s);
        std::size_t start = 0;  // of line i in the whole file
        for (std::size_t i = 0; i < full.size(); i++) {
            const std::size_t end = start + full[i].size();
            const std::size_t nextEnd = i + 1 < full.size() ? end + 2 + full[i + 1].size() : end;
            // A maximum cut down to 0 is swapped with the minimum before it.
            const bool mayBeSwapped = full[i] == "volume_min=0.25" && length > end + 2 && length < nextEnd;
            if (end <= length && !mayBeSwapped) {
                EXPECT_EQ(lines[i], full[i]) << length;
            } else if (start >= length) {
                EXPECT_EQ(lines[i], defaults[i]) << length;
            }
            start = end + 2;
        }
    }
    EXPECT_EQ(readSettingsText(text), otherSettings());
}

TEST(SettingsDamage, OneDamagedByteChangesAtMostTheTwoValuesBesideIt) {
    for (const Settings& record : {Settings{}, otherSettings()}) {
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
    const std::string text = writeSettingsText(otherSettings());
    for (std::size_t at = 0; at < text.size(); at++) {
        const Settings lost = readSettingsText(std::string(text).erase(at, 1));
        const Settings doubled = readSettingsText(std::string(text).insert(at, 1, text[at]));
        EXPECT_EQ(fieldOutOfRange(lost), "") << at;
        EXPECT_EQ(fieldOutOfRange(doubled), "") << at;
        EXPECT_LE(linesThatDiffer(lost, otherSettings()), 2u) << at;
        EXPECT_LE(linesThatDiffer(doubled, otherSettings()), 2u) << at;
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
        for (const SettingCopy& copy : settingsCopy()) {
            if (const auto* real = std::get_if<float Settings::*>(&copy.field)) s.*(*real) = sixDigits(s.*(*real));
        }
        ASSERT_EQ(back, s) << writeSettingsText(s);
        ASSERT_EQ(readSettingsText(writeSettingsText(back)), back);
    }
}
