#include "ui/image_scale.h"
#include <emmintrin.h>
#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

float catmullRom(float x) {
    x = std::fabs(x);
    if (x < 1.0f) return (1.5f * x - 2.5f) * x * x + 1.0f;
    if (x < 2.0f) return ((-0.5f * x + 2.5f) * x - 4.0f) * x + 2.0f;
    return 0.0f;
}

// The source pixels that make one target pixel along one axis, and how much each counts.
struct Taps {
    std::int32_t first = 0;
    std::vector<float> weights;  // sum 1 before those outside the source are cut off
};

Taps tapsFor(std::int32_t target, float origin, float scale, std::int32_t sourceSize) {
    const float widening = std::max(1.0f, 1.0f / scale);
    const float centre = origin + (static_cast<float>(target) + 0.5f) / scale - 0.5f;
    const auto from = static_cast<std::int32_t>(std::ceil(centre - 2.0f * widening));
    const auto to = static_cast<std::int32_t>(std::floor(centre + 2.0f * widening));
    float sum = 0.0f;
    for (std::int32_t i = from; i <= to; i++) sum += catmullRom((static_cast<float>(i) - centre) / widening);
    Taps taps;
    taps.first = std::clamp(from, 0, sourceSize);
    for (std::int32_t i = taps.first; i <= std::min(to, sourceSize - 1); i++)
        taps.weights.push_back(catmullRom((static_cast<float>(i) - centre) / widening) / sum);
    return taps;
}

__m128 unpack(std::uint32_t pixel) {
    const __m128i zero = _mm_setzero_si128();
    const __m128i bytes = _mm_cvtsi32_si128(static_cast<int>(pixel));
    return _mm_cvtepi32_ps(_mm_unpacklo_epi16(_mm_unpacklo_epi8(bytes, zero), zero));
}

// The filter overshoots at edges: channels are kept within 0..alpha, so the pixel stays premultiplied.
std::uint32_t pack(__m128 channels) {
    const __m128 within = _mm_max_ps(_mm_min_ps(channels, _mm_set1_ps(255.0f)), _mm_setzero_ps());
    const __m128 alpha = _mm_shuffle_ps(within, within, _MM_SHUFFLE(3, 3, 3, 3));
    const __m128i words = _mm_cvtps_epi32(_mm_min_ps(within, alpha));
    const __m128i shorts = _mm_packs_epi32(words, words);
    return static_cast<std::uint32_t>(_mm_cvtsi128_si32(_mm_packus_epi16(shorts, shorts)));
}

// The source rows that make one target row, summed up: four floats per source column.
void sumRows(const ArgbImage& source, const Taps& taps, std::vector<float>& sums) {
    std::fill(sums.begin(), sums.end(), 0.0f);
    for (std::size_t tap = 0; tap < taps.weights.size(); tap++) {
        const std::uint32_t* row = source.row(taps.first + static_cast<std::int32_t>(tap));
        const __m128 weight = _mm_set1_ps(taps.weights[tap]);
        float* sum = sums.data();
        for (std::int32_t x = 0; x < source.width; x++, sum += 4)
            _mm_storeu_ps(sum, _mm_add_ps(_mm_loadu_ps(sum), _mm_mul_ps(weight, unpack(row[x]))));
    }
}

std::uint32_t sumColumns(const std::vector<float>& sums, const Taps& taps) {
    __m128 channels = _mm_setzero_ps();
    const float* sum = sums.data() + static_cast<std::ptrdiff_t>(taps.first) * 4;
    for (const float weight : taps.weights) {
        channels = _mm_add_ps(channels, _mm_mul_ps(_mm_set1_ps(weight), _mm_loadu_ps(sum)));
        sum += 4;
    }
    return pack(channels);
}

// The weights of four neighbouring pixels for a sample between them, in 1/16384: at a pixel's centre it alone counts.
struct Weights {
    alignas(16) short q[4] = {};

    explicit Weights(float t) {
        const float t2 = t * t;
        const float t3 = t2 * t;
        const __m128 bend = _mm_set_ps(0.5f * (t3 - t2), 0.5f * (t + 4.0f * t2 - 3.0f * t3),
                                       0.5f * (2.0f - 5.0f * t2 + 3.0f * t3), 0.5f * (2.0f * t2 - t - t3));
        const __m128i words = _mm_cvtps_epi32(_mm_mul_ps(bend, _mm_set1_ps(16384.0f)));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(q), _mm_packs_epi32(words, words));
        // Rounded one by one, they might not sum to 16384, and a uniform picture would lose a shade.
        q[1] = static_cast<short>(16384 - q[0] - q[2] - q[3]);
    }
    // Two neighbouring weights in every 32-bit lane.
    __m128i pair(int first) const {
        return _mm_set1_epi32(static_cast<std::uint16_t>(q[first]) | static_cast<int>(q[first + 1]) * 65536);
    }
};

// Four pixels in a row, weighted: four channels times 16384.
__m128i sumOfFour(const std::uint32_t* pixels, __m128i firstPair, __m128i secondPair) {
    const __m128i zero = _mm_setzero_si128();
    const __m128i row = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels));
    const __m128i first = _mm_unpacklo_epi8(row, _mm_srli_si128(row, 4));  // channels of pixels 0 and 1 in turn
    const __m128i second = _mm_unpacklo_epi8(_mm_srli_si128(row, 8), _mm_srli_si128(row, 12));
    return _mm_add_epi32(_mm_madd_epi16(_mm_unpacklo_epi8(first, zero), firstPair),
                         _mm_madd_epi16(_mm_unpacklo_epi8(second, zero), secondPair));
}

