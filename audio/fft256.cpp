// fft256.cpp - the schedule. The 256 points are four interleaved transforms of 64, one per lane:
//
//     vector m = x[4m] x[4m+1] x[4m+2] x[4m+3]      lane j: points 4m + j, that is block 0, 2, 1, 3
//
//     quadsOfPoints    lengths   2,   4    lanes apart, vectors taken in bit-reversed order
//     quadsOfLanes     lengths   8,  16    lanes apart
//     quadsOfLanes     lengths  32,  64    lanes apart
//     quadOfBlocks     lengths 128, 256    four vectors transposed: lane j is now point k + j of one block
//
// A quad does two lengths on four points, so that each point is loaded and stored four times instead of eight.
#include "audio/fft256.h"
#include <emmintrin.h>
#include <cstddef>
#include "audio/fft256_tables.h"

namespace {

struct Lanes {
    __m128 re, im;
};

constexpr int kVectors = kFftSize / 4;

// Order of the 16 quads of points: bit-reversed.
constexpr int kReversed16[16] = {0, 8, 4, 12, 2, 10, 6, 14, 1, 9, 5, 13, 3, 11, 7, 15};

// One twiddle in all lanes, or four neighbours.
inline Lanes wideTwiddle(const FftTables& tables, int i) {
    return {_mm_load_ps(tables.wide.re[i]), _mm_load_ps(tables.wide.im[i])};
}
inline Lanes twiddles(const FftTables& tables, int i) {
    return {_mm_load_ps(&tables.twiddles.re[i]), _mm_load_ps(&tables.twiddles.im[i])};
}

inline void butterfly(Lanes& u, Lanes& x, const Lanes& w) {
    const __m128 tr = _mm_sub_ps(_mm_mul_ps(w.re, x.re), _mm_mul_ps(w.im, x.im));
    const __m128 ti = _mm_add_ps(_mm_mul_ps(w.re, x.im), _mm_mul_ps(w.im, x.re));
    x = {_mm_sub_ps(u.re, tr), _mm_sub_ps(u.im, ti)};
    u = {_mm_add_ps(u.re, tr), _mm_add_ps(u.im, ti)};
}

// Two lengths on points that are half the shorter length apart: (a, b) and (c, d) with w, then (a, c) and (b, d).
inline void quad(Lanes& a, Lanes& b, Lanes& c, Lanes& d, const Lanes& w, const Lanes& wac, const Lanes& wbd) {
    butterfly(a, b, w);
    butterfly(c, d, w);
    butterfly(a, c, wac);
    butterfly(b, d, wbd);
}

// Lengths 2 and 4 of a spectrum.
void quadsOfPoints(const float* re, const float* im, Lanes* out) {
    const Lanes one = {_mm_set1_ps(1.0f), _mm_setzero_ps()};
    const Lanes quarter = wideTwiddle(kInverseTables, 3);
    for (int i = 0; i < 16; i++, out += 4) {
        const int m = 4 * kReversed16[i];
        const auto load = [re, im](int n) { return Lanes{_mm_loadu_ps(re + n), _mm_loadu_ps(im + n)}; };
        Lanes a = load(m), b = load(m + 128), c = load(m + 64), d = load(m + 192);
        quad(a, b, c, d, one, one, quarter);
        out[0] = a;
        out[1] = b;
        out[2] = c;
        out[3] = d;
    }
}

// The same for a real signal: what the quad leaves when every imaginary part is +0. The additions of zero stay: they
// decide the sign of a zero.
void quadsOfRealPoints(const float* x, Lanes* out) {
    const __m128 zero = _mm_setzero_ps();
    const __m128 quarterRe = wideTwiddle(kForwardTables, 3).re;  // cos(pi/2) in single precision: not quite zero
    for (int i = 0; i < 16; i++, out += 4) {
        const int m = 4 * kReversed16[i];
        const __m128 a = _mm_loadu_ps(x + m), b = _mm_loadu_ps(x + m + 128);
        const __m128 c = _mm_loadu_ps(x + m + 64), d = _mm_loadu_ps(x + m + 192);
        const __m128 ab = _mm_add_ps(a, b), cd = _mm_add_ps(c, d);
        const __m128 u = _mm_sub_ps(a, b), x3 = _mm_sub_ps(c, d);
        const __m128 tr = _mm_add_ps(_mm_mul_ps(quarterRe, x3), zero);
        const __m128 ti = _mm_sub_ps(zero, x3);
        out[0] = {_mm_add_ps(ab, cd), zero};
        out[1] = {_mm_add_ps(u, tr), ti};
        out[2] = {_mm_sub_ps(ab, cd), zero};
        out[3] = {_mm_sub_ps(u, tr), _mm_sub_ps(zero, ti)};
    }
}

// Lengths 2 x half and 4 x half, on vectors `half` apart.
template <int half>
inline void quadsOfLanes(const FftTables& tables, Lanes* x) {
    constexpr std::ptrdiff_t step = half;
    for (int k = 0; k < half; k++) {
        const Lanes w = wideTwiddle(tables, half + k);
        const Lanes wac = wideTwiddle(tables, 2 * half + k), wbd = wideTwiddle(tables, 3 * half + k);
        for (Lanes* p = x + k; p < x + kVectors; p += 4 * step)
            quad(p[0], p[step], p[2 * step], p[3 * step], w, wac, wbd);
    }
}

// Lengths 128 and 256 for the points k..k+3 of all four blocks; k a multiple of 4 below 64.
struct Blocks {
    Lanes a, b, c, d;  // points k, 64 + k, 128 + k, 192 + k
};
inline Blocks quadOfBlocks(const FftTables& tables, const Lanes* x, int k) {
    Lanes a = x[k], c = x[k + 1], b = x[k + 2], d = x[k + 3];  // lane 1 holds the third block, lane 2 the second
    _MM_TRANSPOSE4_PS(a.re, c.re, b.re, d.re);
    _MM_TRANSPOSE4_PS(a.im, c.im, b.im, d.im);
    quad(a, b, c, d, twiddles(tables, 64 + k), twiddles(tables, 128 + k), twiddles(tables, 192 + k));
    return {a, b, c, d};
}

}  // namespace

void forwardFft256(const float* x, float* re, float* im) {
    Lanes work[kVectors];
    quadsOfRealPoints(x, work);
    quadsOfLanes<4>(kForwardTables, work);
    quadsOfLanes<16>(kForwardTables, work);
    for (int k = 0; k < kVectors; k += 4) {
        const Blocks y = quadOfBlocks(kForwardTables, work, k);
        _mm_storeu_ps(re + k, y.a.re);
        _mm_storeu_ps(im + k, y.a.im);
        _mm_storeu_ps(re + 64 + k, y.b.re);
        _mm_storeu_ps(im + 64 + k, y.b.im);
    }
    const Lanes middle = quadOfBlocks(kForwardTables, work, 0).c;
    _mm_store_ss(re + 128, middle.re);
    _mm_store_ss(im + 128, middle.im);
}

void inverseFft256(const float* re, const float* im, float* x) {
    Lanes work[kVectors];
    quadsOfPoints(re, im, work);
    quadsOfLanes<4>(kInverseTables, work);
    quadsOfLanes<16>(kInverseTables, work);
    for (int k = 0; k < kVectors; k += 4) {
        const Blocks y = quadOfBlocks(kInverseTables, work, k);
        _mm_storeu_ps(x + k, y.a.re);
        _mm_storeu_ps(x + 64 + k, y.b.re);
        _mm_storeu_ps(x + 128 + k, y.c.re);
        _mm_storeu_ps(x + 192 + k, y.d.re);
    }
}
