// argb_image.h - pictures in memory: 32-bit premultiplied ARGB, the first row on top, as layered windows take them.
// Values and views; a view does not own its pixels. Every operation is clipped to both pictures: nothing outside is
// touched.
#pragma once
#include <emmintrin.h>
#include <cstddef>
#include <cstdint>
#include <vector>
#include "ui/geometry.h"

struct ArgbImage {
    ArgbImage() = default;
    // Fully transparent. A size below 1 makes an empty picture.
    ArgbImage(std::int32_t imageWidth, std::int32_t imageHeight);

    std::int32_t width = 0;
    std::int32_t height = 0;
    std::vector<std::uint32_t> pixels;  // width x height

    bool isEmpty() const { return pixels.empty(); }
    PixelRect bounds() const { return {0, 0, width, height}; }
    std::uint32_t* row(std::int32_t y) { return pixels.data() + static_cast<std::ptrdiff_t>(y) * width; }
    const std::uint32_t* row(std::int32_t y) const { return pixels.data() + static_cast<std::ptrdiff_t>(y) * width; }
};

// Pixels somewhere else, such as a DIB section; rows follow each other without a gap.
struct ArgbView {
    std::uint32_t* pixels = nullptr;
    std::int32_t width = 0;
    std::int32_t height = 0;

    PixelRect bounds() const { return {0, 0, width, height}; }
    std::uint32_t* row(std::int32_t y) const { return pixels + static_cast<std::ptrdiff_t>(y) * width; }
};
ArgbView viewOf(ArgbImage& image);

// The nearest whole number, for values that are not negative.
inline std::uint32_t nearestWhole(float value) {
    return static_cast<std::uint32_t>(value + 0.5f);  // NOLINT(bugprone-incorrect-roundings): wrong below 0 only
}

// An ARGB colour at an opacity of 0..1, premultiplied.
std::uint32_t premultiplied(std::uint32_t argb, float opacity);

// source + target x (1 - source's alpha), each channel up to 255: light (colour without alpha) adds up.
inline std::uint32_t blendOver(std::uint32_t target, std::uint32_t source) {
    const __m128i zero = _mm_setzero_si128();
    const __m128i channels = _mm_unpacklo_epi8(_mm_cvtsi32_si128(static_cast<int>(target)), zero);
    const __m128i keep = _mm_set1_epi16(static_cast<short>(255 - (source >> 24U)));
    // x / 255 rounded, exact for products of two bytes.
    const __m128i product = _mm_add_epi16(_mm_mullo_epi16(channels, keep), _mm_set1_epi16(128));
    const __m128i kept = _mm_srli_epi16(_mm_add_epi16(product, _mm_srli_epi16(product, 8)), 8);
    const __m128i sum = _mm_adds_epu8(_mm_packus_epi16(kept, kept), _mm_cvtsi32_si128(static_cast<int>(source)));
    return static_cast<std::uint32_t>(_mm_cvtsi128_si32(sum));
}

// Copies the rectangle from the same place in source.
void copyPixels(const ArgbView& target, const ArgbImage& source, const PixelRect& rect);

// Lays source over the target with its corner at (x, y), inside clip.
void stampImage(const ArgbView& target, const ArgbImage& source, std::int32_t x, std::int32_t y, const PixelRect& clip);

// The rectangle of source as a picture of its own; transparent where it reaches beyond.
ArgbImage cropImage(const ArgbImage& source, const PixelRect& rect);
