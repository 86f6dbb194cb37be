#include "gfx/gfx.h"

#include <cstdarg>
#include <cstdio>

#include "gfx/device/display_modes.h"
#include "gfx/device/with_restore.h"
#include "gfx/device_life.h"
#include "gfx/geometry/device_mesh.h"
#include "gfx/gfx_parts.h"
#include "gfx/scene_frame.h"
#include "scene/camera.h"
#include "scene/light.h"
#include "scene/mesh.h"

namespace sparkrig {

KRN_Gfx::KRN_Gfx(CreateDirect3D create, const GfxEnvironment& environment) {
    SetName("KRN_Gfx");
    parts_ = std::make_unique<GfxParts>(*this, create, environment);
}

KRN_Gfx::~KRN_Gfx() = default;

// ---- Device

int KRN_Gfx::InitDevice(HWND window, int windowed, const D3DDISPLAYMODE* mode, int z_buffer_bits, int vsync,
                        int vertex_processing, int device_select, int multithreaded) {
    DeviceRequest request = {};
    request.presentation.window = window;
    request.presentation.windowed = windowed != 0;
    request.presentation.z_buffer_bits = z_buffer_bits;
    request.presentation.vsync = vsync;
    request.mode = mode;
    request.choice = {vertex_processing, device_select, multithreaded};
    sparkrig::InitDevice(*parts_, request);
    return 1;
}

int KRN_Gfx::ResetDevice(const D3DDISPLAYMODE* mode, int vsync) { return sparkrig::ResetDevice(*parts_, mode, vsync); }
int KRN_Gfx::PresentFrame() { return sparkrig::PresentFrame(*parts_); }

int KRN_Gfx::BeginScene() { return sparkrig::BeginScene(*parts_); }
int KRN_Gfx::EndScene() { return sparkrig::EndScene(*parts_); }
int KRN_Gfx::Clear(D3DCOLOR colour, float z, const D3DRECT* rectangle) {
    return parts_->targets.Clear(colour, z, rectangle);
}
int KRN_Gfx::ClearZBuffer(float z, const D3DRECT* rectangle) { return parts_->targets.ClearZBuffer(z, rectangle); }
float KRN_Gfx::GetFrameRate() const { return parts_->frames.Rate(); }
void KRN_Gfx::GetAdapterDisplayMode(D3DDISPLAYMODE& mode) const {
    sparkrig::GetAdapterDisplayMode(parts_->graphics, mode);
}
bool KRN_Gfx::FindDisplayMode(D3DDISPLAYMODE& mode) const { return sparkrig::FindDisplayMode(parts_->graphics, mode); }
bool KRN_Gfx::CheckTextureFormat(D3DFORMAT format, int usage_mode) const {
    return sparkrig::CheckTextureFormat(parts_->graphics, OpaqueFormat(), format, usage_mode);
}
void KRN_Gfx::GetCaps(D3DCAPS9& caps) const { caps = parts_->graphics.Caps(); }
const D3DCAPS9& KRN_Gfx::Caps() const { return parts_->graphics.Caps(); }
D3DFORMAT KRN_Gfx::AlphaFormat() const { return AlphaFormatOf(DisplayFormat()); }
D3DFORMAT KRN_Gfx::OpaqueFormat() const { return OpaqueFormatOf(DisplayFormat()); }
D3DFORMAT KRN_Gfx::DisplayFormat() const { return parts_->presentation.mode.Format; }
bool KRN_Gfx::HardwareVertexProcessing() const { return parts_->graphics.HardwareProcessing(); }
double KRN_Gfx::DeviceSeconds() const { return parts_->graphics.Environment().seconds() - parts_->frames.Created(); }
IDirect3DDevice9* KRN_Gfx::Device() const { return parts_->graphics.Device(); }
ID3DXEffectPool* KRN_Gfx::EffectPool() const { return parts_->graphics.EffectPool(); }

void KRN_Gfx::ReadBackBuffer(std::vector<D3DCOLOR>& pixels, UINT& width, UINT& height) {
    parts_->targets.Read(pixels);
    width = parts_->targets.Width();
    height = parts_->targets.Height();
}

// ---- States

int KRN_Gfx::SetBlendingMode(int mode, int alpha, int stage) { return parts_->states.blending.Set(mode, alpha, stage); }
int KRN_Gfx::BlendingMode() const { return parts_->states.blending.Mode(); }
int KRN_Gfx::BlendingAlpha() const { return parts_->states.blending.Alpha(); }
int KRN_Gfx::SetRenderSource(int source, int stage, D3DCOLOR colour) {
    return parts_->states.render_sources.Set(source, stage, colour);
}
void KRN_Gfx::SetCullingMode(int mode) { parts_->states.culling.Set(mode); }
int KRN_Gfx::CullingMode() const { return parts_->states.culling.Mode(); }
void KRN_Gfx::SetZBufferMode(int mode) { parts_->states.depth.SetMode(mode); }
int KRN_Gfx::ZBufferMode() const { return parts_->states.depth.Mode(); }
void KRN_Gfx::SetZWrite(bool on) { parts_->states.depth.SetWrite(on); }
bool KRN_Gfx::ZWrite() const { return parts_->states.depth.Write(); }
void KRN_Gfx::PushZBufferOff() { parts_->states.depth.PushOff(); }
void KRN_Gfx::PopZBufferOff() { parts_->states.depth.PopOff(); }
int KRN_Gfx::SetMipmapMode(int mode, float bias, int stage) {
    return parts_->states.samplers.SetMipmaps(mode, bias, stage);
}
int KRN_Gfx::MipmapMode() const { return parts_->states.samplers.MipmapMode(); }
float KRN_Gfx::MipmapBias() const { return parts_->states.samplers.MipmapBias(); }
int KRN_Gfx::SetTextureFilter(int preset, int stage) { return parts_->states.samplers.SetPreset(preset, stage); }
int KRN_Gfx::SetAddressModeU(DWORD mode, int stage) { return parts_->states.samplers.SetAddressU(mode, stage); }
int KRN_Gfx::SetAddressModeV(DWORD mode, int stage) { return parts_->states.samplers.SetAddressV(mode, stage); }
void KRN_Gfx::SetFillMode(int mode, const PointSpriteSettings* settings) {
    parts_->states.points.SetFillMode(mode, settings);
}
void KRN_Gfx::SetPointSprite(const PointSpriteSettings& settings, bool device_limit) {
    parts_->states.points.Apply(settings, device_limit);
}
void KRN_Gfx::SetLighting(bool on, const D3DCOLOR* colour) { parts_->states.lighting.Set(on, colour); }
bool KRN_Gfx::Lighting() const { return parts_->states.lighting.On(); }
void KRN_Gfx::EndLightingOverride() { parts_->states.lighting.EndOverride(); }
void KRN_Gfx::PushLightingOff() { parts_->states.lighting.PushOff(); }
void KRN_Gfx::PopLightingOff() { parts_->states.lighting.PopOff(); }
void KRN_Gfx::SetAmbient(D3DCOLOR colour) { parts_->states.lighting.SetAmbient(colour); }
void KRN_Gfx::SetSpecular(bool on) { parts_->states.lighting.SetSpecular(on); }
void KRN_Gfx::SetNormalizeNormals(bool on) { parts_->states.lighting.SetNormalizeNormals(on); }
void KRN_Gfx::SetAlphaTest(int mode, int reference) { parts_->states.alpha_cutoff.Set(mode, reference); }
void KRN_Gfx::SetTextureFactor(D3DCOLOR colour) { parts_->states.texture_factor.Set(colour); }
void KRN_Gfx::SetFog(const FogSettings& settings) { parts_->states.fog.Set(settings); }
void KRN_Gfx::SetFogEnable(bool on) { parts_->states.fog.Enable(on); }
bool KRN_Gfx::FogEnable() const { return parts_->states.fog.Enabled(); }
const FogSettings& KRN_Gfx::Fog() const { return parts_->states.fog.Settings(); }
void KRN_Gfx::SetMaterial(const D3DMATERIAL9& material) { parts_->states.lighting.SetMaterial(material); }
const D3DMATERIAL9& KRN_Gfx::Material() const { return parts_->states.lighting.Material(); }
void KRN_Gfx::LockMaterial(int lock, bool on) { parts_->states.lighting.LockMaterial(lock, on); }
int KRN_Gfx::SetLight(int index, KRN_Light& light, double time, bool evaluate) {
    if (light.off) return 0;
    if (evaluate) {
        light.Animate(time, true, false);
    } else {
        light.record.Position = light.Eye();
        light.record.Direction = light.ViewDirection();
    }
    parts_->states.lights.Set(index, light.record);
    return 1;
}
void KRN_Gfx::SetLightEnable(int index, bool on) { parts_->states.lights.SetEnable(index, on); }
void KRN_Gfx::SetVertexFormat(DWORD fvf) { parts_->states.bindings.SetVertexFormat(fvf); }
void KRN_Gfx::SetStreamSource(IDirect3DVertexBuffer9* buffer, UINT stride) {
    parts_->states.bindings.SetStreamSource(buffer, stride);
}
void KRN_Gfx::SetIndices(IDirect3DIndexBuffer9* buffer) { parts_->states.bindings.SetIndices(buffer); }
void KRN_Gfx::SetRenderTarget(IDirect3DSurface9* surface, DWORD index) { parts_->targets.Set(surface, index); }
bool KRN_Gfx::SetGammaRamp(const D3DGAMMARAMP* ramp, bool calibrate) { return parts_->gamma.Set(ramp, calibrate); }
void KRN_Gfx::SetColourOverride(const D3DCOLOR* colour) { parts_->meshes.SetColourOverride(colour); }
void KRN_Gfx::SetSoftwareVertexProcessing(bool on) { parts_->states.bindings.SetSoftwareProcessing(on); }

// ---- Transforms and view

void KRN_Gfx::SetTransform(D3DTRANSFORMSTATETYPE kind, const D3DXMATRIX& matrix) {
    parts_->states.transforms.Set(kind, matrix);
}
void KRN_Gfx::ResetWorldTransform() { parts_->states.transforms.Set(D3DTS_WORLD, kIdentityMatrix); }
const D3DXMATRIX& KRN_Gfx::WorldMatrix() const { return parts_->states.transforms.World(); }
const D3DXMATRIX& KRN_Gfx::ViewMatrix() const { return parts_->states.transforms.View(); }
const D3DXMATRIX& KRN_Gfx::ProjectionMatrix() const { return parts_->states.transforms.Projection(); }
void KRN_Gfx::SetProjection(float z_near, float z_far, float fov, float aspect) {
    parts_->states.transforms.SetProjection(z_near, z_far, fov, aspect);
}
void KRN_Gfx::SetMirroredProjection() { parts_->states.transforms.MirrorProjection(); }

int KRN_Gfx::SetViewPort(int x1, int y1, int x2, int y2, float min_z, float max_z) {
    const D3DVIEWPORT9 viewport = {static_cast<DWORD>(x1),
                                   static_cast<DWORD>(y1),
                                   static_cast<DWORD>(x2 - x1),
                                   static_cast<DWORD>(y2 - y1),
                                   min_z,
                                   max_z};
    return SetViewport(*parts_, viewport);
}

const D3DVIEWPORT9& KRN_Gfx::Viewport() const { return parts_->states.transforms.Viewport(); }

void KRN_Gfx::SetView(const KRN_Camera& camera) {
    parts_->states.transforms.SetView(camera.Eye(), camera.ViewDirection(), camera.Up());
}

D3DXVECTOR3 KRN_Gfx::CameraPosition() const { return parts_->states.transforms.CameraPosition(); }
float KRN_Gfx::DistanceToCamera(const D3DXVECTOR3& point) const {
    const D3DXVECTOR3 offset = point - parts_->states.transforms.CameraPosition();
    return D3DXVec3Length(offset);
}
D3DXVECTOR3 KRN_Gfx::PixelRay(int x, int y) const { return parts_->states.transforms.PixelRay(x, y); }
bool KRN_Gfx::SphereInView(const D3DXVECTOR3& centre, float radius) const {
    return SphereVisible(parts_->states.transforms.Planes(), centre, radius);
}
bool KRN_Gfx::BoundsInView(const KRN_ClipObject& bounds, const D3DXMATRIX& world) const {
    return BoundsVisible(parts_->states.transforms.Planes(), bounds, world);
}

// ---- Textures

void KRN_Gfx::SetBasePath(const char* path) { parts_->texture_loader.Paths().SetBasePath(path); }
void KRN_Gfx::SetDefaultTexturePath(const char* path) { parts_->texture_loader.Paths().SetDefaultTexturePath(path); }
void KRN_Gfx::LoadTexture(KRN_Texture* texture, const char* file, D3DCOLOR colour_key, int parameter, int format,
                          int mip_levels) {
    parts_->texture_loader.LoadTexture(texture, file, colour_key, parameter, format, mip_levels);
}
void KRN_Gfx::CreateTexture(KRN_Texture* texture, UINT width, UINT height, int mode, int format, int mip_levels) {
    parts_->texture_loader.CreateTexture(texture, width, height, mode, format, mip_levels);
}
void KRN_Gfx::SetTexture(KRN_Texture* texture, int stage) { parts_->texture_stages.SetTexture(texture, stage); }
void KRN_Gfx::SetStagesInUse(int count) { parts_->texture_stages.SetStagesInUse(count); }
VideoSource& KRN_Gfx::Video(int index) {
    if (!VideoSources::IsSlot(index)) Error("Invalid video source: %i", index);
    return parts_->videos[index];
}
TextureSettings& KRN_Gfx::TextureOptions() { return parts_->texture_loader.Settings(); }
UINT KRN_Gfx::CreatedTextures() const { return parts_->textures.Created(); }
void KRN_Gfx::UpdateVideoSource(int index) { parts_->videos.Update(*this, index); }
KRN_TextureCatalogue& KRN_Gfx::Catalogue() { return parts_->catalogue; }

// ---- Shader effects

bool KRN_Gfx::LoadShaderEffect(KRN_ShaderEffect& effect, const char* file, bool required, DWORD flags, bool use_pool) {
    return parts_->shader_effects.Load(effect, file, required, flags, use_pool);
}
bool KRN_Gfx::LoadShaderEffect(KRN_ShaderEffect& effect, const ShaderSearchList& candidates, bool required, DWORD flags,
                               bool use_pool) {
    return parts_->shader_effects.Load(effect, candidates, required, flags, use_pool);
}
void KRN_Gfx::SetShaderFolder(const char* folder) { parts_->shader_effects.SetProgramFolder(folder); }
void KRN_Gfx::SetShaderSharing(bool on) { parts_->shader_effects.SetSharing(on); }
void KRN_Gfx::SetGameTimeSource(float (*source)()) { parts_->shader_effects.SetGameTimeSource(source); }
void KRN_Gfx::SetShaderEffect(KRN_ShaderEffect* effect) { parts_->effects.SetCurrent(effect); }
void KRN_Gfx::SetShaderEffect2D(KRN_ShaderEffect* effect) { parts_->effects.SetFor2D(effect); }
void KRN_Gfx::SetSkinningEffect(KRN_ShaderEffect* effect) { parts_->effects.SetSkinning(effect); }
KRN_ShaderEffect* KRN_Gfx::EffectForDraw() const { return parts_->effects.ForDraw(); }

void KRN_Gfx::SetFrameCache(bool on) { parts_->frame_cache.on = on; }

// ---- Post-render effects and screen buffers

void KRN_Gfx::InitPostRenderEffects() { parts_->post_render.Init(); }
void KRN_Gfx::ReleasePostRenderEffects() { sparkrig::ReleasePostRenderEffects(*parts_); }
bool KRN_Gfx::PostRenderEffects() const { return parts_->post_render.On(); }
void KRN_Gfx::SetMultisampleTarget(bool wish) { parts_->post_render.SetMultisampleTarget(wish); }
bool KRN_Gfx::MultisampleTarget() const { return parts_->post_render.MultisampleTarget(); }
IDirect3DTexture9* KRN_Gfx::SceneTexture() { return parts_->post_render.SceneTexture(); }
bool KRN_Gfx::DrawScreenEffect(KRN_ShaderEffect& effect) { return sparkrig::DrawScreenEffect(*parts_, effect); }
bool KRN_Gfx::DrawScene(KRN_ShaderEffect& effect) { return sparkrig::DrawScene(*parts_, effect); }
IDirect3DTexture9* KRN_Gfx::GetScreenCopy(bool viewport_only) {
    return parts_->screen_buffers.GetScreenCopy(viewport_only);
}
IDirect3DTexture9* KRN_Gfx::GetScreenBufferTexture(int kind, int index) {
    return parts_->screen_buffers.GetScreenBufferTexture(static_cast<TargetKind>(kind), index);
}

// ---- Geometry

bool KRN_Gfx::CreateVertexList(KRN_VertexList* list, UINT elements, int usage, bool system_memory) {
    return parts_->lists.Create(list, elements, usage, system_memory);
}
void KRN_Gfx::DrawTriangleList(KRN_VertexList& list, UINT first, int count) { parts_->lists.Draw(list, first, count); }
void KRN_Gfx::SetTexture2D(KRN_Texture* texture) {
    parts_->texture_stages.SetTexture(texture, -1);
    parts_->screen.SetTexture(texture);
}
void KRN_Gfx::SetDepthTest2D(bool on) { parts_->screen.SetDepthTest(on); }
void KRN_Gfx::DrawTexture2D(const Quad2D& rectangle, D3DCOLOR colour, const float (&z)[4]) {
    parts_->screen.Draw(rectangle, nullptr, colour, z);
}
void KRN_Gfx::DrawTexture2D(const Quad2D& rectangle, const Quad2D& source, D3DCOLOR colour, const float (&z)[4]) {
    parts_->screen.Draw(rectangle, &source, colour, z);
}
void KRN_Gfx::DrawFullScreenTexture(D3DCOLOR colour, float z) {
    const D3DVIEWPORT9& viewport = parts_->states.transforms.Viewport();
    const float x = static_cast<float>(viewport.X), y = static_cast<float>(viewport.Y);
    const Quad2D whole = {x, y, x + static_cast<float>(viewport.Width), y + static_cast<float>(viewport.Height)};
    parts_->screen.Draw(whole, nullptr, colour, {z, z, z, z});
}
void KRN_Gfx::DrawLastTexture() { parts_->screen.DrawLast(); }
void KRN_Gfx::CreateMesh(KRN_Mesh& mesh, DWORD options) { MakeDeviceMesh(parts_->graphics, mesh, options); }
bool KRN_Gfx::DrawMesh(KRN_Mesh* mesh, const D3DXMATRIX* world, const D3DMATERIAL9* material, bool reflection_pass,
                       bool no_material) {
    return parts_->meshes.Draw(mesh, world, {material, reflection_pass, no_material});
}
void KRN_Gfx::DrawSubset(KRN_Mesh& mesh, int subset) { parts_->meshes.DrawSubset(mesh, subset); }
void KRN_Gfx::DrawMeshRange(KRN_Mesh& mesh, UINT first_face, UINT faces) {
    parts_->meshes.DrawRange(mesh, first_face, faces);
}
void KRN_Gfx::LoadScene(KRN_3dScene& scene, const char* file, int flags) {
    parts_->scene_loader.Load(scene, file, flags);
}
bool KRN_Gfx::DrawScene(KRN_3dScene* scene) {
    bool drawn = false;
    parts_->effects.SetOverride(parts_->mesh_effect);
    WithRestore([&] { drawn = parts_->scenes.Draw(scene); }, [this] { parts_->effects.SetOverride(nullptr); });
    return drawn;
}
void KRN_Gfx::SetMeshEffect(KRN_ShaderEffect* effect) { parts_->mesh_effect = effect; }

const DrawStatistics& KRN_Gfx::Statistics() const { return parts_->statistics; }
void KRN_Gfx::SuppressDraws(bool on) { parts_->statistics.suppress_draws = on; }

// ---- Text

void KRN_Gfx::SetFont(KRN_Font* font, float size, D3DCOLOR colour) { parts_->text.SetFont(font, size, colour); }

const char* KRN_Gfx::FormatText(const char* format, std::va_list arguments) {
    std::vector<char>& scratch = parts_->scratch;
    const int length = std::vsnprintf(scratch.data(), scratch.size(), format, arguments);
    if (length >= 0 && static_cast<std::size_t>(length) < scratch.size()) return scratch.data();
    Warning("String too long for Printf()");
    return nullptr;
}

void KRN_Gfx::Printf(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const char* text = FormatText(format, arguments);
    va_end(arguments);
    if (text) parts_->text.Add(text);
}

void KRN_Gfx::Printf(float x, float y, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const char* text = FormatText(format, arguments);
    va_end(arguments);
    if (text) parts_->text.AddAt(x, y, text);
}

void KRN_Gfx::PrintfCentred(float x, float y, const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    const char* text = FormatText(format, arguments);
    va_end(arguments);
    if (!text) return;
    parts_->text.SaveOptions();
    parts_->text.Options().alignment = TextAlignment::Centre;
    parts_->text.AddAt(x, y, text);
    parts_->text.RestoreOptions();
}

KRN_PrintfContainer& KRN_Gfx::Text() { return parts_->text; }
void KRN_Gfx::SetTextLimits(const RECT* limits) { parts_->text_drawer.SetLimits(limits); }
void KRN_Gfx::DrawText(const RECT& rectangle, float scroll_x, float scroll_y) {
    parts_->text_drawer.Draw(parts_->text, rectangle, scroll_x, scroll_y);
}
void KRN_Gfx::DrawText() {
    const RECT whole = {0, 0, static_cast<LONG>(parts_->targets.Width()), static_cast<LONG>(parts_->targets.Height())};
    WithRestore([&] { DrawText(whole, 0, 0); }, [this] { parts_->text.Clear(); });
}

}   // namespace sparkrig
