#include "worker/xplane/packets.h"
#include <gtest/gtest.h>
#include <cmath>
#include <limits>
#include "tests/unit/worker/xplane/fake_xplane.h"

namespace {

constexpr const char* kStandby = "sim/cockpit2/radios/actuators/com1_standby_frequency_hz_833";

// Letters as they stand, a bar for a zero.
FakeBytes bytesOf(std::string text) {
    std::replace(text.begin(), text.end(), '|', '\0');
    return {text.begin(), text.end()};
}

FakeBytes beginningOf(const FakeBytes& bytes, std::size_t count) {
    return {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(count)};
}

bool isZeroFrom(const FakeBytes& bytes, std::size_t offset) {
    return std::all_of(bytes.begin() + static_cast<std::ptrdiff_t>(offset), bytes.end(),
                       [](std::uint8_t byte) { return byte == 0; });
}

FakeBytes answerOf(std::initializer_list<std::pair<std::int32_t, float>> pairs, char fifth = ',') {
    FakeBytes bytes = bytesOf("RREF");
    bytes.push_back(static_cast<std::uint8_t>(fifth));
    for (const auto& [index, value] : pairs) {
        addU32(bytes, static_cast<std::uint32_t>(index));
        addU32(bytes, std::bit_cast<std::uint32_t>(value));
    }
    return bytes;
}

}  // namespace

TEST(XPlanePackets, AskForAValueIn413Bytes) {
    const auto bytes = xplane::encodeRequest(30, 0x01020304, kStandby);
    ASSERT_EQ(bytes.size(), 413u);
    auto expected = bytesOf("RREF|");
    for (const std::uint8_t byte : {30, 0, 0, 0, 4, 3, 2, 1}) expected.push_back(byte);
    EXPECT_EQ(beginningOf(bytes, 13), expected);
    EXPECT_EQ(textOf(bytes, 13), kStandby);
    EXPECT_TRUE(isZeroFrom(bytes, 13 + std::string(kStandby).size()));
    EXPECT_EQ(u32Of(xplane::encodeRequest(0, 1, kStandby), 5), 0u);
}

TEST(XPlanePackets, WriteAValueIn509Bytes) {
    const auto bytes = xplane::encodeWrite(136990.0f, kStandby);
    ASSERT_EQ(bytes.size(), 509u);
    EXPECT_EQ(beginningOf(bytes, 5), bytesOf("DREF|"));
    EXPECT_EQ(u32Of(bytes, 5), 0x4805C780u);  // 136990 as a float, exactly
    EXPECT_EQ(textOf(bytes, 9), kStandby);
    EXPECT_TRUE(isZeroFrom(bytes, 9 + std::string(kStandby).size()));
}

TEST(XPlanePackets, GiveACommandByItsName) {
    EXPECT_EQ(xplane::encodeCommand("sim/radios/com2_standy_flip"), bytesOf("CMND|sim/radios/com2_standy_flip|"));
}

TEST(XPlanePackets, EndEachNameWithAZeroHoweverLongItIs) {
    const std::string tooLong(600, 'x');
    EXPECT_EQ(textOf(xplane::encodeRequest(1, 1, tooLong), 13), std::string(399, 'x'));
    EXPECT_EQ(textOf(xplane::encodeWrite(1, tooLong), 9), std::string(499, 'x'));
    EXPECT_EQ(xplane::encodeRequest(1, 1, tooLong).size(), 413u);
    EXPECT_EQ(xplane::encodeWrite(1, tooLong).size(), 509u);
}

