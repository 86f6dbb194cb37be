#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "platform/d3dx/effect_file.h"

namespace sparkrig::fxc {

/// Where a message of the compiler points; file -1 when it points nowhere.
struct CodeError {
    int file = -1;
    int line = 0;
    std::string message;
};

/// Compiles a function to SPIR-V. The numbers in the text's #line directives are the files of its errors.
/// On failure `error` holds the first message; the further ones are mostly its consequences.
bool CompileFunction(const std::string& text, const std::string& entry, FunctionStage stage,
                     std::vector<std::uint32_t>& spirv, CodeError& error);

/// Whether the text that was made of a function is one.
bool IsGoodGlsl(const std::string& text, FunctionStage stage);

}   // namespace sparkrig::fxc
