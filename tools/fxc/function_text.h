#pragma once
#include <string>

#include "tools/fxc/effect_syntax.h"

namespace sparkrig::fxc {

struct FunctionText {
    std::string text;    // with #line directives whose file names are the sources' numbers
    std::string entry;   // the function to start with
};

/// The source of one function to compile: all code of the effect, and, when the function has uniform parameters, a
/// function around it that gives them their arguments. On failure `error` says what is wrong with the request.
bool WriteFunctionText(const ParsedEffect& effect, const FunctionRequest& request, FunctionText& out,
                       std::string& error);

}   // namespace sparkrig::fxc
