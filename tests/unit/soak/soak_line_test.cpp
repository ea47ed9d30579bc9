#include "tests/soak/soak_line.h"
#include <gtest/gtest.h>
#include <algorithm>
#include <functional>
#include "tests/soak/dice.h"

namespace {

// Four minutes that stand still, with a change to each line.
std::vector<SoakLine> linesWith(const std::function<void(SoakLine&, int)>& change) {
    std::vector<SoakLine> lines;
    for (int i = 0; i < 24; i++) {
        SoakLine line;
        line.atSeconds = 10.0 * (i + 1);
        line.privateBytes = 100U << 20U;
        line.heapBytes = 20U << 20U;
        line.ownBytes = 18 << 20;
        line.ownBlocks = 500;
        line.workerBytes = 5U << 20U;
        line.gdiObjects = 80;
        line.userObjects = 6;
        line.handles = 200;
        line.threads = 20;
        change(line, i);
        lines.push_back(line);
    }
    return lines;
}

std::vector<GrowthFinding> judgeGrowth(const std::vector<SoakLine>& lines) {
    GrowthRecord record(lines.size());
    for (const SoakLine& line : lines) record.add(line);
    return record.judge();
}

std::vector<std::string> growing(const std::vector<SoakLine>& lines) {
    std::vector<std::string> names;
    for (const GrowthFinding& finding : judgeGrowth(lines)) {
        if (finding.grows) names.emplace_back(finding.name);
    }
    return names;
}

using Names = std::vector<std::string>;

}  // namespace

TEST(SoakVerdict, OfARunThatStandsStillFindsNothing) {
    const auto lines = linesWith([](SoakLine&, int) {});
    EXPECT_EQ(growing(lines), Names{});
    EXPECT_EQ(judgeGrowth(lines).size(), 9u);
}

