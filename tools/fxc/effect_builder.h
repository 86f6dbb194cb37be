#pragma once
#include <optional>
#include <string>

#include "platform/d3dx/effect_file.h"
#include "tools/fxc/diagnostics.h"

namespace sparkrig::fxc {

/// Compiles an effect file. None when there were errors.
std::optional<EffectFile> BuildEffect(const std::string& path, Diagnostics& diagnostics);

}   // namespace sparkrig::fxc
