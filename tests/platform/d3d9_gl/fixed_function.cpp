#include "tests/platform/d3d9_gl/fixed_function.h"

#include <algorithm>
#include <utility>

namespace sparkrig::fixed {

namespace {

constexpr double kClose = 2e-3;

Vec From(const D3DVECTOR& v, double w) { return {v.x, v.y, v.z, w}; }
Colour From(const D3DCOLORVALUE& v) { return {v.r, v.g, v.b, v.a}; }
Vec Scaled(const Vec& v, double s) { return {v[0] * s, v[1] * s, v[2] * s, v[3] * s}; }
Vec Sum(const Vec& a, const Vec& b) { return {a[0] + b[0], a[1] + b[1], a[2] + b[2], a[3] + b[3]}; }
double Length(const Vec& v) { return std::sqrt(Dot(v, v)); }
Vec Unit(const Vec& v) { return Length(v) > 0 ? Scaled(v, 1 / Length(v)) : v; }
double Clamped(double value) { return std::clamp(value, 0.0, 1.0); }

/// By the transposed inverse of the upper three by three.
Vec TurnNormal(const Vec& n, const D3DMATRIX& m) {
    const auto cofactor = [&](int r, int c) {
        const int r1 = (r + 1) % 3, r2 = (r + 2) % 3, c1 = (c + 1) % 3, c2 = (c + 2) % 3;
        return double{m.m[r1][c1]} * m.m[r2][c2] - double{m.m[r1][c2]} * m.m[r2][c1];
    };
    double determinant = 0;
    for (int i = 0; i < 3; ++i) determinant += m.m[0][i] * cofactor(0, i);
    Vec out = {};
    for (std::size_t c = 0; c < 3; ++c)
        for (std::size_t r = 0; r < 3; ++r)
            out[c] += n[r] * cofactor(static_cast<int>(r), static_cast<int>(c)) / determinant;
    return out;
}

D3DMATRIX Product(const D3DMATRIX& a, const D3DMATRIX& b) {
    D3DMATRIX product = {};
    for (int r = 0; r < 3 + 1; ++r)
        for (int c = 0; c < 4; ++c)
            for (int i = 0; i < 4; ++i) product.m[r][c] += a.m[r][i] * b.m[i][c];
    return product;
}

bool Passes(DWORD function, long value, long reference) {
    const bool kPasses[] = {false,
                            false,
                            value<reference, value == reference, value <= reference, value>
                                reference,
                            value != reference,
                            value >= reference,
                            true};
    return kPasses[function];
}

double BlendFactor(DWORD factor, const Colour& s, const Colour& d, const Colour& constant, std::size_t c) {
    switch (factor) {
        case D3DBLEND_ZERO: return 0;
        case D3DBLEND_ONE: return 1;
        case D3DBLEND_SRCCOLOR: return s[c];
        case D3DBLEND_INVSRCCOLOR: return 1 - s[c];
        case D3DBLEND_SRCALPHA: return s[3];
        case D3DBLEND_INVSRCALPHA: return 1 - s[3];
        case D3DBLEND_DESTALPHA: return d[3];
        case D3DBLEND_INVDESTALPHA: return 1 - d[3];
        case D3DBLEND_DESTCOLOR: return d[c];
        case D3DBLEND_INVDESTCOLOR: return 1 - d[c];
        case D3DBLEND_SRCALPHASAT: return c == 3 ? 1 : std::min(s[3], 1 - d[3]);
        case D3DBLEND_BLENDFACTOR: return constant[c];
        default: return 1 - constant[c];
    }
}

class Pipeline {
  public:
    explicit Pipeline(const Scene& scene) : scene_(scene), s_(scene.state), v_(scene.vertex) {}

    Seen Run() {
        back_ = fixed::From(scene_.alpha_in_target ? scene_.back : scene_.back | 0xFF000000);
        Transform();
        Colours();
        return {Output(Cascade()), sure_};
    }
    Vec Eye() {
        Transform();
        return eye_;
    }

