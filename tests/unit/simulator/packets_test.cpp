// packets_test.cpp - what goes over the wire, byte by byte: clients' requests as sent in practice, and the answers.
#include <gtest/gtest.h>
#include "tests/simulator/answers.h"
#include "tests/simulator/requests.h"
#include "tests/unit/simulator/visitor.h"

using namespace standin;

namespace {

// Each part at its offset, zeros in between and up to size.
struct Part {
    std::size_t offset;
    const char* hex;
};
std::string dump(std::size_t size, std::initializer_list<Part> parts) {
    std::string bytes(size, '\0');
    for (const auto& part : parts) {
        const auto piece = bytesOfHex(part.hex);
        bytes.replace(part.offset, piece.size(), piece);
    }
    return bytes;
}

constexpr std::size_t kBody = 16;

}  // namespace

TEST(SimulatorPackets, ReadOpen) {
    const auto packet = dump(296, {{0x00, "28 01 00 00 05 00 00 00 01 00 00 f0 02 00 00 00"},
                                   {0x10, "4d 79 52 61 64 69 6f 57 6f 72 6b 65 72 00"},
                                   {0x114, "00 48 4b 00"},
                                   {0x118, "0b 00 00 00  00 00 00 00"},
                                   {0x120, "bb f4 00 00  03 00 00 00"}});
    const auto header = readHeader(packet);
    EXPECT_EQ(header.bytes, 296u);
    EXPECT_EQ(header.version, 5u);
    EXPECT_EQ(header.sendId, 2u);
    ASSERT_NE(findRequestKind(header.opcode), nullptr);
    EXPECT_EQ(findRequestKind(header.opcode)->opcode, kOpen);
    const auto open = readOpen(packet);
    EXPECT_EQ(open.name, "MyRadioWorker");
    EXPECT_EQ(open.alias, "HK");
    EXPECT_EQ(open.version, (std::array<std::uint32_t, 4>{11, 0, 62651, 3}));
}

TEST(SimulatorPackets, ReadADefinitionAndItsRequest) {
    const auto definition = dump(544, {{0x00, "20 02 00 00 05 00 00 00 0c 00 00 f0 01 00 00 00"},
                                       {0x10, "03 00 00 00"},
                                       {0x14, "43 4f 4d 20 41 43 54 49 56 45 20 46 52 45 51 55 45 4e 43 59 3a 31 00"},
                                       {0x114, "4d 48 7a 00"},
                                       {0x214, "04 00 00 00 00 00 00 3f ff ff ff ff"}});
    const auto datum = readDatum(definition);
    EXPECT_EQ(datum.defineId, 3u);
    EXPECT_EQ(datum.name, "COM ACTIVE FREQUENCY:1");
    EXPECT_EQ(datum.units, "MHz");
    EXPECT_EQ(datum.type, 4u);
    EXPECT_EQ(datum.epsilon, 0.5f);
    EXPECT_EQ(datum.datumId, 0xFFFFFFFFu);

    const auto request = readDataRequest(dump(48, {{0x00, "30 00 00 00 05 00 00 00 0e 00 00 f0 04 00 00 00"},
                                                   {0x10, "07 00 00 00 03 00 00 00 00 00 00 00 03 00 00 00"},
                                                   {0x20, "01 00 00 00 02 00 00 00 03 00 00 00 04 00 00 00"}}));
    EXPECT_EQ(request.requestId, 7u);
    EXPECT_EQ(request.defineId, 3u);
    EXPECT_EQ(request.objectId, 0u);
    EXPECT_EQ(request.period, 3u);
    EXPECT_EQ(request.flags, 1u);
    EXPECT_EQ(request.origin, 2u);
    EXPECT_EQ(request.interval, 3u);
    EXPECT_EQ(request.limit, 4u);
}

