// datagrams_test.cpp - what goes over the network, byte by byte: requests as clients send them, answers and beacon.
#include "tests/xplane/datagrams.h"
#include "tests/unit/xplane/xplane_test.h"

using namespace xstandin;

using XplaneDatagrams = XplaneTest;

TEST_F(XplaneDatagrams, ReadARequestForAValue) {
    const auto request = readRequest(askBytes("sim/time/paused", 20, 7));
    EXPECT_EQ(request.kind, RequestKind::kRead);
    EXPECT_EQ(request.perSecond, 20);
    EXPECT_EQ(request.index, 7);
    EXPECT_EQ(request.name, "sim/time/paused");
    EXPECT_EQ(readRequest(askBytes("x", 0, -1)).index, -1);
}

// In two of the ways in which clients fill the field.
TEST_F(XplaneDatagrams, ReadAWriteWhateverFollowsItsName) {
    for (const char padding : {' ', '\0'}) {
        std::string bytes("DREF\0\0\0\x80\x3F", 9);
        bytes += std::string("sim/x\0", 6);
        const auto request = readRequest(filled(bytes, 509, padding));
        EXPECT_EQ(request.kind, RequestKind::kWrite);
        EXPECT_EQ(request.value, 1.0f);
        EXPECT_EQ(request.name, "sim/x");
    }
}

TEST_F(XplaneDatagrams, ReadACommand) {
    const auto request = readRequest(std::string("CMND\0sim/radios/com1_standy_flip\0", 33));
    EXPECT_EQ(request.kind, RequestKind::kCommand);
    EXPECT_EQ(request.name, "sim/radios/com1_standy_flip");
}

TEST_F(XplaneDatagrams, OfAnotherLengthOrHeadOrWithoutAnEndAreStrange) {
    const auto ask = askBytes("sim/time/paused", 20, 7);
    const std::string rows[] = {
        "",
        "RREF",
        std::string("RREF\0", 5),
        ask.substr(0, 412),
        ask + '\0',
        "rref" + ask.substr(4),
        filled(std::string("RREF\0\1\0\0\0\1\0\0\0", 13), 413, 'x'),
        filled(std::string("DREF\0\0\0\0\0", 9), 509, ' '),
        filled(std::string("DREF\0\0\0\0\0x\0", 11), 508, ' '),
        filled(std::string("DREF\0\0\0\0\0", 9), 509, '\0'),
        std::string("CMND\0", 5),
        std::string("CMND\0no end", 11),
        std::string("CMNDsim/x\0", 10),
    };
    for (const auto& row : rows) EXPECT_EQ(readRequest(row).kind, RequestKind::kStrange) << row.size() << ' ' << row;
}

TEST_F(XplaneDatagrams, WritePairsOfIndexAndValue) {
    const auto datagrams = answersOf({{3, 136'990.0f}, {-2, 0.5f}}, ',');
    ASSERT_EQ(datagrams.size(), 1u);
    EXPECT_EQ(datagrams[0], std::string("RREF,\3\0\0\0\x80\xC7\x05\x48\xFE\xFF\xFF\xFF\0\0\0\x3F", 21));
    EXPECT_EQ(answersOf({{3, 1.0f}}, 'O').at(0).substr(0, 5), "RREFO");
}

TEST_F(XplaneDatagrams, HoldNoMorePairsThanANetworkTakesWhole) {
    const auto datagrams = answersOf(std::vector<Reading>(400, {1, 2.0f}), ',');
    ASSERT_EQ(datagrams.size(), 3u);
    EXPECT_EQ(datagrams[0].size(), 5u + 180 * 8);
    EXPECT_EQ(datagrams[2].size(), 5u + 40 * 8);
}

TEST_F(XplaneDatagrams, WriteTheBeacon) {
    Beacon beacon;
    beacon.minor = 1;
    beacon.version = 115'501;
    beacon.role = 3;
    beacon.port = 49'003;
    EXPECT_EQ(beaconDatagram(beacon), std::string("BECN\0\1\1\1\0\0\0\x2D\xC3\1\0\3\0\0\0\x6B\xBFsimpc\0", 27));
}
