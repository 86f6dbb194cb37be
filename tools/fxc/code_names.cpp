#include "tools/fxc/code_names.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "tools/fxc/stage_interface.h"
#include "tools/fxc/state_table.h"
#include "tools/fxc/token_tools.h"
#include "tools/fxc/type_parser.h"

namespace sparkrig::fxc {

const char* const kIntrinsicFunctions =
    "#pragma pack_matrix(row_major)\n"
    "#define float1x1 float\n"
    "#define float1x2 float2\n"
    "#define float1x3 float3\n"
    "#define float1x4 float4\n"
    "#define float2x1 float2\n"
    "#define float3x1 float3\n"
    "#define float4x1 float4\n"
    // The old hardware took logarithms, and with them powers, of |x|; those of 0 are very small and not infinite.
    "#define fxc_log(x) log(max(abs((x) * 1.0), 1.175494e-38))\n"
    "#define fxc_log2(x) log2(max(abs((x) * 1.0), 1.175494e-38))\n"
    "#define fxc_log10(x) log10(max(abs((x) * 1.0), 1.175494e-38))\n"
    "#define fxc_pow(x, y) exp2((y) * fxc_log2(x))\n"
    "#define fxc_sqrt(x) sqrt(abs((x) * 1.0))\n"
    "#define fxc_rsqrt(x) rsqrt(abs((x) * 1.0))\n"
    // Not a constant: the compiler works out remainders of constants wrong.
    "static float fxc_one = 1;\n"
    "#define fxc_fmod(x, y) (((x) * fxc_one) % (y))\n"
    "float fxc_first(float x) { return x; } float fxc_first(float2 x) { return x.x; }\n"
    "float fxc_first(float3 x) { return x.x; } float fxc_first(float4 x) { return x.x; }\n"
    "#define fxc_tex1D(s, x) tex2D(s, float2(fxc_first(x), 0.5))\n"
    "#define fxc_tex1Dlod(s, x) tex2Dlod(s, float4((x).x, 0.5, (x).zw))\n"
    "#define fxc_tex1Dbias(s, x) tex2Dbias(s, float4((x).x, 0.5, (x).zw))\n"
    "#define fxc_tex1Dproj(s, x) tex2D(s, float2((x).x / (x).w, 0.5))\n"
    "float4 fxc_lit(float d, float h, float m) {"
    " return float4(1, max(d, 0), d < 0 || h < 0 ? 0 : fxc_pow(h, m), 1); }\n"
    "#define FXC_TEST(T) bool fxc_any(T x) { return x != 0; } bool fxc_all(T x) { return x != 0; }\n"
    "#define FXC_TESTS(T) bool fxc_any(T x) { return any(x != 0); } bool fxc_all(T x) { return all(x != 0); }\n"
    "FXC_TEST(float) FXC_TESTS(float2) FXC_TESTS(float3) FXC_TESTS(float4)\n"
    "FXC_TEST(int) FXC_TESTS(int2) FXC_TESTS(int3) FXC_TESTS(int4)\n"
    // Smooth between random numbers from -1 to 1 at the corners of cubes.
    "float fxc_random(float3 p) { return frac(sin(dot(p, float3(12.9898, 78.233, 37.719))) * 43758.5453) * 2 - 1; }\n"
    "float fxc_noise(float3 p) {"
    " float3 c = floor(p), t = p - c, s = t * t * (3 - 2 * t); float n[2];"
    " for (int i = 0; i < 2; ++i) n[i] = lerp("
    "lerp(fxc_random(c + float3(0, 0, i)), fxc_random(c + float3(1, 0, i)), s.x),"
    " lerp(fxc_random(c + float3(0, 1, i)), fxc_random(c + float3(1, 1, i)), s.x), s.y);"
    " return lerp(n[0], n[1], s.z); }\n"
    "float fxc_noise(float x) { return fxc_noise(float3(x, 0, 0)); }\n"
    "float fxc_noise(float2 x) { return fxc_noise(float3(x, 0)); }\n"
    "float fxc_noise(float4 x) { return fxc_noise(x.xyz + x.w * 57); }\n"
    "bool fxc_any(bool x) { return x; } bool fxc_any(bool2 x) { return any(x); }\n"
    "bool fxc_any(bool3 x) { return any(x); } bool fxc_any(bool4 x) { return any(x); }\n"
    "bool fxc_all(bool x) { return x; } bool fxc_all(bool2 x) { return all(x); }\n"
    "bool fxc_all(bool3 x) { return all(x); } bool fxc_all(bool4 x) { return all(x); }\n";

namespace {

constexpr std::string_view kOwnIntrinsics[] = {"log",   "log2",  "log10",    "pow",       "sqrt",
                                               "rsqrt", "fmod",  "lit",      "any",       "all",
                                               "noise", "tex1D", "tex1Dlod", "tex1Dbias", "tex1Dproj"};

// Words of later shader models, and of no meaning at all in ours.
constexpr std::string_view kReserved[] = {
    "sample",
    "line",
    "point",
    "triangle",
    "lineadj",
    "triangleadj",
    "precise",
    "groupshared",
    "globallycoherent",
    "noperspective",
    "nointerpolation",
    "linear",
    "centroid",
    "snorm",
    "unorm",
    "class",
    "interface",
    "namespace",
    "this",
    "export",
    "cbuffer",
    "tbuffer",
    "packoffset",
    "payload",
    "uint64_t",
    "int64_t",
    "switch",
    "case",
    "default",
    "Buffer",
    "RWBuffer",
    "ByteAddressBuffer",
    "RWByteAddressBuffer",
    "StructuredBuffer",
    "RWStructuredBuffer",
    "AppendStructuredBuffer",
    "ConsumeStructuredBuffer",
    "ConstantBuffer",
    "TextureBuffer",
    "PointStream",
    "LineStream",
    "TriangleStream",
    "InputPatch",
    "OutputPatch",
    "SamplerState",
    "SamplerComparisonState",
    "Texture1DArray",
    "Texture2DArray",
    "Texture2DMS",
    "Texture2DMSArray",
    "TextureCubeArray",
    "RWTexture1D",
    "RWTexture1DArray",
    "RWTexture2D",
    "RWTexture2DArray",
    "RWTexture3D",
    "SubpassInput",
    "SubpassInputMS",
    "min16float",
    "min10float",
    "min16int",
    "min12int",
    "min16uint",
    "vk",
    "string",
    "texture",
    "texture1D",
    "texture2D",
    "texture3D",
    "textureCUBE",
    "Texture1D",
    "Texture2D",
    "Texture3D",
    "TextureCube",
    "technique",
    "pass",
    "compile",
    "asm",
    "volatile",
    "extern",
    "shared",
    "input",
    "output",
    "filter",
    "active",
    "auto",
    "char",
    "short",
    "long",
    "signed",
    "unsigned",
    "enum",
    "union",
    "template",
    "typename",
    "using",
    "virtual",
    "public",
    "private",
    "protected",
    "new",
    "delete",
    "operator",
    "friend",
    "goto",
    "try",
    "catch",
    "throw",
    "sizeof",
    "explicit",
    "mutable",
    "catch",
};

// Semantics as later models call them.
constexpr std::pair<const char*, const char*> kLaterSemantics[] = {
    {"SV_Position", "POSITION"}, {"SV_Target", "COLOR0"}, {"SV_Target0", "COLOR0"}, {"SV_Depth", "DEPTH"}};

// What stays where it begins a declaration.
constexpr std::string_view kUsages[] = {"noperspective", "nointerpolation", "linear", "centroid",
                                        "volatile",      "extern",          "shared", "unsigned"};

constexpr std::string_view kMeaningless[] = {"volatile", "extern", "shared", "unsigned"};

bool IsOneOf(std::span<const std::string_view> words, std::string_view word) {
    return std::ranges::find(words, word) != words.end();
}

/// 1f, 2.h and 5L as the compiler writes them.
void PlainNumber(std::string& text) {
    if (text.starts_with("0x") || text.starts_with("0X")) {
        while (text.ends_with('L') || text.ends_with('l')) text.pop_back();
        return;
    }
    const std::size_t suffix = text.find_first_of("fFhHlL");
    if (suffix == std::string::npos) return;
    const bool whole = text[suffix] == 'l' || text[suffix] == 'L';
    text.resize(suffix);
    if (!whole && text.find_first_of(".eE") == std::string::npos) text += ".0";
}

class Speller {
  public:
    explicit Speller(ParsedEffect& effect) : effect_(effect), code_(effect.code) {}

