// The program's one random generator: MT19937 with the seeding of 1998.
#pragma once
#include <cstdint>

namespace sparkrig {

void SeedRandom(std::uint32_t seed);
std::uint32_t RandomUInt32();
/// In [0, 1], both ends included.
double Random01();
/// a + (b - a) * Random01().
double RandomRange(double a, double b);

}   // namespace sparkrig
