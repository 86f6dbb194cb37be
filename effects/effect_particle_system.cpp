#include "effects/effect_particle_system.h"

#include "gfx/device/with_restore.h"
#include "gfx/gfx.h"
#include "gfx/textures/texture.h"

namespace sparkrig {
namespace {

constexpr char kShaderFile[] = "shader\\EffectParticle.fxo";
constexpr char kBillboardMatrix[] = "BillboardMatrix", kUseParticlePosition[] = "UseParticlePos";
constexpr DWORD kLeastShaderVersion = 0xFFFE0101;   // vertex shaders 1.1
constexpr int kFullAlpha = 255;
constexpr int kTrianglesPerParticle = 2;
constexpr float kBeforeCamera = 100;   // units along the view direction

/// Camera space with its origin before the camera, in place of the view.
constexpr D3DXMATRIX kBeforeCameraView = {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, kBeforeCamera, 1}}};

}   // namespace

void EffectParticleSystem::Init(KRN_Gfx& gfx, int capacity, bool force_software_processing, int buffer_mode) {
    gfx_ = &gfx;
    LoadShader();
    particles_.resize(static_cast<std::size_t>(capacity));
    CreateVertices(capacity, force_software_processing, buffer_mode);
}

void EffectParticleSystem::LoadShader() {
    KRN_ShaderEffect trial;   // what can not be loaded leaves the shader that there is
    gfx_->LoadShaderEffect(trial, kShaderFile, true, 0, false);
    for (const char* semantic : {kBillboardMatrix, kUseParticlePosition}) FindSemantic(trial, semantic);
    gfx_->LoadShaderEffect(shader_, kShaderFile, true, 0, false);
    billboard_matrix_ = FindSemantic(shader_, kBillboardMatrix);
    use_particle_position_ = FindSemantic(shader_, kUseParticlePosition);
}

D3DXHANDLE EffectParticleSystem::FindSemantic(const KRN_ShaderEffect& shader, const char* semantic) const {
    const D3DXHANDLE handle = shader.ParameterBySemantic(semantic);
    if (!handle) Error("Missing semantic '%s' in shader", semantic);
    return handle;
}

void EffectParticleSystem::CreateVertices(int capacity, bool force_software_processing, int buffer_mode) {
    const bool dynamic = buffer_mode == 2;
    const bool software = force_software_processing || gfx_->Caps().VertexShaderVersion < kLeastShaderVersion;
    DWORD usage = D3DUSAGE_WRITEONLY;
    if (software) usage |= D3DUSAGE_SOFTWAREPROCESSING;
    if (dynamic) usage |= D3DUSAGE_DYNAMIC;
    const auto elements = static_cast<UINT>(capacity * kVerticesPerParticle);
    gfx_->CreateVertexList(&vertices_, elements, static_cast<int>(usage), !dynamic && buffer_mode != 1);
    InitParticleVertices(vertices_.Lock(0, elements, 0), static_cast<std::size_t>(capacity));
    vertices_.Unlock();
}

void EffectParticleSystem::Release() {
    shader_.Release();
    vertices_.ReleaseBuffer();
    texture_ = nullptr;
    count_ = 0;
}

void EffectParticleSystem::SetBatchTexture(KRN_Texture* texture) {
    const int frame = texture->CurrentFrame();
    if (texture_ && texture_frame_ == frame && (texture_ == texture || texture_->Name() == texture->Name())) return;
    Flush();
    texture_ = texture;
    texture_frame_ = frame;
}

void EffectParticleSystem::WarnFull() {
    if (!warned_) Warning("Stack full");
    warned_ = true;
}

void EffectParticleSystem::Flush() {
    WithRestore([this] { DrawBatch(); },
                [this] {
                    count_ = 0;
                    texture_ = nullptr;
                });
}

void EffectParticleSystem::DrawBatch() {
    if (IsEmpty()) return;
    ++draw_calls_;
    gfx_->SetBlendingMode(blend_mode_, kFullAlpha, 0);
    BindTexture();
    FillVertices();
    DrawQuads();
}

/// The frame of the batch: the texture, which sub-effects may share, can have gone on to another one since.
void EffectParticleSystem::BindTexture() {
    if (!texture_) return gfx_->SetTexture(nullptr, -1);
    const int present = texture_->CurrentFrame();
    if (present == texture_frame_) return gfx_->SetTexture(texture_, -1);
    texture_->SelectSequenceFrame(texture_frame_);
    WithRestore([this] { gfx_->SetTexture(texture_, -1); }, [&] { texture_->SelectSequenceFrame(present); });
}

void EffectParticleSystem::FillVertices() {
    EffectParticleVertex* vertices = vertices_.Lock(0, static_cast<UINT>(count_) * kVerticesPerParticle, 0);
    FillParticles({particles_.data(), count_}, vertices);
    vertices_.Unlock();
}

void EffectParticleSystem::DrawQuads() {
    const D3DXMATRIX view = gfx_->ViewMatrix();
    const bool before_camera = billboard_mode_ == static_cast<int>(BillboardMode::BeforeCamera);
    const int culling = gfx_->CullingMode();
    shader_.SetParameter(billboard_matrix_, BillboardMatrix());
    shader_.SetParameter(use_particle_position_, !before_camera);
    const auto draw = [&] {
        if (before_camera) gfx_->SetTransform(D3DTS_VIEW, kBeforeCameraView);
        gfx_->SetCullingMode(0);
        gfx_->SetShaderEffect(&shader_);
        gfx_->DrawTriangleList(vertices_, 0, static_cast<int>(count_) * kTrianglesPerParticle);
    };
    WithRestore(draw, [&] {
        gfx_->SetShaderEffect(nullptr);
        gfx_->SetCullingMode(culling);
        if (before_camera) gfx_->SetTransform(D3DTS_VIEW, view);
    });
}

/// From the plane of the quads to the world. A mode beyond the four faces the camera.
D3DXMATRIX EffectParticleSystem::BillboardMatrix() const {
    D3DXMATRIX matrix = kIdentityMatrix;
    const auto mode = static_cast<BillboardMode>(billboard_mode_);
    if (mode == BillboardMode::Flat || mode == BillboardMode::BeforeCamera) return matrix;
    const D3DXMATRIX& view = gfx_->ViewMatrix();
    D3DXMatrixInverse(&matrix, nullptr, &view);
    if (mode == BillboardMode::Upright) {
        matrix.m[1][0] = matrix.m[1][1] = 0;
        matrix.m[1][2] = -1;
    }
    return matrix;
}

}   // namespace sparkrig
