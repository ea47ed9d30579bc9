#include "worker/address_turns.h"
#include <gtest/gtest.h>

namespace {

constexpr int kFamily4 = 2;
constexpr int kFamily6 = 23;

NetAddress address(int family, int last) {
    NetAddress made;
    made.family = family;
    made.length = 16;
    made.bytes[15] = static_cast<std::byte>(last);
    return made;
}

const NetAddress kLinkLocal = address(kFamily6, 1);
const NetAddress kSecond6 = address(kFamily6, 2);
const NetAddress kOnly4 = address(kFamily4, 1);

// All that are left.
std::vector<NetAddress> rest(AddressTurns& turns) {
    std::vector<NetAddress> order;
    while (const auto next = turns.next(0)) order.push_back(*next);
    return order;
}

}  // namespace

TEST(AddressTurns, TakeEachAddressOnceInTheNetworksOrder) {
    AddressTurns turns;
    EXPECT_TRUE(rest(turns).empty());
    for (int attempt = 0; attempt < 2; attempt++) {
        turns.begin({kLinkLocal, kSecond6, kOnly4});
        EXPECT_FALSE(turns.isBegun());
        EXPECT_EQ(rest(turns), (std::vector{kLinkLocal, kSecond6, kOnly4}));
        EXPECT_TRUE(turns.isBegun());
    }
}

TEST(AddressTurns, GiveEachAddressTwoSecondsFromItsOwnBeginning) {
    AddressTurns turns;
    turns.begin({kLinkLocal, kOnly4});
    for (const std::uint64_t startMs : {50'000, 60'000}) {
        ASSERT_TRUE(turns.next(startMs));
        EXPECT_FALSE(turns.isOver(startMs));
        EXPECT_FALSE(turns.isOver(startMs + 1'999));
        EXPECT_TRUE(turns.isOver(startMs + 2'000));
    }
}

TEST(AddressTurns, BeginWithTheOneThatWorkedLastWhateverItsKind) {
    for (const auto& good : {kSecond6, kOnly4}) {
        AddressTurns turns;
        turns.begin({kLinkLocal, kSecond6, kOnly4});
        while (turns.next(0) != good) continue;
        turns.noteWorks();
        turns.begin({kLinkLocal, kSecond6, kOnly4});
        const auto order = rest(turns);
        ASSERT_EQ(order.size(), 3u);
        EXPECT_EQ(order[0], good);
        EXPECT_EQ(order[1], kLinkLocal);  // the others stay in their order
    }
}

TEST(AddressTurns, KnowNothingOfAnAddressThatTheNameNoLongerHas) {
    AddressTurns turns;
    turns.noteWorks();  // before any
    turns.begin({kOnly4});
    turns.next(0);
    turns.noteWorks();
    turns.begin({kLinkLocal, kSecond6});
    EXPECT_EQ(rest(turns), (std::vector{kLinkLocal, kSecond6}));
    turns.begin({kLinkLocal, kOnly4});  // back again
    EXPECT_EQ(rest(turns), (std::vector{kOnly4, kLinkLocal}));
}
