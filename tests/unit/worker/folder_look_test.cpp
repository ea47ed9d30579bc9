// folder_look_test.cpp - when a folder counts as gone: for the worker that serves it and for the one that waits.
#include "worker/folder_look.h"
#include <gtest/gtest.h>
#include "tests/unit/worker/worker_fakes.h"

namespace {

struct FolderLooks : testing::Test {
    MemoryFiles files;
    MemoryFolder folder{files};
    FolderLook look{folder, "C:\\d"};
    std::uint64_t nowMs = 1'000;
};

}  // namespace

TEST_F(FolderLooks, OneThatFindsNothingIsNoEnd) {
    folder.missesToCome = 1;
    EXPECT_FALSE(look.isGone(nowMs));
    EXPECT_TRUE(look.isInDoubt());
    EXPECT_FALSE(look.isGone(nowMs + kFolderAgainMs));  // found again
    EXPECT_FALSE(look.isInDoubt());
    folder.missesToCome = 1;  // nor is another one, later
    EXPECT_FALSE(look.isGone(nowMs + kFolderAgainMs + kFolderCheckMs));
    EXPECT_EQ(folder.checks, 3);
}

TEST_F(FolderLooks, TwoInARowAreTheEndAndTheSecondComesSoon) {
    EXPECT_FALSE(look.isGone(nowMs));
    folder.gone = true;
    EXPECT_FALSE(look.isGone(nowMs + kFolderCheckMs));
    EXPECT_EQ(look.msUntilDue(nowMs + kFolderCheckMs), kFolderAgainMs);
    EXPECT_FALSE(look.isGone(nowMs + kFolderCheckMs + kFolderAgainMs - 1));
    EXPECT_TRUE(look.isGone(nowMs + kFolderCheckMs + kFolderAgainMs));
    EXPECT_EQ(folder.checks, 3);
}

TEST_F(FolderLooks, AreTakenOnlyWhenTheyAreDue) {
    EXPECT_EQ(look.msUntilDue(nowMs), 0U);
    for (std::uint64_t ms = 0; ms <= 10 * kFolderCheckMs; ms++) EXPECT_FALSE(look.isGone(nowMs + ms));
    EXPECT_EQ(folder.checks, 11);
    EXPECT_EQ(look.msUntilDue(nowMs + 10 * kFolderCheckMs + 1), kFolderCheckMs - 1);
}
