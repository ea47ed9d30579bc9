#include "worker/simconnect/packets.h"
#include <gtest/gtest.h>
#include <cmath>
#include <sstream>
#include "tests/unit/worker/simconnect/fake_simulator.h"
#include "worker/simconnect/packet_stream.h"

namespace sc = simconnect;

namespace {

// Bytes as they go over the wire, at their offsets; everything in between is zero.
struct Piece {
    std::size_t offset;
    const char* hex;
};

sc::Bytes dump(std::size_t size, const std::vector<Piece>& pieces) {
    sc::Bytes bytes(size);
    for (const auto& piece : pieces) {
        std::istringstream digits(piece.hex);
        unsigned value = 0;
        for (auto at = piece.offset; digits >> std::hex >> value; at++) bytes[at] = static_cast<std::uint8_t>(value);
    }
    return bytes;
}

std::vector<sc::Bytes> packetsOf(const sc::Bytes& bytes, std::size_t pieceBytes) {
    sc::PacketStream stream;
    std::vector<sc::Bytes> packets;
    for (std::size_t at = 0; at < bytes.size(); at += pieceBytes) {
        stream.add(sc::ByteView(bytes).subspan(at, std::min(pieceBytes, bytes.size() - at)));
        while (const auto packet = stream.next()) packets.emplace_back(packet->begin(), packet->end());
    }
    EXPECT_FALSE(stream.isBroken());
    return packets;
}

}  // namespace

TEST(SimConnectPackets, IntroducesItselfAsEachOfTheThreeVersions) {
    const char* name = "4d 79 52 61 64 69 6f 57 6f 72 6b 65 72";
    const auto expected = std::vector<sc::Bytes>{
        dump(296, {{0, "28 01 00 00 05 00 00 00 01 00 00 f0 00 00 00 00"},
                   {0x10, name},
                   {0x114, "00 48 4b 00"},
                   {0x118, "0b 00 00 00 00 00 00 00 bb f4 00 00 03 00 00 00"}}),
        dump(296, {{0, "28 01 00 00 06 00 00 00 01 00 00 f0 00 00 00 00"},
                   {0x10, name},
                   {0x114, "00 52 53 00"},
                   {0x118, "0c 00 00 00 02 00 00 00 3e 4e 04 00 e7 03 00 00"}}),
        dump(296, {{0, "28 01 00 00 04 00 00 00 01 00 00 f0 00 00 00 00"},
                   {0x10, name},
                   {0x114, "00 58 53 46"},
                   {0x118, "0a 00 00 00 00 00 00 00 4b ef 00 00 00 00 00 00"}}),
    };
    for (std::size_t i = 0; i < expected.size(); i++) {
        const auto& version = sc::kClientVersions[i];
        EXPECT_EQ(sc::encodeOpen({version.protocol, 0}, version, "MyRadioWorker"), expected[i]) << i;
    }
}

TEST(SimConnectPackets, WritesEveryRequestByteForByte) {
    EXPECT_EQ(sc::encodeVariable({5, 1}, 3, "COM ACTIVE FREQUENCY:1", "MHz", sc::DataType::kFloat64),
              dump(544, {{0, "20 02 00 00 05 00 00 00 0c 00 00 f0 01 00 00 00 03 00 00 00"},
                         {0x14, "43 4f 4d 20 41 43 54 49 56 45 20 46 52 45 51 55 45 4e 43 59 3a 31"},
                         {0x114, "4d 48 7a"},
                         {0x214, "04 00 00 00 00 00 00 00 ff ff ff ff"}}));
    EXPECT_EQ(sc::encodeDataRequest({5, 4}, {7, 3, sc::Period::kVisualFrame, true, 3}),
              dump(48, {{0, "30 00 00 00 05 00 00 00 0e 00 00 f0 04 00 00 00"},
                        {0x10, "07 00 00 00 03 00 00 00 00 00 00 00 02 00 00 00"},
                        {0x20, "01 00 00 00 00 00 00 00 03 00 00 00 00 00 00 00"}}));
    EXPECT_EQ(sc::encodeMapEvent({5, 5}, 101, "COM_STBY_RADIO_SET_HZ"),
              dump(276, {{0, "14 01 00 00 05 00 00 00 04 00 00 f0 05 00 00 00 65 00 00 00"},
                         {0x14, "43 4f 4d 5f 53 54 42 59 5f 52 41 44 49 4f 5f 53 45 54 5f 48 5a"}}));
    EXPECT_EQ(sc::encodeKeyEvent({5, 7}, 101, 121'800'000),
              dump(36, {{0, "24 00 00 00 05 00 00 00 05 00 00 f0 07 00 00 00"},
                        {0x10, "00 00 00 00 65 00 00 00 40 85 42 07 01 00 00 00 10 00 00 00"}}));
    EXPECT_EQ(sc::encodeSubscribe({5, 9}, 55, "Pause_EX1"),
              dump(276, {{0, "14 01 00 00 05 00 00 00 17 00 00 f0 09 00 00 00 37 00 00 00"},
                         {0x14, "50 61 75 73 65 5f 45 58 31"}}));
    EXPECT_EQ(sc::encodeStateRequest({6, 10}, 1, "Sim"),
              dump(276, {{0, "14 01 00 00 06 00 00 00 35 00 00 f0 0a 00 00 00 01 00 00 00 53 69 6d"}}));
}

TEST(SimConnectPackets, CutsATextThatIsTooLong) {
    const auto packet = sc::encodeMapEvent({5, 1}, 1, std::string(300, 'x'));
    EXPECT_EQ(packet.size(), 276u);
    EXPECT_EQ(packet[274], 'x');
    EXPECT_EQ(packet[275], 0);
}

