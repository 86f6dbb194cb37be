// What the slow references of this folder are made with: vectors in double, and dice for what is thrown at them.
#pragma once
#include <cmath>
#include <random>

#include "platform/d3dx/d3dx_math.h"

namespace sparkrig {

struct Vec {
    double x = 0, y = 0, z = 0;
};
inline Vec operator+(const Vec& a, const Vec& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
inline Vec operator*(const Vec& a, const Vec& b) { return {a.x * b.x, a.y * b.y, a.z * b.z}; }
inline Vec operator*(double s, const Vec& v) { return {s * v.x, s * v.y, s * v.z}; }
inline double Dot(const Vec& a, const Vec& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
inline Vec Cross(const Vec& a, const Vec& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline double Length(const Vec& v) { return std::sqrt(Dot(v, v)); }
inline Vec Unit(const Vec& v) { return 1 / Length(v) * v; }
inline Vec ToVec(const D3DXVECTOR3& v) { return {v.x, v.y, v.z}; }

class Dice {
  public:
    explicit Dice(unsigned seed) : generator_(seed) {}
    float Between(float low, float high) { return std::uniform_real_distribution<float>(low, high)(generator_); }
    int Below(int end) { return static_cast<int>(generator_() % static_cast<unsigned>(end)); }
    bool OneIn(int sides) { return Below(sides) == 0; }
    std::uint32_t Word() { return static_cast<std::uint32_t>(generator_()); }
    D3DXVECTOR3 Vector(float most) {
        const float x = Between(-most, most), y = Between(-most, most);
        return {x, y, Between(-most, most)};
    }

  private:
    std::mt19937 generator_;
};

}   // namespace sparkrig
