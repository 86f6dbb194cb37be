// The fixed function on the processor, in double, for one vertex that is drawn as a point: slow,
// obvious, written from the rules of the interface, and what OpenGL's pixels are compared with.
#pragma once
#include <algorithm>
#include <array>
#include <cmath>
#include <glm/glm.hpp>
#include <glm/gtc/matrix_inverse.hpp>
#include <glm/gtc/type_ptr.hpp>
#include <optional>
#include <utility>
#include <vector>

#include "platform/d3d9/device_state.h"

namespace sparkrig::fixed {

using Colour = glm::dvec4;   // r, g, b, a in 0..1
using Vec = glm::dvec4;
inline Colour From(D3DCOLOR argb) {
    return {(argb >> 16 & 255) / 255.0, (argb >> 8 & 255) / 255.0, (argb & 255) / 255.0, (argb >> 24) / 255.0};
}

/// What the vertex format names is there, and in its order.
struct Vertex {
    bool final_position = false;
    std::array<float, 4> position = {};   // w: rhw of a final one
    std::vector<float> weights;
    std::optional<std::array<BYTE, 4>> indices;
    std::optional<std::array<float, 3>> normal;
    std::optional<float> size;
    std::optional<D3DCOLOR> diffuse, specular;
    std::vector<std::vector<float>> sets;

    DWORD Fvf() const {
        constexpr DWORD kSizeBits[] = {0, 3, 0, 1, 2};
        const DWORD betas = static_cast<DWORD>(weights.size()) + indices.has_value();
        DWORD fvf = final_position ? D3DFVF_XYZRHW : betas == 0 ? D3DFVF_XYZ : D3DFVF_XYZB1 + 2 * (betas - 1);
        if (indices) fvf |= D3DFVF_LASTBETA_UBYTE4;
        if (normal) fvf |= D3DFVF_NORMAL;
        if (size) fvf |= D3DFVF_PSIZE;
        if (diffuse) fvf |= D3DFVF_DIFFUSE;
        if (specular) fvf |= D3DFVF_SPECULAR;
        for (std::size_t i = 0; i < sets.size(); ++i) fvf |= kSizeBits[sets[i].size()] << (16 + 2 * i);
        return fvf | static_cast<DWORD>(sets.size()) << D3DFVF_TEXCOUNT_SHIFT;
    }
    std::vector<BYTE> Bytes() const {
        std::vector<BYTE> bytes;
        const auto add = [&](const void* data, std::size_t count) {
            const auto* first = static_cast<const BYTE*>(data);
            bytes.insert(bytes.end(), first, first + count);
        };
        add(position.data(), final_position ? 16 : 12);
        add(weights.data(), weights.size() * sizeof(float));
        if (indices) add(&*indices, 4);
        if (normal) add(normal->data(), 12);
        if (size) add(&*size, 4);
        if (diffuse) add(&*diffuse, 4);
        if (specular) add(&*specular, 4);
        for (const auto& set : sets) add(set.data(), set.size() * sizeof(float));
        return bytes;
    }
};

/// Sampled at the nearest texel.
struct Texture {
    static constexpr UINT kSize = 4;
    std::array<D3DCOLOR, kSize * kSize> texels;
    bool is_signed = false;   // du and dv in the two low bytes

