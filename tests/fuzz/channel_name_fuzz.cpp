// channel_name_fuzz.cpp - channel names of any bytes, beside a second implementation of the rule: a frequency is a run
// of exactly three digits, one point or comma, and another run of exactly three digits.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <string>
#include <vector>
#include "channels/channel_name.h"

namespace {

struct DigitRun {
    std::size_t start = 0;
    std::size_t length = 0;
};

std::vector<DigitRun> digitRuns(const std::string& name) {
    std::vector<DigitRun> runs;
    bool inside = false;
    for (std::size_t at = 0; at < name.size(); at++) {
        const bool digit = name[at] >= '0' && name[at] <= '9';
        if (digit && !inside) runs.push_back({at, 0});
        if (digit) runs.back().length++;
        inside = digit;
    }
    return runs;
}

std::set<std::int32_t> frequenciesIn(const std::string& name) {
    std::set<std::int32_t> frequencies;
    const auto runs = digitRuns(name);
    for (std::size_t i = 1; i < runs.size(); i++) {
        const DigitRun& left = runs[i - 1];
        const DigitRun& right = runs[i];
        if (left.length != 3 || right.length != 3 || right.start != left.start + 4) continue;
        const char between = name[left.start + 3];
        if (between != '.' && between != ',') continue;
        frequencies.insert(std::stoi(name.substr(left.start, 3)) * 1000 + std::stoi(name.substr(right.start, 3)));
    }
    return frequencies;
}

void require(bool holds, std::int32_t khz) {
    if (holds) return;
    std::fprintf(stderr, "broken: %d kHz\n", khz);
    std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    const std::string name(reinterpret_cast<const char*>(data), size);
    const auto frequencies = frequenciesIn(name);
    for (const std::int32_t khz : frequencies) require(channelNameCarries(name, khz), khz);
    std::set<std::int32_t> asked = {-1, 0, 118275, 121500, 122800, 999999, 1000000};
    for (const std::int32_t khz : frequencies) asked.insert({khz - 1, khz + 1, khz / 10, khz % 100000});
    for (const DigitRun& run : digitRuns(name))  // what a careless reader would take for a frequency
        if (run.length >= 3 && run.length <= 9) asked.insert(std::stoi(name.substr(run.start, run.length)));
    for (const std::int32_t khz : asked) require(channelNameCarries(name, khz) == (frequencies.count(khz) != 0), khz);
    return 0;
}
