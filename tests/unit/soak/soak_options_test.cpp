#include "tests/soak/soak_options.h"
#include <gtest/gtest.h>

TEST(SoakOptions, AreTheFolderAndDefaults) {
    const auto options = parseSoakOptions({"out"});
    ASSERT_TRUE(options);
    EXPECT_EQ(options->outFolder, "out");
    EXPECT_EQ(options->minutes, 2.0);
    EXPECT_FALSE(options->seed);
    EXPECT_EQ(options->everySeconds, 10.0);
    EXPECT_EQ(options->leak, PlantedLeak::kNone);
}

TEST(SoakOptions, AreReadInAnyOrder) {
    const auto options = parseSoakOptions(
        {"out", "--seed", "18446744073709551615", "--leak", "gdi", "--every", "1", "--minutes", "0.5"});
    ASSERT_TRUE(options);
    EXPECT_EQ(options->minutes, 0.5);
    EXPECT_EQ(options->seed, 18446744073709551615U);
    EXPECT_EQ(options->everySeconds, 1.0);
    EXPECT_EQ(options->leak, PlantedLeak::kGdi);
    const auto leakOf = [](const char* name) { return parseSoakOptions({"out", "--leak", name})->leak; };
    EXPECT_EQ(leakOf("memory"), PlantedLeak::kMemory);
    EXPECT_EQ(leakOf("handle"), PlantedLeak::kHandle);
    EXPECT_EQ(leakOf("user"), PlantedLeak::kUser);
    EXPECT_EQ(leakOf("thread"), PlantedLeak::kThread);
}

TEST(SoakOptions, ThatMakeNoSenseAreRefused) {
    const std::vector<std::vector<std::string>> rows = {
        {},
        {""},
        {"--minutes", "2"},
        {"out", "--minutes"},
        {"out", "--minutes", "0"},
        {"out", "--minutes", "-1"},
        {"out", "--minutes", "nan"},
        {"out", "--minutes", "2x"},
        {"out", "--minutes", ""},
        {"out", "--every", "0.5"},
        {"out", "--every", "601"},
        {"out", "--seed", "-1"},
        {"out", "--seed", "1.5"},
        {"out", "--leak", ""},
        {"out", "--leak", "files"},
        {"out", "--else", "1"},
    };
    for (const auto& row : rows) EXPECT_FALSE(parseSoakOptions(row)) << (row.empty() ? "" : row.back());
}
