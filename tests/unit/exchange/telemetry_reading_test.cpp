#include <gtest/gtest.h>
#include <clocale>
#include <limits>
#include <locale>
#include "exchange/command_text.h"
#include "exchange/telemetry_text.h"
#include "tests/unit/bridge/rig.h"
#include "tests/unit/exchange/telemetry_reference.h"

namespace {

// Commas for points and grouped thousands, in C++ streams and, if the machine has such a locale, in C as well.
class CommaLocale {
  public:
    CommaLocale() : before_(std::locale::global(std::locale(std::locale::classic(), new Commas))) {
        for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8"})
            if (std::setlocale(LC_ALL, name)) break;
    }
    ~CommaLocale() {
        std::locale::global(before_);
        std::setlocale(LC_ALL, "C");
    }

  private:
    struct Commas : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    std::locale before_;
};

void expectFullFile(const Telemetry& telemetry) {
    EXPECT_EQ(telemetry.updated, 1790000000.0);
    EXPECT_TRUE(telemetry.ok);
    EXPECT_EQ(telemetry.protocol, 2.0);
    EXPECT_EQ(telemetry.rangeMin, 118000);
    EXPECT_EQ(telemetry.rangeMax, 136990);
    EXPECT_EQ(telemetry.radios[0].active, 122800);
    EXPECT_EQ(telemetry.radios[0].standby, 121500);
    EXPECT_EQ(telemetry.radios[0].spacing, 0);
    EXPECT_EQ(telemetry.radios[0].volume, 0.75f);
    EXPECT_EQ(telemetry.radios[1].active, 118005);
    EXPECT_EQ(telemetry.radios[1].standby, 127250);
    EXPECT_EQ(telemetry.radios[1].spacing, 1);
    EXPECT_EQ(telemetry.radios[1].volume, 0.5f);
    for (const auto& radio : telemetry.radios) EXPECT_EQ(radio.writable, (std::array{true, true, true, true}));
    EXPECT_EQ(telemetry.ackId, "4242-900");
    EXPECT_TRUE(telemetry.ackOk);
    EXPECT_TRUE(telemetry.commandPending);
    EXPECT_EQ(telemetry.status, "flying");
    EXPECT_EQ(telemetry.ackMessage, "Tuned");
}

}  // namespace

TEST(TelemetryText, EveryKeyFillsItsField) {
    expectFullFile(parseTelemetry(TelemetryFile().text()));
}

TEST(TelemetryText, KeysStandInAnyOrder) {
    expectFullFile(parseTelemetry(TelemetryFile().reverse().text()));
}

TEST(TelemetryText, AnyWhitespaceStandsAroundTheColon) {
    for (const char* colon : {":", " : ", "\t:\t", "\r\n:\r\n", " \t\r\n:\n\n  \t"}) {
        SCOPED_TRACE(colon);
        expectFullFile(parseTelemetry(TelemetryFile().text(colon, "\r\n,\t")));
    }
}

TEST(TelemetryText, AbsentKeysTakeTheirDefaults) {
    for (const char* text : {"", "{}", "null", "[1,2,3]", "\"", "no quotes at all"}) {
        const Telemetry telemetry = parseTelemetry(text);
        EXPECT_EQ(telemetry.updated, 0.0);
        EXPECT_FALSE(telemetry.ok);
        EXPECT_EQ(telemetry.protocol, 0.0);
        EXPECT_EQ(telemetry.rangeMin, 0);
        EXPECT_EQ(telemetry.rangeMax, 0);
        for (const auto& radio : telemetry.radios) {
            EXPECT_EQ(radio.active, 0);
            EXPECT_EQ(radio.standby, 0);
            EXPECT_EQ(radio.spacing, -1);
            EXPECT_EQ(radio.volume, -1.0f);
            EXPECT_EQ(radio.writable, (std::array{false, false, false, false}));
        }
        EXPECT_EQ(telemetry.ackId, "");
        EXPECT_FALSE(telemetry.ackOk);
        EXPECT_FALSE(telemetry.commandPending);
        EXPECT_EQ(telemetry.status, "");
        EXPECT_EQ(telemetry.ackMessage, "");
    }
}

TEST(TelemetryText, EachKeyMissingAloneLeavesTheOthersAsTheyStand) {
    const TelemetryFile whole;
    for (const auto& [key, json] : whole.fields()) {
        TelemetryFile file;
        file.drop(key);
        EXPECT_EQ(telemetryDifference(file.text()), "") << "without " << key;
    }
    EXPECT_EQ(parseTelemetry(TelemetryFile().drop("com2_volume").text()).radios[1].volume, -1.0f);
    EXPECT_EQ(parseTelemetry(TelemetryFile().drop("com1_spacing").text()).radios[0].spacing, -1);
}

