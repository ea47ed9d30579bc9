// The rules of settings.ini, one test per rule.
#include "settings/settings_text.h"
#include <gtest/gtest.h>
#include <algorithm>
#include <climits>
#include <string>
#include <vector>

namespace {

// Every line of a file with the defaults, in order.
const char* const kDefaultLines[] = {
    "[Hopline]",       "master=1",        "nrSelf=0",           "enabled=1",         "radio=COM1",
    "follow_volume=1", "volume_min=0",    "volume_max=1",       "distort_self=1",    "distort_others=1",
    "tail_self=1",     "tail_others=1",   "python=pythonw.exe", "language=auto",     "target=0",
    "theme=0",         "panel_scale=100", "opacity=100",        "receive_volume=80", "transmit_gain=0",
    "panel_visible=1", "pin=0",           "equalize=0",         "panel_x=80",        "panel_y=80",
    "radio_lamps=1",   "text_alert=1",    "text_auto_open=1",   "text_scale=15",     "bind_A=0",
    "bind_B=0",        "bind_C=0",        "bind_D=0",           "bind_E=0"};

// The record that a file of this one line gives.
Settings read(const std::string& line) {
    return readSettingsText(line + "\r\n");
}

struct FlagCase {
    const char* key;
    bool Settings::*field;
};

// Reads each value as the flag's; the values named in others read as !rest, all the rest as rest.
void expectFlag(const FlagCase& flag, bool rest, const std::vector<std::string>& others) {
    for (const std::string value :
         {"0",    "1",    "false", "true", "",    "2",  "-1", "00", "01", "0.0",     "False",  "FALSE",
          "True", "TRUE", "on",    "off",  "yes", "no", " 0", " 1", "0x", "falsely", "truely", "10"}) {
        const bool isOther = std::find(others.begin(), others.end(), value) != others.end();
        EXPECT_EQ(read(flag.key + ("=" + value)).*flag.field, isOther ? !rest : rest) << flag.key << '=' << value;
    }
}

struct RealCase {
    const char* key;
    float Settings::*field;
    float min, max;
};
const RealCase kReals[] = {
    {"panel_scale", &Settings::panel_scale, 50, 200},      {"opacity", &Settings::opacity, 30, 100},
    {"receive_volume", &Settings::receive_volume, 0, 100}, {"transmit_gain", &Settings::transmit_gain, 0, 18},
    {"text_scale", &Settings::text_scale, 12, 22},         {"volume_max", &Settings::volume_max, 0, 1}};

}  // namespace

TEST(SettingsText, OfTheDefaultsIsExactlyTheseLinesEachEndedByCarriageReturnAndLineFeed) {
    std::string expected;
    for (const char* line : kDefaultLines) expected += std::string(line) + "\r\n";
    EXPECT_EQ(writeSettingsText(Settings{}), expected);
}

TEST(SettingsText, WritesEveryFieldInItsOwnLine) {
    Settings s;
    s.master = s.enabled = s.follow_volume = s.distort_self = s.distort_others = s.tail_self = s.tail_others = false;
    s.panel_visible = s.radio_lamps = s.text_alert = s.text_auto_open = false;
    s.nrSelf = s.pin = s.equalize = true;
    s.radio = 2;
    s.target = 1;
    s.theme = 2;
    s.volume_min = 0.25f;
    s.volume_max = 0.85f;
    s.panel_scale = 133.5f;
    s.opacity = 62.1234567f;
    s.receive_volume = 33.3333333f;
    s.transmit_gain = 0.00001f;
    s.text_scale = 17.5f;
    s.panel_x = -1920;
    s.panel_y = INT32_MIN;
    s.bind_A = 1;
    s.bind_B = 2;
    s.bind_C = 3;
    s.bind_D = 4;
    s.bind_E = 5;
    s.python = "C:\\Program Files\\Python\\python.exe";
    s.language = "zh-TW";
    EXPECT_EQ(writeSettingsText(s),
              "[Hopline]\r\nmaster=0\r\nnrSelf=1\r\nenabled=0\r\nradio=COM2\r\nfollow_volume=0\r\nvolume_min=0.25\r\n"
              "volume_max=0.85\r\ndistort_self=0\r\ndistort_others=0\r\ntail_self=0\r\ntail_others=0\r\n"
              "python=C:\\Program Files\\Python\\python.exe\r\nlanguage=zh-TW\r\ntarget=1\r\ntheme=2\r\n"
              "panel_scale=133.5\r\nopacity=62.1235\r\nreceive_volume=33.3333\r\ntransmit_gain=1e-05\r\n"
              "panel_visible=0\r\npin=1\r\nequalize=1\r\npanel_x=-1920\r\npanel_y=-2147483648\r\nradio_lamps=0\r\n"
              "text_alert=0\r\ntext_auto_open=0\r\ntext_scale=17.5\r\nbind_A=1\r\nbind_B=2\r\nbind_C=3\r\nbind_D=4\r\n"
              "bind_E=5\r\n");
}

