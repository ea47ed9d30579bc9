// telemetry_damage_test.cpp - what a half-written, damaged or hostile telemetry file does to the reader.
#include <gtest/gtest.h>
#include "tests/unit/bridge/rig.h"
#include "tests/unit/exchange/telemetry_reference.h"

namespace {

#ifdef CORVALIS_SANITIZED
constexpr std::size_t kHostileBytes = 5'000'000;  // under a sanitizer each byte costs twenty times as much
#else
constexpr std::size_t kHostileBytes = 100'000'000;
#endif

std::string repeat(std::string_view piece, std::size_t bytes) {
    std::string text;
    text.reserve(bytes + piece.size());
    while (text.size() < bytes) text += piece;
    return text;
}

// Every key once, no colon anywhere.
std::string allKeys() {
    std::string keys;
    const TelemetryFile whole;
    for (const auto& [key, json] : whole.fields()) keys += '"' + key + "\" ";
    return keys;
}

// The reading must not be fresh, and its radios must be unknown.
void expectAtRest(const std::string& text) {
    const Telemetry telemetry = parseTelemetry(text);
    EXPECT_FALSE(isFresh(telemetry, 1790000000.0));
    EXPECT_FALSE(telemetry.ok);
    for (const auto& radio : telemetry.radios) {
        EXPECT_EQ(radio.active, 0);
        EXPECT_EQ(radio.volume, -1.0f);
        EXPECT_EQ(radio.spacing, -1);
    }
}

}  // namespace

TEST(TelemetryDamage, EveryTruncationReadsWhatIsLeftAndNoMore) {
    const std::string whole = TelemetryFile().text();
    for (std::size_t length = 0; length <= whole.size(); length++)
        ASSERT_EQ(telemetryDifference(whole.substr(0, length)), "") << length << " bytes";
}

TEST(TelemetryDamage, EachByteDamagedReadsAsASearchKeyByKeyWould) {
    const std::string whole = TelemetryFile().text();
    for (std::size_t at = 0; at < whole.size(); at++)
        for (const char damage : {'"', ':', '\0', '\xff', '\\', ' ', '9', 't', static_cast<char>(whole[at] ^ 1)}) {
            std::string text = whole;
            text[at] = damage;
            ASSERT_EQ(telemetryDifference(text), "") << "byte " << at << " became " << static_cast<int>(damage);
        }
}

TEST(TelemetryDamage, EachByteLostReadsAsASearchKeyByKeyWould) {
    const std::string whole = TelemetryFile().text(":", ",");
    for (std::size_t at = 0; at < whole.size(); at++) {
        std::string text = whole;
        text.erase(at, 1);
        ASSERT_EQ(telemetryDifference(text), "") << "byte " << at << " lost";
    }
}

TEST(TelemetryDamage, MegabytesOfQuotesAreNoReading) {
    expectAtRest(std::string(kHostileBytes, '"'));
}

TEST(TelemetryDamage, MegabytesWithoutAColonAreNoReading) {
    expectAtRest(repeat(allKeys(), kHostileBytes));
}

TEST(TelemetryDamage, MegabytesOfOneStringAreNoReading) {
    expectAtRest("{\"status\":\"" + std::string(kHostileBytes, 'a'));
    expectAtRest(std::string(kHostileBytes, 'a'));
    const std::string closed = "{\"ack_id\":\"" + std::string(kHostileBytes, 'a') + "\"}";
    expectAtRest(closed);
    EXPECT_EQ(parseTelemetry(closed).ackId, std::string(256, 'a'));
}

TEST(TelemetryDamage, MegabytesOfOneKeyAreNoReading) {
    expectAtRest(repeat("\"ok\":false,", kHostileBytes));
}

TEST(TelemetryDamage, MegabytesOfDigitsAreNoReading) {
    expectAtRest("{\"updated\":" + std::string(kHostileBytes, '1'));
    EXPECT_EQ(parseTelemetry("{\"range_max\":" + std::string(kHostileBytes, '1')).rangeMax, 0);
}

TEST(TelemetryDamage, MegabytesOfBlanksAfterTheColonAreNoReading) {
    expectAtRest(allKeys() + ":" + std::string(kHostileBytes, ' '));
}