    void Run() {
        Tokens spelled;
        spelled.reserve(code_.size());
        for (std::size_t i = 0; i < code_.size(); ++i) {
            Token token = code_[i];
            if (token.kind == TokenKind::Number) PlainNumber(token.text);
            if (token.kind == TokenKind::Number && Next(i, ".")) token.text = '(' + token.text + ')';   // 1.xxx
            if (token.kind == TokenKind::Identifier && !Spell(i, token)) continue;
            spelled.push_back(std::move(token));
        }
        code_ = std::move(spelled);
    }

  private:
    bool Next(std::size_t i, const char* symbol) const { return i + 1 < code_.size() && code_[i + 1].Is(symbol); }
    bool NameFollows(std::size_t i) const { return i + 1 < code_.size() && code_[i + 1].kind == TokenKind::Identifier; }
    bool Own(const std::string& name) const {
        const Symbols& symbols = effect_.symbols;
        return symbols.functions.contains(name) || symbols.structures.contains(name) || symbols.types.contains(name) ||
               symbols.parameters.contains(name);
    }

    /// False for a word that is left out.
    bool Spell(std::size_t i, Token& token) const {
        const bool member = i > 0 && code_[i - 1].Is(".");
        const bool semantic = i > 0 && code_[i - 1].Is(":") && !Next(i, "(");
        if (semantic) {
            // The compiler gives this one a type of its own.
            if (EqualIgnoringCase(token.text, "VPOS")) token.text = kPixelPosition;
            for (const auto& [later, ours] : kLaterSemantics)
                if (EqualIgnoringCase(token.text, later)) token.text = ours;
            return true;
        }
        if (!member && IsOneOf(kUsages, token.text) && NameFollows(i)) return !IsOneOf(kMeaningless, token.text);
        if (!member && (IsSwitch(i) || SpellType(i, token))) return true;
        if (!member && Next(i, "(") && IsOneOf(kOwnIntrinsics, token.text) && !Own(token.text))
            token.text = "fxc_" + token.text;
        else
            token.text = CodeName(token.text);
        return true;
    }

