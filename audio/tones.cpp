#include "audio/tones.h"
#include <algorithm>
#include <cmath>
#include "audio/exact_math.h"

namespace {

using Buffer = std::vector<float>;

constexpr double kTailPeak = 6537.876;   // -14 dBFS, full scale 32767
constexpr double kAlertPeak = 8230.698;  // -12 dBFS, full scale 32767

double secondsAt(int n) {
    return static_cast<double>(n) / kToneRateHz;
}

// A linear attack times an exponential decay: the shape of every sound here.
double envelope(double t, double attackSeconds, double decaySeconds) {
    return exactDecay(-t / decaySeconds) * std::min(t / attackSeconds, 1.0);
}

Buffer makeThump() {
    Buffer thump(kTailSamples);
    for (int n = 0; n < kTailSamples; n++)
        thump[static_cast<std::size_t>(n)] =
            static_cast<float>(exactSine(11500, n) * envelope(secondsAt(n), 0.003, 0.12));
    return thump;
}

// White noise in -1..1 from a 32-bit xorshift generator with a fixed seed.
struct NoiseSource {
    std::uint32_t state = 0x9E3779B9;
    double next() {
        state ^= state << 13U;
        state ^= state >> 17U;
        state ^= state << 5U;
        return static_cast<double>(state & 0xFFFFU) / 32768.0 - 1.0;
    }
};

// Three cascaded one-pole low-passes and a DC-blocking high-pass: the band of a receiver's squelch noise.
struct NoiseBand {
    double a = 0.0, b = 0.0, c = 0.0, h = 0.0;
    double run(double u) {
        a = a + (u - a) * 0.3247;
        b = b + (a - b) * 0.3071;
        const double before = c;
        c = c + (b - c) * 0.3071;
        h = (h + c - before) * 0.9615;
        return h;
    }
};

Buffer makeHiss() {
    constexpr int kClickSamples = 77;
    Buffer hiss(kTailSamples);
    NoiseSource noise;
    NoiseBand band;
    for (int n = 0; n < kTailSamples; n++) {
        const double u = noise.next();
        const double h = band.run(u);
        float& sample = hiss[static_cast<std::size_t>(n)];
        sample = static_cast<float>(envelope(secondsAt(n), 0.002, 0.22) * h);
        if (n < kClickSamples)
            sample = static_cast<float>(static_cast<double>(sample) +
                                        (1.0 - static_cast<double>(n) / kClickSamples) * u * 0.55);
    }
    return hiss;
}

double rmsOf(const Buffer& buffer) {
    double sum = 0.0;
    for (const float value : buffer) sum += static_cast<double>(value) * static_cast<double>(value);
    return std::sqrt(sum / static_cast<double>(buffer.size()));
}

Buffer mixTail(const Buffer& thump, const Buffer& hiss) {
    const double hissRms = rmsOf(hiss);
    const double k = hissRms > 1e-9 ? 2.0 * rmsOf(thump) / hissRms : 0.0;
    Buffer mix(thump.size());
    for (std::size_t n = 0; n < mix.size(); n++)
        mix[n] = static_cast<float>(static_cast<double>(thump[n]) + k * static_cast<double>(hiss[n]));
    return mix;
}

// Scales to the peak and rounds half away from zero.
std::vector<std::int16_t> toSamples(const Buffer& buffer, double peak) {
    double loudest = 0.0;
    for (const float value : buffer) loudest = std::max(loudest, std::fabs(static_cast<double>(value)));
    const double factor = loudest > 0.0 ? peak / loudest : 0.0;
    std::vector<std::int16_t> samples;
    samples.reserve(buffer.size());
    for (const float value : buffer) {
        const double scaled = std::clamp(static_cast<double>(value) * factor, -32767.0, 32767.0);
        samples.push_back(static_cast<std::int16_t>(std::round(scaled)));
    }
    return samples;
}

// One note of the chime with its octave; times in samples from the chime's start.
struct Note {
    std::int64_t hundredthsHz;
    std::int64_t overtoneHundredthsHz;
    double decaySeconds;
    int firstSample;
    int lastSample;  // inclusive
};

constexpr Note kNotes[] = {
    {104650, 209300, 0.075, 0, 7200},     // 1046.5 Hz, 0 to 0.15 s
    {156798, 313596, 0.14, 6720, 22080},  // 1567.98 Hz, 0.14 s to 0.46 s
};

double noteAt(const Note& note, int n) {
    if (n < note.firstSample || n > note.lastSample) return 0.0;
    const int since = n - note.firstSample;
    const double wave = 0.35 * exactSine(note.overtoneHundredthsHz, since) + exactSine(note.hundredthsHz, since);
    return wave * envelope(secondsAt(since), 0.006, note.decaySeconds);
}

void appendLittleEndian(std::string& bytes, std::uint32_t value, int count) {
    for (int i = 0; i < count; i++) bytes += static_cast<char>((value >> (8U * static_cast<unsigned>(i))) & 0xFFU);
}

}  // namespace

std::vector<std::int16_t> synthesizeTail() {
    return toSamples(mixTail(makeThump(), makeHiss()), kTailPeak);
}

std::vector<std::int16_t> synthesizeAlert() {
    Buffer chime(kAlertSamples);
    for (int n = 0; n < kAlertSamples; n++) {
        double sum = 0.0;
        for (const Note& note : kNotes) sum += noteAt(note, n);
        chime[static_cast<std::size_t>(n)] = static_cast<float>(sum);
    }
    return toSamples(chime, kAlertPeak);
}

std::string wavFileOf(const std::vector<std::int16_t>& samples) {
    const auto dataBytes = static_cast<std::uint32_t>(samples.size() * sizeof(std::int16_t));
    std::string file = "RIFF";
    appendLittleEndian(file, 36 + dataBytes, 4);
    file += "WAVEfmt ";
    appendLittleEndian(file, 16, 4);  // size of the format chunk
    appendLittleEndian(file, 1, 2);   // PCM
    appendLittleEndian(file, 1, 2);   // mono
    appendLittleEndian(file, kToneRateHz, 4);
    appendLittleEndian(file, kToneRateHz * 2, 4);  // bytes per second
    appendLittleEndian(file, 2, 2);                // bytes per sample
    appendLittleEndian(file, 16, 2);               // bits per sample
    file += "data";
    appendLittleEndian(file, dataBytes, 4);
    for (const std::int16_t sample : samples) appendLittleEndian(file, static_cast<std::uint16_t>(sample), 2);
    return file;
}