    /// As they lie in memory.
    std::vector<BYTE> Rows() const {
        std::vector<BYTE> bytes;
        for (const D3DCOLOR texel : texels)
            for (int byte = 0; byte < (is_signed ? 2 : 4); ++byte)
                bytes.push_back(static_cast<BYTE>(texel >> 8 * byte));
        return bytes;
    }
};

struct Scene {
    DeviceState state{false};
    std::array<const Texture*, kTextureStages> textures = {};
    Vertex vertex;
    D3DCOLOR back = 0;
    bool alpha_in_target = false;   // else it reads as 1
};

/// A square of one colour.
struct Seen {
    Colour colour;
    double x, y, size;   // its middle and its edge in pixels, whose centres are whole numbers
    bool sure = true;    // not within rounding of a step: a texel's edge, a cone, a limit, a pixel's centre
};
// ---- The pipeline

using glm::dvec3;

constexpr double kClose = 2e-3;

inline dvec3 From(const D3DVECTOR& v) { return {v.x, v.y, v.z}; }
inline Colour From(const D3DCOLORVALUE& v) { return {v.r, v.g, v.b, v.a}; }
template <class Value>
Value Clamped(const Value& value) {
    return glm::clamp(value, Value(0.0), Value(1.0));
}
inline dvec3 Unit(const dvec3& v) { return v == dvec3(0.0) ? v : glm::normalize(v); }
/// A row of the interface is a column here: vectors stand on the right.
inline glm::dmat4 From(const D3DMATRIX& m) { return glm::make_mat4(&m.m[0][0]); }

/// A function's number less one has a bit each for less, equal and greater.
inline bool Passes(DWORD function, long value, long reference) {
    const DWORD found = value < reference ? 1 : value == reference ? 2 : 4;
    return ((function - D3DCMP_NEVER) & found) != 0;
}

inline Colour BlendFactor(DWORD factor, const Colour& s, const Colour& d, const Colour& constant) {
    const Colour one(1.0);
    switch (factor) {
        case D3DBLEND_ZERO: return one - one;
        case D3DBLEND_ONE: return one;
        case D3DBLEND_SRCCOLOR: return s;
        case D3DBLEND_INVSRCCOLOR: return one - s;
        case D3DBLEND_SRCALPHA: return one * s.a;
        case D3DBLEND_INVSRCALPHA: return one - s.a;
        case D3DBLEND_DESTALPHA: return one * d.a;
        case D3DBLEND_INVDESTALPHA: return one - d.a;
        case D3DBLEND_DESTCOLOR: return d;
        case D3DBLEND_INVDESTCOLOR: return one - d;
        case D3DBLEND_SRCALPHASAT: return Colour(dvec3(std::min(s.a, 1 - d.a)), 1);
        case D3DBLEND_BLENDFACTOR: return constant;
        default: return one - constant;
    }
}

class Pipeline {
  public:
    explicit Pipeline(const Scene& scene) : scene_(scene), s_(scene.state), v_(scene.vertex) {}

    Seen Run() {
        back_ = fixed::From(scene_.alpha_in_target ? scene_.back : scene_.back | 0xFF000000);
        Transform();
        diffuse_ = v_.diffuse ? fixed::From(*v_.diffuse) : Colour(1.0);
        specular_ = v_.specular ? fixed::From(*v_.specular) : Colour(0.0);
        if (!v_.final_position && s_.On(D3DRS_LIGHTING)) Light();
        const Colour colour = Output(Cascade());
        const double size = Size();
        for (const double edge : {x_ - size / 2, x_ + size / 2, y_ - size / 2, y_ + size / 2})
            if (std::abs(edge - std::round(edge)) < 0.02) sure_ = false;
        return {colour, x_, y_, size, sure_};
    }

  private:
    /// Whether a lies below b; too close to call is noted.
    bool Below(double a, double b) {
        if (std::abs(a - b) < kClose) sure_ = false;
        return a < b;
    }

    // ---- Vertex

    void Transform() {
        if (v_.final_position) {
            w_ = 1 / v_.position[3];
            depth_ = v_.position[2];
            x_ = v_.position[0];
            y_ = v_.position[1];
            return;
        }
        const DWORD blend = s_.render[D3DRS_VERTEXBLEND];
        const std::size_t matrices = blend == D3DVBF_DISABLE ? 0 : blend % 256 + 1;
        const bool indexed = matrices > 0 && s_.On(D3DRS_INDEXEDVERTEXBLENDENABLE);
        double left = 1;
        for (std::size_t i = 0; i < std::max<std::size_t>(matrices, 1); ++i) {
            const double weight = i + 1 < matrices ? double{v_.weights[i]} : left;
            left -= weight;
            const glm::dmat4 world_view = From(s_.view) * From(s_.world[indexed ? (*v_.indices)[i] : i]);
            eye_ += weight * dvec3(world_view * Vec(glm::make_vec3(v_.position.data()), 1));
            if (v_.normal)
                n_ +=
                    weight * (glm::inverseTranspose(glm::dmat3(world_view)) * dvec3(glm::make_vec3(v_.normal->data())));
        }
        if (s_.On(D3DRS_NORMALIZENORMALS)) n_ = Unit(n_);
        const Vec clip = From(s_.projection) * Vec(eye_, 1);
        w_ = clip.w;
        depth_ = clip.z / clip.w;
        x_ = (1 + clip.x / clip.w) * s_.viewport.Width / 2;
        y_ = (1 - clip.y / clip.w) * s_.viewport.Height / 2;
    }

