// The GLSL text of the programs: the fixed vertex pipeline, the fixed texture stages, and what is put around the
// program's own vertex and pixel functions.
#pragma once
#include <string>

#include "platform/d3d9/shader_code.h"
#include "platform/d3d9_gl/shader_key.h"

namespace sparkrig {

/// The vertex shader of a key; `code` is the key's vertex function, null for the fixed pipeline.
std::string VertexGlsl(const VertexKey& key, const ShaderCode* code);
/// The pixel shader of a key; `code` is the key's pixel function, null for the texture stages.
std::string PixelGlsl(const PixelKey& key, const ShaderCode* code);

// ---- For the generators

/// The function's text as a shader of its own, with `#version 450` in front.
std::string WithVersion(const std::string& glsl);
/// The same with its `main` renamed to ShaderMain, to be called by a main that is to follow.
std::string WithRenamedMain(const std::string& glsl);
/// The name under which the text declares the varying at a location, as "layout(location = 2) in vec4 NAME;" with any
/// qualifiers before the direction, "in" or "out". Empty if it does not.
std::string DeclaredVarying(const std::string& glsl, const char* direction, int location);
/// The expression of the fog factor at a distance, before it is clamped.
std::string FogFormula(FogSource fog, const char* distance);

}   // namespace sparkrig
