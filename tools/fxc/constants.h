#pragma once
#include <optional>
#include <span>
#include <string_view>

#include "tools/fxc/effect_syntax.h"

namespace sparkrig::fxc {

Constant MakeScalar(double value, bool whole);
/// The constant's numbers for each component; a shorter operand's first number stands for those that it lacks, and of
/// two vectors the shorter counts.
Constant Apply(ExpressionCode code, std::span<const Constant> operands);
/// A row of a matrix, a component of a vector, an element of an array; 0 outside of it.
Constant ElementOf(const Constant& constant, double index);
/// The constant as a value of a type: spread, cut, or rounded towards zero. None when it has too few numbers.
std::optional<Constant> Converted(Constant constant, const Type& type);

/// An intrinsic function: one operation on each component, or a function of whole vectors.
struct Intrinsic {
    const char* name;
    std::size_t operands;
    ExpressionCode code;
    Constant (*whole)(std::span<const Constant>) = nullptr;   // of whole vectors; known constants only
};
/// Null for any other name.
const Intrinsic* FindIntrinsic(std::string_view name);

}   // namespace sparkrig::fxc
