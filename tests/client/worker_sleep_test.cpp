// worker_sleep_test.cpp - why the worker's sleep is over, which decides whether it looks for a command file: by
// something in the folder, by news from the simulator alone, by its time, or because the voice client has ended.
#include <gtest/gtest.h>
#include <windows.h>
#include "base/handle_win.h"
#include "tests/client/test_machine_win.h"
#include "worker/system_win.h"

namespace {

constexpr PassResult kUntilSomethingHappens{.waitMs = 20'000, .quietMs = 20'000};

OwnedHandle makeEvent(bool isSet = false) {
    return OwnedHandle(CreateEventW(nullptr, TRUE, isSet, nullptr));
}

class WorkerSleepEnds : public testing::Test {
  protected:
    std::optional<PassCause> sleep(const PassResult& pass) { return sleep_.sleep(pass, {news_.get(), nullptr}); }
    void change() const { ASSERT_TRUE(writeFile(folder_.path / "command.json", "{}")); }

    const FreshFolder folder_;
    const OwnedHandle news_ = makeEvent();
    const OwnedHandle clientEnded_ = makeEvent();
    WorkerSleep sleep_{clientEnded_.get(), folder_.path.string()};
};

}  // namespace

TEST_F(WorkerSleepEnds, WithNewsAloneWhereNothingHasChangedInTheFolder) {
    SetEvent(news_.get());
    // The watch of the folder begins anew now and then, and what it may have missed counts as a change.
    EXPECT_TRUE(waitFor([&] { return sleep(kUntilSomethingHappens) == PassCause::kLinkNews; }));
}

TEST_F(WorkerSleepEnds, WithAChangeAlsoWhereThereAreNews) {
    change();
    EXPECT_EQ(sleep(kUntilSomethingHappens), PassCause::kAnything);
    std::filesystem::remove(folder_.path / "command.json");
    change();
    SetEvent(news_.get());
    EXPECT_EQ(sleep(kUntilSomethingHappens), PassCause::kAnything);
}

TEST_F(WorkerSleepEnds, WithItsTime) {
    for (const std::uint64_t ms : {1U, 30U, 150U})  // by a timer, and without one
        EXPECT_EQ(sleep({.waitMs = ms, .quietMs = ms}), PassCause::kAnything) << ms;
}

TEST_F(WorkerSleepEnds, WithTheVoiceClientWhateverElseThereIs) {
    change();
    SetEvent(news_.get());
    SetEvent(clientEnded_.get());
    EXPECT_EQ(sleep(kUntilSomethingHappens), std::nullopt);
}
