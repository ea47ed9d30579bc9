#include "settings/dialog/dialog_slot.h"
#include <gtest/gtest.h>
#include <thread>

TEST(DialogSlotTest, LetsOneDialogIn) {
    DialogSlot slot;
    EXPECT_TRUE(slot.enter());
    EXPECT_FALSE(slot.enter());
    slot.leave();
    EXPECT_TRUE(slot.enter());
}

TEST(DialogSlotTest, LetsNoneInWhileClosing) {
    DialogSlot slot;
    slot.close();
    EXPECT_TRUE(slot.isClosing());
    EXPECT_FALSE(slot.enter());
    slot.reopen();
    EXPECT_TRUE(slot.enter());
}

TEST(DialogSlotTest, WaitsForTheDialogToLeave) {
    DialogSlot slot;
    EXPECT_TRUE(slot.waitUntilFree(0));
    ASSERT_TRUE(slot.enter());
    EXPECT_FALSE(slot.waitUntilFree(1));
    std::thread dialog([&] { slot.leave(); });
    EXPECT_TRUE(slot.waitUntilFree(10'000));
    dialog.join();
}