TEST(XPlanePackets, ReadTheBeaconsOfBothGenerations) {
    FakeBeacon old{115501, 49000, 1, 1, 1, 1};
    const auto eleven = xplane::decodeBeacon(old.bytes("simpc"));
    ASSERT_TRUE(eleven);
    EXPECT_EQ(eleven->program, xplane::kProgramXPlane);
    EXPECT_EQ(eleven->version, 115501);
    EXPECT_EQ(eleven->role, xplane::kRoleMaster);
    EXPECT_EQ(eleven->port, 49000);
    EXPECT_EQ(eleven->computer, "simpc");

    auto bytes = FakeBeacon{122015, 65535, 3, 2}.bytes("a\x01\xC3\xA4z");
    bytes.push_back(0x34);  // a second port
    bytes.push_back(0x12);
    const auto twelve = xplane::decodeBeacon(bytes);
    ASSERT_TRUE(twelve);
    EXPECT_EQ(twelve->program, 2);
    EXPECT_EQ(twelve->version, 122015);
    EXPECT_EQ(twelve->role, 3u);
    EXPECT_EQ(twelve->port, 65535);
    EXPECT_EQ(twelve->computer, "a???z");
}

TEST(XPlanePackets, TakeNothingElseForABeacon) {
    const auto whole = FakeBeacon().bytes();
    for (std::size_t length = 0; length < whole.size(); length++) {
        EXPECT_EQ(xplane::decodeBeacon(beginningOf(whole, length)).has_value(), length >= 21) << length;
    }
    for (std::size_t i = 0; i < 6; i++) {  // its name and the kind of beacon
        auto damaged = whole;
        damaged[i] ^= 0x41;
        EXPECT_FALSE(xplane::decodeBeacon(damaged)) << i;
    }
    FakeBeacon noPort;
    noPort.port = 0;
    EXPECT_FALSE(xplane::decodeBeacon(noPort.bytes()));
    EXPECT_TRUE(xplane::decodeBeacon(FakeBeacon{122015, 1, 1, 1, 1, 77}.bytes()));  // a later minor version
}

TEST(XPlanePackets, CallVersionsAsPilotsDo) {
    const struct {
        std::int32_t version;
        const char* text;
    } rows[] = {{122015, "X-Plane 12.2.0"}, {121403, "X-Plane 12.1.4"},
                {120000, "X-Plane 12.0.0"}, {115501, "X-Plane 11.55"},
                {110500, "X-Plane 11.05"},  {105100, "X-Plane 10.51"},
                {130102, "X-Plane 13.0.1"}, {0, "X-Plane"},
                {99999, "X-Plane"},         {-122015, "X-Plane"},
                {1000000, "X-Plane"},       {std::numeric_limits<int>::max(), "X-Plane"}};
    for (const auto& row : rows) EXPECT_EQ(xplane::versionText(row.version), row.text) << row.version;
}

TEST(XPlanePackets, ReadValuesWhateverTheFifthByteIs) {
    for (const char fifth : {',', 'O', '\0'}) {
        const auto values = xplane::decodeValues(answerOf({{1, 118005.0f}, {-7, 0.25f}}, fifth));
        ASSERT_TRUE(values);
        ASSERT_EQ(values->whole.size(), 2u);
        EXPECT_EQ(values->whole[0].index, 1);
        EXPECT_EQ(values->whole[0].value, 118005.0f);
        EXPECT_EQ(values->whole[1].index, -7);
        EXPECT_EQ(values->whole[1].value, 0.25f);
        EXPECT_FALSE(values->endsInHalf);
    }
}

TEST(XPlanePackets, TakeTheWholeValuesOfADatagramThatIsCut) {
    const auto whole = answerOf({{1, 118005.0f}, {2, 0.25f}, {3, NAN}});
    for (std::size_t length = 0; length <= whole.size(); length++) {
        const auto values = xplane::decodeValues(beginningOf(whole, length));
        ASSERT_EQ(values.has_value(), length >= 5) << length;
        if (!values) continue;
        EXPECT_EQ(values->whole.size(), (length - 5) / 8) << length;
        EXPECT_EQ(values->endsInHalf, (length - 5) % 8 != 0) << length;
    }
    EXPECT_TRUE(std::isnan(xplane::decodeValues(whole)->whole[2].value));
    EXPECT_FALSE(xplane::decodeValues(bytesOf("DREF,12345678")));
    EXPECT_FALSE(xplane::decodeValues(FakeBeacon().bytes()));
}
