// auto_link.h - whichever of two simulators answers first, for as long as it is there. The other is left alone
// meanwhile: its link does not exist, so it asks nothing, listens to nothing and costs nothing.
#pragma once
#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include "worker/sim_link.h"

using MakeSimLink = std::function<std::unique_ptr<SimLink>()>;

class AutoLink : public SimLink {
  public:
    // What the log calls them, and how their links are made; never null. The first one comes first where both answer at
    // once, and where there is neither it is the one whose status counts.
    struct Choice {
        std::string name;
        MakeSimLink make;
    };
    explicit AutoLink(std::array<Choice, 2> choices);

    void poll(std::uint64_t nowMs) override;
    const SimSnapshot& snapshot() const override { return shown().snapshot(); }
    bool write(const RadioWrite& write, std::uint64_t nowMs) override;
    RadioWrite adjusted(const RadioWrite& write) const override { return shown().adjusted(write); }
    std::uint64_t unheardMs(std::uint64_t nowMs) const override { return shown().unheardMs(nowMs); }
    bool isSettled() const override;
    bool isThere() const override { return shown().isThere(); }
    std::string noteReadback(const RadioWrite& write, bool seen) override { return shown().noteReadback(write, seen); }
    WakeHandles wakeHandles() const override;
    std::uint64_t restMs() const override;

  private:
    void pollOne(std::size_t index, std::uint64_t nowMs);
    void choose(std::size_t index);
    void release();
    std::size_t shownIndex() const;
    SimLink& shown() const { return *links_[shownIndex()]; }

    std::array<Choice, 2> choices_;
    std::array<std::unique_ptr<SimLink>, 2> links_;  // null: left alone
    std::optional<std::size_t> chosen_;
    std::size_t latest_ = 0;  // chosen, or the last that was
};
