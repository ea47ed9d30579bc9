#include "tests/soak/soak_sum.h"
#include <algorithm>
#include "base/number_text.h"

namespace {

// As what unitNs nanoseconds are.
std::string timesText(const BlockTimes& times, double unitNs, int decimals) {
    const auto text = [&](std::uint64_t ns) { return formatFixed(static_cast<double>(ns) / unitNs, decimals); };
    return "p50 " + text(times.percentile(0.5)) + ", p99 " + text(times.percentile(0.99)) + ", p99.9 " +
           text(times.percentile(0.999)) + ", worst " + text(times.worst()) + " of " + std::to_string(times.count());
}

std::string shareText(std::uint64_t part, std::uint64_t whole) {
    const double share = whole == 0 ? 0.0 : static_cast<double>(part) / static_cast<double>(whole);
    return formatFixed(100.0 * share, 3) + " %";
}

}  // namespace

void addTimes(SoakLine& sum, const SoakLine& line) {
    sum.blocks.add(line.blocks);
    sum.doneBlocks += line.doneBlocks;
    sum.dueBlocks += line.dueBlocks;
    sum.lateBlocks += line.lateBlocks;
    sum.shapedBlocks += line.shapedBlocks;
    sum.uiAnswers.add(line.uiAnswers);
    sum.hostCalls.add(line.hostCalls);
    sum.passGaps.add(line.passGaps);
}

std::vector<std::string> timesTexts(const SoakLine& sum) {
    return {
        "voice blocks  us: " + timesText(sum.blocks, 1e3, 1),
        "real time     " + shareText(sum.doneBlocks, sum.dueBlocks) + " of " + std::to_string(sum.dueBlocks) +
            " blocks played, " + shareText(sum.lateBlocks, sum.dueBlocks) + " late, " +
            shareText(sum.shapedBlocks, sum.doneBlocks) + " through the radio",
        "ui answers    ms: " + timesText(sum.uiAnswers, 1e6, 2),
        "events        ms: " + timesText(sum.hostCalls, 1e6, 3),
        "poll passes   ms from one to the next: " + timesText(sum.passGaps, 1e6, 1),
    };
}

std::string workText(std::span<const WorkCount> work) {
    std::string text = "done: ";
    for (const WorkCount& part : work)
        text += (&part == work.data() ? "" : ", ") + std::to_string(part.count) + " " + part.name;
    return text;
}

std::vector<std::string> undoneWork(std::span<const WorkCount> work) {
    std::vector<std::string> names;
    for (const WorkCount& part : work) {
        if (part.count == 0) names.emplace_back(part.name);
    }
    return names;
}
