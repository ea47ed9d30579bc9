#include "worker/link_trial.h"
#include <gtest/gtest.h>
#include "tests/unit/worker/worker_fakes.h"

namespace {

// Comes up at a given time, or finds out at another why not, and has a note at each poll.
class LateLink : public ManualLink {
  public:
    explicit LateLink(std::uint64_t upMs, std::uint64_t sureMs = ~std::uint64_t{0}) : upMs_(upMs), sureMs_(sureMs) {
        sim = {};
    }
    void poll(std::uint64_t nowMs) override {
        polls++;
        sim.ok = nowMs >= upMs_;
        sim.status = sim.ok ? "flying" : "waiting";
        isSure_ = nowMs >= sureMs_;
        notes_.push_back("poll " + std::to_string(polls));
    }

    bool isSettled() const override { return isSure_; }

    int polls = 0;

  private:
    std::uint64_t upMs_;
    std::uint64_t sureMs_;
    bool isSure_ = false;
};

}  // namespace

TEST(LinkTrial, EndsAsSoonAsTheLinkIsUp) {
    ManualClock clock;
    LateLink link(clock.tickMs() + 100);
    const auto trial = tryLink(link, clock, [&] { clock.advance(50); });
    EXPECT_TRUE(trial.isUp);
    EXPECT_EQ(trial.status, "flying");
    EXPECT_EQ(trial.ms, 100u);
    EXPECT_EQ(trial.notes, (std::vector<std::string>{"poll 1", "poll 2", "poll 3"}));
}

TEST(LinkTrial, WaitsAsLongAsTheLinkDoesAndNoLonger) {
    ManualClock clock;
    LateLink link(~std::uint64_t{0}, clock.tickMs() + 12'000);
    const auto trial = tryLink(link, clock, [&] { clock.advance(50); });
    EXPECT_FALSE(trial.isUp);
    EXPECT_EQ(trial.ms, 12'000u);
}

TEST(LinkTrial, GivesUpAfterItsTime) {
    ManualClock clock;
    LateLink link(clock.tickMs() + kLinkTrialMs + 1);
    const auto trial = tryLink(link, clock, [&] { clock.advance(50); });
    EXPECT_FALSE(trial.isUp);
    EXPECT_EQ(trial.status, "waiting");
    EXPECT_EQ(trial.ms, kLinkTrialMs);
    EXPECT_EQ(link.polls, static_cast<int>(kLinkTrialMs / 50) + 1);
}

TEST(LinkTrial, OfTheBuiltInAircraftTakesOnePoll) {
    ManualClock clock;
    LateLink link(0);
    const auto trial = tryLink(link, clock, [] { FAIL() << "no pause is due"; });
    EXPECT_TRUE(trial.isUp);
    EXPECT_EQ(trial.ms, 0u);
}
