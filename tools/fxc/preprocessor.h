#pragma once
#include <string>

#include "tools/fxc/diagnostics.h"

namespace sparkrig::fxc {

/// The tokens of an effect after #include, #define and conditions; the last one is of kind End. Files are included
/// from beside the file that names them. Faults are reported and what is good goes on.
Tokens Preprocess(const std::string& path, Diagnostics& diagnostics);

}   // namespace sparkrig::fxc
