// KRN_Gfx: the one object through which the program draws. It forwards; its parts decide.
//
// Life: constructed (Direct3D object only) -> InitDevice -> BeginScene .. EndScene, PresentFrame, for ever. A lost or
// resized device is reset inside PresentFrame; the states that the program asked for are applied again, so callers
// never repeat them. Setters remember what the device holds and skip repeats.
#pragma once
#include <cstdarg>
#include <memory>
#include <vector>

#include "gfx/device/draw_statistics.h"
#include "gfx/device/gfx_environment.h"
#include "gfx/geometry/vertex_list.h"
#include "gfx/states/fog.h"
#include "gfx/states/modes.h"
#include "gfx/states/point_sprite_settings.h"
#include "platform/d3d9/d3d9.h"
#include "platform/d3dx/d3dx_effect.h"
#include "platform/d3dx/d3dx_math.h"

namespace sparkrig {

class KRN_3dScene;
class KRN_Camera;
class KRN_Font;
class KRN_Light;
class KRN_Mesh;
class KRN_PrintfContainer;
class KRN_ShaderEffect;
class KRN_Surface;
class KRN_Texture;
class KRN_TextureCatalogue;
class ShaderSearchList;
struct GfxParts;
struct TextureSettings;
struct VideoSource;

class KRN_Gfx final : public KRN_Base {
  public:
    using CreateDirect3D = IDirect3D9* (*)(UINT sdk_version);

    /// What is missing on this machine is an error.
    explicit KRN_Gfx(CreateDirect3D create = Direct3DCreate9, const GfxEnvironment& environment = kSystemEnvironment);
    ~KRN_Gfx();
    KRN_Gfx(const KRN_Gfx&) = delete;
    KRN_Gfx& operator=(const KRN_Gfx&) = delete;

    // ---- Device
    /// mode: the full-screen mode; not looked at in a window. z_buffer_bits 0, 16, 24 or 32; vsync 0 to 4 frames;
    /// vertex_processing, device_select: VertexProcessing, DeviceSelect. 1; what fails is an error.
    int InitDevice(HWND window, int windowed, const D3DDISPLAYMODE* mode, int z_buffer_bits, int vsync,
                   int vertex_processing, int device_select, int multithreaded);
    /// A null mode and vsync -1 keep what there is. 0 if the device had been lost.
    int ResetDevice(const D3DDISPLAYMODE* mode, int vsync);
    /// 0 when the device had to be reset and nothing was shown.
    int PresentFrame();
    /// With post-render effects on, the scene goes into its own target until EndScene. Both give 1.
    int BeginScene();
    int EndScene();
    /// z 0 to 1; the rectangle in pixels, null for the whole viewport. 1; ClearZBuffer 0 on a device without depths.
    int Clear(D3DCOLOR colour, float z, const D3DRECT* rectangle);
    int ClearZBuffer(float z, const D3DRECT* rectangle);
    /// Frames a second, over at most the last one; 0 before there are two samples.
    float GetFrameRate() const;
    void GetAdapterDisplayMode(D3DDISPLAYMODE& mode) const;
    /// Whether the adapter has it; refresh rate 0 becomes the highest that it has.
    bool FindDisplayMode(D3DDISPLAYMODE& mode) const;
    /// usage_mode as in CreateTexture: 3 render target, 5 depth buffer, others plain. A refusal is a warning.
    bool CheckTextureFormat(D3DFORMAT format, int usage_mode) const;
    void GetCaps(D3DCAPS9& caps) const;
    const D3DCAPS9& Caps() const;
    /// The display's format, with and without alpha.
    D3DFORMAT AlphaFormat() const;
    D3DFORMAT OpaqueFormat() const;
    D3DFORMAT DisplayFormat() const;
    bool HardwareVertexProcessing() const;
    /// Seconds since the device was created.
    double DeviceSeconds() const;
    IDirect3DDevice9* Device() const;   // borrowed; null before InitDevice
    ID3DXEffectPool* EffectPool() const;
    /// A copy of the back buffer as A8R8G8B8, row by row from the top. For captures.
    void ReadBackBuffer(std::vector<D3DCOLOR>& pixels, UINT& width, UINT& height);

