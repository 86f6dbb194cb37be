// The compiled form of an effect, .fxo: what tools/fxc writes and the effect runtime reads.
//
// Everything refers to everything else by index into the lists of one EffectFile. The file is little-endian, begins
// with kEffectMagic and kEffectVersion, and holds the lists one after the other, each as a count and its elements.
#pragma once
#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "platform/d3d9/shader_code.h"

namespace sparkrig {

inline constexpr DWORD kEffectMagic = 0x4F584653;   // "SFXO"
inline constexpr DWORD kEffectVersion = 3;

// The limits that compiler and reader hold to.
inline constexpr DWORD kMaxGlobalsBytes = 65536;   // of one function's block of globals
inline constexpr DWORD kMaxElements = 4096;        // of an array
inline constexpr DWORD kExpressionDepth = 16;      // values that wait while an expression is evaluated

enum class VariableClass : BYTE { Scalar, Vector, Matrix, Structure, String, Texture, Sampler, Shader, Last = Shader };
enum class NumberType : BYTE { Float, Int, Bool, Last = Bool };

inline bool IsNumeric(VariableClass kind) { return kind <= VariableClass::Matrix; }

/// A typed name with its initial value: a parameter's or an annotation's.
struct EffectVariable {
    std::string name;
    VariableClass kind = VariableClass::Scalar;
    NumberType number = NumberType::Float;
    DWORD rows = 1, columns = 1;   // 1 to 4; a vector is one row
    DWORD elements = 0;            // of an array; 0 for a single value
    std::vector<DWORD> words;      // numeric: element by element, row by row; float bits, integers, or 0 and 1
    std::string text;              // of a string

    DWORD WordsPerElement() const { return rows * columns; }
    DWORD WordCount() const { return WordsPerElement() * (elements > 0 ? elements : 1); }
};

enum class StateGroup : BYTE {
    Render,         // state: D3DRENDERSTATETYPE
    TextureStage,   // state: D3DTEXTURESTAGESTATETYPE; index: stage
    SamplerState,   // state: D3DSAMPLERSTATETYPE; index: sampler, unused inside a sampler
    Texture,        // index: sampler, unused inside a sampler
    Sampler,        // index: the sampler that takes the texture and states of a sampler parameter
    Transform,      // state: D3DTRANSFORMSTATETYPE
    Light,          // state: LightMember; index: light
    LightEnable,    // index: light
    Material,       // state: MaterialMember
    VertexShader,
    PixelShader,
    Last = PixelShader,
};

enum class LightMember : DWORD {
    Type,
    Diffuse,
    Specular,
    Ambient,
    Position,
    Direction,
    Range,
    Falloff,
    Attenuation0,
    Attenuation1,
    Attenuation2,
    Theta,
    Phi,
    Last = Phi,
};
enum class MaterialMember : DWORD { Diffuse, Ambient, Specular, Emissive, Power, Last = Power };

/// How the device takes the value of a state.
enum class StateType : BYTE {
    Bool,      // 0 or 1
    Int,       // the number, or one of the state's names
    Float,     // float bits
    Colour,    // 0xAARRGGBB
    Vector,    // four floats
    Matrix,    // a matrix parameter
    Texture,   // a texture parameter or null
    Sampler,   // a sampler parameter
    Shader,    // a function, a shader parameter or null
    Last = Shader,
};

/// Those from Negate on work on each component by itself.
enum class ExpressionCode : BYTE {
    // clang-format off
    Constant, Parameter,
    Element,   // of a parameter: a row of a matrix, a component of a vector; takes its index
    Swizzle,
    Negate, Not, Complement, Absolute, Sign, Floor, Ceiling, Round, Truncate, Fraction, Saturate,
    SquareRoot, InverseRoot, Exp, Exp2, Log, Log2, Log10, Sine, Cosine, Tangent, ArcSine, ArcCosine, ArcTangent,
    Add, Subtract, Multiply, Divide, Modulo, Less, LessEqual, Equal, NotEqual, And, Or,
    BitAnd, BitOr, BitXor, ShiftLeft, ShiftRight, Minimum, Maximum, Power, Step, ArcTangent2,
    Select, Lerp, Clamp, SmoothStep,
    Last = SmoothStep
    // clang-format on
};

/// One step of an expression in postfix order. Values are four floats wide; a scalar stands in all four.
struct ExpressionStep {
    ExpressionCode code = ExpressionCode::Constant;
    DWORD parameter = 0;                  // Parameter, Element
    std::array<float, 4> constant = {};   // Constant
    std::array<BYTE, 4> swizzle = {};     // Swizzle: the component that each of the four takes
};

enum class ValueKind : BYTE { Null, Constant, Expression, Parameter, Function, Last = Function };

struct StateAssignment {
    StateGroup group = StateGroup::Render;
    DWORD state = 0;
    DWORD index = 0;
    StateType type = StateType::Int;
    ValueKind value = ValueKind::Null;
    std::array<DWORD, 4> constant = {};       // Constant: as the type says; one word, or four for a vector
    DWORD reference = 0;                      // Parameter, Function
    std::vector<ExpressionStep> expression;   // Expression; Parameter of an array of shaders: the element
    std::vector<DWORD> matrix;                // Constant of a transform: 16 floats
};

struct EffectParameter {
    EffectVariable variable;
    std::string semantic;
    bool shared = false;
    std::int32_t parent = -1;     // what it is a member of, or the array of structures or objects, an element
    std::int32_t function = -1;   // initial value of a shader parameter
    std::vector<EffectVariable> annotations;
    std::vector<StateAssignment> states;   // of a sampler
};

/// Where a function's block of globals takes the value of a parameter.
/// Scalars and vectors lie as they are, a matrix as one row per 16 bytes, and so does each element of an array.
struct GlobalBinding {
    DWORD parameter = 0;
    DWORD offset = 0;   // bytes
};
struct SamplerBinding {
    DWORD parameter = 0;
    DWORD sampler = 0;   // 0..15
};

enum class FunctionStage : BYTE { Vertex, Pixel, Last = Pixel };

struct EffectFunction {
    FunctionStage stage = FunctionStage::Vertex;
    DWORD version = 0;         // 0xMMmm, such as 0x0101
    std::string call;          // "vs_1_1 Entry(2)", as the effect asks for it
    std::string unsupported;   // why the layer cannot run it, as a whole message; then without code
    ShaderCode code;
    std::vector<GlobalBinding> globals;
    std::vector<SamplerBinding> samplers;
};

struct EffectPass {
    std::string name;
    std::vector<EffectVariable> annotations;
    std::vector<StateAssignment> states;   // in the order of their assignment
};

struct EffectTechnique {
    std::string name;
    std::vector<EffectVariable> annotations;
    std::vector<EffectPass> passes;
};

struct EffectFile {
    std::vector<EffectParameter> parameters;   // members follow their structure
    std::vector<EffectFunction> functions;
    std::vector<EffectTechnique> techniques;
    std::string warnings;   // of the compiler, a line each, but those about functions that the layer cannot run
};

/// Bytes that a parameter takes in a block of globals.
DWORD GlobalBytes(const EffectVariable& variable);

std::vector<BYTE> WriteEffectFile(const EffectFile& effect);

/// By the first bytes; the rest may be damaged.
bool IsCompiledEffect(std::span<const BYTE> bytes);

/// Reads and checks everything: after success every index, count and size in `effect` is in range.
/// On failure `error` says what is wrong.
bool ReadEffectFile(std::span<const BYTE> bytes, EffectFile& effect, std::string& error);

}   // namespace sparkrig
