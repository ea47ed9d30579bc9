#include "tests/client/circuit/loads_win.h"
#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <vector>
#include "tests/client/circuit/plugin_life_win.h"
#include "tests/client/resource_count_win.h"

namespace {

// One thing that is counted after an unload. Growth is judged by floors: the least of all counts of a quarter. Whatever
// the system makes and gives back in its own time lifts single counts; what each load leaves, or each use of a kind,
// lifts the floor, by as many as there were such loads. A count that may not grow at all has an allowance of 0. What
// has one may take a step, as heaps do when they ask the system for more, but must not go on rising: it grows if the
// last half's fitted line does, too.
struct Quantity {
    const char* name;
    double allowance;  // from the second quarter's floor to the last one's, for each load between
    double (*count)();
};

// The system keeps books of its own in both.
constexpr double kHeapBytesPerLoad = 64;
constexpr double kPrivateBytesPerLoad = 1024;

const std::array kQuantities = {
    Quantity{"threads", 0, [] { return static_cast<double>(threadCount()); }},
    Quantity{"handles", 0, [] { return static_cast<double>(handleCount()); }},
    Quantity{"thread slots", 0, [] { return static_cast<double>(threadSlotCount()); }},
    Quantity{"fiber slots", 0, [] { return static_cast<double>(fiberSlotCount()); }},
    Quantity{"GDI objects", 0, [] { return static_cast<double>(countResources().gdiObjects); }},
    Quantity{"windows", 0, [] { return static_cast<double>(countResources().userObjects); }},
    Quantity{"heap bytes", kHeapBytesPerLoad, [] { return static_cast<double>(heapBytes()); }},
    Quantity{"private bytes", kPrivateBytesPerLoad, [] { return static_cast<double>(countResources().privateBytes); }},
};
constexpr std::size_t kQuantityCount = kQuantities.size();

struct Sample {
    int load = 0;
    std::array<double, kQuantityCount> values{};
};

Sample takeSample(int load) {
    Sample sample{.load = load, .values = {}};
    for (std::size_t i = 0; i < kQuantityCount; i++) sample.values[i] = kQuantities[i].count();
    return sample;
}

void printTitles() {
    std::printf("%8s", "load");
    for (const Quantity& quantity : kQuantities) std::printf("%15s", quantity.name);
    std::printf("\n");
}

void printSample(const Sample& sample) {
    std::printf("%8d", sample.load);
    for (const double value : sample.values) std::printf("%15.0f", value);
    std::printf("\n");
    std::fflush(stdout);
}

// The least count of samples first..last-1.
double floorOf(const std::vector<Sample>& samples, std::size_t quantity, std::size_t first, std::size_t last) {
    double least = samples[first].values[quantity];
    for (std::size_t i = first; i < last; i++) least = std::min(least, samples[i].values[quantity]);
    return least;
}

// By least squares over the last half, for 1,000 loads.
double slopeOf(const std::vector<Sample>& samples, std::size_t quantity) {
    const std::size_t first = samples.size() / 2;
    double n = 0, x = 0, y = 0, xx = 0, xy = 0;
    for (std::size_t i = first; i < samples.size(); i++) {
        const double load = samples[i].load, value = samples[i].values[quantity];
        n += 1;
        x += load;
        y += value;
        xx += load * load;
        xy += load * value;
    }
    const double spread = n * xx - x * x;
    return spread > 0 ? (n * xy - x * y) / spread * 1000.0 : 0.0;
}

bool judge(const std::vector<Sample>& samples, std::size_t quantity) {
    const std::size_t quarter = samples.size() / 4;
    const double before = floorOf(samples, quantity, quarter, 2 * quarter);
    const double after = floorOf(samples, quantity, samples.size() - quarter, samples.size());
    const int loads = samples.back().load - samples[quarter].load;
    const double allowance = kQuantities[quantity].allowance;
    const double slope = slopeOf(samples, quantity);
    const bool isGood = after - before <= allowance * loads || (allowance > 0 && slope <= allowance * 1000);
    std::printf("%-8s %-14s floor %12.0f, then %12.0f; %+.1f for 1,000 loads in the last half's fitted line\n",
                isGood ? "ok" : "GREW", kQuantities[quantity].name, before, after, slope);
    return isGood;
}

// Which kinds of handles there are more of.
void printNewHandles(const std::map<std::string, int>& before) {
    for (const auto& [type, count] : handleTypes()) {
        const auto was = before.find(type);
        const int more = count - (was == before.end() ? 0 : was->second);
        if (more != 0) std::printf("         %+d handles of type %s\n", more, type.c_str());
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
        return isGood;
    }
    std::uint64_t hostCalls() const { return crowd_.calls(); }

  private:
    // Which life it was that left one, should the verdict be that they grow. The first uses of a kind leave some, too.
    void noteNewObjects(const PluginLife& life) {
        const int objects = countResources().gdiObjects;
        if (objects > mostObjects_ && mostObjects_ > 0)
            std::printf("         %+d GDI objects after: %s\n", objects - mostObjects_, life.story().c_str());
        mostObjects_ = std::max(mostObjects_, objects);
    }

    Chance chance_;
    const LifePlaces places_;
    HostCrowd crowd_;
    int mostObjects_ = 0;
};

}  // namespace

int runLoads(int loads, std::uint64_t seed) {
    std::printf("%d loads, seed %llu\n", loads, static_cast<unsigned long long>(seed));
    const HWND client = makeClientWindow();
    Loads lives(seed);
    if (!lives.isReady()) {
        std::printf("the DLL and the worker cannot be copied\n");
        return 1;
    }
    const int every = std::max(1, loads / 100);
    std::vector<Sample> samples;
    std::map<std::string, int> handlesBefore;
    bool isGood = true;
    printTitles();
    for (int load = 1; load <= loads; load++) {
        isGood = lives.live() && isGood;
        if (load % every != 0) continue;
        samples.push_back(takeSample(load));
        if (load / every % 5 == 0) printSample(samples.back());
        if (load == loads / 4 / every * every) handlesBefore = handleTypes();
    }
    std::printf("%llu calls by the host's threads that lived on\n", static_cast<unsigned long long>(lives.hostCalls()));
    if (samples.size() >= 20) {
        for (std::size_t i = 0; i < kQuantityCount; i++) isGood = judge(samples, i) && isGood;
        printNewHandles(handlesBefore);
    }
    DestroyWindow(client);
    std::printf("\n%s\n", isGood ? "Loads survived" : "Loads FAILED");
    return isGood ? 0 : 1;
}