    // ---- States. Numbers are those of modes.h; another number is an error unless it says otherwise.
    /// BlendingMode, -1 counts as kBlendOff; alpha 0 to 255; stage 0 to 6. 1.
    int SetBlendingMode(int mode, int alpha, int stage);
    /// As set last; the alpha that the mode kept.
    int BlendingMode() const;
    int BlendingAlpha() const;
    /// RenderSource, -1 counts as kSourceTextureDiffuse; stage 0 to 7; the colour of kSourceFactor. 1.
    int SetRenderSource(int source, int stage, D3DCOLOR colour);
    /// CullMode; kCullCounterclockwise at first.
    void SetCullingMode(int mode);
    int CullingMode() const;
    /// ZBufferMode; kDepthW is kDepthZ on a device without.
    void SetZBufferMode(int mode);
    int ZBufferMode() const;
    void SetZWrite(bool on);
    bool ZWrite() const;
    /// Nested: the depth test is off from the first push to the last pop.
    void PushZBufferOff();
    void PopZBufferOff();
    /// MipmapMode; bias in levels; stage 0 to 7. 1, or 0 on a device without mip maps.
    int SetMipmapMode(int mode, float bias, int stage);
    int MipmapMode() const;
    float MipmapBias() const;
    /// TextureFilter, -1 for nothing; stage 0 to 7. 1, or 0 for another number.
    int SetTextureFilter(int preset, int stage);
    /// D3DTADDRESS_ values. 1, or 0 after a warning when the device refuses.
    int SetAddressModeU(DWORD mode, int stage);
    int SetAddressModeV(DWORD mode, int stage);
    /// D3DFILL_ values: points, lines, or filled. Settings, if given, are those of points.
    void SetFillMode(int mode, const PointSpriteSettings* settings);
    /// With the device limit the largest size is the device's own, else at most 64 pixels.
    void SetPointSprite(const PointSpriteSettings& settings, bool device_limit);
    /// `colour`, if given, is the ambient light; with lighting off it stands in for the vertices' diffuse colour (see
    /// SetTexture).
    void SetLighting(bool on, const D3DCOLOR* colour);
    bool Lighting() const;
    /// Ends what stood in for the normal lighting: the colour of SetLighting and the material locks.
    void EndLightingOverride();
    /// Nested, as above.
    void PushLightingOff();
    void PopLightingOff();
    void SetAmbient(D3DCOLOR colour);
    void SetSpecular(bool on);
    void SetNormalizeNormals(bool on);
    /// AlphaTestMode; the reference 0 to 255.
    void SetAlphaTest(int mode, int reference);
    void SetTextureFactor(D3DCOLOR colour);
    void SetFog(const FogSettings& settings);
    void SetFogEnable(bool on);
    bool FogEnable() const;
    const FogSettings& Fog() const;
    void SetMaterial(const D3DMATERIAL9& material);
    const D3DMATERIAL9& Material() const;
    /// While one of the locks 0 and 1 is on, a material is only kept.
    void LockMaterial(int lock, bool on);
    /// 0 for a light that is off. With `evaluate` the light is placed for the time (seconds) first.
    int SetLight(int index, KRN_Light& light, double time, bool evaluate);
    void SetLightEnable(int index, bool on);
    void SetVertexFormat(DWORD fvf);
    void SetStreamSource(IDirect3DVertexBuffer9* buffer, UINT stride);
    void SetIndices(IDirect3DIndexBuffer9* buffer);
    void SetRenderTarget(IDirect3DSurface9* surface, DWORD index);
    /// Null for the identity. False when calibration was asked for and is not possible.
    bool SetGammaRamp(const D3DGAMMARAMP* ramp, bool calibrate);
    void SetSoftwareVertexProcessing(bool on);
    /// While set, meshes are drawn in this colour whatever their materials say; null for none.
    void SetColourOverride(const D3DCOLOR* colour);

    // ---- Transforms and view
    void SetTransform(D3DTRANSFORMSTATETYPE kind, const D3DXMATRIX& matrix);
    void ResetWorldTransform();
    const D3DXMATRIX& WorldMatrix() const;
    const D3DXMATRIX& ViewMatrix() const;
    const D3DXMATRIX& ProjectionMatrix() const;
    /// fov in radians from bottom to top; aspect -1 takes the viewport's.
    void SetProjection(float z_near, float z_far, float fov, float aspect);
    /// Mirrors the picture left to right, and culling with it.
    void SetMirroredProjection();
    /// Pixels from the left and the top; x2 and y2 lie outside. 1; a refusal is 0, after a warning, in a window, and an
    /// error in full screen.
    int SetViewPort(int x1, int y1, int x2, int y2, float min_z, float max_z);
    const D3DVIEWPORT9& Viewport() const;
    /// Makes the camera's eye, direction and up vector the view.
    void SetView(const KRN_Camera& camera);
    D3DXVECTOR3 CameraPosition() const;   // from the inverse view matrix
    float DistanceToCamera(const D3DXVECTOR3& point) const;
    /// The unit direction from the camera through a pixel of the viewport.
    D3DXVECTOR3 PixelRay(int x, int y) const;
    bool SphereInView(const D3DXVECTOR3& centre, float radius) const;
    bool BoundsInView(const class KRN_ClipObject& bounds, const D3DXMATRIX& world) const;