TEST(SimulatorPackets, ReadBothWaysOfTransmittingAnEventAlike) {
    const auto old = readTransmit(dump(36, {{kBody, "00 00 00 00 65 00 00 00 40 85 42 07 01 00 00 00 10 00 00 00"}}));
    const auto newer =
        readTransmitEx1(dump(52, {{kBody, "00 00 00 00 65 00 00 00 01 00 00 00 10 00 00 00 40 85 42 07"}}));
    for (const auto& event : {old, newer}) {
        EXPECT_EQ(event.objectId, 0u);
        EXPECT_EQ(event.eventId, 101u);
        EXPECT_EQ(event.data, 121'800'000u);
        EXPECT_EQ(event.group, 1u);
        EXPECT_EQ(event.flags, 0x10u);
    }
}

TEST(SimulatorPackets, ReadANamedRequest) {
    const auto map =
        dump(276, {{kBody, "65 00 00 00 43 4f 4d 5f 53 54 42 59 5f 52 41 44 49 4f 5f 53 45 54 5f 48 5a 00"}});
    EXPECT_EQ(readNamed(map).id, 101u);
    EXPECT_EQ(readNamed(map).name, "COM_STBY_RADIO_SET_HZ");
}

TEST(SimulatorPackets, OfUnknownOpcodesOrWithoutTheMarkHaveNoKind) {
    EXPECT_EQ(findRequestKind(0xF0000099U), nullptr);
    EXPECT_EQ(findRequestKind(0x00000001U), nullptr);
    EXPECT_EQ(findRequestKind(0xF0000044U)->bytes, 52u);
    EXPECT_EQ(findRequestKind(0xF0000010U)->bytes, 36u);
}

TEST(SimulatorPackets, WriteExceptionQuitAndEvent) {
    EXPECT_EQ(exceptionAnswer(5, kNameUnrecognized, 9, 2),
              bytesOfHex("18 00 00 00 05 00 00 00 01 00 00 00  07 00 00 00 09 00 00 00 02 00 00 00"));
    EXPECT_EQ(quitAnswer(6), bytesOfHex("0c 00 00 00 06 00 00 00 03 00 00 00"));
    EXPECT_EQ(eventAnswer(5, kUnknown, 4, 1),
              bytesOfHex("18 00 00 00 05 00 00 00 04 00 00 00  ff ff ff ff 04 00 00 00 01 00 00 00"));
}

TEST(SimulatorPackets, WriteOpen) {
    const auto packet = openAnswer(kEdition2020);
    EXPECT_EQ(packet, dump(308, {{0, "34 01 00 00 05 00 00 00 02 00 00 00"},
                                 {12, "4b 69 74 74 79 48 61 77 6b 00"},
                                 {268, "0b 00 00 00 00 00 00 00 bb f4 00 00 03 00 00 00"},
                                 {284, "0b 00 00 00 00 00 00 00 bb f4 00 00 03 00 00 00"}}));
}

TEST(SimulatorPackets, WriteFileFrameAndState) {
    const auto file = filenameAnswer(5, 3, "a.cfg");
    EXPECT_EQ(file, dump(288, {{0, "20 01 00 00 05 00 00 00 06 00 00 00 ff ff ff ff 03 00 00 00 00 00 00 00"},
                               {24, "61 2e 63 66 67"}}));
    EXPECT_EQ(frameAnswer(5, 3, 30.0f), bytesOfHex("20 00 00 00 05 00 00 00 07 00 00 00 ff ff ff ff 03 00 00 00"
                                                   "00 00 00 00 00 00 f0 41 00 00 80 3f"));
    EXPECT_EQ(systemStateAnswer(5, 8, 1, "x"),
              dump(284, {{0, "1c 01 00 00 05 00 00 00 0f 00 00 00 08 00 00 00 01 00 00 00"}, {24, "78"}}));
}

TEST(SimulatorPackets, WriteDataWithTwoFloatsAndAnInteger) {
    std::string values;
    putF64(values, 50.0);
    putF64(values, 0.0);
    putU32(values, 2);
    EXPECT_EQ(dataAnswer(5, {7, 3, 0, 3}, values),
              bytesOfHex("3c 00 00 00 05 00 00 00 08 00 00 00  07 00 00 00 01 00 00 00 03 00 00 00 00 00 00 00"
                         "01 00 00 00 01 00 00 00 03 00 00 00  00 00 00 00 00 00 49 40  00 00 00 00 00 00 00 00"
                         "02 00 00 00"));
}
