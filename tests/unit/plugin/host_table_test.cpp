#include "plugin/host_table.h"
#include <gtest/gtest.h>
#include <utility>

namespace {

using AnyFunction = void (*)();

int gLastMarker = -1;

// A different function for every position, so that each can be told apart from its neighbours.
template <int Position>
void marker() {
    gLastMarker = Position;
}

template <int... Positions>
HostFunctionTable markedTable(std::integer_sequence<int, Positions...>) {
    HostFunctionTable table;
    ((table.entries[Positions] = marker<Positions>), ...);
    return table;
}

// The position a resolved function came from.
template <class Function>
int positionOf(Function* function) {
    gLastMarker = -1;
    reinterpret_cast<AnyFunction>(function)();
    return gLastMarker;
}

}  // namespace

TEST(HostTable, HoldsTwoHundredAndTenPointersAllNullAtFirst) {
    EXPECT_EQ(sizeof(HostFunctionTable), 1680u);
    const HostFunctionTable table;
    for (const auto entry : table.entries) EXPECT_EQ(entry, nullptr);
}

TEST(HostTable, ResolvesEachFunctionFromItsPosition) {
    const HostFunctions host = resolveHostFunctions(markedTable(std::make_integer_sequence<int, kHostFunctionCount>()));
    EXPECT_EQ(positionOf(host.freeMemory), 5);
    EXPECT_EQ(positionOf(host.logMessage), 6);
    EXPECT_EQ(positionOf(host.playWaveFile), 28);
    EXPECT_EQ(positionOf(host.requestClientMove), 48);
    EXPECT_EQ(positionOf(host.getClientID), 73);
    EXPECT_EQ(positionOf(host.getClientSelfVariableAsInt), 74);
    EXPECT_EQ(positionOf(host.getChannelOfClient), 83);
    EXPECT_EQ(positionOf(host.getChannelVariableAsString), 86);
    EXPECT_EQ(positionOf(host.getChannelList), 93);
    EXPECT_EQ(positionOf(host.getCurrentServerConnectionHandlerID), 183);
    EXPECT_EQ(positionOf(host.createReturnCode), 191);
}

TEST(HostTable, LeavesAFunctionNullThatTheHostDoesNotSupply) {
    const HostFunctions host = resolveHostFunctions(HostFunctionTable{});
    EXPECT_EQ(host.freeMemory, nullptr);
    EXPECT_EQ(host.logMessage, nullptr);
    EXPECT_EQ(host.playWaveFile, nullptr);
    EXPECT_EQ(host.requestClientMove, nullptr);
    EXPECT_EQ(host.getClientID, nullptr);
    EXPECT_EQ(host.getClientSelfVariableAsInt, nullptr);
    EXPECT_EQ(host.getChannelOfClient, nullptr);
    EXPECT_EQ(host.getChannelVariableAsString, nullptr);
    EXPECT_EQ(host.getChannelList, nullptr);
    EXPECT_EQ(host.getCurrentServerConnectionHandlerID, nullptr);
    EXPECT_EQ(host.createReturnCode, nullptr);
}
