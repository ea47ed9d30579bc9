#include "tests/soak/soak_line.h"
#include <algorithm>
#include <iterator>
#include "base/number_text.h"

namespace {

constexpr double kMebibyte = 1024.0 * 1024.0;
constexpr double kNotJudged = -1.0;

double milliseconds(std::uint64_t nanoseconds) {
    return static_cast<double>(nanoseconds) / 1e6;
}
double microseconds(std::uint64_t nanoseconds) {
    return static_cast<double>(nanoseconds) / 1e3;
}
double mebibytes(std::uint64_t bytes) {
    return static_cast<double>(bytes) / kMebibyte;
}
double percent(double share) {
    return 100.0 * share;
}
double rateOf(const SoakLine& line) {
    return line.dueBlocks == 0 ? 0.0 : static_cast<double>(line.doneBlocks) / static_cast<double>(line.dueBlocks);
}

// A column is judged if its allowance is not negative: what may come on top within the last half of a run, since pages,
// caches and threads of the system's come and go; and of the plugin's own, up to 40 messages of 8 KB, and who has
// talked (768 people here) until the tab is left. The longer the run, the slower a leak that exceeds it.
struct Column {
    const char* title;  // above the line
    const char* csvTitle;
    const char* unit;
    int width;
    int decimals;
    double allowance;
    double (*valueOf)(const SoakLine& line);
    bool holdsSystemMemory = false;
};

// clang-format off
constexpr Column kColumns[] = {
    // title      csv                  unit   width decimals allowance
    {"time",      "seconds",           "s",       6, 0, kNotJudged, [](const SoakLine& l) { return l.atSeconds; }},
    {"p50 us",    "block_p50_us",      "us",      7, 1, kNotJudged, [](const SoakLine& l) { return microseconds(l.blocks.percentile(0.5)); }},
    {"p99",       "block_p99_us",      "us",      7, 1, kNotJudged, [](const SoakLine& l) { return microseconds(l.blocks.percentile(0.99)); }},
    {"p99.9",     "block_p999_us",     "us",      8, 1, kNotJudged, [](const SoakLine& l) { return microseconds(l.blocks.percentile(0.999)); }},
    {"worst",     "block_worst_us",    "us",      9, 1, kNotJudged, [](const SoakLine& l) { return microseconds(l.blocks.worst()); }},
    {"rate %",    "block_rate_percent", "%",      7, 1, kNotJudged, [](const SoakLine& l) { return percent(rateOf(l)); }},
    {"late",      "late_blocks",       "",        7, 0, kNotJudged, [](const SoakLine& l) { return static_cast<double>(l.lateBlocks); }},
    {"ui %",      "ui_load_percent",   "%",       6, 1, kNotJudged, [](const SoakLine& l) { return percent(l.uiLoad); }},
    {"poll %",    "poll_load_percent", "%",       7, 1, kNotJudged, [](const SoakLine& l) { return percent(l.pollLoad); }},
    {"all %",     "load_percent",      "%",       6, 1, kNotJudged, [](const SoakLine& l) { return percent(l.processLoad); }},
    {"ui ms",     "ui_answer_worst_ms", "ms",     7, 1, kNotJudged, [](const SoakLine& l) { return milliseconds(l.uiAnswers.worst()); }},
    {"call ms",   "host_call_worst_ms", "ms",     8, 1, kNotJudged, [](const SoakLine& l) { return milliseconds(l.hostCalls.worst()); }},
    {"pass ms",   "poll_gap_worst_ms", "ms",      8, 1, kNotJudged, [](const SoakLine& l) { return milliseconds(l.passGaps.worst()); }},
    {"private M", "private_mib",       "MiB",    10, 2, 2.0,        [](const SoakLine& l) { return mebibytes(l.privateBytes); }, true},
    {"heap M",    "heap_mib",          "MiB",     7, 2, 0.5,        [](const SoakLine& l) { return mebibytes(l.heapBytes); }, true},
    {"own K",     "own_kib",           "KiB",     8, 1, 256.0,      [](const SoakLine& l) { return static_cast<double>(l.ownBytes) / 1024.0; }},
    {"blocks",    "own_blocks",        "",        8, 0, 1000.0,      [](const SoakLine& l) { return static_cast<double>(l.ownBlocks); }},
    {"worker M",  "worker_mib",        "MiB",     9, 2, 0.5,        [](const SoakLine& l) { return mebibytes(l.workerBytes); }},
    {"gdi",       "gdi_objects",       "",        5, 0, 5.0,        [](const SoakLine& l) { return static_cast<double>(l.gdiObjects); }},
    {"user",      "user_objects",      "",        5, 0, 2.0,        [](const SoakLine& l) { return static_cast<double>(l.userObjects); }},
    {"handles",   "handles",           "",        8, 0, 4.0,        [](const SoakLine& l) { return static_cast<double>(l.handles); }},
    {"threads",   "threads",           "",        8, 0, 2.0,        [](const SoakLine& l) { return static_cast<double>(l.threads); }},
};
// clang-format on

const char* verdictOf(const GrowthFinding& finding) {
    if (!finding.isJudged) return "shown ";
    return finding.grows ? "GROWS " : "stands";
}

// Right-aligned, with a blank before it at least.
std::string padded(const std::string& text, int width) {
    const auto wanted = static_cast<std::size_t>(width);
    return std::string(text.size() < wanted ? wanted - text.size() : 1, ' ') + text;
}

std::string signedText(double value, int decimals) {
    return (value < 0.0 ? "" : "+") + formatFixed(value, decimals);
}

}  // namespace

