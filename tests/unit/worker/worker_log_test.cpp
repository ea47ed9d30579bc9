#include "worker/worker_log.h"
#include <gtest/gtest.h>
#include <limits>
#include "tests/unit/worker/worker_fakes.h"

TEST(WorkerLog, WritesUtcAndTheTextAsOneLine) {
    ManualClock clock;
    clock.seconds = 1790000000.25;
    MemoryLogFile file;
    WorkerLog(file, clock).line("link up: built-in aircraft");
    EXPECT_EQ(file.text, "2026-09-21 14:13:20.250 UTC  link up: built-in aircraft\r\n");
}

TEST(WorkerLog, KnowsTheCalendar) {
    const struct {
        double seconds;
        const char* text;
    } rows[] = {
        {0.0, "1970-01-01 00:00:00.000 UTC"},
        {951782399.999, "2000-02-28 23:59:59.999 UTC"},
        {951782400.0, "2000-02-29 00:00:00.000 UTC"},
        {4107542400.0, "2100-03-01 00:00:00.000 UTC"},
        {-5.0, "1970-01-01 00:00:00.000 UTC"},
        {1e300, "9999-12-31 23:59:59.000 UTC"},
        {std::numeric_limits<double>::quiet_NaN(), "1970-01-01 00:00:00.000 UTC"},
    };
    for (const auto& row : rows) EXPECT_EQ(utcText(row.seconds), row.text);
}

TEST(WorkerLog, KeepsALineOneLineAndShort) {
    ManualClock clock;
    MemoryLogFile file;
    WorkerLog log(file, clock);
    log.line("a\r\nb\tc\x01" + std::string(2000, 'x'));
    EXPECT_TRUE(file.has("a??b?c?xxx"));
    EXPECT_EQ(file.count("\n"), 1);
    EXPECT_LT(file.text.size(), 600u);
}

TEST(WorkerLog, MovesTheFullFileAwayAndKeepsOneOldFile) {
    ManualClock clock;
    MemoryLogFile file;
    WorkerLog log(file, clock);
    file.text = std::string(kMaxLogBytes - 10, 'x');
    log.line("first of the new file");
    EXPECT_EQ(file.old.size(), kMaxLogBytes - 10);
    EXPECT_TRUE(file.has("first of the new file"));
    EXPECT_LT(file.text.size(), 100u);
    log.line("second");
    EXPECT_TRUE(file.has("first of the new file"));
}

TEST(WorkerLog, AppendsUpToTheLimit) {
    ManualClock clock;
    MemoryLogFile file;
    WorkerLog log(file, clock);
    log.line("x");
    const auto lineBytes = file.text.size();
    file.text = std::string(kMaxLogBytes - lineBytes, 'x');
    log.line("x");
    EXPECT_EQ(file.text.size(), kMaxLogBytes);
    EXPECT_EQ(file.old, "");
}

TEST(WorkerLog, DropsLinesRatherThanGrowForEver) {
    ManualClock clock;
    MemoryLogFile file;
    file.canRotate = false;
    WorkerLog log(file, clock);
    file.text = std::string(kMaxLogBytes, 'x');
    log.line("still written");
    EXPECT_TRUE(file.has("still written"));
    file.text = std::string(kLogDropBytes, 'x');
    log.line("dropped");
    EXPECT_EQ(file.text.size(), kLogDropBytes);
}
