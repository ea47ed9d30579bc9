// tones.h - the two sounds of the radio, as complete WAV files: the squelch tail after a transmission and the chime of
// a text message. The bytes are the same on every machine.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

inline constexpr const char* kTailFile = "radio_tail.wav";
inline constexpr const char* kAlertFile = "text_alert.wav";
inline constexpr int kToneRateHz = 48000;
inline constexpr int kTailSamples = 14400;   // 0.3 s
inline constexpr int kAlertSamples = 24000;  // 0.5 s

// [host] 115 Hz thump under band-limited hiss of twice its RMS, a click at the start; peak -14 dBFS.
std::vector<std::int16_t> synthesizeTail();

// [host] Two notes, C6 and G6, each with its octave; peak -12 dBFS.
std::vector<std::int16_t> synthesizeAlert();

// A canonical mono 16-bit 48 kHz WAV file: 44 bytes of header and the samples.
std::string wavFileOf(const std::vector<std::int16_t>& samples);
