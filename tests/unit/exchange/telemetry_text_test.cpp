#include "exchange/telemetry_text.h"
#include <gtest/gtest.h>
#include <clocale>
#include <cmath>
#include <limits>
#include "base/number_text.h"
#include "exchange/flat_json.h"
#include "exchange/telemetry.h"

namespace {

TelemetryRecord fullRecord() {
    TelemetryRecord record;
    record.sim.ok = true;
    record.sim.status = "built-in aircraft";
    record.sim.rangeMinKHz = 118000;
    record.sim.rangeMaxKHz = 136975;
    record.sim.radios[0] = {122800, 118005, 1, 0.6, {true, false, true, false}};
    record.sim.radios[1] = {121500, 136975, 0, 0.25, {false, true, false, true}};
    record.commandPending = true;
    record.ack = {"4242-91234567", true, "COM1 standby 118.005"};
    return record;
}

}  // namespace

TEST(WorkerTelemetryText, IsReadBackByThePluginWhole) {
    const auto read = parseTelemetry(telemetryText(fullRecord(), 1790000000.125));
    EXPECT_DOUBLE_EQ(read.updated, 1790000000.125);
    EXPECT_TRUE(isFresh(read, 1790000000.125));
    EXPECT_EQ(read.rangeMin, 118000);
    EXPECT_EQ(read.rangeMax, 136975);
    EXPECT_EQ(read.radios[0].active, 122800);
    EXPECT_EQ(read.radios[0].standby, 118005);
    EXPECT_EQ(read.radios[0].spacing, 1);
    EXPECT_FLOAT_EQ(read.radios[0].volume, 0.6f);
    EXPECT_EQ(read.radios[0].writable, (std::array<bool, kSlotCount>{true, false, true, false}));
    EXPECT_EQ(read.radios[1].active, 121500);
    EXPECT_EQ(read.radios[1].standby, 136975);
    EXPECT_EQ(read.radios[1].spacing, 0);
    EXPECT_FLOAT_EQ(read.radios[1].volume, 0.25f);
    EXPECT_EQ(read.radios[1].writable, (std::array<bool, kSlotCount>{false, true, false, true}));
    EXPECT_TRUE(read.commandPending);
    EXPECT_EQ(read.ackId, "4242-91234567");
    EXPECT_TRUE(read.ackOk);
    EXPECT_EQ(read.ackMessage, "COM1 standby 118.005");
    EXPECT_EQ(read.status, "built-in aircraft");
}

TEST(WorkerTelemetryText, IsOneFlatJsonObjectWithEveryKeyOnce) {
    const auto text = telemetryText(fullRecord(), 1790000000.0);
    const auto fields = readFlatJson(text);
    ASSERT_TRUE(fields);
    EXPECT_EQ(fields->size(), 26u);
    EXPECT_EQ(findField(*fields, "protocol")->number, 2.0);
    EXPECT_EQ(findField(*fields, "com2_swap_writable")->kind, FlatKind::True);
}

TEST(WorkerTelemetryText, ADownLinkIsNotFreshAndKnowsNothing) {
    TelemetryRecord record;
    record.sim.status = "waiting for the simulator";
    const auto read = parseTelemetry(telemetryText(record, 1790000000.0));
    EXPECT_FALSE(isFresh(read, 1790000000.0));
    EXPECT_EQ(read.status, "waiting for the simulator");
    EXPECT_EQ(read.radios[0].active, 0);
    EXPECT_EQ(read.radios[0].spacing, -1);
    EXPECT_FLOAT_EQ(read.radios[0].volume, -1.0f);
}

TEST(WorkerTelemetryText, StampsThreeDecimalsNeverLaterThanNow) {
    for (const double now : {1790000000.0, 1790000000.0006, 1790000000.9999, 1790000000.1234999, 0.0}) {
        const auto text = telemetryText({}, now);
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
    const auto text = telemetryText(fullRecord(), 1790000000.5);
    setlocale(LC_ALL, before.c_str());
    EXPECT_NE(text.find("\"updated\":1790000000.500,"), std::string::npos) << text;
    EXPECT_NE(text.find("\"com1_volume\":0.6,"), std::string::npos) << text;
    if (!comma) GTEST_SKIP() << "no locale with a decimal comma on this machine";
}

TEST(WorkerTelemetryText, LetsNoTextBreakOutOfItsQuotes) {
    auto record = fullRecord();
    record.sim.status = "a \"b\" c\\d\r\n\t\x01\x7f\xe4";
    record.ack.message = "\",\"ok\":false,\"x\":\"";
    const auto text = telemetryText(record, 1790000000.0);
    ASSERT_TRUE(readFlatJson(text)) << text;
    const auto read = parseTelemetry(text);
    EXPECT_EQ(read.status, "a 'b' c/d     \xe4");
    EXPECT_EQ(read.ackMessage, "','ok':false,'x':'");
    EXPECT_TRUE(read.ok);
}

TEST(WorkerTelemetryText, AnIdThatIsAKeyHidesNoOtherValue) {
    for (const char* key : {"ok", "status", "ack_message", "updated", "com1_active", "ack_ok"}) {
        auto record = fullRecord();
        record.ack.id = key;
        const auto read = parseTelemetry(telemetryText(record, 1790000000.0));
        EXPECT_TRUE(read.ok && read.ackOk) << key;
        EXPECT_EQ(read.status, "built-in aircraft") << key;
        EXPECT_EQ(read.ackMessage, "COM1 standby 118.005") << key;
        EXPECT_EQ(read.ackId, key);
        EXPECT_EQ(read.radios[0].active, 122800) << key;
    }
}

TEST(WorkerTelemetryText, AnUnusableVolumeIsUnknown) {
    auto record = fullRecord();
    record.sim.radios[0].volume = std::numeric_limits<double>::quiet_NaN();
    record.sim.radios[1].volume = std::numeric_limits<double>::infinity();
    const auto read = parseTelemetry(telemetryText(record, 1790000000.0));
    EXPECT_FLOAT_EQ(read.radios[0].volume, -1.0f);
    EXPECT_FLOAT_EQ(read.radios[1].volume, -1.0f);
}
