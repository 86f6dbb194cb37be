// Where the parameters of a function lie in its uniform block.
#pragma once
#include <spirv_cross/spirv_glsl.hpp>

namespace sparkrig::fxc {

/// Moves the members of a uniform block, and those of structures in it, to where the layout std140 has them. The
/// compiler of functions packs them closer (a float3 right behind a float), which GLSL can not say of structures in a
/// block.
void LayOutBlock(spirv_cross::Compiler& compiler, spirv_cross::TypeID block);

}   // namespace sparkrig::fxc