    double Size() const {
        double size = v_.size.value_or(s_.Float(D3DRS_POINTSIZE));
        if (s_.On(D3DRS_POINTSCALEENABLE) && !v_.final_position) {
            const double d = glm::length(eye_);
            const double a = s_.Float(D3DRS_POINTSCALE_A), b = s_.Float(D3DRS_POINTSCALE_B),
                         c = s_.Float(D3DRS_POINTSCALE_C);
            size *= s_.viewport.Height * std::sqrt(1 / (a + b * d + c * d * d));
        }
        constexpr double kDeviceLimit = 256;
        size = std::min({size, double{s_.Float(D3DRS_POINTSIZE_MAX)}, kDeviceLimit});
        return std::max(size, double{s_.Float(D3DRS_POINTSIZE_MIN)});
    }

    Colour MaterialColour(D3DRENDERSTATETYPE source, const D3DCOLORVALUE& material) const {
        const auto& from = s_.render[source] == D3DMCS_COLOR1 ? v_.diffuse : v_.specular;
        const bool taken = s_.On(D3DRS_COLORVERTEX) && s_.render[source] != D3DMCS_MATERIAL && from;
        return taken ? fixed::From(*from) : From(material);
    }

    /// How much of a light arrives, and from where.
    double Arrival(const D3DLIGHT9& light, dvec3& to_light) {
        const glm::dmat4 view = From(s_.view);
        const dvec3 axis = Unit(dvec3(view * Vec(From(light.Direction), 0)));
        to_light = -axis;
        if (light.Type == D3DLIGHT_DIRECTIONAL) return 1;
        const dvec3 way = dvec3(view * Vec(From(light.Position), 1)) - eye_;
        const double d = glm::length(way);
        to_light = Unit(way);
        if (Below(light.Range, d)) return 0;
        const double divisor = light.Attenuation0 + light.Attenuation1 * d + light.Attenuation2 * d * d;
        const double attenuation = divisor > 0 ? 1 / divisor : 1;
        if (light.Type == D3DLIGHT_POINT) return attenuation;
        const double rho = glm::dot(axis, -to_light);
        const double inner = std::cos(light.Theta / 2), outer = std::cos(light.Phi / 2);
        if (Below(inner, rho)) return attenuation;
        if (!Below(outer, rho)) return 0;
        return attenuation * std::pow((rho - outer) / (inner - outer), light.Falloff);
    }

    void Light() {
        const Colour d = MaterialColour(D3DRS_DIFFUSEMATERIALSOURCE, s_.material.Diffuse),
                     s = MaterialColour(D3DRS_SPECULARMATERIALSOURCE, s_.material.Specular),
                     a = MaterialColour(D3DRS_AMBIENTMATERIALSOURCE, s_.material.Ambient),
                     e = MaterialColour(D3DRS_EMISSIVEMATERIALSOURCE, s_.material.Emissive);
        Colour ambient = fixed::From(s_.render[D3DRS_AMBIENT]), lit(0.0), shine(0.0);
        for (const auto& [index, slot] : s_.lights) {
            if (!slot.enabled) continue;
            dvec3 to_light;
            const double arrival = Arrival(slot.light, to_light), facing = glm::dot(n_, to_light);
            const dvec3 to_viewer = s_.On(D3DRS_LOCALVIEWER) ? -Unit(eye_) : dvec3(0, 0, -1);
            const double highlight = glm::dot(n_, Unit(to_viewer + to_light));
            ambient += arrival * From(slot.light.Ambient);
            if (facing <= 0) continue;
            lit += arrival * facing * From(slot.light.Diffuse);
            if (highlight > 0) shine += arrival * std::pow(highlight, s_.material.Power) * From(slot.light.Specular);
        }
        diffuse_ = Clamped(Colour(dvec3(e + a * ambient + d * lit), d.a));
        specular_ = Colour(s_.On(D3DRS_SPECULARENABLE) ? dvec3(Clamped(s * shine)) : dvec3(0.0), specular_.a);
    }

    // ---- Texture stages