TEST(SoakVerdict, NamesWhatGrows) {
    const auto grows = [](auto SoakLine::*field, auto by) {
        return growing(linesWith([=](SoakLine& line, int i) {
            using Value = std::remove_reference_t<decltype(line.*field)>;
            line.*field += static_cast<Value>(by * i);
        }));
    };
    EXPECT_EQ(grows(&SoakLine::privateBytes, 300'000), Names{"private_mib"});
    EXPECT_EQ(grows(&SoakLine::heapBytes, 150'000), Names{"heap_mib"});
    EXPECT_EQ(grows(&SoakLine::ownBytes, 40'000), Names{"own_kib"});
    EXPECT_EQ(grows(&SoakLine::ownBlocks, 100), Names{"own_blocks"});
    EXPECT_EQ(grows(&SoakLine::workerBytes, 150'000), Names{"worker_mib"});
    EXPECT_EQ(grows(&SoakLine::gdiObjects, 1), Names{"gdi_objects"});
    EXPECT_EQ(grows(&SoakLine::userObjects, 1), Names{"user_objects"});
    EXPECT_EQ(grows(&SoakLine::handles, 1), Names{"handles"});
    EXPECT_EQ(grows(&SoakLine::threads, 1), Names{"threads"});
}

TEST(SoakVerdict, OnALeakingSystemShowsItsMemoryAndJudgesThePluginsOwn) {
    const auto lines = linesWith([](SoakLine& line, int i) {
        line.privateBytes += 300'000U * static_cast<unsigned>(i);
        line.heapBytes += 150'000U * static_cast<unsigned>(i);
        line.ownBlocks += 100 * i;
    });
    GrowthRecord record(lines.size());
    record.leaveOutSystemMemory();
    for (const SoakLine& line : lines) record.add(line);
    for (const GrowthFinding& finding : record.judge()) {
        const std::string name = finding.name;
        const bool isSystems = name == "private_mib" || name == "heap_mib";
        EXPECT_EQ(finding.isJudged, !isSystems) << name;
        EXPECT_EQ(finding.grows, name == "own_blocks") << name;
        EXPECT_EQ(findingText(finding).find("shown") != std::string::npos, isSystems) << name;
    }
}

TEST(SoakVerdict, AllowsWhatComesAndGoes) {
    // Two mebibytes are allowed over the half; 0.9 of it, and falling, are less.
    EXPECT_EQ(
        growing(linesWith([](SoakLine& line, int i) { line.privateBytes += 170'000U * static_cast<unsigned>(i); })),
        Names{});
    EXPECT_EQ(growing(linesWith([](SoakLine& line, int i) { line.handles -= 5 * i; })), Names{});
    EXPECT_EQ(growing(linesWith([](SoakLine& line, int i) { line.threads += i % 2 * 10; })), Names{});
}

TEST(SoakVerdict, IgnoresTheWarmUp) {
    EXPECT_EQ(growing(linesWith([](SoakLine& line, int i) { line.gdiObjects += std::min(i, 11) * 100; })), Names{});
}

TEST(SoakVerdict, OfTooFewLinesIsUnknown) {
    auto lines = linesWith([](SoakLine& line, int i) { line.handles += i; });
    lines.resize(22);
    for (const GrowthFinding& finding : judgeGrowth(lines)) {
        EXPECT_FALSE(finding.line.isKnown);
        EXPECT_NE(findingText(finding).find("unknown"), std::string::npos);
    }
}

TEST(SoakVerdict, SaysByHowMuch) {
    const auto findings = judgeGrowth(linesWith([](SoakLine& line, int i) { line.handles += 2 * i; }));
    const auto handles = std::ranges::find_if(findings, [](const auto& f) { return std::string(f.name) == "handles"; });
    ASSERT_NE(handles, findings.end());
    EXPECT_EQ(
        findingText(*handles),
        "handles       GROWS   by +720.00 an hour (+720.00 to +720.00), in 110 s certainly by +22.00 of 4.00 allowed");
}

TEST(SoakVerdict, ComparesLinesWithASimulatorAmongThemselves) {
    const auto inTurns = [](SoakLine& line, int i) {
        line.isWithSimulator = i / 3 % 2 == 0;
        line.handles += line.isWithSimulator ? 40 : 0;
    };
    for (const GrowthFinding& finding : judgeGrowth(linesWith(inTurns))) {
        EXPECT_EQ(finding.line.lowest, 0.0) << finding.name;
        EXPECT_EQ(finding.line.highest, 0.0) << finding.name;
    }
    EXPECT_EQ(growing(linesWith([&](SoakLine& line, int i) {
                  inTurns(line, i);
                  line.handles += i;
              })),
              Names{"handles"});
}

// What a client loses by a leak of the plugin's, as two minutes with a line every five seconds see it.
TEST(SoakVerdict, SeesSmallLeaksInTwoMinutes) {
    const auto leaks = [](std::uint64_t bytesPerSecond, int handlesPerLine) {
        Dice dice(17);
        return growing(linesWith([&](SoakLine& line, int i) {
            line.atSeconds = 5.0 * (i + 1);
            line.isWithSimulator = i / 3 % 2 == 0;
            const std::uint64_t leaked = bytesPerSecond * 5 * static_cast<unsigned>(i);
            line.heapBytes += dice.below(60'000) + leaked;
            line.ownBytes += static_cast<std::int64_t>(dice.below(60'000) + leaked);
            line.handles += dice.between(-1, 1) + handlesPerLine * i;
        }));
    };
    EXPECT_EQ(leaks(0, 0), Names{});
    EXPECT_EQ(leaks(7 * 1024, 0), Names{"own_kib"});
    EXPECT_EQ(leaks(14 * 1024, 0), (Names{"heap_mib", "own_kib"}));
    EXPECT_EQ(leaks(0, 2), Names{"handles"});
}

TEST(SoakLineText, HasOneColumnForEachTitle) {
    const auto count = [](const std::string& text, char sign) { return std::ranges::count(text, sign); };
    SoakLine line;
    line.phase = "fake";
    EXPECT_EQ(count(csvTitles(), ','), count(csvRow(line), ','));
    EXPECT_GT(count(csvRow(line), ','), 20);
    EXPECT_TRUE(csvRow(line).ends_with(",fake\n"));
}

TEST(SoakLineText, PutsTheNumbersUnderTheirTitles) {
    SoakLine line;
    line.atSeconds = 10.0;
    for (int i = 0; i < 99; i++) line.blocks.add(11'000);
    line.blocks.add(450'000);
    line.doneBlocks = 1560;
    line.dueBlocks = 1600;
    line.lateBlocks = 7;
    line.uiLoad = 0.021;
    line.handles = 231;
    line.phase = "stock";
    const std::string titles = lineTitles(), text = lineText(line);
    const auto under = [&](const std::string& title) {
        const std::size_t end = titles.find(title) + title.size();
        const std::size_t start = text.rfind(' ', end - 1) + 1;
        return text.substr(start, end - start);
    };
    EXPECT_EQ(under("time"), "10");
    EXPECT_EQ(under("p50 us"), "11.0");
    EXPECT_EQ(under("worst"), "450.0");
    EXPECT_EQ(under("rate %"), "97.5");
    EXPECT_EQ(under("late"), "7");
    EXPECT_EQ(under("ui %"), "2.1");
    EXPECT_EQ(under("handles"), "231");
    EXPECT_TRUE(text.ends_with("  stock"));
}
