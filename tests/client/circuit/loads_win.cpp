#include "tests/client/circuit/loads_win.h"
#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <optional>
#include <span>
#include <utility>
#include <vector>
#include "tests/client/circuit/plugin_life_win.h"
#include "tests/client/resource_count_win.h"
#include "tests/soak/growth.h"
#include "tests/soak/system_leaks_win.h"

namespace {

// One thing that is counted after an unload. It grows if its floor rises, the least of all counts of a quarter: what
// the system makes and gives back in its own time lifts single counts; what each load leaves, or each use of a kind,
// lifts the floor. Where the system keeps a store (as many device contexts as were ever in use at once, pages of what
// was used once) the floor takes a step now and then; there it grows if a line through the last half certainly rises,
// too.
struct Quantity {
    const char* name;
    double allowance;  // for each load
    double (*count)();
    bool hasStore = false;
    bool isOfAllMemory = false;  // the system's, too: not judged where that leaks
    int fewestLoads = 0;         // to be judged by
};

// The system keeps books of its own in both.
constexpr double kHeapBytesPerLoad = 64;
constexpr double kPrivateBytesPerLoad = 1024;
constexpr int kLoadsForPrivateBytes = 500;  // they waver by 2 MB

const std::array kQuantities = {
    Quantity{"threads", 0, [] { return static_cast<double>(threadCount()); }},
    Quantity{"handles", 0, [] { return static_cast<double>(handleCount()); }},
    Quantity{"thread slots", 0, [] { return static_cast<double>(threadSlotCount()); }},
    Quantity{"fiber slots", 0, [] { return static_cast<double>(fiberSlotCount()); }},
    Quantity{"GDI objects", 0, [] { return static_cast<double>(countResources().gdiObjects); }, true},
    Quantity{"windows", 0, [] { return static_cast<double>(countResources().userObjects); }},
    Quantity{"heap bytes", kHeapBytesPerLoad, [] { return static_cast<double>(heapBytes()); }, false, true},
    Quantity{"private bytes", kPrivateBytesPerLoad, [] { return static_cast<double>(countResources().privateBytes); },
             true, true, kLoadsForPrivateBytes},
};
constexpr std::size_t kQuantityCount = kQuantities.size();

using Counts = std::array<double, kQuantityCount>;

Counts takeCounts() {
    Counts counts{};
    for (std::size_t i = 0; i < kQuantityCount; i++) counts[i] = kQuantities[i].count();
    return counts;
}

void printTitles() {
    std::printf("%8s", "load");
    for (const Quantity& quantity : kQuantities) std::printf("%15s", quantity.name);
    std::printf("\n");
}

void printCounts(int load, const Counts& counts) {
    std::printf("%8d", load);
    for (const double count : counts) std::printf("%15.0f", count);
    std::printf("\n");
    std::fflush(stdout);
}

double leastOf(std::span<const GrowthSample> samples) {
    const auto isLess = [](const GrowthSample& a, const GrowthSample& b) { return a.value < b.value; };
    return std::min_element(samples.begin(), samples.end(), isLess)->value;
}

// samples: by load, instead of by seconds.
bool judge(const Quantity& quantity, std::span<const GrowthSample> samples, bool isSystemGood) {
    const std::size_t quarter = samples.size() / 4;
    const double before = leastOf(samples.subspan(quarter, quarter)), after = leastOf(samples.last(quarter));
    const double loads = samples.back().atSeconds - samples[quarter].atSeconds;
    const bool isFloorStill = after - before <= quantity.allowance * loads;
    const GrowthLine line = fitGrowth(lastHalf(samples));
    const bool isLineStill = line.isKnown && line.certainGrowth() <= quantity.allowance * line.spanSeconds;
    const bool isGood = isFloorStill || (quantity.hasStore && isLineStill);
    const bool isJudged = (isSystemGood || !quantity.isOfAllMemory) && samples.back().atSeconds >= quantity.fewestLoads;
    const char* const verdict = isGood ? "ok" : "GREW";
    std::printf("%-8s %-14s floor %12.0f, then %12.0f; by %+.3f a load (%+.3f to %+.3f) in the last %.0f\n",
                isJudged ? verdict : "shown", quantity.name, before, after, line.slope, line.lowest, line.highest,
                line.spanSeconds);
    return isGood || !isJudged;
}

// Of which kinds there are more, or fewer.
void printChanges(const char* what, const std::map<std::string, int>& before, const std::map<std::string, int>& now) {
    std::map<std::string, int> changes = now;
    for (const auto& [kind, count] : before) changes[kind] -= count;
    for (const auto& [kind, change] : changes) {
        if (change != 0) std::printf("         %+d %s: %s\n", change, what, kind.c_str());
    }
}

class Loads {
  public:
    explicit Loads(std::uint64_t seed) : chance_(seed) {}