    /// Filled up with a 1 behind the last component where a matrix follows, with (0, 0, 1) otherwise.
    Vec CoordinateOf(DWORD stage, bool matrix_follows) {
        const DWORD index = s_.stages[stage][D3DTSS_TEXCOORDINDEX];
        const auto filled = [&](const std::vector<float>& set) {
            Vec out = {0, 0, 0, matrix_follows ? 0 : 1};
            std::copy(set.begin(), set.end(), glm::value_ptr(out));
            if (matrix_follows && set.size() < 4) out[set.empty() ? 2 : static_cast<int>(set.size())] = 1;
            return out;
        };
        if (index < 8) return filled(index < v_.sets.size() ? v_.sets[index] : std::vector<float>());
        const dvec3 from_viewer = Unit(eye_), r = from_viewer - 2 * glm::dot(n_, from_viewer) * n_;
        const double m = 2 * glm::length(r + dvec3(0, 0, 1));
        switch (index & 0xF0000) {
            case D3DTSS_TCI_CAMERASPACENORMAL: return {n_, 1};
            case D3DTSS_TCI_CAMERASPACEPOSITION: return {eye_, 1};
            case D3DTSS_TCI_CAMERASPACEREFLECTIONVECTOR: return {r, 1};
            default: return filled({static_cast<float>(r.x / m + 0.5), static_cast<float>(r.y / m + 0.5)});
        }
    }

    Vec Coordinate(DWORD stage) {
        const DWORD flags = v_.final_position ? D3DTTFF_DISABLE : s_.stages[stage][D3DTSS_TEXTURETRANSFORMFLAGS];
        const int count = flags & 0xFF;
        Vec t = CoordinateOf(stage, count > 0);
        if (count == 0) return t;
        t = From(s_.texture_matrices[stage]) * t;
        for (int i = count; i < 4; ++i) t[i] = 0;
        return (flags & D3DTTFF_PROJECTED) != 0 ? t / t[count - 1] : t;
    }

    D3DCOLOR TexelAt(DWORD stage, const glm::dvec2& shift) {
        const glm::dvec2 texels = (glm::dvec2(Coordinate(stage)) + shift) * double{Texture::kSize};
        const auto& sampler = s_.samplers[stage];
        std::size_t place[2];
        for (int i = 0; i < 2; ++i) {
            const double texel = texels[i], inside = texel - std::floor(texel);
            const bool near_edge = texel != 0 && std::abs(inside - 0.5) > 0.47;   // a missing coordinate is exactly 0
            if (near_edge || !(std::abs(texel) < 200)) sure_ = false;
            const long size = Texture::kSize, at = std::lround(std::floor(std::clamp(texel, -1e6, 1e6)));
            const long turn = (at % (2 * size) + 2 * size) % (2 * size);   // of the texture and its mirror picture
            const DWORD mode = sampler[D3DSAMP_ADDRESSU + i];
            if (mode == D3DTADDRESS_BORDER && (at < 0 || at >= size)) return sampler[D3DSAMP_BORDERCOLOR];
            const long taken = mode == D3DTADDRESS_WRAP                   ? turn % size
                               : mode == D3DTADDRESS_MIRROR               ? std::min(turn, 2 * size - 1 - turn)
                               : mode == D3DTADDRESS_MIRRORONCE && at < 0 ? std::min(-1 - at, size - 1)
                                                                          : std::clamp(at, 0L, size - 1);
            place[i] = static_cast<std::size_t>(taken);
        }
        return scene_.textures[stage]->texels[place[1] * Texture::kSize + place[0]];
    }

    Colour Argument(DWORD stage, DWORD argument) const {
        Colour value(0.0);
        switch (argument & D3DTA_SELECTMASK) {
            case D3DTA_DIFFUSE: value = diffuse_; break;
            case D3DTA_CURRENT: value = current_; break;
            case D3DTA_TEXTURE: value = texel_; break;
            case D3DTA_TFACTOR: value = fixed::From(s_.render[D3DRS_TEXTUREFACTOR]); break;
            case D3DTA_SPECULAR: value = specular_; break;
            case D3DTA_TEMP: value = temp_; break;
            default: value = fixed::From(s_.stages[stage][D3DTSS_CONSTANT]); break;
        }
        if (argument & D3DTA_ALPHAREPLICATE) value = Colour(value.a);
        return (argument & D3DTA_COMPLEMENT) != 0 ? Colour(1.0) - value : value;
    }