std::string lineTitles() {
    std::string text;
    for (const Column& column : kColumns) text += padded(column.title, column.width);
    return text + "  telemetry";
}

std::string lineText(const SoakLine& line) {
    std::string text;
    for (const Column& column : kColumns)
        text += padded(formatFixed(column.valueOf(line), column.decimals), column.width);
    return text + "  " + line.phase;
}

std::string csvTitles() {
    std::string text;
    for (const Column& column : kColumns) text += std::string(column.csvTitle) + ",";
    return text + "ui_answers,host_calls,telemetry\n";
}

std::string csvRow(const SoakLine& line) {
    std::string text;
    for (const Column& column : kColumns) text += formatFixed(column.valueOf(line), column.decimals) + ",";
    text += std::to_string(line.uiAnswers.count()) + "," + std::to_string(line.hostCalls.count()) + ",";
    return text + line.phase + "\n";
}

GrowthRecord::GrowthRecord(std::size_t lines) {
    for (const Column& column : kColumns) {
        if (column.allowance >= 0.0) samples_.emplace_back().reserve(lines);
    }
}

void GrowthRecord::add(const SoakLine& line) {
    auto row = samples_.begin();
    for (const Column& column : kColumns) {
        if (column.allowance >= 0.0)
            (row++)->push_back({line.atSeconds, column.valueOf(line), static_cast<int>(line.isWithSimulator)});
    }
}

std::vector<GrowthFinding> GrowthRecord::judge() const {
    std::vector<GrowthFinding> findings;
    auto row = samples_.begin();
    for (const Column& column : kColumns) {
        if (column.allowance < 0.0) continue;
        const bool isJudged = isSystemTight_ || !column.holdsSystemMemory;
        GrowthFinding finding{column.csvTitle, column.unit,      fitGrowth(lastHalf(*row++)),
                              isJudged,        column.allowance, false};
        finding.grows = isJudged && finding.line.certainGrowth() > finding.allowance;
        findings.push_back(finding);
    }
    return findings;
}

std::string findingText(const GrowthFinding& finding) {
    constexpr double kPerHour = 3600.0;
    std::string name = finding.name;
    name.resize(std::max<std::size_t>(name.size() + 1, 14), ' ');
    if (!finding.line.isKnown) return name + "unknown: too few lines";
    const std::string unit = *finding.unit ? std::string(" ") + finding.unit : "";
    return name + verdictOf(finding) + "  by " + signedText(finding.line.slope * kPerHour, 2) + unit + " an hour (" +
           signedText(finding.line.lowest * kPerHour, 2) + " to " + signedText(finding.line.highest * kPerHour, 2) +
           "), in " + formatFixed(finding.line.spanSeconds, 0) + " s certainly by " +
           signedText(finding.line.certainGrowth(), 2) + unit + " of " + formatFixed(finding.allowance, 2) + " allowed";
}