    /// switch (value) { case 1: default: }, and no name of the effect's own.
    bool IsSwitch(std::size_t i) const {
        if (code_[i].IsName("switch")) return Next(i, "(") && Next(ClosingBracket(code_, i + 1), "{");
        if (code_[i].IsName("default")) return Next(i, ":");
        const bool value = i + 1 < code_.size() && (code_[i + 1].kind == TokenKind::Number || Next(i, "-"));
        return code_[i].IsName("case") && (value || NameFollows(i));
    }

    bool SpellType(std::size_t i, Token& token) const {
        if (Own(token.text)) return false;
        const std::optional<Type> type = BuiltInType(token.text);
        if (!type || type->kind == VariableClass::String || type->kind == VariableClass::Texture) return false;
        // In another letter case it may be a variable's name, such as Half.
        const bool exact = BuiltInType(token.text, LetterCase::Exact).has_value();
        const bool bracket = Next(i, "(") || (exact && (Next(i, ")") || Next(i, "[") || Next(i, ",")));
        if (!NameFollows(i) && !(IsNumeric(type->kind) && bracket)) return false;
        token.text = type->spelling[0].text;
        if (token.text == "sampler1D") token.text = "sampler2D";
        return true;
    }

    ParsedEffect& effect_;
    Tokens& code_;
};

}   // namespace

std::string CodeName(const std::string& name) { return IsOneOf(kReserved, name) ? "fxc_" + name : name; }

void SpellOut(ParsedEffect& effect) { Speller(effect).Run(); }

}   // namespace sparkrig::fxc
