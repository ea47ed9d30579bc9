#include "exchange/telemetry_text.h"
#include <gtest/gtest.h>
#include <clocale>
#include <cmath>
#include <limits>
#include "base/number_text.h"
#include "exchange/flat_json.h"

namespace {

Telemetry fullTelemetry() {
    Telemetry telemetry;
    telemetry.ok = true;
    telemetry.status = "built-in aircraft";
    telemetry.rangeMin = 118000;
    telemetry.rangeMax = 136975;
    telemetry.radios[0] = {122800, 118005, 1, 0.6f, {true, false, true, false}};
    telemetry.radios[1] = {121500, 136975, 0, 0.25f, {false, true, false, true}};
    telemetry.commandPending = true;
    telemetry.ackId = "4242-91234567";
    telemetry.ackOk = true;
    telemetry.ackMessage = "COM1 STBY 118.005";
    return telemetry;
}

}  // namespace

TEST(WorkerTelemetryText, IsReadBackByThePluginWhole) {
    const auto read = parseTelemetry(writeTelemetryText(fullTelemetry(), 1790000000.125));
    auto expected = fullTelemetry();
    expected.updated = 1790000000.125;
    expected.protocol = 2.0;
    EXPECT_EQ(read, expected);
    EXPECT_TRUE(isFresh(read, 1790000000.125));
}

// Each field on its own, so that none can hide behind another with the same value.
TEST(WorkerTelemetryText, EachFieldTravelsByItself) {
    using Change = void (*)(Telemetry&);
    const Change changes[] = {
        [](Telemetry& t) { t.ok = true; },          [](Telemetry& t) { t.rangeMin = 118000; },
        [](Telemetry& t) { t.rangeMax = 136990; },  [](Telemetry& t) { t.ackId = "4242-1"; },
        [](Telemetry& t) { t.ackOk = true; },       [](Telemetry& t) { t.commandPending = true; },
        [](Telemetry& t) { t.status = "in menu"; }, [](Telemetry& t) { t.ackMessage = "COM2 swapped to 118.005"; },
    };
    const auto travels = [](Telemetry telemetry) {
        telemetry.updated = 5.0;
        telemetry.protocol = kTelemetryProtocol;
        EXPECT_EQ(parseTelemetry(writeTelemetryText(telemetry, 5.0)), telemetry);
    };
    travels({});
    for (const Change& change : changes) {
        Telemetry telemetry;
        change(telemetry);
        ASSERT_NE(telemetry, Telemetry{});
        travels(telemetry);
    }
    for (std::size_t radio = 0; radio < kRadioCount; radio++) {
        const std::int32_t known[] = {118005, 136990, 0, 1};
        for (const std::int32_t value : known) {
            for (std::int32_t RadioReading::*field :
                 {&RadioReading::active, &RadioReading::standby, &RadioReading::spacing}) {
                Telemetry telemetry;
                telemetry.radios[radio].*field = value;
                travels(telemetry);
            }
        }
        for (int percent = 0; percent <= 100; percent++) {
            Telemetry telemetry;
            telemetry.radios[radio].volume = static_cast<float>(percent) / 100.0f;
            travels(telemetry);
        }
        for (std::size_t slot = 0; slot < kSlotCount; slot++) {
            Telemetry telemetry;
            telemetry.radios[radio].writable[slot] = true;
            travels(telemetry);
        }
    }
}

TEST(WorkerTelemetryText, IsOneFlatJsonObjectWithEveryKeyOnce) {
    const auto text = writeTelemetryText(fullTelemetry(), 1790000000.0);
    const auto fields = readFlatJson(text);
    ASSERT_TRUE(fields);
    EXPECT_EQ(fields->size(), 26u);
    EXPECT_EQ(findField(*fields, "protocol")->number, 2.0);
    EXPECT_EQ(findField(*fields, "com2_swap_writable")->kind, FlatKind::kTrue);
}

