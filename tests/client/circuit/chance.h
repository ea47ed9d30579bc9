// chance.h - numbers drawn from a seed: the same for the same seed with every compiler. One owner.
#pragma once
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <random>

class Chance {
  public:
    explicit Chance(std::uint64_t seed) : engine_(seed) {}

    int below(int count) { return static_cast<int>(engine_() % static_cast<std::uint64_t>(count)); }  // count > 0
    int between(int least, int most) { return least + below(most - least + 1); }
    bool oneIn(int count) { return below(count) == 0; }
    template <class Row>
    const auto& oneOf(const Row& row) {
        return std::data(row)[below(static_cast<int>(std::size(row)))];
    }

  private:
    std::mt19937_64 engine_;
};