    bool isReady() const { return places_.isGood(); }
    // From a load to the unload. False if something was left behind; says what.
    bool live() {
        PluginLife life(chance_, crowd_, places_);
        if (!life.load()) return life.leftNothing({"it cannot be loaded"});
        bool isGood = true;
        for (int starts = chance_.oneIn(5) ? 2 : 1; starts > 0; starts--) {
            life.start();
            for (int deeds = chance_.between(1, 6); deeds > 0; deeds--) {
                life.wait(chance_.below(60));
                life.doSomething();
            }
            life.wait(chance_.below(60));
            life.shutDown();
            isGood = life.leftNothing(life.leftovers()) && isGood;
        }
        life.unload();
        noteNewObjects(life);
        if (GetModuleHandleW(L"corvalis_win64.dll")) isGood = life.leftNothing({"the DLL"});
        isGood = leftNoMemory(life) && isGood;
        return isGood;
    }
    std::uint64_t hostCalls() const { return crowd_.calls(); }

  private:
    // What the DLL makes as it is loaded, before anybody counts, and gives back at the end, is the same in all lives.
    bool leftNoMemory(const PluginLife& life) {
        const MemoryLeft left = life.memoryLeft();
        if (!ofFirstLife_) ofFirstLife_ = left;
        const auto bytes = left.bytes - ofFirstLife_->bytes, blocks = left.blocks - ofFirstLife_->blocks;
        if (bytes == 0 && blocks == 0) return true;
        return life.leftNothing({std::to_string(bytes) + " bytes in " + std::to_string(blocks) + " blocks of its own"});
    }

    // Which life it was that left one, should the verdict be that they grow. The first uses of a kind leave some, too.
    void noteNewObjects(const PluginLife& life) {
        const int objects = countResources().gdiObjects;
        if (objects <= mostObjects_) return;
        auto kinds = gdiKinds();
        if (mostObjects_ > 0) {
            std::printf("         %+d GDI objects after: %s\n", objects - mostObjects_, life.story().c_str());
            printChanges("GDI objects", kindsOfMost_, kinds);
        }
        mostObjects_ = objects;
        kindsOfMost_ = std::move(kinds);
    }

    Chance chance_;
    const LifePlaces places_;
    HostCrowd crowd_;
    std::optional<MemoryLeft> ofFirstLife_;
    int mostObjects_ = 0;  // after any life
    std::map<std::string, int> kindsOfMost_;
};

}  // namespace

int runLoads(int loads, std::uint64_t seed) {
    std::printf("%d loads, seed %llu\n", loads, static_cast<unsigned long long>(seed));
    const int every = std::max(1, loads / 100);
    const bool isJudged = loads / every >= static_cast<int>(2 * kFewestSamples);
    const SystemLeaks leaks = isJudged ? findSystemLeaks() : SystemLeaks();
    if (!leaks.areNone()) std::printf("%s\n", leaks.inWords().c_str());
    // As the voice client does for its own dialogs. Wine 10 keeps nine bitmaps and 1.6 MB each time that these controls
    // are unloaded, whoever had them.
    LoadLibraryW(L"comctl32.dll");
    const HWND client = makeClientWindow();
    Loads lives(seed);
    if (!lives.isReady()) {
        std::printf("the DLL and the worker cannot be copied\n");
        return 1;
    }
    std::array<std::vector<GrowthSample>, kQuantityCount> samples;
    for (auto& ofOne : samples)
        ofOne.reserve(static_cast<std::size_t>(loads / every));  // not while the heap is counted
    std::map<std::string, int> handlesBefore;
    bool isGood = true;
    printTitles();
    for (int load = 1; load <= loads; load++) {
        isGood = lives.live() && isGood;
        if (load % every != 0) continue;
        const Counts counts = takeCounts();
        for (std::size_t i = 0; i < kQuantityCount; i++) samples[i].push_back({static_cast<double>(load), counts[i]});
        if (load / every % 5 == 0) printCounts(load, counts);
        if (load == loads / 2 / every * every) handlesBefore = handleTypes();
    }
    std::printf("%llu calls by the host's threads that lived on\n", static_cast<unsigned long long>(lives.hostCalls()));
    if (isJudged) {
        for (std::size_t i = 0; i < kQuantityCount; i++)
            isGood = judge(kQuantities[i], samples[i], leaks.areNone()) && isGood;
        printChanges("handles", handlesBefore, handleTypes());
    }
    DestroyWindow(client);
    std::printf("\n%s\n", isGood ? "Loads survived" : "Loads FAILED");
    return isGood ? 0 : 1;
}
