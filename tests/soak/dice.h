// dice.h - a seed's numbers at random: the same with every compiler, so that a printed seed repeats a run. One owner.
#pragma once
#include <cstddef>
#include <cstdint>
#include <iterator>

class Dice {
  public:
    explicit Dice(std::uint64_t seed) : state_(seed) {}

    // SplitMix64, by Sebastiano Vigna (public domain): any seed will do, also 0.
    std::uint64_t next() {
        state_ += 0x9E3779B97F4A7C15U;
        std::uint64_t mixed = state_;
        mixed = (mixed ^ (mixed >> 30U)) * 0xBF58476D1CE4E5B9U;
        mixed = (mixed ^ (mixed >> 27U)) * 0x94D049BB133111EBU;
        return mixed ^ (mixed >> 31U);
    }
    // 0..count-1; 0 for a count of 0.
    std::size_t below(std::size_t count) { return count == 0 ? 0 : static_cast<std::size_t>(next() % count); }
    int between(int least, int most) {
        return least + static_cast<int>(below(static_cast<std::size_t>(most - least + 1)));
    }
    bool isOneIn(std::size_t count) { return below(count) == 0; }
    template <class Row>
    const auto& oneOf(const Row& row) {
        return std::data(row)[below(std::size(row))];
    }

  private:
    std::uint64_t state_;
};