    Colour Operate(DWORD stage, DWORD op, D3DTEXTURESTAGESTATETYPE first, D3DTEXTURESTAGESTATETYPE zero) const {
        const auto& row = s_.stages[stage];
        const Colour a1 = Argument(stage, row[first]), a2 = Argument(stage, row[first + 1]),
                     a0 = Argument(stage, row[zero]);
        const Colour one(1.0), half(0.5);
        switch (op) {
            case D3DTOP_SELECTARG1: return a1;
            case D3DTOP_SELECTARG2: return a2;
            case D3DTOP_MODULATE: return a1 * a2;
            case D3DTOP_MODULATE2X: return a1 * a2 * 2.0;
            case D3DTOP_MODULATE4X: return a1 * a2 * 4.0;
            case D3DTOP_ADD: return a1 + a2;
            case D3DTOP_ADDSIGNED: return a1 + a2 - half;
            case D3DTOP_ADDSIGNED2X: return (a1 + a2 - half) * 2.0;
            case D3DTOP_SUBTRACT: return a1 - a2;
            case D3DTOP_ADDSMOOTH: return a1 + a2 * (one - a1);
            case D3DTOP_BLENDDIFFUSEALPHA: return glm::mix(a2, a1, diffuse_.a);
            case D3DTOP_BLENDTEXTUREALPHA: return glm::mix(a2, a1, texel_.a);
            case D3DTOP_BLENDFACTORALPHA: return glm::mix(a2, a1, fixed::From(s_.render[D3DRS_TEXTUREFACTOR]).a);
            case D3DTOP_BLENDCURRENTALPHA: return glm::mix(a2, a1, current_.a);
            case D3DTOP_BLENDTEXTUREALPHAPM: return a1 + a2 * (1 - texel_.a);
            case D3DTOP_MODULATEALPHA_ADDCOLOR: return a1 + a1.a * a2;
            case D3DTOP_MODULATECOLOR_ADDALPHA: return a1 * a2 + a1.a;
            case D3DTOP_MODULATEINVALPHA_ADDCOLOR: return (1 - a1.a) * a2 + a1;
            case D3DTOP_MODULATEINVCOLOR_ADDALPHA: return (one - a1) * a2 + a1.a;
            case D3DTOP_DOTPRODUCT3: return Colour(4 * glm::dot(dvec3(a1 - half), dvec3(a2 - half)));
            case D3DTOP_MULTIPLYADD: return a0 + a1 * a2;
            case D3DTOP_LERP: return glm::mix(a2, a1, a0);
            default: return current_;
        }
    }

    Colour Cascade() {
        current_ = diffuse_;
        for (DWORD stage = 0; stage < kTextureStages; ++stage) {
            const auto& row = s_.stages[stage];
            const DWORD op = row[D3DTSS_COLOROP];
            const bool textured = scene_.textures[stage] != nullptr;
            if (op == D3DTOP_DISABLE) break;
            if (!textured && op != D3DTOP_SELECTARG2 && (row[D3DTSS_COLORARG1] & D3DTA_SELECTMASK) == D3DTA_TEXTURE)
                break;
            const glm::dvec2 shift = std::exchange(shift_, glm::dvec2(0.0));
            const D3DCOLOR texel = textured ? TexelAt(stage, shift) : 0;
            texel_ = textured ? fixed::From(texel) : Colour(1, 1, 1, diffuse_.a);
            if (op == D3DTOP_BUMPENVMAP) {
                const auto number = [&](int i) { return double{std::bit_cast<float>(row[D3DTSS_BUMPENVMAT00 + i])}; };
                const bool is_signed = scene_.textures[stage]->is_signed;
                const auto part = [](D3DCOLOR bits) { return std::max(static_cast<signed char>(bits) / 127.0, -1.0); };
                const double du = is_signed ? part(texel & 255) : texel_.r * 2 - 1;
                const double dv = is_signed ? part(texel >> 8 & 255) : texel_.g * 2 - 1;
                shift_ = {du * number(0) + dv * number(2), du * number(1) + dv * number(3)};
            }
            Colour result = Operate(stage, op, D3DTSS_COLORARG1, D3DTSS_COLORARG0);
            result.a = Operate(stage, row[D3DTSS_ALPHAOP], D3DTSS_ALPHAARG1, D3DTSS_ALPHAARG0).a;
            result = Clamped(result);
            (row[D3DTSS_RESULTARG] == D3DTA_TEMP ? temp_ : current_) = result;
        }
        return current_;
    }