    // ---- Textures
    void SetBasePath(const char* path);
    void SetDefaultTexturePath(const char* path);
    /// What the name says goes into the texture's current layer: a picture file, a list of them, or a video source.
    /// Pixels that equal a colour key other than 0 become transparent. parameter: 0 or 2 managed pool, 1 default pool,
    /// 3 render target, with the kLoad bits of texture_loader.h; -1 is 0. format: a D3DFORMAT, -1 for the file's own.
    void LoadTexture(KRN_Texture* texture, const char* file, D3DCOLOR colour_key, int parameter, int format = -1,
                     int mip_levels = 1);
    /// mode: 1 default pool, 2 system memory, 3 render target, 4 or -1 managed pool; with kCreateDynamic. format -1 is
    /// AlphaFormat.
    void CreateTexture(KRN_Texture* texture, UINT width, UINT height, int mode, int format, int mip_levels);
    /// Null, or a texture without a picture, unbinds. Stage -1 means all stages in use.
    void SetTexture(KRN_Texture* texture, int stage);
    /// The texture of the screen drawing below; bound to all stages. Borrowed.
    void SetTexture2D(KRN_Texture* texture);
    /// Whether screen drawing is tested against the depth buffer. Initially off.
    void SetDepthTest2D(bool on);
    /// How many stages, 1 to 8, SetTexture sets and clears; 2 at first.
    void SetStagesInUse(int count);
    /// Slot 0 to 15; another is an error.
    VideoSource& Video(int index);
    void UpdateVideoSource(int index);
    KRN_TextureCatalogue& Catalogue();
    /// Sharing, placeholders, compression: of the loads that follow.
    TextureSettings& TextureOptions();
    /// Device textures made so far.
    UINT CreatedTextures() const;

    // ---- Shader effects
    /// False, after a warning, for a missing file that is not required. A required one and a compile failure are
    /// errors. `flags` are D3DXSHADER_ flags; with use_pool its `shared` parameters have one value in all effects.
    bool LoadShaderEffect(KRN_ShaderEffect& effect, const char* file, bool required, DWORD flags, bool use_pool);
    /// The first of the candidates that exists. False for an empty list.
    bool LoadShaderEffect(KRN_ShaderEffect& effect, const ShaderSearchList& candidates, bool required, DWORD flags,
                          bool use_pool);
    /// Where a file that the current directory does not have is looked for: the program's own shaders stand there.
    void SetShaderFolder(const char* folder);
    /// Whether a shader file that is loaded already is shared. Initially on.
    void SetShaderSharing(bool on);
    /// Gives the parameter GAMETIME its value, in seconds; null for the seconds since the device was created.
    void SetGameTimeSource(float (*source)());
    /// The effect of the draws that follow; null or an invalid one for fixed-function drawing. Borrowed.
    void SetShaderEffect(KRN_ShaderEffect* effect);
    /// The effect of the screen drawing below (DrawTexture2D and its like), as long as it is valid; null for none.
    /// Borrowed.
    void SetShaderEffect2D(KRN_ShaderEffect* effect);
    /// Draws meshes with bones that have no other effect; while there is none, the device blends their vertices.
    /// Borrowed.
    void SetSkinningEffect(KRN_ShaderEffect* effect);
    /// The effect that a draw uses now, or null.
    KRN_ShaderEffect* EffectForDraw() const;

    /// With the frame cache on, frame semantics and screen copy are made once in a frame. Initially off.
    void SetFrameCache(bool on);

    // ---- Post-render effects and screen buffers. Textures are borrowed, and gone after a reset.
    /// From the next BeginScene on, scenes are drawn into a texture of the back buffer's size.
    void InitPostRenderEffects();
    void ReleasePostRenderEffects();
    bool PostRenderEffects() const;
    /// Several samples a pixel, from the next InitPostRenderEffects or reset on.
    void SetMultisampleTarget(bool wish);
    /// The wish, off again on a device that has none.
    bool MultisampleTarget() const;
    /// The scene as it was drawn; null with post-render effects off.
    IDirect3DTexture9* SceneTexture();
    /// Inside a scene. Every pass of the effect draws a square that covers the viewport, in clip coordinates, which its
    /// vertex function passes on, and finds what is drawn so far as SCREENCOPY. False for an effect that was not found.
    bool DrawScreenEffect(KRN_ShaderEffect& effect);
    /// After EndScene: takes the scene to the screen in the same way. False with post-render effects off, too.
    bool DrawScene(KRN_ShaderEffect& effect);
    /// What the render target shows now, or only the viewport of it.
    IDirect3DTexture9* GetScreenCopy(bool viewport_only);
    /// kind 1: quarter buffer 0 to 2; kind 2: full buffer 0 to 1.
    IDirect3DTexture9* GetScreenBufferTexture(int kind, int index);

