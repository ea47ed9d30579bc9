// voice_blocks.h - what microphones and speakers sound like, as blocks of 16-bit samples: repeatable from a seed.
#pragma once
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

enum class Sound { kSilence, kRoomNoise, kSpeech, kTone, kFullScaleSquare, kImpulses, kFullScaleNoise, kCount };

class VoiceBlocks {
  public:
    explicit VoiceBlocks(std::uint32_t seed) : state_(seed * 2654435761U + 1) {}

    // Below limit, all about equally likely.
    std::uint32_t below(std::uint32_t limit) { return (next() >> 8U) % limit; }
    bool oneIn(std::uint32_t n) { return below(n) == 0; }

    std::vector<short> take(Sound sound, int n) {
        std::vector<short> block(static_cast<std::size_t>(n));
        for (short& x : block) x = sample(sound, at_++);
        return block;
    }
    // Any sound, in a block length that hosts use or an odd one, up to 1920 values.
    std::vector<short> takeAny() {
        constexpr std::array kLengths = {1, 7, 127, 128, 129, 160, 333, 480, 960, 1920};
        const int n = oneIn(4) ? 1 + static_cast<int>(below(1920)) : kLengths[below(kLengths.size())];
        return take(static_cast<Sound>(below(static_cast<std::uint32_t>(Sound::kCount))), n);
    }

  private:
    std::uint32_t next() {
        state_ ^= state_ << 13U;
        state_ ^= state_ >> 17U;
        state_ ^= state_ << 5U;
        return state_;
    }
    short noise(int range) {
        return static_cast<short>(static_cast<int>(below(2U * static_cast<unsigned>(range) + 1)) - range);
    }
    short sample(Sound sound, std::int64_t at) {
        const double seconds = static_cast<double>(at) / 48000.0;
        switch (sound) {
            case Sound::kRoomNoise:
                return noise(200);
            case Sound::kSpeech: {  // 140 Hz with formants, four syllables a second, a little noise
                const double syllable = std::fmax(0.0, std::sin(8.0 * 3.14159265358979 * seconds));
                const double voice = std::sin(879.6 * seconds) + 0.6 * std::sin(4398.2 * seconds + 1.0) +
                                     0.3 * std::sin(14137.1 * seconds + 2.0);
                return static_cast<short>(5000.0 * syllable * voice + noise(40));
            }
            case Sound::kTone:
                return static_cast<short>(20000.0 * std::sin(6283.2 * seconds));
            case Sound::kFullScaleSquare:
                return (at / 50) % 2 == 0 ? short{32767} : short{-32768};
            case Sound::kImpulses:
                return at % 500 == 0 ? short{-32768} : short{0};
            case Sound::kFullScaleNoise:
                return noise(32767);
            default:
                return 0;
        }
    }

    std::uint32_t state_;
    std::int64_t at_ = 0;  // samples so far
};
