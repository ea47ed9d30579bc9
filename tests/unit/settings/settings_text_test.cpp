// settings_text_test.cpp - the rules of settings.ini, one test per rule. The keys come from the copy of all settings.
#include "settings/settings_text.h"
#include <gtest/gtest.h>
#include <algorithm>
#include <climits>
#include <string>
#include <vector>
#include "tests/unit/settings/settings_copy.h"

namespace {

// The record that a file of this one line gives.
Settings read(const std::string& line) {
    return readSettingsText(line + "\r\n");
}

// The file for a record that has one of the copy's two values in every line.
std::string fileOf(const char* SettingCopy::*value) {
    std::string text = "[Hopline]\r\n";
    for (const SettingCopy& copy : settingsCopy()) text += copy.key + std::string("=") + copy.*value + "\r\n";
    return text;
}

// Every switch of this rule reads the values in others as !rest, and all other values as rest.
void expectSwitches(ValueRule rule, bool rest, const std::vector<std::string>& others) {
    int switches = 0;
    for (const SettingCopy& copy : settingsCopy()) {
        if (copy.rule != rule) continue;
        switches++;
        const auto field = std::get<bool Settings::*>(copy.field);
        for (const std::string value :
             {"0",    "1",    "false", "true", "",    "2",  "-1", "00", "01", "0.0",     "False",  "FALSE",
              "True", "TRUE", "on",    "off",  "yes", "no", " 0", " 1", "0x", "falsely", "truely", "10"}) {
            const bool isOther = std::find(others.begin(), others.end(), value) != others.end();
            EXPECT_EQ(read(copy.key + ("=" + value)).*field, isOther ? !rest : rest) << copy.key << '=' << value;
        }
    }
    EXPECT_GT(switches, 0);
}

}  // namespace

TEST(SettingsText, OfTheDefaultsIsExactlyTheseLinesEachEndedByCarriageReturnAndLineFeed) {
    EXPECT_EQ(writeSettingsText(Settings{}), fileOf(&SettingCopy::standard));
}

TEST(SettingsText, WritesEveryFieldInItsOwnLine) {
    EXPECT_EQ(writeSettingsText(otherSettings()), fileOf(&SettingCopy::other));
    for (const SettingCopy& copy : settingsCopy()) {
        EXPECT_STRNE(copy.standard, copy.other) << copy.key;
        Settings one;
        putValue(one, copy, copy.other);
        EXPECT_EQ(read(copy.key + std::string("=") + copy.other), one) << copy.key;
    }
}

TEST(SettingsText, WritesSixDigitsOfANumber) {
    Settings s;
    s.opacity = 62.1234567f;
    s.receive_volume = 33.3333333f;
    s.transmit_gain = 0.00001f;
    const std::string text = writeSettingsText(s);
    for (const char* line : {"opacity=62.1235", "receive_volume=33.3333", "transmit_gain=1e-05"})
        EXPECT_NE(text.find("\r\n" + std::string(line) + "\r\n"), std::string::npos) << line;
}

TEST(SettingsText, OfNothingReadsAsTheDefaults) {
    EXPECT_EQ(Settings{}, defaultSettings());
    for (const char* text : {"", "\n", "\r\n\r\n", "[Hopline]\r\n", "=", "=1\n", "nonsense", "[master=0"})
        EXPECT_EQ(readSettingsText(text), Settings{}) << text;
}

TEST(SettingsText, TakesZeroAndFalseAsOffForTheSwitchesThatKnowTheWord) {
    expectSwitches(ValueRule::kOffByWord, true, {"0", "false"});
}

TEST(SettingsText, TakesOnlyOneAndTrueAsOnForNrSelf) {
    expectSwitches(ValueRule::kOnByWord, false, {"1", "true"});
}

TEST(SettingsText, TakesOnlyOneAsOnForPinAndEqualizeSoTrueIsOff) {
    expectSwitches(ValueRule::kOnByDigit, false, {"1"});
}

TEST(SettingsText, TakesOnlyZeroAsOffForThePanelLampsAndMessagesSoFalseIsOn) {
    expectSwitches(ValueRule::kOffByDigit, true, {"0"});
}