    // ---- Geometry
    bool CreateVertexList(KRN_VertexList* list, UINT elements, int usage, bool system_memory);
    void DrawTriangleList(KRN_VertexList& list, UINT first, int count);
    using Quad2D = sparkrig::Quad2D;
    /// z: for the corners left bottom, left top, right bottom, right top.
    void DrawTexture2D(const Quad2D& rectangle, D3DCOLOR colour, const float (&z)[4]);
    /// The part `source` of the picture, in its pixels.
    void DrawTexture2D(const Quad2D& rectangle, const Quad2D& source, D3DCOLOR colour, const float (&z)[4]);
    /// The 2D texture over the whole viewport.
    void DrawFullScreenTexture(D3DCOLOR colour, float z);
    /// The 2D texture where it was drawn last.
    void DrawLastTexture();
    /// Makes the buffers of a mesh, which drawing it for the first time does too. options: D3DXMESH_ flags, 0 or -1 for
    /// none. What fails is an error of the mesh.
    void CreateMesh(KRN_Mesh& mesh, DWORD options = 0);
    /// Draws a mesh with its materials and their maps: opaque groups first, then blended ones. Blended groups have
    /// their own blending where none is set; where one is, it stays, faded by the material's opacity. False for a mesh
    /// that is null (a warning), empty or out of view. A null world is the identity. `material`, if given, stands in
    /// for the materials' colours; in a reflection pass every map goes to its stage, however many are in use; with
    /// no_material neither colours nor maps are set.
    bool DrawMesh(KRN_Mesh* mesh, const D3DXMATRIX* world, const D3DMATERIAL9* material = nullptr,
                  bool reflection_pass = false, bool no_material = false);
    /// One group, or a run of faces, of a mesh as it stands on the device: with the states, the material and the effect
    /// of the moment.
    void DrawSubset(KRN_Mesh& mesh, int subset);
    void DrawMeshRange(KRN_Mesh& mesh, UINT first_face, UINT faces);
    /// Loads a scene with what a device needs for it: buffers, textures, shader effects. Its maps are looked for as
    /// textures are, a text scene's also beside it. Flags: scene_load_flags.h, -1 for none. The scene is to be gone, or
    /// cleared, before the device.
    void LoadScene(KRN_3dScene& scene, const char* file, int flags = -1);
    /// Draws the visible meshes of a scene in its order, where its nodes and the scene's own matrix place them, through
    /// its selected camera, and with its lights where lighting is on. The states are afterwards as they were. False for
    /// a scene that is null (a warning) or out of view.
    bool DrawScene(KRN_3dScene* scene);
    /// Draws the meshes of scenes, as long as it is valid, through this effect, whatever their materials name; null for
    /// none. Borrowed.
    void SetMeshEffect(KRN_ShaderEffect* effect);

    /// What was drawn since the last frame was presented.
    const DrawStatistics& Statistics() const;
    /// Draws are counted and not done.
    void SuppressDraws(bool on);

    // ---- Text
    /// size 0 and a colour with alpha 0 leave the font's own. Borrowed.
    void SetFont(KRN_Font* font, float size, D3DCOLOR colour);
    /// Behind the text before it.
    void Printf(const char* format, ...) __attribute__((format(printf, 2, 3)));
    /// With its upper left corner at pixel (x, y) of the client area.
    void Printf(float x, float y, const char* format, ...) __attribute__((format(printf, 4, 5)));
    /// The same with the options saved, the first option field set to 1, and restored: (x, y) is the middle of the
    /// text.
    void PrintfCentred(float x, float y, const char* format, ...) __attribute__((format(printf, 4, 5)));
    /// The lines that Printf gathered, and the options that it goes on with.
    KRN_PrintfContainer& Text();
    /// No text is drawn outside the limits, nor outside its own extent; null for no limits.
    void SetTextLimits(const RECT* limits);
    /// Draws what Printf gathered, inside a rectangle of the target, moved by -scroll pixels.
    void DrawText(const RECT& rectangle, float scroll_x, float scroll_y);
    /// The same over the whole target, and empties it.
    void DrawText();

  private:
    /// Null, after a warning, for a text that is too long.
    const char* FormatText(const char* format, std::va_list arguments);

    std::unique_ptr<GfxParts> parts_;
};

}   // namespace sparkrig
