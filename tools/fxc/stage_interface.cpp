#include "tools/fxc/stage_interface.h"

#include <algorithm>

#include <fmt/format.h>

#include "platform/system/ascii.h"

namespace sparkrig::fxc {

namespace {

struct Semantic {
    std::string word;
    int index = 0;
};

/// "TexCoord3_centroid" is TEXCOORD, 3.
Semantic Split(std::string text) {
    Semantic semantic;
    std::ranges::transform(text, text.begin(), AsciiUpper);
    constexpr std::string_view kCentroid = "_CENTROID";
    if (text.ends_with(kCentroid)) text.resize(text.size() - kCentroid.size());
    std::size_t digits = text.size();
    while (digits > 0 && text[digits - 1] >= '0' && text[digits - 1] <= '9') --digits;
    semantic.word = text.substr(0, digits);
    for (const char c : text.substr(digits))
        semantic.index = semantic.index > 99 ? 99 : semantic.index * 10 + (c - '0');
    return semantic;
}

struct Slots {
    const char* word;
    int first;   // the layer's number of index 0
    int count;
};

constexpr Slots kVertexInputSlots[] = {
    {"POSITION", kInputPosition, 1},  {"BLENDWEIGHT", kInputBlendWeight, 1}, {"BLENDINDICES", kInputBlendIndices, 1},
    {"NORMAL", kInputNormal, 1},      {"PSIZE", kInputPointSize, 1},         {"COLOR", kInputColor0, 2},
    {"TEXCOORD", kInputTexCoord0, 8}, {"TANGENT", kInputTangent, 1},
};
// The usages that an element of a vertex can have. Those above are what formats carry.
constexpr std::string_view kElementUsages[] = {
    "POSITION", "BLENDWEIGHT", "BLENDINDICES", "NORMAL", "PSIZE", "TEXCOORD", "TANGENT",
    "BINORMAL", "TESSFACTOR",  "POSITIONT",    "COLOR",  "FOG",   "DEPTH",    "SAMPLE",
};
constexpr Slots kVaryingSlots[] = {
    {"COLOR", kVaryingColor0, 2},
    {"TEXCOORD", kVaryingTexCoord0, 8},
    {"FOG", kVaryingFog, 1},
};

template <std::size_t N>
std::optional<int> FindSlot(const Slots (&slots)[N], const std::string& word, int index) {
    for (const Slots& slot : slots)
        if (word == slot.word && index < slot.count) return slot.first + index;
    return std::nullopt;
}

std::string RowName(const StageVariable& variable, int row) {
    return variable.indexed ? fmt::format("{}[{}]", variable.name, row) : variable.name;
}

/// The first components of a vec4 as the variable's own type.
std::string Narrowed(const StageVariable& variable, const std::string& source) {
    constexpr std::string_view kComponents = "xyzw";
    const auto swizzle = kComponents.substr(0, static_cast<std::size_t>(variable.components));
    if (variable.components == 1) return fmt::format("{}({}.x)", variable.number, source);
    const std::string letter = variable.number == "float" ? "" : variable.number.substr(0, 1);
    return fmt::format("{}vec{}({}.{})", letter, variable.components, source, swizzle);
}

/// A row as a vec4 whose missing components are 0, 0 and 1.
std::string Widened(const StageVariable& variable, int row) {
    constexpr const char* kRest[] = {"", ", 0.0, 0.0, 1.0", ", 0.0, 1.0", ", 1.0", ""};
    return fmt::format("vec4({}{})", RowName(variable, row), kRest[variable.components]);
}

}   // namespace

void StageInterface::Declare(const std::string& line) {
    if (declarations_.find(line) == std::string::npos) declarations_ += line;
}

std::string StageInterface::VertexInputOf(int slot) {
    std::string name = fmt::format("vertex_input_{}", slot);
    Declare(fmt::format("layout(location = {}) in vec4 {};\n", slot, name));
    inputs_ |= 1u << slot;
    return name;
}

void StageInterface::Read(const StageVariable& variable, int row, const std::string& source) {
    before_ += fmt::format("    {} = {};\n", RowName(variable, row), Narrowed(variable, source));
}

std::optional<int> ExtraVaryings::PlaceOf(const std::string& semantic) {
    const auto [place, added] = places_.try_emplace(semantic, kVaryingExtra + static_cast<int>(places_.size()));
    return place->second < kVaryings ? std::optional(place->second) : std::nullopt;
}

std::optional<int> StageInterface::VaryingOf(const std::string& word, int index) {
    if (const std::optional<int> slot = FindSlot(kVaryingSlots, word, index)) return slot;
    if (word.empty()) return std::nullopt;
    return extra_.PlaceOf(word + std::to_string(index));
}

bool StageInterface::AddVertexInput(const StageVariable& variable, const std::string& word, int index, int row) {
    if (word == "BINORMAL" && index == 0) {   // at right angles to both, on the side that the tangent names
        const std::string normal = VertexInputOf(kInputNormal), tangent = VertexInputOf(kInputTangent);
        Read(variable, row, fmt::format("vec4(cross({}.xyz, {}.xyz) * {}.w, 1.0)", normal, tangent, tangent));
    } else if (const std::optional<int> slot = FindSlot(kVertexInputSlots, word, index)) {
        Read(variable, row, VertexInputOf(*slot));
    } else {
        if (std::ranges::find(kElementUsages, word) == std::end(kElementUsages)) return false;
        Read(variable, row, "vec4(0.0, 0.0, 0.0, 1.0)");
        missing_inputs_.push_back(word + std::to_string(index));
    }
    return true;
}

bool StageInterface::AddInput(const StageVariable& variable, std::string& unsupported) {
    const Semantic semantic = Split(variable.semantic);
    const bool vertex = stage_ == FunctionStage::Vertex;
    if (!vertex && (semantic.word == kPixelPosition || semantic.word == "VFACE")) {
        // Pixel centres are whole numbers for effects, and front faces positive.
        const bool position = semantic.word == kPixelPosition;
        Read(variable, 0, position ? "(gl_FragCoord - vec4(0.5, 0.5, 0.0, 0.0))" : "vec4(gl_FrontFacing ? 1.0 : -1.0)");
        return true;
    }
    for (int row = 0; row < variable.rows; ++row) {
        const int index = semantic.index + row;
        if (vertex) {
            if (!AddVertexInput(variable, semantic.word, index, row)) return false;
            continue;
        }
        const std::optional<int> slot = VaryingOf(semantic.word, index);
        if (!slot && !variable.semantic.empty()) unsupported = "it reads more than the stages can hand over";
        if (!slot) return !variable.semantic.empty();
        const std::string name = fmt::format("varying_{}", *slot);
        Declare(fmt::format("layout(location = {}) in vec4 {};\n", *slot, name));
        Read(variable, row, name);
        varyings_ |= 1u << *slot;
    }
    return true;
}

bool StageInterface::AddOutput(const StageVariable& variable, std::string& unsupported) {
    const Semantic semantic = Split(variable.semantic);
    const auto write = [&](const std::string& target, const std::string& value) {
        after_ += fmt::format("    {} = {};\n", target, value);
    };
    if (stage_ == FunctionStage::Pixel) {
        if (semantic.word == "COLOR" && semantic.index + variable.rows > 1) {
            unsupported = "it draws into more than one target";
        } else if (semantic.word == "COLOR") {
            Declare("layout(location = 0) out vec4 pixel_color;\n");
            write("pixel_color", Widened(variable, 0));
        } else if (semantic.word == "DEPTH" && semantic.index == 0) {
            write("gl_FragDepth", fmt::format("{}.x", Widened(variable, 0)));
        } else {
            return false;
        }
        return true;
    }
    if (semantic.word == "POSITION" && semantic.index == 0) {
        write("gl_Position", Widened(variable, 0));
        return true;
    }
    if (semantic.word == "PSIZE" && semantic.index == 0) {
        write("gl_PointSize", fmt::format("{}.x", Widened(variable, 0)));
        writes_point_size_ = true;
        return true;
    }
    for (int row = 0; row < variable.rows; ++row) {
        const std::optional<int> slot = VaryingOf(semantic.word, semantic.index + row);
        if (!slot && !variable.semantic.empty()) unsupported = "it writes more than the stages can hand over";
        if (!slot) return !variable.semantic.empty();
        const std::string name = fmt::format("varying_{}", *slot);
        Declare(fmt::format("layout(location = {}) out vec4 {};\n", *slot, name));
        // Below version 3 colours leave the vertex stage as what a frame buffer can hold.
        const bool clamped = version_ < 0x0300 && semantic.word == "COLOR";
        write(name, clamped ? fmt::format("clamp({}, 0.0, 1.0)", Widened(variable, row)) : Widened(variable, row));
        varyings_ |= 1u << *slot;
    }
    return true;
}

}   // namespace sparkrig::fxc