TEST(TelemetryText, EachWritableFlagHasItsOwnKey) {
    const char* const slots[] = {"active", "standby", "volume", "swap"};
    for (std::size_t radio = 0; radio < 2; radio++)
        for (std::size_t slot = 0; slot < 4; slot++) {
            const std::string key = (radio == 0 ? "com1_" : "com2_") + std::string(slots[slot]) + "_writable";
            const Telemetry telemetry = parseTelemetry(TelemetryFile().set(key, "false").text());
            for (std::size_t r = 0; r < 2; r++)
                for (std::size_t s = 0; s < 4; s++)
                    EXPECT_EQ(telemetry.radios[r].writable[s], r != radio || s != slot) << key;
        }
}

TEST(TelemetryText, TheFirstOccurrenceOfAKeyCounts) {
    EXPECT_EQ(parseTelemetry(R"({"com1_active":122800,"com1_active":121500})").radios[0].active, 122800);
    EXPECT_FALSE(parseTelemetry(R"({"ok":false,"ok":true})").ok);
    EXPECT_EQ(parseTelemetry(R"({"com1_active":"x","com1_active":121500})").radios[0].active, 0);
}

TEST(TelemetryText, AKeyThatStandsAsAValueIsTakenForTheKey) {
    // The first "ok" is the value of status; the next colon belongs to protocol.
    EXPECT_FALSE(parseTelemetry(R"({"status":"ok","protocol":2,"ok":true})").ok);
    EXPECT_TRUE(parseTelemetry(R"({"status":"ok","ok":true,"protocol":2})").ok);
    EXPECT_EQ(parseTelemetry(R"({"status":"com1_active","range_min":7,"com1_active":122800})").radios[0].active, 7);
}

TEST(TelemetryText, LettersBetweenTheClosingQuoteOfOneTextAndTheNextQuoteAreAKeyToo) {
    EXPECT_EQ(parseTelemetry(R"({"a"range_min":118000})").rangeMin, 118000);
}

TEST(TelemetryText, AKeyNeedsItsExactLettersAndBothQuotes) {
    for (const char* text : {R"({ok:true})", R"({'ok':true})", R"({"OK":true})", R"({"ok ":true})", R"({" ok":true})",
                             R"({"xok":true})", R"({"ok:true})"})
        EXPECT_FALSE(parseTelemetry(text).ok) << text;
    EXPECT_EQ(parseTelemetry(R"({"com3_active":1,"com_active":2,"com1active":3,"com0_active":4})").radios[0].active, 0);
}

TEST(TelemetryText, OnlyTheLiteralTextTrueIsTrue) {
    const struct {
        const char* json;
        bool isTrue;
    } rows[] = {{"true", true}, {"true}", true},     {"trueish", true}, {"True", false}, {"TRUE", false}, {"1", false},
                {"tru", false}, {"\"true\"", false}, {"false", false},  {"null", false}, {"", false},     {"t", false}};
    for (const auto& row : rows) {
        EXPECT_EQ(parseTelemetry(R"({"ok":)" + std::string(row.json)).ok, row.isTrue) << row.json;
        EXPECT_EQ(parseTelemetry(R"({"ack_ok": )" + std::string(row.json)).ackOk, row.isTrue) << row.json;
        EXPECT_EQ(parseTelemetry(R"({"command_pending":)" + std::string(row.json)).commandPending, row.isTrue);
        EXPECT_EQ(parseTelemetry(R"({"com2_swap_writable":)" + std::string(row.json)).radios[1].writable[3],
                  row.isTrue);
    }
}

TEST(TelemetryText, NumbersAreTruncatedTowardZeroAndBeyond32BitsAreZero) {
    const struct {
        const char* json;
        std::int32_t whole;
    } rows[] = {{"122800", 122800},
                {"122800.999", 122800},
                {"-0.9", 0},
                {"-7.9", -7},
                {"1.228e5", 122800},
                {"1.228E+5", 122800},
                {"+5", 5},
                {"  42", 42},
                {"2147483647", 2147483647},
                {"2147483647.9", 2147483647},
                {"2147483648", 0},
                {"-2147483648", -2147483647 - 1},
                {"-2147483649", 0},
                {"1e300", 0},
                {"-1e300", 0},
                {"1e999", 0},
                {"nan", 0},
                {"inf", 0},
                {"122800abc", 122800},
                {"122,800", 122},
                {"\"122800\"", 0},
                {"null", 0},
                {"", 0},
                {"--5", 0},
                {"true", 0},
                {".5", 0},
                {"0x10", 16}};
    for (const auto& row : rows) {
        EXPECT_EQ(parseTelemetry(R"({"com1_active":)" + std::string(row.json)).radios[0].active, row.whole) << row.json;
        EXPECT_EQ(parseTelemetry(R"({"range_max":)" + std::string(row.json)).rangeMax, row.whole) << row.json;
    }
}

