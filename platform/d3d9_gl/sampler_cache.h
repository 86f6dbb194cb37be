// OpenGL sampler objects by sampler states. A handful exists, each is made once.
#pragma once
#include <epoxy/gl.h>

#include <array>
#include <unordered_map>

#include "platform/d3d9_gl/shader_key.h"

namespace sparkrig {

class SamplerCache {
  public:
    using States = std::array<DWORD, kSamplerStateCount>;

    GLuint For(const States& states, float max_anisotropy);

  private:
    std::unordered_map<States, GLuint, KeyHash> samplers_;
};

}   // namespace sparkrig