// The sprite's colour at a point, pixel centres at whole numbers; transparent where the filter reaches beyond the
// sprite, which has kSpriteMargin pixels to spare on every side.
__m128 sample(const ArgbImage& sprite, float x, float y) {
    const std::int32_t left = static_cast<std::int32_t>(x + 8.0f) - 9;  // rounded down, in the range that matters
    const std::int32_t top = static_cast<std::int32_t>(y + 8.0f) - 9;
    if (left < 0 || top < 0 || left + 4 > sprite.width || top + 4 > sprite.height) return _mm_setzero_ps();
    const Weights across(x - static_cast<float>(left + 1));
    const Weights down(y - static_cast<float>(top + 1));
    const __m128i firstPair = across.pair(0);
    const __m128i secondPair = across.pair(2);
    __m128 sum = _mm_setzero_ps();
    for (int j = 0; j < 4; j++) {
        const __m128i line = sumOfFour(sprite.row(top + j) + left, firstPair, secondPair);
        sum = _mm_add_ps(sum, _mm_mul_ps(_mm_cvtepi32_ps(line), _mm_set1_ps(static_cast<float>(down.q[j]))));
    }
    return _mm_mul_ps(sum, _mm_set1_ps(1.0f / (16384.0f * 16384.0f)));
}

// From a target pixel to the sprite: linear, for one pose.
struct InverseMap {
    float xx, xy, yx, yy;

    InverseMap(UnitPoint radii, const SpritePose& pose) {
        const float turn = pose.turnDegrees * std::numbers::pi_v<float> / 180.0f;
        const float oval = radii.y > 0.0f ? radii.x / radii.y : 1.0f;
        xx = yy = std::cos(turn) / pose.sizeShare;
        xy = std::sin(turn) / pose.sizeShare * oval;
        yx = -std::sin(turn) / pose.sizeShare / oval;
    }
};

// The columns of one target row that an oval can reach; all of them for a rectangle.
PixelRect rowReach(const PixelRect& area, UnitPoint radii, const SpritePose& pose, float dy) {
    if (!(radii.y > 0.0f)) return area;
    const float share = std::max(0.0f, std::fabs(dy) / pose.sizeShare - 1.0f) / radii.y;
    const float half = share < 1.0f ? radii.x * std::sqrt(1.0f - share * share) * pose.sizeShare + 1.0f : 0.0f;
    return intersectRects(area, {static_cast<std::int32_t>(std::floor(pose.at.x - half)), area.top,
                                 static_cast<std::int32_t>(std::ceil(pose.at.x + half)), area.bottom});
}

PixelRect reachOf(const Sprite& sprite, const SpritePose& pose) {
    const float left = pose.at.x - sprite.pivot.x * pose.sizeShare;
    const float top = pose.at.y - sprite.pivot.y * pose.sizeShare;
    const float right = left + static_cast<float>(sprite.image.width) * pose.sizeShare;
    const float bottom = top + static_cast<float>(sprite.image.height) * pose.sizeShare;
    return {static_cast<std::int32_t>(std::floor(left)), static_cast<std::int32_t>(std::floor(top)),
            static_cast<std::int32_t>(std::ceil(right)), static_cast<std::int32_t>(std::ceil(bottom))};
}

}  // namespace

ArgbImage scaleImage(const ArgbImage& source, UnitPoint origin, float scale, std::int32_t width, std::int32_t height) {
    if (!(scale > 0.0f)) return {};
    ArgbImage target(width, height);
    if (target.isEmpty() || source.isEmpty()) return target;
    std::vector<Taps> columns;
    columns.reserve(static_cast<std::size_t>(width));
    for (std::int32_t x = 0; x < width; x++) columns.push_back(tapsFor(x, origin.x, scale, source.width));
    std::vector<float> sums(static_cast<std::size_t>(source.width) * 4);
    for (std::int32_t y = 0; y < height; y++) {
        sumRows(source, tapsFor(y, origin.y, scale, source.height), sums);
        std::uint32_t* row = target.row(y);
        for (std::int32_t x = 0; x < width; x++) row[x] = sumColumns(sums, columns[static_cast<std::size_t>(x)]);
    }
    return target;
}

void stampSprite(const ArgbView& target, const Sprite& sprite, const SpritePose& pose, const PixelRect& clip) {
    if (sprite.image.isEmpty() || !(pose.sizeShare > 0.0f)) return;
    const PixelRect area = intersectRects(intersectRects(clip, target.bounds()), reachOf(sprite, pose));
    const InverseMap map(sprite.radii, pose);
    const float dim = pose.brightness;
    const __m128 brightness = _mm_set_ps(1.0f, dim, dim, dim);
    for (std::int32_t y = area.top; y < area.bottom; y++) {
        std::uint32_t* row = target.row(y);
        const float dy = static_cast<float>(y) + 0.5f - pose.at.y;
        const PixelRect reach = rowReach(area, sprite.radii, pose, dy);
        for (std::int32_t x = reach.left; x < reach.right; x++) {
            const float dx = static_cast<float>(x) + 0.5f - pose.at.x;
            const float fromX = sprite.pivot.x - 0.5f + map.xx * dx + map.xy * dy;
            const float fromY = sprite.pivot.y - 0.5f + map.yx * dx + map.yy * dy;
            const std::uint32_t pixel = pack(_mm_mul_ps(sample(sprite.image, fromX, fromY), brightness));
            if (pixel != 0) row[x] = blendOver(row[x], pixel);
        }
    }
}
