// An effect after parsing: the compiled form, still without code, and what the compilation of its functions needs.
#pragma once
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/d3dx/effect_file.h"
#include "tools/fxc/token.h"

namespace sparkrig::fxc {

/// The dimensions of a sampler; a plain `sampler` has none until its use shows them.
enum class SamplerShape { Unknown, Flat, Cube, Volume };

struct Type {
    VariableClass kind = VariableClass::Scalar;
    NumberType number = NumberType::Float;
    DWORD rows = 1, columns = 1;
    DWORD elements = 0;   // of an array that a typedef names
    SamplerShape shape = SamplerShape::Unknown;
    std::string structure;   // of a structure
    Tokens spelling;         // in the language of the functions
};

struct StructureMember {
    std::string name;
    Type type;
    DWORD elements = 0;
};

/// A value that is known while an effect is compiled: numbers, row by row and element by element.
struct Constant {
    std::vector<double> values;
    DWORD rows = 1, columns = 1;
    DWORD elements = 0;
    bool whole = false;   // of integers, whose quotients are cut
};

/// A parameter of a function.
struct FunctionParameter {
    std::string name;
    bool uniform = false;
    Type type;
    Tokens direction;    // in, out, inout and the ways of interpolation
    Tokens dimensions;   // of an array
    Tokens semantic;     // with its colon
    Tokens default_value;
};

struct FunctionSignature {
    Tokens result;                     // its type
    std::optional<Type> result_type;   // none for void
    Tokens result_semantic;
    std::vector<FunctionParameter> parameters;
};

/// "compile target entry(arguments)", or without a target what the layer can not run. The n-th one is compiled to
/// EffectFile::functions[n].
struct FunctionRequest {
    Place place;
    std::string target;
    std::string entry;
    std::vector<Tokens> arguments;
};

/// The names that are visible in an effect.
struct Symbols {
    std::map<std::string, DWORD, std::less<>> parameters;     // index
    std::map<std::string, Constant, std::less<>> constants;   // of static and const variables
    std::map<std::string, Type, std::less<>> types;           // typedefs
    std::map<std::string, std::vector<StructureMember>, std::less<>> structures;
    std::map<std::string, std::vector<FunctionSignature>, std::less<>> functions;   // all of one name
    std::map<std::string, std::vector<StateAssignment>, std::less<>> state_blocks;
};

struct ParsedEffect {
    EffectFile file;
    Symbols symbols;
    std::vector<FunctionRequest> requests;
    std::map<DWORD, DWORD> sampler_registers;       // given by register(sN), by parameter
    std::map<std::string, SamplerShape> samplers;   // by the name that the code has for them
    std::map<std::string, DWORD> places;            // parameters by the path that the code has for them
    std::set<std::string> unused_states;            // that were named
    bool later_models = false;                      // parts of it are for them
    Tokens code;                                    // declarations and functions for the compiler
};

}   // namespace sparkrig::fxc
