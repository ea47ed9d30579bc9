#include "tests/client/circuit/shutdowns_win.h"
#include <algorithm>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>
#include "tests/client/circuit/plugin_life_win.h"
#include "tests/client/circuit/withheld_time_win.h"

namespace {

constexpr double kLimitMs = 1000.0;
constexpr std::uint64_t kStuckMs = 60'000;
constexpr int kStuckExit = 4;

struct Shutdown {
    double ms = 0.0;          // by the machine's clock
    double withheldMs = 0.0;  // of these by the machine
    std::string story;

    double ownMs() const { return std::max(0.0, ms - withheldMs); }
};

// Ends the program when a shutdown does not, and says which.
class Watchdog {
  public:
    Watchdog() : thread_([this] { watch(); }) {}
    ~Watchdog() {
        isLiving_ = false;
        thread_.join();
    }
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

    void begin(const std::string& story) {
        story_ = story;
        sinceMs_ = systemTickMs();
    }
    void end() { sinceMs_ = 0; }

  private:
    void watch() {
        while (isLiving_) {
            const std::uint64_t sinceMs = sinceMs_;
            if (sinceMs != 0 && systemTickMs() - sinceMs > kStuckMs) {
                std::printf("STUCK    a shutdown that does not end, after: %s\n", story_.c_str());
                std::fflush(stdout);
                TerminateProcess(GetCurrentProcess(), kStuckExit);
            }
            Sleep(50);
        }
    }

    std::string story_;                      // the owner writes before it stores sinceMs_
    std::atomic<std::uint64_t> sinceMs_{0};  // the owner stores; 0 while there is no shutdown
    std::atomic<bool> isLiving_{true};       // same
    std::thread thread_;
};

class Shutdowns {
  public:
    explicit Shutdowns(std::uint64_t seed) : chance_(seed) {}

    bool isReady() const { return places_.isGood(); }
    // A life up to its shutdown. False if something was left behind; says what.
    bool live() {
        PluginLife life(chance_, crowd_, places_);
        if (!life.load()) return life.leftNothing({"it cannot be loaded"});
        life.start();
        // From the very first moment on, in the midst of whatever the last deed has set off.
        for (int deeds = chance_.below(8); deeds > 0; deeds--) {
            life.wait(chance_.oneIn(3) ? 0 : chance_.below(150));
            life.doSomething();
        }
        life.wait(chance_.oneIn(2) ? 0 : chance_.below(400));
        shutdowns_.push_back(time(life));
        const bool isGood = life.leftNothing(life.leftovers());
        life.unload();
        return isGood;
    }
    const std::vector<Shutdown>& shutdowns() const { return shutdowns_; }

  private:
    Shutdown time(PluginLife& life) {
        watchdog_.begin(life.story());
        const double withheldMs = withheld_.ms();
        const std::int64_t beganUs = fineUs();
        // Mostly from the client's main thread, which then answers no message.
        if (chance_.oneIn(5))
            std::thread([&] { life.shutDown(); }).join();
        else
            life.shutDown();
        const double ms = static_cast<double>(fineUs() - beganUs) / 1000.0;
        watchdog_.end();
        return {.ms = ms, .withheldMs = withheld_.ms() - withheldMs, .story = life.story()};
    }

    Chance chance_;
    const LifePlaces places_;
    HostCrowd crowd_;
    WithheldTime withheld_;
    Watchdog watchdog_;
    std::vector<Shutdown> shutdowns_;
};

bool judge(std::vector<Shutdown> shutdowns, bool isTimed) {
    std::sort(shutdowns.begin(), shutdowns.end(),
              [](const Shutdown& a, const Shutdown& b) { return a.ownMs() > b.ownMs(); });
    for (std::size_t i = 0; i < std::min<std::size_t>(5, shutdowns.size()); i++) {
        const Shutdown& slow = shutdowns[i];
        std::printf("%6.0f ms, of these %4.0f withheld, after: %s\n", slow.ms, slow.withheldMs, slow.story.c_str());
    }
    const auto count = static_cast<double>(shutdowns.size());
    const auto late = std::count_if(shutdowns.begin(), shutdowns.end(),
                                    [](const Shutdown& shutdown) { return shutdown.ownMs() > kLimitMs; });
    const auto lateByClock = std::count_if(shutdowns.begin(), shutdowns.end(),
                                           [](const Shutdown& shutdown) { return shutdown.ms > kLimitMs; });
    const auto rank = [&](double share) { return shutdowns[static_cast<std::size_t>((1.0 - share) * count)].ownMs(); };
    std::printf("%zu shutdowns: half within %.0f ms, 99 of 100 within %.0f ms, all within %.0f ms\n", shutdowns.size(),
                rank(0.5), rank(0.99), shutdowns.front().ownMs());
    std::printf("%lld took longer than a second by the clock, %lld without what the machine withheld\n",
                static_cast<long long>(lateByClock), static_cast<long long>(late));
    return !isTimed || late == 0;
}

}  // namespace

int runShutdowns(int moments, std::uint64_t seed, bool isTimed) {
    std::printf("%d shutdowns, seed %llu\n", moments, static_cast<unsigned long long>(seed));
    const HWND client = makeClientWindow();
    Shutdowns lives(seed);
    if (!lives.isReady()) {
        std::printf("the DLL and the worker cannot be copied\n");
        return 1;
    }
    bool isGood = true;
    for (int moment = 0; moment < moments; moment++) {
        isGood = lives.live() && isGood;
        if ((moment + 1) % 50 == 0) {
            std::printf("%d ended\n", moment + 1);
            std::fflush(stdout);
        }
    }
    if (!lives.shutdowns().empty()) isGood = judge(lives.shutdowns(), isTimed) && isGood;
    DestroyWindow(client);
    std::printf("\n%s\n", isGood ? "Shutdowns survived" : "Shutdowns FAILED");
    return isGood ? 0 : 1;
}