TEST(SettingsText, TakesOnlyOneAsStandbyForTarget) {
    EXPECT_EQ(read("target=1").target, 1);
    EXPECT_EQ(read("target=1  ").target, 1);
    for (const char* value : {"0", "true", "2", "", "01", " 1", "1x", "1.0", "-1"})
        EXPECT_EQ(read(std::string("target=") + value).target, 0) << value;
}

TEST(SettingsText, TakesOnlyCom2AsTheSecondRadio) {
    EXPECT_EQ(read("radio=COM2").radio, 2);
    for (const char* value : {"COM1", "COM3", "com2", "2", "", "COM22", "COM2x", " COM2", "COM 2", "COM02"})
        EXPECT_EQ(read(std::string("radio=") + value).radio, 1) << value;
}

TEST(SettingsText, ClampsEveryRealNumberToItsRange) {
    for (const SettingCopy& real : settingsCopy()) {
        if (!real.isReal()) continue;
        const auto field = std::get<float Settings::*>(real.field);
        const float min = real.range.min, max = real.range.max, middle = (min + max) / 2;
        const struct {
            std::string value;
            float result;
        } rows[] = {{std::to_string(min), min},
                    {std::to_string(max), max},
                    {std::to_string(middle), middle},
                    {std::to_string(middle) + "percent", middle},
                    {"  " + std::to_string(middle), middle},
                    {"+" + std::to_string(middle), middle},
                    {std::to_string(max + 0.01), max},
                    {"1000", max},
                    {"1e300", max},
                    {"1e999", max},
                    {"inf", max},
                    {"-1e999", min},
                    {"-inf", min},
                    {"-5", min},
                    {std::to_string(min - 0.01), min},
                    {"nan", min},
                    {"", min},  // what is not a number is 0, which is no range's upper end
                    {"percent", min},
                    {",5", min},
                    {"--3", min}};
        for (const auto& row : rows)
            EXPECT_EQ(read(real.key + ("=" + row.value)).*field, row.result) << real.key << '=' << row.value;
    }
    EXPECT_EQ(read("opacity=5").opacity, 30.0f);
    EXPECT_EQ(read("panel_scale=1000").panel_scale, 200.0f);
    EXPECT_EQ(read("opacity=62,9").opacity, 62.0f);
    EXPECT_EQ(read("opacity=0x40").opacity, 64.0f);
    EXPECT_EQ(read("opacity=6.25e1").opacity, 62.5f);
    EXPECT_EQ(read("volume_min=nan").volume_min, 0.0f);
    EXPECT_EQ(read("volume_min=2").volume_min, 1.0f);
}

TEST(SettingsText, SwapsAMinimumVolumeAboveTheMaximum) {
    const Settings s = readSettingsText("volume_min=0.9\nvolume_max=0.2\n");
    EXPECT_EQ(s.volume_min, 0.2f);
    EXPECT_EQ(s.volume_max, 0.9f);
    const Settings other = readSettingsText("volume_max=0.2\nvolume_min=0.9\n");
    EXPECT_EQ(other.volume_min, 0.2f);
    EXPECT_EQ(other.volume_max, 0.9f);
    const Settings clampedFirst = readSettingsText("volume_min=7\nvolume_max=-7\n");
    EXPECT_EQ(clampedFirst.volume_min, 0.0f);
    EXPECT_EQ(clampedFirst.volume_max, 1.0f);
    const Settings equal = readSettingsText("volume_min=0.5\nvolume_max=0.5\n");
    EXPECT_EQ(equal.volume_min, 0.5f);
    EXPECT_EQ(equal.volume_max, 0.5f);
}

TEST(SettingsText, ClampsEveryWholeNumberToItsRange) {
    const struct {
        const char* value;
        int number;
    } rows[] = {{"0", 0},
                {"1", 1},
                {"2", 2},
                {"7", 7},
                {"9", 9},
                {"-1", -1},
                {"", 0},
                {"x", 0},
                {" 1", 1},
                {"1.9", 1},
                {"1 key", 1},
                {"99999999999", 1000},
                {"-99999999999", -1000}};
    for (const SettingCopy& whole : settingsCopy()) {
        if (whole.rule != ValueRule::kWhole) continue;
        const auto field = std::get<std::int32_t Settings::*>(whole.field);
        const int min = static_cast<int>(whole.range.min), max = static_cast<int>(whole.range.max);
        for (const auto& row : rows)
            EXPECT_EQ(read(whole.key + ("=" + std::string(row.value))).*field, std::clamp(row.number, min, max))
                << whole.key << '=' << row.value;
    }
}

