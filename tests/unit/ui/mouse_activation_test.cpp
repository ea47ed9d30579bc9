#include "ui/mouse_activation.h"
#include <gtest/gtest.h>

TEST(MouseActivation, AClickLeavesTheKeyboardWhereTheWheelGoesToTheWindowUnderThePointer) {
    EXPECT_FALSE(clickActivates(2));
    EXPECT_FALSE(clickActivates(std::nullopt));
}

TEST(MouseActivation, AClickTakesTheKeyboardWhereOnlyThatBringsTheWheel) {
    EXPECT_TRUE(clickActivates(0));
    EXPECT_TRUE(clickActivates(1));
}
