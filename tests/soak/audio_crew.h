// audio_crew.h - the host's audio threads in real time: four of them, each with sixteen speakers and a block of
// 20 ms from each; the first has the user's own voice as well. Now and then a block comes in pieces or is longer, and a
// speaker goes for another. A thread that has fallen behind by more than kMostBehindMs leaves out what it missed, as a
// client's would. [host] One owner; the plugin must be loaded until stop() or the end.
#pragma once
#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <thread>
#include "base/mutex.h"
#include "tests/client/plugin_library_win.h"
#include "tests/soak/block_times.h"
#include "tests/soak/dice.h"

inline constexpr std::size_t kAudioThreads = 4;
inline constexpr std::size_t kSpeakersEach = 16;
inline constexpr std::size_t kPilotsEach = 64;  // who ever speaks on a thread; fewer than its table may hold
inline constexpr std::uint16_t kFirstSpeaker = 100;
inline constexpr std::uint16_t kSpeakersEnd = kFirstSpeaker + kAudioThreads * kPilotsEach;
inline constexpr std::uint64_t kBlockMs = 20;
inline constexpr std::uint64_t kMostBehindMs = 200;

// Since the last look.
struct AudioFigures {
    BlockTimes blocks;  // whole blocks of 20 ms
    std::uint64_t doneBlocks = 0;
    std::uint64_t dueBlocks = 0;
    std::uint64_t lateBlocks = 0;    // done after the next were due
    std::uint64_t shapedBlocks = 0;  // whole blocks that came back changed

    void add(const AudioFigures& others);
};

class AudioCrew {
  public:
    AudioCrew(const PluginExports& plugin, std::uint64_t schid, std::uint64_t seed);
    ~AudioCrew();  // stops
    AudioCrew(const AudioCrew&) = delete;
    AudioCrew& operator=(const AudioCrew&) = delete;

    AudioFigures take();  // of all threads
    void stop();

  private:
    struct Player;

    std::atomic<bool> isPlaying_{true};  // the owner stores, the threads load
    std::array<std::unique_ptr<Player>, kAudioThreads> players_;
};
