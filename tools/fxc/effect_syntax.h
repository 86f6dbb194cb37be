// An effect after parsing: the compiled form, still without code, and what the compilation of its functions needs.
#pragma once
#include <map>
#include <optional>
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
    SamplerShape shape = SamplerShape::Unknown;
    std::string structure;   // of a structure
    Tokens spelling;         // in the language of the functions
};

struct StructureMember {
    std::string name;
    Type type;
    DWORD elements = 0;
};

/// A parameter of a function.
struct FunctionParameter {
    std::string name;
    bool uniform = false;
    Tokens declaration;   // without `uniform` and default value
};

struct FunctionSignature {
    Tokens result;   // its type
    Tokens result_semantic;
    std::vector<FunctionParameter> parameters;
};

/// "compile target entry(arguments)". The n-th one is compiled to EffectFile::functions[n].
struct FunctionRequest {
    Place place;
    std::string target;
    std::string entry;
    std::vector<Tokens> arguments;
};

/// The names that are visible in an effect.
struct Symbols {
    std::map<std::string, DWORD, std::less<>> parameters;   // index
    std::map<std::string, double, std::less<>> constants;   // static const numbers
    std::map<std::string, Type, std::less<>> types;         // typedefs
    std::map<std::string, std::vector<StructureMember>, std::less<>> structures;
    std::map<std::string, FunctionSignature, std::less<>> functions;
};

struct ParsedEffect {
    EffectFile file;
    Symbols symbols;
    std::vector<FunctionRequest> requests;
    std::map<DWORD, DWORD> sampler_registers;       // given by register(sN), by parameter
    std::map<std::string, SamplerShape> samplers;   // by name
    Tokens code;                                    // declarations and functions for the compiler
};

}   // namespace sparkrig::fxc