TEST(SettingsText, OfNothingReadsAsTheDefaults) {
    Settings d;  // said once more here, so that a changed default is noticed
    d.master = d.enabled = d.follow_volume = d.distort_self = d.distort_others = d.tail_self = d.tail_others = true;
    d.panel_visible = d.radio_lamps = d.text_alert = d.text_auto_open = true;
    d.nrSelf = d.pin = d.equalize = false;
    d.radio = 1;
    d.target = d.theme = d.bind_A = d.bind_B = d.bind_C = d.bind_D = d.bind_E = 0;
    d.volume_min = d.transmit_gain = 0.0f;
    d.volume_max = 1.0f;
    d.panel_scale = d.opacity = 100.0f;
    d.receive_volume = 80.0f;
    d.text_scale = 15.0f;
    d.panel_x = d.panel_y = 80;
    d.python = "pythonw.exe";
    d.language = "auto";
    EXPECT_EQ(Settings{}, d);
    for (const char* text : {"", "\n", "\r\n\r\n", "[Hopline]\r\n", "=", "=1\n", "nonsense", "[master=0"})
        EXPECT_EQ(readSettingsText(text), d) << text;
}

TEST(SettingsText, TakesZeroAndFalseAsOffForTheSwitchesThatKnowTheWord) {
    for (const FlagCase& flag : {FlagCase{"master", &Settings::master},
                                 {"enabled", &Settings::enabled},
                                 {"follow_volume", &Settings::follow_volume},
                                 {"distort_self", &Settings::distort_self},
                                 {"distort_others", &Settings::distort_others},
                                 {"tail_self", &Settings::tail_self},
                                 {"tail_others", &Settings::tail_others}})
        expectFlag(flag, true, {"0", "false"});
}

TEST(SettingsText, TakesOnlyOneAndTrueAsOnForNrSelf) {
    expectFlag({"nrSelf", &Settings::nrSelf}, false, {"1", "true"});
}

TEST(SettingsText, TakesOnlyOneAsOnForPinAndEqualizeSoTrueIsOff) {
    expectFlag({"pin", &Settings::pin}, false, {"1"});
    expectFlag({"equalize", &Settings::equalize}, false, {"1"});
}

TEST(SettingsText, TakesOnlyZeroAsOffForThePanelLampsAndMessagesSoFalseIsOn) {
    for (const FlagCase& flag : {FlagCase{"panel_visible", &Settings::panel_visible},
                                 {"radio_lamps", &Settings::radio_lamps},
                                 {"text_alert", &Settings::text_alert},
                                 {"text_auto_open", &Settings::text_auto_open}})
        expectFlag(flag, true, {"0"});
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
    for (const RealCase& real : kReals) {
        const float middle = (real.min + real.max) / 2;
        const struct {
            std::string value;
            float result;
        } rows[] = {{std::to_string(real.min), real.min},
                    {std::to_string(real.max), real.max},
                    {std::to_string(middle), middle},
                    {std::to_string(middle) + "percent", middle},
                    {"  " + std::to_string(middle), middle},
                    {"+" + std::to_string(middle), middle},
                    {std::to_string(real.max + 0.01), real.max},
                    {"1000", real.max},
                    {"1e300", real.max},
                    {"1e999", real.max},
                    {"inf", real.max},
                    {"-1e999", real.min},
                    {"-inf", real.min},
                    {"-5", real.min},
                    {std::to_string(real.min - 0.01), real.min},
                    {"nan", real.min},
                    {"", real.min},  // no number is 0, which is no range's upper end
                    {"percent", real.min},
                    {",5", real.min},
                    {"--3", real.min}};
        for (const auto& row : rows)
            EXPECT_EQ(read(real.key + ("=" + row.value)).*real.field, row.result) << real.key << '=' << row.value;
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

TEST(SettingsText, ClampsTheThemeToThreeAndABindingToEightChoices) {
    const struct {
        const char* value;
        int theme, binding;
    } rows[] = {{"0", 0, 0},           {"1", 1, 1},   {"2", 2, 2},     {"7", 2, 7},
                {"9", 2, 7},           {"-1", 0, 0},  {"", 0, 0},      {"x", 0, 0},
                {" 1", 1, 1},          {"1.9", 1, 1}, {"1 key", 1, 1}, {"99999999999", 2, 7},
                {"-99999999999", 0, 0}};
    for (const auto& row : rows) {
        const std::string value = row.value;
        EXPECT_EQ(read("theme=" + value).theme, row.theme) << value;
        EXPECT_EQ(read("bind_A=" + value).bind_A, row.binding) << value;
        EXPECT_EQ(read("bind_B=" + value).bind_B, row.binding) << value;
        EXPECT_EQ(read("bind_C=" + value).bind_C, row.binding) << value;
        EXPECT_EQ(read("bind_D=" + value).bind_D, row.binding) << value;
        EXPECT_EQ(read("bind_E=" + value).bind_E, row.binding) << value;
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
