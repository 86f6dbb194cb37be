// Rounding, wrapping and division of numbers from outside: every result is defined.
#pragma once

namespace sparkrig {

// Conversions to integers never overflow: out of range gives the nearest int, not a number gives 0.

int TruncateToInt(double x);
/// Halves away from zero.
int RoundToInt(double x);

/// To the nearest integer, halves away from zero. Out of range: the nearest int; not a number: 0.
int Round(float x);
/// a moved into the period m; a negative multiple of m gives m, not 0. A period of 0 gives 0.
double WrapFloat(double a, double m);
float WrapFloat(float a, float m);
/// a / m rounded down.
int FloorDiv(float a, float m);
/// Remainder in 0 .. m - 1 for positive m; 0 for m = 0.
int PositiveMod(int a, int m);

}   // namespace sparkrig