  private:
    /// Whether a lies below b; too close to call is noted.
    bool Below(double a, double b) {
        if (std::abs(a - b) < kClose) sure_ = false;
        return a < b;
    }

    // ---- Vertex

    void Transform() {
        const Vec position = {v_.position[0], v_.position[1], v_.position[2], 1};
        if (v_.final_position) {
            w_ = 1 / v_.position[3];
            depth_ = v_.position[2];
            return;
        }
        const DWORD blend = s_.render[D3DRS_VERTEXBLEND];
        const std::size_t matrices = blend == D3DVBF_DISABLE ? 0 : blend % 256 + 1;
        double left = 1;
        for (std::size_t i = 0; i < std::max<std::size_t>(matrices, 1); ++i) {
            const double weight = i + 1 < matrices ? double{v_.weights[i]} : left;
            left -= weight;
            const bool indexed = matrices > 0 && s_.On(D3DRS_INDEXEDVERTEXBLENDENABLE);
            const D3DMATRIX world_view = Product(s_.world[indexed ? v_.indices[i] : i], s_.view);
            eye_ = Sum(eye_, Scaled(Times(position, world_view), weight));
            if (v_.normal)
                n_ = Sum(
                    n_, Scaled(TurnNormal({(*v_.normal)[0], (*v_.normal)[1], (*v_.normal)[2], 0}, world_view), weight));
        }
        if (s_.On(D3DRS_NORMALIZENORMALS)) n_ = Unit(n_);
        const Vec clip = Times(eye_, s_.projection);
        w_ = clip[3];
        depth_ = clip[2] / clip[3];
    }

    Colour MaterialColour(D3DRENDERSTATETYPE source, const D3DCOLORVALUE& material) const {
        const auto& from = s_.render[source] == D3DMCS_COLOR1 ? v_.diffuse : v_.specular;
        const bool taken = s_.On(D3DRS_COLORVERTEX) && s_.render[source] != D3DMCS_MATERIAL && from;
        return taken ? fixed::From(*from) : From(material);
    }

    /// How much of a light arrives, and from where.
    double Arrival(const D3DLIGHT9& light, Vec& to_light) {
        const Vec axis = Unit(Times(From(light.Direction, 0), s_.view));
        to_light = Scaled(axis, -1);
        if (light.Type == D3DLIGHT_DIRECTIONAL) return 1;
        const Vec way = Sum(Times(From(light.Position, 1), s_.view), Scaled(eye_, -1));
        const double d = Length(way);
        to_light = Unit(way);
        if (Below(light.Range, d)) return 0;
        const double divisor = light.Attenuation0 + light.Attenuation1 * d + light.Attenuation2 * d * d;
        const double attenuation = divisor > 0 ? 1 / divisor : 1;
        if (light.Type == D3DLIGHT_POINT) return attenuation;
        const double rho = -Dot(axis, to_light), inner = std::cos(light.Theta / 2), outer = std::cos(light.Phi / 2);
        if (Below(inner, rho)) return attenuation;
        if (!Below(outer, rho)) return 0;
        return attenuation * std::pow((rho - outer) / (inner - outer), light.Falloff);
    }

    void Colours() {
        diffuse_ = v_.diffuse ? fixed::From(*v_.diffuse) : Colour{1, 1, 1, 1};
        specular_ = v_.specular ? fixed::From(*v_.specular) : Colour{};
        if (!v_.final_position && s_.On(D3DRS_LIGHTING)) Light();
    }

