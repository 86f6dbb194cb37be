// Rewrites the effect's code where the compiler of functions does not take it as it is written. Each step goes over all
// the tokens once; none changes what a program of the language means.
#pragma once
#include "tools/fxc/diagnostics.h"
#include "tools/fxc/effect_syntax.h"

namespace sparkrig::fxc {

/// All steps, in their order.
void AdaptCode(ParsedEffect& effect, Diagnostics& diagnostics);

/// Leaves out the functions that no pass needs; in an effect with parts for later models they may be in its language.
void DropUnusedFunctions(ParsedEffect& effect);
/// Reports an operator that stands without its operand: the compiler does not survive some of them.
void CheckOperands(const Tokens& code, Diagnostics& diagnostics);
/// A parameter that a function assigns becomes a variable that starts with the parameter's value.
void CopyAssignedGlobals(ParsedEffect& effect);
/// Plain samplers get the shape that their use shows, elements of arrays of samplers become samplers of their own.
void ShapeSamplers(ParsedEffect& effect, Diagnostics& diagnostics);
/// Matrices of one row or one column become vectors.
void FlattenThinMatrices(Tokens& code);
/// A loop's variable that is read after the loop is declared before it.
void WidenLoopVariables(Tokens& code);
/// Lists in braces get the shape of what they are for: flat or nested, they become constructors of its elements.
void ShapeLists(ParsedEffect& effect);
/// Operators and intrinsic functions of matrices that work on each element by itself become functions of their rows.
void OperateOnElements(ParsedEffect& effect);
/// Matrix elements by name, constructors that are assigned, vectors as arrays, matrices cut to a smaller size.
void AdaptMatrices(ParsedEffect& effect, Diagnostics& diagnostics);

}   // namespace sparkrig::fxc
