// The fixed vertex pipeline on the processor, in double: slow, obvious, and what OpenGL's results are compared with.
#pragma once
#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "platform/d3d9/d3d9_types.h"

namespace sparkrig::reference {

struct Vec {
    double x = 0, y = 0, z = 0;
    Vec operator+(const Vec& o) const { return {x + o.x, y + o.y, z + o.z}; }
    Vec operator-(const Vec& o) const { return {x - o.x, y - o.y, z - o.z}; }
    Vec operator*(double s) const { return {x * s, y * s, z * s}; }
};
inline Vec From(const D3DVECTOR& v) { return {v.x, v.y, v.z}; }
inline double Dot(const Vec& a, const Vec& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
inline double Length(const Vec& v) { return std::sqrt(Dot(v, v)); }
inline Vec Normalize(const Vec& v) { return v * (1 / Length(v)); }

/// (x, y, z, w) times the matrix, without the fourth component of the result.
inline Vec Times(const Vec& v, double w, const D3DMATRIX& m) {
    const auto column = [&](int i) { return v.x * m.m[0][i] + v.y * m.m[1][i] + v.z * m.m[2][i] + w * m.m[3][i]; };
    return {column(0), column(1), column(2)};
}

/// A normal by the transposed inverse of the upper three by three: solves n' such that n' M^T = n.
inline Vec TurnNormal(const Vec& n, const D3DMATRIX& m) {
    const auto cofactor = [&](int r, int c) {
        const int r1 = (r + 1) % 3, r2 = (r + 2) % 3, c1 = (c + 1) % 3, c2 = (c + 2) % 3;
        return double{m.m[r1][c1]} * m.m[r2][c2] - double{m.m[r1][c2]} * m.m[r2][c1];
    };
    double determinant = 0;
    for (int i = 0; i < 3; ++i) determinant += m.m[0][i] * cofactor(0, i);
    const double in[] = {n.x, n.y, n.z};
    double out[3] = {};
    for (int c = 0; c < 3; ++c) {
        for (int r = 0; r < 3; ++r) out[c] += in[r] * cofactor(r, c) / determinant;
    }
    return {out[0], out[1], out[2]};
}

struct Lighting {
    D3DMATERIAL9 material = {};
    D3DCOLORVALUE ambient = {};
    std::vector<D3DLIGHT9> lights;
    D3DMATRIX view = {};
    bool specular = false, local_viewer = true;
};

struct LitColours {
    std::array<double, 3> diffuse = {}, specular = {};
};

/// Where a light is seen from V: the direction to it, and how much of it arrives. Nothing arrives from out of range.
inline double Arrival(const D3DLIGHT9& light, const D3DMATRIX& view, const Vec& v, Vec& to_light) {
    const Vec axis = Normalize(Times(From(light.Direction), 0, view));
    if (light.Type == D3DLIGHT_DIRECTIONAL) {
        to_light = axis * -1;
        return 1;
    }
    const Vec way = Times(From(light.Position), 1, view) - v;
    const double d = Length(way);
    to_light = way * (1 / d);
    if (d > light.Range) return 0;
    const double divisor = light.Attenuation0 + light.Attenuation1 * d + light.Attenuation2 * d * d;
    const double attenuation = divisor > 0 ? 1 / divisor : 1;
    if (light.Type == D3DLIGHT_POINT) return attenuation;
    const double rho = Dot(axis * -1, to_light), inner = std::cos(light.Theta / 2), outer = std::cos(light.Phi / 2);
    if (rho > inner) return attenuation;
    if (rho <= outer) return 0;
    return attenuation * std::pow((rho - outer) / (inner - outer), light.Falloff);
}

/// The lit colours of a vertex at V with normal n, both in camera space.
inline LitColours Light(const Lighting& lighting, const Vec& v, const Vec& n) {
    const auto channel = [](const D3DCOLORVALUE& colour, int i) { return double{(&colour.r)[i]}; };
    const D3DMATERIAL9& material = lighting.material;
    LitColours lit;
    for (int i = 0; i < 3; ++i) {
        double ambient = channel(lighting.ambient, i), diffuse = 0, specular = 0;
        for (const D3DLIGHT9& light : lighting.lights) {
            Vec to_light;
            const double arrival = Arrival(light, lighting.view, v, to_light);
            ambient += arrival * channel(light.Ambient, i);
            const double facing = Dot(n, to_light);
            if (facing <= 0) continue;
            diffuse += channel(material.Diffuse, i) * channel(light.Diffuse, i) * facing * arrival;
            const Vec to_viewer = lighting.local_viewer ? Normalize(v * -1) : Vec{0, 0, -1};
            const double shine = std::max(0.0, Dot(n, Normalize(to_viewer + to_light)));
            if (shine > 0 && lighting.specular) {
                specular += channel(material.Specular, i) * channel(light.Specular, i) *
                            std::pow(shine, material.Power) * arrival;
            }
        }
        const auto k = static_cast<std::size_t>(i);
        const double sum = channel(material.Emissive, i) + channel(material.Ambient, i) * ambient + diffuse;
        lit.diffuse[k] = std::clamp(sum, 0.0, 1.0);
        lit.specular[k] = std::clamp(specular, 0.0, 1.0);
    }
    return lit;
}

}   // namespace sparkrig::reference