TEST(SimConnectPackets, ReadsWhatASimulatorSays) {
    const auto data =
        dump(60, {{0, "3c 00 00 00 05 00 00 00 08 00 00 00 07 00 00 00 01 00 00 00 03 00 00 00 00 00 00 00"},
                  {28, "01 00 00 00 01 00 00 00 03 00 00 00 14 ae 47 e1 7a b4 5e 40 00 00 00 00 00 00 49 40"},
                  {56, "ff ff ff ff"}});
    const auto received = sc::decodePacket(data);
    const auto* values = std::get_if<sc::DataPacket>(&received);
    ASSERT_TRUE(values);
    EXPECT_EQ(values->requestId, 7u);
    EXPECT_EQ(sc::decodeValue(values->values, sc::DataType::kFloat64), 122.82);
    EXPECT_EQ(sc::decodeValue(values->values.subspan(8), sc::DataType::kFloat64), 50.0);
    EXPECT_EQ(sc::decodeValue(values->values.subspan(16), sc::DataType::kInt32), -1.0);
    EXPECT_EQ(sc::decodeValue(values->values.subspan(16), sc::DataType::kFloat64), std::nullopt);

    const auto event = sc::decodePacket(FakePacket(6).u32(1).u32(55).u32(9).text("a\xe9\n.air", 260).u32(0).bytes());
    ASSERT_TRUE(std::holds_alternative<sc::EventPacket>(event));
    EXPECT_EQ(std::get<sc::EventPacket>(event).eventId, 55u);
    EXPECT_EQ(std::get<sc::EventPacket>(event).data, 9u);
    EXPECT_EQ(std::get<sc::EventPacket>(event).file, "a??.air");

    const auto exception = sc::decodePacket(FakePacket(1).u32(7).u32(12).u32(2).bytes());
    ASSERT_TRUE(std::holds_alternative<sc::ExceptionPacket>(exception));
    EXPECT_EQ(std::get<sc::ExceptionPacket>(exception).code, 7u);
    EXPECT_EQ(std::get<sc::ExceptionPacket>(exception).sendId, 12u);
    EXPECT_EQ(sc::exceptionName(7), "NAME_UNRECOGNIZED");
    EXPECT_EQ(sc::exceptionName(46), "CAMERA_API");
    EXPECT_EQ(sc::exceptionName(47), "unknown");

    const auto state = sc::decodePacket(FakePacket(15).u32(3).u32(1).u32(0).text("", 260).bytes());
    ASSERT_TRUE(std::holds_alternative<sc::StatePacket>(state));
    EXPECT_EQ(std::get<sc::StatePacket>(state).value, 1u);
    EXPECT_TRUE(std::holds_alternative<sc::QuitPacket>(sc::decodePacket(FakePacket(3).bytes())));
    EXPECT_TRUE(std::holds_alternative<sc::OtherPacket>(sc::decodePacket(FakePacket(40).bytes())));
    EXPECT_TRUE(std::holds_alternative<sc::OtherPacket>(sc::decodePacket(FakePacket(0xFFFFFFFF).bytes())));
}

// Each kind of packet cut at every length: it is never read beyond its end, and one that is too short is recognised.
TEST(SimConnectPackets, TellsATooShortPacket) {
    const struct {
        std::uint32_t id;
        std::size_t least;
    } rows[] = {{1, 20}, {2, 268}, {3, 12}, {4, 24}, {6, 24}, {8, 40}, {15, 20}};
    for (const auto& row : rows) {
        auto packet = FakePacket(row.id).text("", 400).bytes();
        while (packet.size() > 12) {
            packet.pop_back();
            packet.shrink_to_fit();
            const bool broken = std::holds_alternative<sc::BrokenPacket>(sc::decodePacket(packet));
            ASSERT_EQ(broken, packet.size() < row.least) << row.id << ' ' << packet.size();
        }
    }
    EXPECT_TRUE(std::holds_alternative<sc::BrokenPacket>(sc::decodePacket({})));
}

TEST(SimConnectStream, GivesTheSamePacketsHoweverTheyArrive) {
    sc::Bytes bytes;
    std::vector<sc::Bytes> sent;
    for (std::uint32_t i = 0; i < 20; i++) {
        sent.push_back(FakePacket(i).text("", i * 7).bytes());
        bytes.insert(bytes.end(), sent.back().begin(), sent.back().end());
    }
    for (const std::size_t piece : {1u, 2u, 3u, 5u, 11u, 12u, 13u, 64u, 100'000u}) {
        EXPECT_EQ(packetsOf(bytes, piece), sent) << piece;
    }
}

TEST(SimConnectStream, BreaksOnASizeThatCannotBe) {
    for (const std::uint32_t size : {0u, 1u, 11u, 1'048'577u, 0xFFFFFFFFu}) {
        sc::PacketStream stream;
        auto bytes = FakePacket(3).bytes();
        for (std::size_t i = 0; i < 4; i++) bytes[i] = static_cast<std::uint8_t>(size >> (8 * i));
        stream.add(bytes);
        EXPECT_FALSE(stream.next());
        EXPECT_TRUE(stream.isBroken()) << size;
        stream.add(FakePacket(3).bytes());
        EXPECT_FALSE(stream.next()) << size;
        stream.reset();
        stream.add(FakePacket(3).bytes());
        EXPECT_TRUE(stream.next()) << size;
    }
}

TEST(SimConnectStream, TakesTheLargestPacketAndTheSmallest) {
    auto largest = FakePacket(99).text("", 1'048'576 - 12).bytes();
    largest.insert(largest.end(), 12, 0);
    largest[1'048'576] = 12;
    EXPECT_EQ(packetsOf(largest, 40'000).size(), 2u);
}