    void Light() {
        const Colour d = MaterialColour(D3DRS_DIFFUSEMATERIALSOURCE, s_.material.Diffuse),
                     s = MaterialColour(D3DRS_SPECULARMATERIALSOURCE, s_.material.Specular),
                     a = MaterialColour(D3DRS_AMBIENTMATERIALSOURCE, s_.material.Ambient),
                     e = MaterialColour(D3DRS_EMISSIVEMATERIALSOURCE, s_.material.Emissive);
        Colour ambient = fixed::From(s_.render[D3DRS_AMBIENT]), lit = {}, shine = {};
        for (const auto& [index, slot] : s_.lights) {
            if (!slot.enabled) continue;
            Vec to_light;
            const double arrival = Arrival(slot.light, to_light), facing = Dot(n_, to_light);
            const Vec to_viewer = s_.On(D3DRS_LOCALVIEWER) ? Unit(Scaled(eye_, -1)) : Vec{0, 0, -1, 0};
            const double highlight = Dot(n_, Unit(Sum(to_viewer, to_light)));
            for (std::size_t c = 0; c < 3; ++c) {
                ambient[c] += arrival * From(slot.light.Ambient)[c];
                if (facing <= 0) continue;
                lit[c] += d[c] * From(slot.light.Diffuse)[c] * facing * arrival;
                if (highlight > 0)
                    shine[c] += s[c] * From(slot.light.Specular)[c] * std::pow(highlight, s_.material.Power) * arrival;
            }
        }
        for (std::size_t c = 0; c < 3; ++c) {
            diffuse_[c] = Clamped(e[c] + a[c] * ambient[c] + lit[c]);
            specular_[c] = s_.On(D3DRS_SPECULARENABLE) ? Clamped(shine[c]) : 0;
        }
        diffuse_[3] = Clamped(d[3]);
    }

    // ---- Texture stages

    /// Filled up with a 1 behind the last component where a matrix follows, with (0, 0, 1) otherwise.
    Vec CoordinateOf(DWORD stage, bool matrix_follows) {
        const DWORD index = s_.stages[stage][D3DTSS_TEXCOORDINDEX];
        const auto filled = [&](const std::vector<double>& set) {
            Vec out = {0, 0, 0, matrix_follows ? 0.0 : 1.0};
            std::copy(set.begin(), set.end(), out.begin());
            if (matrix_follows && set.size() < 4) out[set.empty() ? 2 : set.size()] = 1;
            return out;
        };
        if (index < 8) {
            if (index >= v_.sets.size()) return filled({});
            return filled({v_.sets[index].begin(), v_.sets[index].end()});
        }
        const Vec to_viewer = Unit(Scaled(eye_, -1));
        const Vec r = Sum(Scaled(n_, 2 * Dot(n_, to_viewer)), Scaled(to_viewer, -1));
        const double m = 2 * std::sqrt(r[0] * r[0] + r[1] * r[1] + (r[2] + 1) * (r[2] + 1));
        switch (index & 0xF0000) {
            case D3DTSS_TCI_CAMERASPACENORMAL: return {n_[0], n_[1], n_[2], 1};
            case D3DTSS_TCI_CAMERASPACEPOSITION: return {eye_[0], eye_[1], eye_[2], 1};
            case D3DTSS_TCI_CAMERASPACEREFLECTIONVECTOR: return {r[0], r[1], r[2], 1};
            default: return filled({r[0] / m + 0.5, r[1] / m + 0.5});
        }
    }

    Vec Coordinate(DWORD stage) {
        const DWORD flags = v_.final_position ? D3DTTFF_DISABLE : s_.stages[stage][D3DTSS_TEXTURETRANSFORMFLAGS];
        const std::size_t count = flags & 0xFF;
        Vec t = CoordinateOf(stage, count > 0);
        if (count == 0) return t;
        t = Times(t, s_.texture_matrices[stage]);
        for (std::size_t i = count; i < 4; ++i) t[i] = 0;
        if (flags & D3DTTFF_PROJECTED) t = Scaled(t, 1 / t[count - 1]);
        return t;
    }

    D3DCOLOR TexelAt(DWORD stage, const std::array<double, 2>& shift) {
        const Vec t = Coordinate(stage);
        std::size_t place[2];
        for (std::size_t i = 0; i < 2; ++i) {
            const double texel = (t[i] + shift[i]) * Texture::kSize, inside = texel - std::floor(texel);
            const bool near_edge = texel != 0 && std::abs(inside - 0.5) > 0.47;   // a missing coordinate is exactly 0
            if (near_edge || !(std::abs(texel) < 200)) sure_ = false;
            const long wrapped = std::lround(std::fmod(std::floor(std::clamp(texel, -1e6, 1e6)), Texture::kSize));
            place[i] = static_cast<std::size_t>((wrapped + Texture::kSize) % Texture::kSize);
        }
        return scene_.textures[stage]->texels[place[1] * Texture::kSize + place[0]];
    }