TEST(WorkerTelemetryText, ADownLinkIsNotFreshAndKnowsNothing) {
    Telemetry record;
    record.status = "waiting for the simulator";
    const auto read = parseTelemetry(writeTelemetryText(record, 1790000000.0));
    EXPECT_FALSE(isFresh(read, 1790000000.0));
    EXPECT_EQ(read.status, "waiting for the simulator");
    EXPECT_EQ(read.radios[0].active, 0);
    EXPECT_EQ(read.radios[0].spacing, -1);
    EXPECT_FLOAT_EQ(read.radios[0].volume, -1.0f);
}

TEST(WorkerTelemetryText, StampsThreeDecimalsNeverLaterThanNow) {
    for (const double now : {1790000000.0, 1790000000.0006, 1790000000.9999, 1790000000.1234999, 0.0}) {
        const auto text = writeTelemetryText({}, now);
        const auto comma = text.find(',');
        EXPECT_EQ(text.substr(0, 11), "{\"updated\":");
        EXPECT_EQ(text[comma - 4], '.') << text;
        const double updated = leadingDouble(std::string_view(text).substr(11));
        EXPECT_LE(updated, now) << text;
        EXPECT_GT(updated, now - 0.0011) << text;
    }
}

TEST(WorkerTelemetryText, KeepsThePointInACommaLocale) {
    const std::string before = setlocale(LC_ALL, nullptr);
    const bool comma = setlocale(LC_ALL, "de_DE.UTF-8") || setlocale(LC_ALL, "fr_FR.UTF-8") ||
                       setlocale(LC_ALL, "de_DE.utf8") || setlocale(LC_ALL, "German");
    const auto text = writeTelemetryText(fullTelemetry(), 1790000000.5);
    setlocale(LC_ALL, before.c_str());
    EXPECT_NE(text.find("\"updated\":1790000000.500,"), std::string::npos) << text;
    EXPECT_NE(text.find("\"com1_volume\":0.6,"), std::string::npos) << text;
    if (!comma) GTEST_SKIP() << "no locale with a decimal comma on this machine";
}

TEST(WorkerTelemetryText, LetsNoTextBreakOutOfItsQuotes) {
    auto record = fullTelemetry();
    record.status = "a \"b\" c\\d\r\n\t\x01\x7f\xe4";
    record.ackMessage = "\",\"ok\":false,\"x\":\"";
    const auto text = writeTelemetryText(record, 1790000000.0);
    ASSERT_TRUE(readFlatJson(text)) << text;
    const auto read = parseTelemetry(text);
    EXPECT_EQ(read.status, "a 'b' c/d     \xe4");
    EXPECT_EQ(read.ackMessage, "','ok':false,'x':'");
    EXPECT_TRUE(read.ok);
}

TEST(WorkerTelemetryText, AnIdThatIsAKeyHidesNoOtherValue) {
    for (const char* key : {"ok", "status", "ack_message", "updated", "com1_active", "ack_ok"}) {
        auto record = fullTelemetry();
        record.ackId = key;
        const auto read = parseTelemetry(writeTelemetryText(record, 1790000000.0));
        EXPECT_TRUE(read.ok && read.ackOk) << key;
        EXPECT_EQ(read.status, "built-in aircraft") << key;
        EXPECT_EQ(read.ackMessage, "COM1 STBY 118.005") << key;
        EXPECT_EQ(read.ackId, key);
        EXPECT_EQ(read.radios[0].active, 122800) << key;
    }
}

TEST(WorkerTelemetryText, AnUnusableVolumeIsUnknown) {
    auto record = fullTelemetry();
    record.radios[0].volume = std::numeric_limits<float>::quiet_NaN();
    record.radios[1].volume = std::numeric_limits<float>::infinity();
    const auto read = parseTelemetry(writeTelemetryText(record, 1790000000.0));
    EXPECT_FLOAT_EQ(read.radios[0].volume, -1.0f);
    EXPECT_FLOAT_EQ(read.radios[1].volume, -1.0f);
}
