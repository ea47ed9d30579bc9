#include "base/data_files.h"
#include <gtest/gtest.h>

TEST(JoinPath, PutsOneBackslashBetweenFolderAndNameAlsoAfterASeparator) {
    EXPECT_EQ(joinPath("C:\\Data\\Corvalis", "settings.ini"), "C:\\Data\\Corvalis\\settings.ini");
    EXPECT_EQ(joinPath("C:\\Data\\", "settings.ini"), "C:\\Data\\\\settings.ini");
    EXPECT_EQ(joinPath("C:/Data/", "settings.ini"), "C:/Data/\\settings.ini");
    EXPECT_EQ(joinPath(".", "Corvalis"), ".\\Corvalis");
}

TEST(JoinPath, GivesTheBareNameForAnEmptyFolder) {
    EXPECT_EQ(joinPath("", "settings.ini"), "settings.ini");
}