TEST(SettingsText, IgnoresBindingsOfKeysThatDoNotExist) {
    for (const char* line : {"bind_F=3", "bind_=3", "bind_a=3", "bind_AB=3", "bind=3", "Bind_A=3", "bind_A =3"})
        EXPECT_EQ(read(line), Settings{}) << line;
}

TEST(SettingsText, TakesThePanelsPlaceUnclampedAndSaturatesAtTheIntegerLimits) {
    EXPECT_EQ(read("panel_x=-1920").panel_x, -1920);
    EXPECT_EQ(read("panel_y=31999 px").panel_y, 31999);
    EXPECT_EQ(read("panel_x=").panel_x, 0);
    EXPECT_EQ(read("panel_x=2147483647").panel_x, INT32_MAX);
    EXPECT_EQ(read("panel_x=2147483648").panel_x, INT32_MAX);
    EXPECT_EQ(read("panel_y=-2147483648").panel_y, INT32_MIN);
    EXPECT_EQ(read("panel_y=-99999999999999999999").panel_y, INT32_MIN);
    EXPECT_EQ(read("panel_x=-2147483647").panel_x, -2147483647);
}

TEST(SettingsText, GivesItsDefaultToAnEmptyInterpreterOrLanguage) {
    EXPECT_EQ(read("python=").python, "pythonw.exe");
    EXPECT_EQ(read("python=   ").python, "pythonw.exe");
    EXPECT_EQ(read("python=py.exe").python, "py.exe");
    EXPECT_EQ(read("language=").language, "auto");
    EXPECT_EQ(read("language=en-AU").language, "en-AU");
}

TEST(SettingsText, TrimsBlanksOnlyAtTheEndOfAValue) {
    EXPECT_EQ(read("python= C:\\My Python\\python.exe  ").python, " C:\\My Python\\python.exe");
    EXPECT_EQ(read("python=a=b=c").python, "a=b=c");
    EXPECT_EQ(read("python=x\t").python, "x\t");
    EXPECT_EQ(readSettingsText("python=x \r \r\r\n").python, "x");
    EXPECT_FALSE(read("master=0  ").master);
    EXPECT_TRUE(read("master=0\t").master);
    EXPECT_TRUE(read("master= 0").master);
}

TEST(SettingsText, ComparesKeysExactlySoABlankBeforeTheEqualsSignMakesTheKeyUnknown) {
    for (const char* line : {"master =0", " master=0", "Master=0", "MASTER=0", "master\t=0", "maste=0", "masterx=0",
                             "\xEF\xBB\xBFmaster=0", "master", "NRSELF=1", "nrself=1"})
        EXPECT_EQ(read(line), Settings{}) << line;
}

TEST(SettingsText, CountsAKeyBeforeOrAfterAnySectionLineTheSame) {
    const Settings s = readSettingsText("pin=1\n[Other]\ntheme=2\n[Hopline\nbind_A=4\n[]\r\nbind_B=5");
    EXPECT_TRUE(s.pin);
    EXPECT_EQ(s.theme, 2);
    EXPECT_EQ(s.bind_A, 4);
    EXPECT_EQ(s.bind_B, 5);
}

TEST(SettingsText, ReadsLineFeedsAloneAndALastLineWithoutAnEnd) {
    const Settings s = readSettingsText("\n\n[Hopline]\nmaster=0\n\nradio=COM2");
    EXPECT_FALSE(s.master);
    EXPECT_EQ(s.radio, 2);
}

TEST(SettingsText, SkipsBrokenLinesOneByOneAndReadsTheRest) {
    const Settings s = readSettingsText("garbage\r\n=5\r\nunknown=7\r\ntheme=1\r\n\xFF\xFE\r\nopacity=50\r\n");
    Settings expected;
    expected.theme = 1;
    expected.opacity = 50;
    EXPECT_EQ(s, expected);
}

TEST(SettingsText, TakesTheLastOfRepeatedKeys) {
    EXPECT_EQ(readSettingsText("theme=1\ntheme=2\n").theme, 2);
    EXPECT_TRUE(readSettingsText("master=0\nmaster=1\n").master);
}
