#include "worker/auto_link.h"
#include <gtest/gtest.h>
#include "tests/unit/worker/worker_fakes.h"

namespace {

// What the test knows of the links that were made for one simulator.
struct Made {
    int links = 0;
    ManualLink* latest = nullptr;  // null: it has been left alone
};

class WatchedLink : public ManualLink {
  public:
    WatchedLink(Made& made, const char* name, std::uint64_t restMs) : made_(made), name_(name), restMs_(restMs) {
        made_.links++;
        made_.latest = this;
        sim.ok = false;
        sim.status = std::string(name_) + " waiting";
    }
    ~WatchedLink() override { made_.latest = nullptr; }
    void poll(std::uint64_t) override { notes_.push_back(std::string(name_) + " polled"); }
    bool isThere() const override { return isThereToo || sim.ok; }
    bool isSettled() const override { return sim.ok || isSure; }
    WakeHandles wakeHandles() const override { return {handle}; }
    std::uint64_t restMs() const override { return restMs_; }
    std::uint64_t unheardMs(std::uint64_t) const override { return 77; }
    RadioWrite adjusted(const RadioWrite& write) const override { return {write.radio, write.slot, write.value + 1.0}; }
    std::string noteReadback(const RadioWrite&, bool) override { return name_; }

    bool isThereToo = false;  // though it has no flight
    bool isSure = false;
    void* handle = nullptr;

  private:
    Made& made_;
    const char* name_;
    std::uint64_t restMs_;
};

struct Auto : testing::Test {
    Made first, second;
    AutoLink link{{{{"First", [this] { return std::make_unique<WatchedLink>(first, "first", 200); }},
                    {"Second", [this] { return std::make_unique<WatchedLink>(second, "second", 90); }}}}};
    std::uint64_t nowMs = 1000;

    static WatchedLink& of(Made& made) { return static_cast<WatchedLink&>(*made.latest); }
    std::string pass() {
        link.poll(nowMs += 20);
        return (link.snapshot().ok ? "ok: " : "no: ") + link.snapshot().status;
    }
    static void set(Made& made, bool ok, const char* status) {
        made.latest->sim.ok = ok;
        made.latest->sim.status = status;
    }
};

}  // namespace

TEST_F(Auto, LooksForBothUntilOneAnswers) {
    EXPECT_EQ(pass(), "no: first waiting");
    EXPECT_EQ(link.takeNotes(), (std::vector<std::string>{"first polled", "second polled"}));
    EXPECT_FALSE(link.write({0, kSlotSwap, 0.0}, nowMs));
    EXPECT_FALSE(link.isThere());
    EXPECT_EQ(link.restMs(), 90u);
    set(second, true, "flying");
    EXPECT_EQ(pass(), "ok: flying");
    EXPECT_EQ(first.latest, nullptr);  // left alone
    EXPECT_EQ(link.takeNotes().back(), "Second it is; First is not looked for meanwhile");
    pass();
    EXPECT_EQ(link.takeNotes(), std::vector<std::string>{"second polled"});
    EXPECT_TRUE(link.isThere());
}

TEST_F(Auto, TheFirstComesFirstIfBothAnswer) {
    set(first, true, "one");
    set(second, true, "two");
    EXPECT_EQ(pass(), "ok: one");
    EXPECT_EQ(second.latest, nullptr);
}

TEST_F(Auto, StaysWithTheOneThatIsThereWhetherItFliesOrNot) {
    set(second, true, "flying");
    pass();
    set(second, false, "in menu");
    of(second).isThereToo = true;
    EXPECT_EQ(pass(), "no: in menu");
    EXPECT_EQ(first.links, 1);
    set(second, true, "flying");
    EXPECT_EQ(pass(), "ok: flying");
}

TEST_F(Auto, LooksForBothAgainOnceItIsLost) {
    set(second, true, "flying");
    pass();
    set(second, false, "lost");
    EXPECT_EQ(pass(), "no: lost");  // the word of the one that was lost
    EXPECT_EQ(second.links, 1);
    ASSERT_EQ(first.links, 2);
    pass();
    set(first, true, "one");
    EXPECT_EQ(pass(), "ok: one");
    EXPECT_EQ(second.latest, nullptr);
    set(first, false, "gone");
    EXPECT_EQ(pass(), "no: gone");
    EXPECT_EQ(second.links, 2);
}

TEST_F(Auto, ShowsTheOneThatIsThereBeforeItAnswers) {
    of(second).isThereToo = true;
    set(second, false, "connecting");
    EXPECT_EQ(pass(), "no: connecting");
    of(first).isThereToo = true;
    EXPECT_EQ(pass(), "no: first waiting");
}

TEST_F(Auto, KnowsWhereItStandsOnceBothDo) {
    EXPECT_FALSE(link.isSettled());
    of(first).isSure = true;
    EXPECT_FALSE(link.isSettled());
    of(second).isSure = true;
    EXPECT_TRUE(link.isSettled());
    set(first, true, "one");
    pass();
    EXPECT_TRUE(link.isSettled());
}

TEST_F(Auto, WaitsForBothAndThenForTheChosenOne) {
    int one = 0, two = 0;
    EXPECT_EQ(link.wakeHandles(), WakeHandles{});
    of(second).handle = &two;
    EXPECT_EQ(link.wakeHandles(), (WakeHandles{&two}));
    of(first).handle = &one;
    EXPECT_EQ(link.wakeHandles(), (WakeHandles{&one, &two}));
    set(first, true, "one");
    pass();
    EXPECT_EQ(link.wakeHandles(), (WakeHandles{&one}));
    EXPECT_EQ(link.restMs(), 200u);
}

TEST_F(Auto, PassesOnWhatIsAskedOfTheChosenOne) {
    set(second, true, "flying");
    pass();
    EXPECT_TRUE(link.write({1, kSlotStandby, 118005}, nowMs));
    ASSERT_EQ(of(second).writes.size(), 1u);
    EXPECT_EQ(of(second).writes[0].value, 118005.0);
    EXPECT_EQ(link.adjusted({1, kSlotVolume, 1.0}).value, 2.0);
    EXPECT_EQ(link.unheardMs(nowMs), 77u);
    EXPECT_EQ(link.noteReadback({}, false), "second");
}