    Colour Argument(DWORD stage, DWORD argument) const {
        Colour value = {};
        switch (argument & D3DTA_SELECTMASK) {
            case D3DTA_DIFFUSE: value = diffuse_; break;
            case D3DTA_CURRENT: value = current_; break;
            case D3DTA_TEXTURE: value = texel_; break;
            case D3DTA_TFACTOR: value = fixed::From(s_.render[D3DRS_TEXTUREFACTOR]); break;
            case D3DTA_SPECULAR: value = specular_; break;
            case D3DTA_TEMP: value = temp_; break;
            default: value = fixed::From(s_.stages[stage][D3DTSS_CONSTANT]); break;
        }
        if (argument & D3DTA_ALPHAREPLICATE) value.fill(value[3]);
        if (argument & D3DTA_COMPLEMENT)
            for (double& channel : value) channel = 1 - channel;
        return value;
    }

    double Operate(DWORD op, const Colour& a1, const Colour& a2, const Colour& a0, std::size_t c) const {
        const auto mix = [&](double alpha) { return a1[c] * alpha + a2[c] * (1 - alpha); };
        switch (op) {
            case D3DTOP_SELECTARG1: return a1[c];
            case D3DTOP_SELECTARG2: return a2[c];
            case D3DTOP_MODULATE: return a1[c] * a2[c];
            case D3DTOP_MODULATE2X: return a1[c] * a2[c] * 2;
            case D3DTOP_MODULATE4X: return a1[c] * a2[c] * 4;
            case D3DTOP_ADD: return a1[c] + a2[c];
            case D3DTOP_ADDSIGNED: return a1[c] + a2[c] - 0.5;
            case D3DTOP_ADDSIGNED2X: return (a1[c] + a2[c] - 0.5) * 2;
            case D3DTOP_SUBTRACT: return a1[c] - a2[c];
            case D3DTOP_ADDSMOOTH: return a1[c] + a2[c] * (1 - a1[c]);
            case D3DTOP_BLENDDIFFUSEALPHA: return mix(diffuse_[3]);
            case D3DTOP_BLENDTEXTUREALPHA: return mix(texel_[3]);
            case D3DTOP_BLENDFACTORALPHA: return mix(fixed::From(s_.render[D3DRS_TEXTUREFACTOR])[3]);
            case D3DTOP_BLENDCURRENTALPHA: return mix(current_[3]);
            case D3DTOP_BLENDTEXTUREALPHAPM: return a1[c] + a2[c] * (1 - texel_[3]);
            case D3DTOP_MODULATEALPHA_ADDCOLOR: return a1[c] + a1[3] * a2[c];
            case D3DTOP_MODULATECOLOR_ADDALPHA: return a1[c] * a2[c] + a1[3];
            case D3DTOP_MODULATEINVALPHA_ADDCOLOR: return (1 - a1[3]) * a2[c] + a1[c];
            case D3DTOP_MODULATEINVCOLOR_ADDALPHA: return (1 - a1[c]) * a2[c] + a1[3];
            case D3DTOP_DOTPRODUCT3: {
                double sum = 0;
                for (std::size_t i = 0; i < 3; ++i) sum += 4 * (a1[i] - 0.5) * (a2[i] - 0.5);
                return sum;
            }
            case D3DTOP_MULTIPLYADD: return a0[c] + a1[c] * a2[c];
            case D3DTOP_LERP: return a0[c] * a1[c] + (1 - a0[c]) * a2[c];
            default: return current_[c];
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
            const auto shift = std::exchange(shift_, {});
            const D3DCOLOR texel = textured ? TexelAt(stage, shift) : 0;
            texel_ = textured ? fixed::From(texel) : Colour{1, 1, 1, diffuse_[3]};
            if (op == D3DTOP_BUMPENVMAP) {
                const auto number = [&](int i) { return double{std::bit_cast<float>(row[D3DTSS_BUMPENVMAT00 + i])}; };
                const bool is_signed = scene_.textures[stage]->is_signed;
                const auto part = [](D3DCOLOR bits) { return std::max(static_cast<signed char>(bits) / 127.0, -1.0); };
                const double du = is_signed ? part(texel & 255) : texel_[0] * 2 - 1;
                const double dv = is_signed ? part(texel >> 8 & 255) : texel_[1] * 2 - 1;
                shift_ = {du * number(0) + dv * number(2), du * number(1) + dv * number(3)};
            }
            Colour result;
            for (std::size_t c = 0; c < 4; ++c) {
                const DWORD first = c < 3 ? D3DTSS_COLORARG1 : D3DTSS_ALPHAARG1,
                            zero = c < 3 ? D3DTSS_COLORARG0 : D3DTSS_ALPHAARG0;
                result[c] = Clamped(Operate(row[c < 3 ? D3DTSS_COLOROP : D3DTSS_ALPHAOP], Argument(stage, row[first]),
                                            Argument(stage, row[first + 1]), Argument(stage, row[zero]), c));
            }
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
            return v_.specular ? fixed::From(*v_.specular)[3] : 1;
        const double d = table != D3DFOG_NONE          ? (by_depth ? depth_ : w_)
                         : s_.On(D3DRS_RANGEFOGENABLE) ? Length(eye_)
                                                       : std::abs(eye_[2]);
        const double start = s_.Float(D3DRS_FOGSTART), end = s_.Float(D3DRS_FOGEND),
                     density = s_.Float(D3DRS_FOGDENSITY);
        switch (table != D3DFOG_NONE ? table : vertex) {
            case D3DFOG_EXP: return std::exp(-density * d);
            case D3DFOG_EXP2: return std::exp(-(density * d) * (density * d));
            default: return start == end ? (Below(d, end) ? 1 : 0) : (end - d) / (end - start);
        }
    }

    Colour Output(Colour colour) {
        if (s_.On(D3DRS_SPECULARENABLE))
            for (std::size_t c = 0; c < 3; ++c) colour[c] = Clamped(colour[c] + specular_[c]);
        if (s_.On(D3DRS_ALPHATESTENABLE)) {
            const double alpha = colour[3] * 255;
            if (std::abs(alpha - std::floor(alpha) - 0.5) < 0.02) sure_ = false;
            if (!Passes(s_.render[D3DRS_ALPHAFUNC], std::lround(alpha), s_.render[D3DRS_ALPHAREF])) return back_;
        }
        if (s_.On(D3DRS_FOGENABLE)) {
            const double f = Clamped(FogFactor());
            for (std::size_t c = 0; c < 3; ++c)
                colour[c] = f * colour[c] + (1 - f) * fixed::From(s_.render[D3DRS_FOGCOLOR])[c];
        }
        return Blended(colour);
    }

    Colour Blended(const Colour& s) const {
        const Colour constant = fixed::From(s_.render[D3DRS_BLENDFACTOR]);
        Colour out = s;
        for (std::size_t c = 0; c < 4; ++c) {
            const bool apart = c == 3 && s_.On(D3DRS_SEPARATEALPHABLENDENABLE);
            const DWORD first = s_.render[apart ? D3DRS_SRCBLENDALPHA : D3DRS_SRCBLEND],
                        second = s_.render[apart ? D3DRS_DESTBLENDALPHA : D3DRS_DESTBLEND];
            const double source = s[c] * BlendFactor(first, s, back_, constant, c);
            const double there = back_[c] * BlendFactor(second, s, back_, constant, c);
            const double kResults[] = {
                0, source + there, source - there, there - source, std::min(s[c], back_[c]), std::max(s[c], back_[c])};
            if (s_.On(D3DRS_ALPHABLENDENABLE))
                out[c] = Clamped(kResults[s_.render[apart ? D3DRS_BLENDOPALPHA : D3DRS_BLENDOP]]);
            if ((s_.render[D3DRS_COLORWRITEENABLE] >> c & 1) == 0) out[c] = back_[c];
        }
        return out;
    }

    const Scene& scene_;
    const DeviceState& s_;
    const Vertex& v_;
    bool sure_ = true;
    Vec eye_ = {}, n_ = {};
    double w_ = 1, depth_ = 0;
    Colour diffuse_ = {}, specular_ = {}, current_ = {}, temp_ = {}, texel_ = {}, back_ = {};
    std::array<double, 2> shift_ = {};   // of the next stage's coordinate, by a bump stage
};

}   // namespace

Colour From(D3DCOLOR argb) {
    return {(argb >> 16 & 255) / 255.0, (argb >> 8 & 255) / 255.0, (argb & 255) / 255.0, (argb >> 24) / 255.0};
}
double Dot(const Vec& a, const Vec& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }
Vec Times(const Vec& v, const D3DMATRIX& m) {
    Vec out = {};
    for (std::size_t c = 0; c < 4; ++c)
        for (std::size_t r = 0; r < 4; ++r) out[c] += v[r] * m.m[r][c];
    return out;
}

DWORD Vertex::Fvf() const {
    constexpr DWORD kSizeBits[] = {0, 3, 0, 1, 2};
    DWORD fvf = final_position ? D3DFVF_XYZRHW : weights.empty() ? D3DFVF_XYZ : D3DFVF_XYZB4 | D3DFVF_LASTBETA_UBYTE4;
    if (normal) fvf |= D3DFVF_NORMAL;
    if (size) fvf |= D3DFVF_PSIZE;
    if (diffuse) fvf |= D3DFVF_DIFFUSE;
    if (specular) fvf |= D3DFVF_SPECULAR;
    for (std::size_t i = 0; i < sets.size(); ++i) fvf |= kSizeBits[sets[i].size()] << (16 + 2 * i);
    return fvf | static_cast<DWORD>(sets.size()) << D3DFVF_TEXCOUNT_SHIFT;
}

std::vector<BYTE> Vertex::Bytes() const {
    std::vector<BYTE> bytes;
    const auto add = [&](const void* data, std::size_t count) {
        const auto* first = static_cast<const BYTE*>(data);
        bytes.insert(bytes.end(), first, first + count);
    };
    add(position.data(), final_position ? 16 : 12);
    add(weights.data(), weights.size() * sizeof(float));
    if (!weights.empty()) add(indices.data(), 4);
    if (normal) add(normal->data(), 12);
    if (size) add(&*size, 4);
    if (diffuse) add(&*diffuse, 4);
    if (specular) add(&*specular, 4);
    for (const auto& set : sets) add(set.data(), set.size() * sizeof(float));
    return bytes;
}

Seen PixelOf(const Scene& scene) { return Pipeline(scene).Run(); }
Vec EyePosition(const Scene& scene) { return Pipeline(scene).Eye(); }

double PointSize(const Scene& scene) {
    const DeviceState& s = scene.state;
    double size = scene.vertex.size.value_or(s.Float(D3DRS_POINTSIZE));
    if (s.On(D3DRS_POINTSCALEENABLE) && !scene.vertex.final_position) {
        const Vec eye = EyePosition(scene);
        const double d = Length(eye);
        const double a = s.Float(D3DRS_POINTSCALE_A), b = s.Float(D3DRS_POINTSCALE_B), c = s.Float(D3DRS_POINTSCALE_C);
        size *= s.viewport.Height * std::sqrt(1 / (a + b * d + c * d * d));
    }
    constexpr double kDeviceLimit = 256;
    size = std::min({size, double{s.Float(D3DRS_POINTSIZE_MAX)}, kDeviceLimit});
    return std::max(size, double{s.Float(D3DRS_POINTSIZE_MIN)});
}

}   // namespace sparkrig::fixed
