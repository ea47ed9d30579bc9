// exact_math.h - sine and exponential from additions and multiplications alone: the same bits with every C library,
// so that the sound files we write are the same on every machine. Error below 2e-16 of full scale.
// [any] Pure functions.
#pragma once
#include <cstdint>

// sin(2 pi f n / 48000) with f in hundredths of a hertz. n >= 0; the phase is a whole number and does not drift.
double exactSine(std::int64_t hundredthsHz, std::int64_t n);

// e^x for x <= 0; 0 below the smallest double.
double exactDecay(double x);