TEST(TelemetryText, AHexadecimalPrefixWithoutDigitsIsTheZeroBeforeIt) {
    for (const char* json : {"0x", "0xg", "0x-1", "0x+1", "0x.", "0xnan", "0xinf"})
        EXPECT_EQ(parseTelemetry(R"({"updated":)" + std::string(json)).updated, 0.0) << json;
    EXPECT_EQ(parseTelemetry(R"({"updated":0x1.8p1})").updated, 3.0);
}

TEST(TelemetryText, ASpacingThatIsNoNumberIsMinusOne) {
    for (const char* json : {"null", "\"0\"", "x", ""})
        EXPECT_EQ(parseTelemetry(R"({"com1_spacing":)" + std::string(json)).radios[0].spacing, -1) << json;
    EXPECT_EQ(parseTelemetry(R"({"com1_spacing":2})").radios[0].spacing, 2);
}

TEST(TelemetryText, AStringRunsFromTheNextQuoteToTheOneAfter) {
    const struct {
        const char* text;
        const char* id;
    } rows[] = {
        {R"({"ack_id":"4242-7"})", "4242-7"},
        {R"({"ack_id":  "a b" })", "a b"},
        {R"({"ack_id":""})", ""},
        {R"({"ack_id":"a\"b"})", "a\\"},  // escapes are not interpreted
        {R"({"ack_id":"a\nA"})", "a\\nA"},
        {R"({"ack_id":"open)", ""},  // never closed
        {R"({"ack_id":)", ""},
        {R"({"ack_id")", ""},
        {R"({"ack_id":12,"x":"y"})", "x"},  // the next quote begins the text, wherever it is
        {R"({"ack_id":{"x":1}})", "x"},
    };
    for (const auto& row : rows) EXPECT_EQ(parseTelemetry(row.text).ackId, row.id) << row.text;
    EXPECT_EQ(parseTelemetry("{\"status\":\"\xc3\xa4 \xff\"}").status, "\xc3\xa4 \xff");
    EXPECT_EQ(parseTelemetry("{\"ack_message\":\"two\nlines\"}").ackMessage, "two\nlines");
}

TEST(TelemetryText, TextsAreCutAt256BytesButNotInsideACharacter) {
    const std::string letters(255, 'a');
    const struct {
        std::string text, read;
    } rows[] = {{letters, letters},
                {letters + "b", letters + "b"},
                {letters + "bc", letters + "b"},
                {letters + "\xc3\xa4", letters},
                {letters + "\xe4\xb8\xad and more", letters},
                {letters.substr(1) + "\xc3\xa4 and more", letters.substr(1) + "\xc3\xa4"}};
    for (const auto& row : rows) {
        const std::string quoted = ":\"" + row.text + "\"";
        const Telemetry telemetry =
            parseTelemetry("{\"ack_id\"" + quoted + ",\"ack_message\"" + quoted + ",\"status\"" + quoted + "}");
        EXPECT_EQ(telemetry.ackId, row.read);
        EXPECT_EQ(telemetry.ackMessage, row.read);
        EXPECT_EQ(telemetry.status, row.read);
    }
}

TEST(TelemetryText, ReadsTheSameUnderALocaleWithCommas) {
    const CommaLocale commas;
    expectFullFile(parseTelemetry(TelemetryFile().text()));
    EXPECT_EQ(parseTelemetry(R"({"com1_volume":0.25})").radios[0].volume, 0.25f);
    EXPECT_EQ(writeCommandText({"1-2", {0, kSlotVolume, 0.25}, 1790000000.5}),
              R"({"id":"1-2","com":1,"slot":"volume","target":0.25,"created":1790000000.500})");
    EXPECT_EQ(writeCommandText({"1-2", {0, kSlotActive, 122800.0}, 1790000000.5}),
              R"({"id":"1-2","com":1,"slot":"active","target":122800,"created":1790000000.500})");
}
