// Draws particles in batches: one texture, one blend mode, one billboard mode, one draw call.
#pragma once
#include <vector>

#include "base/error.h"
#include "effects/particle_vertices.h"
#include "gfx/geometry/vertex_list.h"
#include "gfx/shaders/shader_effect.h"

namespace sparkrig {

class KRN_Gfx;
class KRN_Texture;

class EffectParticleSystem : public ErrorClass {
  public:
    EffectParticleSystem() { SetName("EffectParticleSystem"); }

    /// Borrows the device; loads "shader\EffectParticle.fxo". Buffer mode 1 takes a managed, 2 a dynamic vertex buffer,
    /// every other mode one in system memory.
    void Init(KRN_Gfx& gfx, int capacity, bool force_software_processing, int buffer_mode);
    /// Again, when its file has changed. What fails is an error and leaves the shader that there is.
    void LoadShader();
    void Release();

    /// Of the particles that are added from now on. A new texture, by name or by frame, flushes the batch first.
    void SetBatchTexture(KRN_Texture* texture);
    void SetBillboardMode(int mode) { billboard_mode_ = mode; }
    void SetBlendMode(int mode) { blend_mode_ = mode; }
    int BatchBillboardMode() const { return billboard_mode_; }
    int BatchBlendMode() const { return blend_mode_; }

    /// Borrowed until the next Flush. A particle beyond the capacity is dropped with a warning, given once.
    void AddParticle(const DrawRecord& particle) {
        if (IsFull()) return WarnFull();
        particles_[count_++] = &particle;
    }
    bool IsEmpty() const { return count_ == 0; }
    bool IsFull() const { return count_ == particles_.size(); }
    /// Draws the batch, if it holds anything, and forgets its texture.
    void Flush();
    /// Of the flushes since StartFrame.
    int DrawCalls() const { return draw_calls_; }
    void StartFrame() { draw_calls_ = 0; }

  private:
    void CreateVertices(int capacity, bool force_software_processing, int buffer_mode);
    D3DXHANDLE FindSemantic(const KRN_ShaderEffect& shader, const char* semantic) const;
    void WarnFull();
    void DrawBatch();
    void BindTexture();
    void FillVertices();
    void DrawQuads();
    D3DXMATRIX BillboardMatrix() const;

    KRN_Gfx* gfx_ = nullptr;                     // borrowed
    std::vector<const DrawRecord*> particles_;   // borrowed, the first count_
    std::size_t count_ = 0;
    KRN_ShaderEffect shader_;
    D3DXHANDLE billboard_matrix_ = nullptr, use_particle_position_ = nullptr;
    KRN_VertexListTemp<EffectParticleVertex> vertices_;
    KRN_Texture* texture_ = nullptr;   // borrowed from the sub-effect whose particles are waiting
    int texture_frame_ = 0;
    int draw_calls_ = 0;
    int blend_mode_ = 0, billboard_mode_ = 0;
    bool warned_ = false;
};

}   // namespace sparkrig
