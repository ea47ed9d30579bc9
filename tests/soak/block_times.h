// block_times.h - how long something took, many times: counts in bands of a thirty-second of an octave, so that hours
// of blocks take no more memory than seconds of them. A value; one owner at a time.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>

class BlockTimes {
  public:
    void add(std::uint64_t nanoseconds);
    void add(const BlockTimes& others);

    std::uint64_t count() const { return count_; }
    std::uint64_t worst() const { return worst_; }  // exact, ns; 0 without any
    // The time that the share (0..1) of them did not exceed, in ns: never too small, and too large by 3.2 % at most,
    // but never above the worst. 0 without any.
    std::uint64_t percentile(double share) const;

  private:
    static constexpr unsigned kStepBits = 5;              // bands to an octave: 32
    static constexpr unsigned kOctaves = 40 - kStepBits;  // up to 18 minutes; what took longer is in the last band
    static constexpr std::size_t kBands = (kOctaves + 1) << kStepBits;

    static std::size_t bandOf(std::uint64_t nanoseconds);
    static std::uint64_t endOf(std::size_t band);  // the longest time in it

    std::array<std::uint64_t, kBands> bands_{};
    std::uint64_t count_ = 0;
    std::uint64_t worst_ = 0;
};