    // ---- To the frame buffer

    double FogFactor() {
        const DWORD table = s_.render[D3DRS_FOGTABLEMODE], vertex = s_.render[D3DRS_FOGVERTEXMODE];
        const bool by_depth = s_.projection.m[0][3] == 0 && s_.projection.m[1][3] == 0 && s_.projection.m[2][3] == 0 &&
                              s_.projection.m[3][3] == 1;
        if (table == D3DFOG_NONE && (vertex == D3DFOG_NONE || v_.final_position))
            return v_.specular ? fixed::From(*v_.specular).a : 1;
        const double d = table != D3DFOG_NONE          ? (by_depth ? depth_ : w_)
                         : s_.On(D3DRS_RANGEFOGENABLE) ? glm::length(eye_)
                                                       : std::abs(eye_.z);
        const double start = s_.Float(D3DRS_FOGSTART), end = s_.Float(D3DRS_FOGEND),
                     density = s_.Float(D3DRS_FOGDENSITY);
        switch (table != D3DFOG_NONE ? table : vertex) {
            case D3DFOG_EXP: return std::exp(-density * d);
            case D3DFOG_EXP2: return std::exp(-(density * d) * (density * d));
            default: return start == end ? (Below(d, end) ? 1 : 0) : (end - d) / (end - start);
        }
    }

    Colour Output(Colour colour) {
        if (s_.On(D3DRS_SPECULARENABLE)) colour = Clamped(colour + Colour(dvec3(specular_), 0));
        if (s_.On(D3DRS_ALPHATESTENABLE)) {
            const double alpha = colour.a * 255;
            if (std::abs(alpha - std::floor(alpha) - 0.5) < 0.02) sure_ = false;
            if (!Passes(s_.render[D3DRS_ALPHAFUNC], std::lround(alpha), s_.render[D3DRS_ALPHAREF])) return back_;
        }
        if (s_.On(D3DRS_FOGENABLE)) {
            const dvec3 fog(fixed::From(s_.render[D3DRS_FOGCOLOR]));
            colour = Colour(glm::mix(fog, dvec3(colour), Clamped(FogFactor())), colour.a);
        }
        Colour out = colour;
        if (s_.On(D3DRS_ALPHABLENDENABLE)) {
            out = Blended(colour, D3DRS_SRCBLEND, D3DRS_DESTBLEND, D3DRS_BLENDOP);
            if (s_.On(D3DRS_SEPARATEALPHABLENDENABLE))
                out.a = Blended(colour, D3DRS_SRCBLENDALPHA, D3DRS_DESTBLENDALPHA, D3DRS_BLENDOPALPHA).a;
        }
        for (int c = 0; c < 4; ++c)
            if ((s_.render[D3DRS_COLORWRITEENABLE] >> c & 1) == 0) out[c] = back_[c];
        return Clamped(out);
    }

    Colour Blended(const Colour& s, D3DRENDERSTATETYPE source, D3DRENDERSTATETYPE there, D3DRENDERSTATETYPE op) const {
        const Colour constant = fixed::From(s_.render[D3DRS_BLENDFACTOR]);
        const Colour first = s * BlendFactor(s_.render[source], s, back_, constant);
        const Colour second = back_ * BlendFactor(s_.render[there], s, back_, constant);
        switch (s_.render[op]) {
            case D3DBLENDOP_ADD: return first + second;
            case D3DBLENDOP_SUBTRACT: return first - second;
            case D3DBLENDOP_REVSUBTRACT: return second - first;
            case D3DBLENDOP_MIN: return glm::min(s, back_);
            default: return glm::max(s, back_);
        }
    }

    const Scene& scene_;
    const DeviceState& s_;
    const Vertex& v_;
    bool sure_ = true;
    dvec3 eye_{0.0}, n_{0.0};
    double w_ = 1, depth_ = 0, x_ = 0, y_ = 0;
    Colour diffuse_, specular_, current_, temp_{0.0}, texel_, back_;
    glm::dvec2 shift_{0.0};   // of the next stage's coordinate, by a bump stage
};

inline Seen PointOf(const Scene& scene) { return Pipeline(scene).Run(); }

}   // namespace sparkrig::fixed
