#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <numeric>

#include "gfx/geometry/device_maps.h"
#include "gfx/geometry/device_mesh.h"
#include "gfx/geometry/mesh_drawer.h"
#include "gfx/geometry/skinning.h"
#include "gfx/geometry/vertex_list.h"
#include "gfx/gfx.h"
#include "scene/binary_scene.h"
#include "scene/vertex_codec.h"
#include "tests/support/picture_files.h"
#include "tests/support/recorded_gfx.h"
#include "tests/support/temporary_folder.h"

namespace sparkrig {
namespace {

/// One triangle for each group, in the plane z = 10 before the camera.
void BuildMesh(KRN_Mesh& mesh, std::uint32_t groups, DWORD format = 0x112) {
    MeshGeometry& geometry =
        mesh.CreateGeometry({.faces = groups, .vertices = 3 * groups, .groups = groups, .format = format});
    for (std::uint32_t i = 0; i < 3 * groups; ++i) {
        const float position[3] = {i % 3 == 1 ? 2.0f : 0.0f, i % 3 == 2 ? 2.0f : 0.0f, 10}, normal[3] = {0, 0, -1};
        std::memcpy(geometry.Vertex(i), position, sizeof position);
        std::memcpy(geometry.Vertex(i) + geometry.layout.normal, normal, sizeof normal);
    }
    std::iota(geometry.indices.begin(), geometry.indices.end(), std::uint16_t{0});
    std::iota(geometry.groups.begin(), geometry.groups.end(), std::uint16_t{0});
}

std::vector<UINT> DrawnFaces(const RecordedGfx& gfx) {
    std::vector<UINT> faces;
    for (const RecordedDraw& draw : gfx.recording.Draws()) faces.push_back(draw.first / 3);
    return faces;
}

struct DrawnMesh {
    explicit DrawnMesh(std::uint32_t groups) {
        BuildMesh(mesh, groups);
        mesh.SortByGroup();
        gfx->BeginScene();
        gfx.recording.ForgetCalls();
    }
    ~DrawnMesh() { mesh.Clear(); }
    RecordedGfx gfx;
    KRN_Mesh mesh;
};

TEST(DrawMesh, DrawsOpaqueGroupsBeforeBlendedOnes) {
    DrawnMesh t(6);
    t.mesh.Material(0).blending = true;
    t.mesh.Material(2).hidden = true;
    t.mesh.Material(3).transparency = 1.0f;
    t.mesh.Material(4).blending = true;
    t.mesh.Material(4).transparency = 0.5f;
    EXPECT_TRUE(t.gfx->DrawMesh(&t.mesh, nullptr));
    EXPECT_THAT(DrawnFaces(t.gfx), ElementsAre(1, 5, 0, 4));
    EXPECT_EQ(t.gfx->Statistics().meshes, 1u);
    EXPECT_EQ(t.gfx.recording.Sent(0, D3DTSS_TEXTURETRANSFORMFLAGS).size(), 1u);
}

TEST(DrawMesh, AMirroredMeshTurnsCullingOverForItself) {
    DrawnMesh t(2);
    t.mesh.Material(1).two_sided = true;
    t.mesh.SetScale(-1, 2, 3, true);
    t.gfx->SetCullingMode(-1);
    t.gfx->DrawMesh(&t.mesh, nullptr);
    std::vector<DWORD> culling;
    for (const RecordedDraw& draw : t.gfx.recording.Draws()) culling.push_back(draw.render_states.at(D3DRS_CULLMODE));
    EXPECT_THAT(culling, ElementsAre(D3DCULL_CW, D3DCULL_NONE));
    EXPECT_EQ(t.gfx->CullingMode(), -1);
}

TEST(DrawMesh, AMeshOutOfViewIsNotDrawn) {
    DrawnMesh t(1);
    t.mesh.ComputeBounds();
    EXPECT_TRUE(t.gfx->DrawMesh(&t.mesh, nullptr));
    t.mesh.SetPosition(0, 0, -50, true);
    EXPECT_FALSE(t.gfx->DrawMesh(&t.mesh, nullptr)) << "behind the camera";
    t.mesh.clip_mode = 0;
    EXPECT_TRUE(t.gfx->DrawMesh(&t.mesh, nullptr)) << "never culled";
}

TEST(DrawMesh, WhatStandsInForTheMaterialsColours) {
    DrawnMesh t(1);
    const D3DCOLOR kColour = 0x80FF3300;
    const D3DCOLORVALUE red = {1, 0.2f, 0, 128 / 255.0f}, grey = {0.9f, 0.9f, 0.9f, 1}, black = {0, 0, 0, 1};
    const D3DMATERIAL9 given = {{0.1f, 0.2f, 0.3f, 0.4f}, {0.5f, 0.6f, 0.7f, 0.8f}, black, black, 3};
    const std::tuple<const char*, bool, const D3DCOLOR*, const D3DMATERIAL9*, D3DCOLORVALUE, D3DCOLORVALUE,
                     D3DCOLORVALUE>
        kRows[] = {{"nothing", true, nullptr, nullptr, grey, grey, black},
                   {"a material", true, nullptr, &given, given.Diffuse, given.Ambient, black},
                   {"a colour", true, &kColour, nullptr, red, red, black},
                   {"an unlit colour", false, &kColour, &given, {0, 0, 0, red.a}, black, red}};
    for (const auto& [name, lighting, colour, material, diffuse, ambient, emissive] : kRows) {
        t.gfx->SetLighting(lighting, nullptr);
        t.gfx->SetColourOverride(colour);
        t.gfx->DrawMesh(&t.mesh, nullptr, material);
        const D3DMATERIAL9& used = t.gfx->Material();
        EXPECT_EQ(used.Diffuse, diffuse) << name;
        EXPECT_EQ(used.Ambient, ambient) << name;
        EXPECT_EQ(used.Emissive, emissive) << name;
        EXPECT_EQ(t.gfx->Lighting(), lighting) << name;
        EXPECT_TRUE(t.gfx.recording.Draws().back().render_states.at(D3DRS_LIGHTING)) << name;
    }
}

TEST(DrawMesh, SendsOnlyWhatDiffers) {
    DrawnMesh t(6);
    for (int group = 2; group < 6; ++group) t.mesh.Material(group).blending = true;
    t.mesh.Material(5).transparency = 0.5f;
    t.gfx->DrawMesh(&t.mesh, nullptr);
    t.gfx.recording.ForgetCalls();
    t.gfx->DrawMesh(&t.mesh, nullptr);
    EXPECT_THAT(t.gfx.recording.Redundant(), IsEmpty());
    EXPECT_THAT(t.gfx.recording.Sent(D3DRS_ALPHABLENDENABLE), ElementsAre(1, 0));
    EXPECT_EQ(t.gfx.recording.Count("SetMaterial"), 2) << "the half transparent one, and back";
    for (const char* method : {"SetTransform", "SetTexture", "SetSamplerState"})
        EXPECT_EQ(t.gfx.recording.Count(method), 0) << method;
}

/// A reflection map before a diffuse one, on a mesh with a coordinate set for each.
TEST(DrawMesh, ReflectionsAreComputedIntoTheSecondCoordinates) {
    const ScratchFolder folder;
    const std::string picture = folder.Write("map.png", PngFile(TestPicture::Pattern(4, 4), 4));
    RecordedGfx gfx;
    KRN_Mesh mesh;
    BuildMesh(mesh, 2, 0x212);
    mesh.SortByGroup();
    mesh.reflection_stage = 1;
    for (const auto& [slot, role] : {std::pair(0, MapRole::Reflection), std::pair(1, MapRole::Diffuse)}) {
        mesh.Textures(1).slots[slot].path = picture.c_str();
        mesh.Textures(1).slots[slot].role = role;
    }
    mesh.Material(1).addressing = {.mirror_u = true, .tile_v = false};
    gfx->BeginScene();
    gfx.recording.ForgetCalls();
    gfx->DrawMesh(&mesh, nullptr);
    EXPECT_THAT(gfx.recording.Sent(0, D3DTSS_TEXCOORDINDEX), ElementsAre(1, 0)) << "and back";
    EXPECT_THAT(gfx.recording.Sent(1, D3DTSS_TEXCOORDINDEX), ElementsAre(0, 1));
    EXPECT_THAT(gfx.recording.Sent(1, D3DSAMP_ADDRESSU), ElementsAre(D3DTADDRESS_MIRROR, D3DTADDRESS_WRAP));
    EXPECT_THAT(gfx.recording.Sent(1, D3DSAMP_ADDRESSV), ElementsAre(D3DTADDRESS_CLAMP, D3DTADDRESS_WRAP));
    // Its fifth vertex stands at (2, 0, 10) before a camera at (0, 0, 0) and looks at (0, 0, -1): r = (-e_x, 0, e_z).
    void* data = nullptr;
    ID3DXMesh& buffers = *static_cast<DeviceMesh&>(*mesh.Geometry()->device).buffers;
    buffers.LockVertexBuffer(D3DLOCK_READONLY, &data);
    float uv[2];
    std::memcpy(uv, static_cast<std::uint8_t*>(data) + 4 * 40 + 32, sizeof uv);
    buffers.UnlockVertexBuffer();
    const double e_x = 2 / std::sqrt(104.0), e_z = 10 / std::sqrt(104.0);
    EXPECT_NEAR(uv[0], -e_x / (2.8284 * std::hypot(e_x, e_z + 1)) + 0.5, 1e-5);
    EXPECT_NEAR(uv[1], 0.5, 1e-6);

    mesh.Geometry()->device.reset();
    mesh.Geometry()->groups = {1, 1};   // the first group has no faces
    mesh.SortByGroup();
    EXPECT_EQ(ErrorOf([&] { gfx->DrawMesh(&mesh, nullptr); }),
              "KRN_Gfx: Attribute set for material 1 in mesh '*undefined*' with wrong ID");
    mesh.Clear();
}

/// The second triangle lies mirrored on the map, the third one has no area there.
TEST(DrawMesh, AnEffectThatReadsTangentsGetsThem) {
    RecordedGfx gfx;
    KRN_Mesh mesh;
    KRN_ShaderEffect effect;
    BuildMesh(mesh, 3);
    const float uv[9][2] = {{0, 0}, {2, 0}, {0, 3}, {0, 0}, {0, 2}, {3, 0}, {}, {}, {}};
    for (std::uint32_t i = 0; i < 9; ++i) std::memcpy(mesh.Geometry()->Vertex(i) + 24, uv[i], sizeof uv[i]);
    mesh.SortByGroup();
    gfx->BeginScene();
    gfx->DrawMesh(&mesh, nullptr);
    gfx->LoadShaderEffect(effect, "shader/Bump.fx", true, 0, false);
    gfx->SetShaderEffect(&effect);
    gfx->DrawMesh(&mesh, nullptr);
    EXPECT_EQ(gfx.recording.Draws().at(2).fvf, 0x112u) << "until an effect reads them";
    EXPECT_EQ(gfx.recording.Draws().at(3).stride, 32u + 6 * 4 + 16);
    void* data = nullptr;
    ID3DXMesh& buffers = *static_cast<DeviceMesh&>(*mesh.Geometry()->device).buffers;
    buffers.LockVertexBuffer(D3DLOCK_READONLY, &data);
    D3DXVECTOR4 tangents[9];
    for (int i = 0; i < 9; ++i) std::memcpy(&tangents[i], static_cast<std::uint8_t*>(data) + i * 72 + 56, 16);
    buffers.UnlockVertexBuffer();
    EXPECT_EQ(tangents[1], (D3DXVECTOR4{1, 0, 0, -1}));
    EXPECT_EQ(tangents[4], (D3DXVECTOR4{0, 1, 0, 1}));
    EXPECT_EQ(tangents[8].z, 0) << "beside the normal";
    mesh.Clear();
}

TEST(DrawMesh, BonesBecomeWorldMatrices) {
    for (const DWORD highest : {255u, 1u}) {
        RecordedGfx gfx([highest](Recording& recording) { recording.caps.MaxVertexBlendMatrixIndex = highest; });
        const Reports reports;
        KRN_3dScene scene;
        KRN_3dObject& bone = scene.helpers.Add();
        bone.SetPosition(1, 2, 3, true);
        KRN_Mesh mesh;
        BuildMesh(mesh, 1, 0x1018);
        mesh.SortByGroup();
        mesh.influences = 2;
        mesh.bones.resize(2);
        mesh.bone_nodes = {&bone, nullptr};
        D3DXMATRIX world;
        D3DXMatrixTranslation(&world, 7, 8, 9);
        gfx->BeginScene();
        EXPECT_TRUE(gfx->DrawMesh(&mesh, &world));
        EXPECT_EQ(gfx.recording.Draws()[0].world.m[3][0], 8) << "the first bone's";
        EXPECT_EQ(gfx.Matrix(D3DTS_WORLDMATRIX(1)), world) << "a missing bone moves with the mesh";
        EXPECT_THAT(gfx.recording.Sent(D3DRS_VERTEXBLEND), ElementsAre(D3DVBF_1WEIGHTS, D3DVBF_DISABLE));
        const char* too_high = "warning KRN_Gfx: Number of bones too high for hardware vertex blending: 2";
        EXPECT_EQ(reports.Last(), highest == 1 ? too_high : "") << highest;
        mesh.Clear();
    }
}

/// The plain sum in double precision.
TEST(Skinning, PlacesVerticesAtTheSumOfTheirBones) {
    constexpr int kBones = 4;
    KRN_Mesh mesh;
    BuildMesh(mesh, 1, 0x111C);
    mesh.influences = kBones;
    KRN_3dScene scene;
    for (int i = 0; i < kBones; ++i) {
        const float n = static_cast<float>(i), c = std::cos(n / 4), s = std::sin(n / 4);
        KRN_3dObject& bone = scene.helpers.Add();
        bone.SetWorldMatrix({{{c, s, 0, 0}, {-s, c, 0, 0}, {0, 0, 0.5f, 0}, {0.1f * n, -0.05f, 0.1f, 1}}});
        mesh.bones.emplace_back().offset = {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0.1f, 0.2f, 0, 1}}};
        mesh.bone_nodes.push_back(&bone);
    }
    std::vector<D3DXMATRIX> palette;
    MakePalette(mesh, {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0.05f, -0.1f, 0.1f, 1}}}, palette);
    for (std::uint32_t i = 0; i < 3; ++i) {
        const float first = 0.1f * static_cast<float>(i), weights[kBones] = {first, 0.4f, 0.25f, 0.35f - first};
        const std::uint8_t indices[kBones] = {0, 1, 2, 3};
        std::uint8_t* vertex = mesh.Geometry()->Vertex(i);
        std::memcpy(vertex + 12, weights, 3 * sizeof(float));
        std::memcpy(vertex + BoneIndexOffset(mesh.Geometry()->layout), indices, sizeof indices);
        float p[3];
        std::memcpy(p, vertex, sizeof p);
        PlacedVertex placed;
        PlaceVertices(*mesh.Geometry(), i, palette, {&placed, 1});
        const float found[3] = {placed.position.x, placed.position.y, placed.position.z};
        for (int axis = 0; axis < 3; ++axis) {
            double sum = 0;
            for (std::size_t k = 0; k < kBones; ++k) {
                const auto& m = palette[k].m;
                sum += double{weights[k]} *
                       (double{p[0]} * m[0][axis] + double{p[1]} * m[1][axis] + double{p[2]} * m[2][axis] + m[3][axis]);
            }
            EXPECT_NEAR(found[axis], sum, 1e-5) << i << " " << axis;
        }
    }
    mesh.Clear();
}

TEST(DrawMesh, PartsAreDrawnCountedOrLeftOut) {
    DrawnMesh t(4);
    t.gfx->DrawMeshRange(t.mesh, 1, 0);   // nothing
    t.gfx->DrawMeshRange(t.mesh, 1, 2);
    t.gfx->DrawSubset(t.mesh, 3);
    EXPECT_THAT(DrawnFaces(t.gfx), ElementsAre(1, 3));
    EXPECT_EQ(t.gfx->Statistics().primitives, 3u);
    t.gfx->SuppressDraws(true);
    EXPECT_TRUE(t.gfx->DrawMesh(&t.mesh, nullptr));
    EXPECT_EQ(t.gfx.recording.Draws().size(), 2u);
    EXPECT_EQ(t.gfx->Statistics().primitives, 7u);
    t.gfx->SuppressDraws(false);

    KRN_Mesh unsorted;
    BuildMesh(unsorted, 1);
    EXPECT_TRUE(t.gfx->DrawMesh(&unsorted, nullptr));
    EXPECT_EQ(t.gfx.recording.Draws().size(), 3u) << "as one";
    unsorted.Clear();
    EXPECT_FALSE(t.gfx->DrawMesh(&unsorted, nullptr)) << "nothing left";
    const Reports reports;
    EXPECT_FALSE(t.gfx->DrawMesh(nullptr, nullptr));
    EXPECT_FALSE(t.gfx->DrawScene(nullptr));
    EXPECT_THAT(reports.All(),
                ElementsAre("warning KRN_Gfx: Pointer to mesh is zero", "warning KRN_Gfx: Pointer to 3dScene is zero"));
}

TEST(DrawScene, DrawsWhatIsVisibleInItsOrderAndLeavesTheStates) {
    RecordedGfx gfx;
    KRN_3dScene scene;
    for (const float x : {0.0f, 1.0f, 2.0f}) {
        KRN_Mesh& mesh = scene.meshes.Add();
        BuildMesh(mesh, 1);
        mesh.SortByGroup();
        mesh.SetPosition(x, 0, 0, true);
        mesh.visible = x != 1;
    }
    for (const D3DLIGHTTYPE type : {D3DLIGHTTYPE{}, D3DLIGHT_POINT}) {   // what is no light is left out
        KRN_Light& light = scene.lights.Add();
        light.off = false;
        light.record.Type = type;
    }
    scene.render_settings.words[RenderSettings::kFogOn] = 1;
    scene.cameras.Add().SetEye(0, 0, -5, true);
    scene.SelectCamera(0);
    scene.SetPosition(4, 0, 0, true);
    gfx->BeginScene();
    const D3DXMATRIX view = gfx->ViewMatrix(), projection = gfx->ProjectionMatrix();
    EXPECT_TRUE(gfx->DrawScene(&scene));
    std::vector<float> places;
    for (const RecordedDraw& draw : gfx.recording.Draws()) places.push_back(draw.world.m[3][0]);
    EXPECT_THAT(places, ElementsAre(4, 6));
    EXPECT_TRUE(gfx.recording.Draws()[0].render_states.at(D3DRS_FOGENABLE));
    EXPECT_FALSE(gfx->FogEnable());
    EXPECT_EQ(gfx->ViewMatrix(), view);
    EXPECT_EQ(gfx->ProjectionMatrix(), projection);
    EXPECT_THAT(gfx.recording.ArgumentsOf("LightEnable"), ElementsAre(ElementsAre(0, 1), ElementsAre(0, 0)));
    scene.Clear();
}

TEST(DeviceMesh, OptionsChooseThePools) {
    // clang-format off
    constexpr std::tuple<const char*, bool, std::size_t, DWORD, DWORD, DWORD> kRows[] = {
        {"managed", false, 0, 0, 0, D3DPOOL_MANAGED},
        {"no extra options", false, 0, static_cast<DWORD>(-1), 0, D3DPOOL_MANAGED},
        {"write only", false, 0, D3DXMESH_WRITEONLY, D3DUSAGE_WRITEONLY, D3DPOOL_MANAGED},
        {"dynamic", false, 0, D3DXMESH_DYNAMIC, D3DUSAGE_DYNAMIC, D3DPOOL_DEFAULT},
        {"system memory", true, 0, D3DXMESH_DYNAMIC, D3DUSAGE_DYNAMIC, D3DPOOL_SYSTEMMEM},
        {"bones that fit", false, 4, 0, 0, D3DPOOL_MANAGED},
        {"too many bones", false, 5, D3DXMESH_DYNAMIC, D3DUSAGE_SOFTWAREPROCESSING, D3DPOOL_SYSTEMMEM},
    };
    // clang-format on
    for (const auto& [name, system_memory, bones, extra, usage, pool] : kRows) {
        SCOPED_TRACE(name);
        RecordedGfx gfx(RecordedGfx::State::Constructed);
        gfx.recording.caps.MaxVertexBlendMatrixIndex = 4;
        gfx.Init();
        KRN_Mesh mesh;
        mesh.CreateGeometry({.faces = 4, .vertices = 6, .format = 0x112, .system_memory = system_memory});
        mesh.bones.resize(bones);
        gfx->CreateMesh(mesh, extra);
        EXPECT_EQ(gfx.recording.ArgumentsOf("CreateVertexBuffer").at(0),
                  (std::vector<DWORD>{6 * 32, usage, 0x112, pool}));
        EXPECT_EQ(gfx.recording.ArgumentsOf("CreateIndexBuffer").at(0),
                  (std::vector<DWORD>{4 * 6, usage, D3DFMT_INDEX16, pool}));
        EXPECT_EQ(static_cast<DeviceMesh&>(*mesh.Geometry()->device).software_processing, bones > 4);
        mesh.Clear();
    }
}

TEST(DeviceMesh, FailuresAreTheMeshsErrors) {
    RecordedGfx gfx;
    KRN_Mesh mesh;
    mesh.SetNodeName("Roof");
    mesh.CreateGeometry({.faces = 0, .vertices = 3, .format = 0x112});
    EXPECT_EQ(ErrorOf([&] { gfx->CreateMesh(mesh); }),
              "KRN_Mesh: Roof:  D3DXCreateMeshFVF failed: D3DERR_INVALIDCALL ");
    mesh.CreateGeometry({.faces = 1, .vertices = 3, .format = 0x112});
    gfx.recording.Fail("CreateIndexBuffer", E_OUTOFMEMORY);
    EXPECT_EQ(ErrorOf([&] { gfx->CreateMesh(mesh); }), "KRN_Mesh: Roof:  D3DXCreateMeshFVF failed: E_OUTOFMEMORY ");
    gfx.Destroy();
    EXPECT_EQ(gfx.recording.LiveObjects(), 0);
}

TEST(LoadScene, GivesMaterialsTheirEffectsAndSaysWhatIsMissing) {
    const ScratchFolder folder;
    folder.Enter();
    std::filesystem::create_directory("shader");
    folder.Write("shader/own.fx",
                 "float Size : fParam1 = 2; float4 V(float4 p : POSITION) : POSITION { return p * Size; }"
                 "technique { pass { VertexShader = compile vs_1_1 V(); } }");
    KRN_3dScene scene, loaded;
    KRN_Mesh& mesh = scene.meshes.Add();
    BuildMesh(mesh, 2);
    mesh.SortByGroup();
    mesh.Material(0).shader.effect = "own";
    mesh.Material(0).shader.parameters[0].number = 5.0f;
    mesh.Material(1).shader.effect = "nowhere";
    SaveBinaryScene(scene, "scene.3sc");
    RecordedGfx gfx;
    const Reports reports;
    gfx->LoadScene(loaded, "scene.3sc");
    EXPECT_THAT(reports.All(), ElementsAre("warning KRN_Gfx: DirectX shader effect 'nowhere' not found (for scene "
                                           "'scene.3sc')"));
    gfx->BeginScene();
    EXPECT_TRUE(gfx->DrawScene(&loaded));
    EXPECT_EQ(gfx.recording.ArgumentsOf("SetVertexShaderGlobals").at(0).at(0), std::bit_cast<DWORD>(5.0f));
    float after = 0;
    ID3DXEffect& effect = *EffectOf(loaded.meshes[0].Material(0))->Effect();
    effect.GetFloat(effect.GetParameterBySemantic(nullptr, "fParam1"), &after);
    EXPECT_EQ(after, 2) << "the effect's own again";
    loaded.Clear();
}

// ---- Vertex lists

TEST(VertexLayout, PlacesTheComponents) {
    // clang-format off
    const std::pair<DWORD, std::vector<int>> kRows[] = {
        // format, stride, weights, normal, point size, diffuse, specular, texture sets and the first one's place
        {0x042,   {16, 0, 12, 12, 12, 16, 0, 0 }},
        {0x102,   {20, 0, 12, 12, 12, 12, 1, 12}},
        {0x012,   {24, 0, 12, 24, 24, 24, 0, 0 }},
        {0x1C2,   {28, 0, 12, 12, 12, 16, 1, 20}},
        {0x112,   {32, 0, 12, 24, 24, 24, 1, 24}},
        {0x1C4,   {32, 0, 16, 16, 16, 20, 1, 24}},
        {0x212,   {40, 0, 12, 24, 24, 24, 2, 24}},
        {0x40212, {44, 0, 12, 24, 24, 24, 2, 24}},
        {0x272,   {48, 0, 12, 24, 28, 32, 2, 32}},
        {0x1018,  {32, 2, 20, 32, 32, 32, 0, 0 }},
        {0x101A,  {36, 3, 24, 36, 36, 36, 0, 0 }},
        {0x111C,  {48, 4, 28, 40, 40, 40, 1, 40}},
        {0x006,   {12, 1, 12, 12, 12, 12, 0, 0 }},
        {0x00E,   {0,  0, 0,  0,  0,  0,  0, 0 }},
    };
    // clang-format on
    for (const auto& [format, places] : kRows) {
        const VertexLayout l = ComputeVertexLayout(format);
        EXPECT_EQ((std::vector<int>{l.stride, l.weights, l.normal, l.point_size, l.diffuse, l.specular, l.texture_sets,
                                    l.texture_offset[0]}),
                  places)
            << format;
        EXPECT_EQ(l.format, format);
    }
    EXPECT_EQ(ComputeVertexLayout(0x1018).rhw_or_weights, 12);
}

TEST(VertexLayout, ReadsTheSizeOfEachTextureSet) {
    const VertexLayout layout = ComputeVertexLayout(0x402 | 3u << 16 | 1u << 18 | 2u << 20);
    EXPECT_THAT(std::vector<int>(layout.texture_floats, layout.texture_floats + 4), ElementsAre(1, 3, 4, 2));
    EXPECT_THAT(std::vector<int>(layout.texture_offset, layout.texture_offset + 4), ElementsAre(12, 16, 28, 44));
    EXPECT_EQ(ComputeVertexLayout(0xF02).texture_sets, 8) << "fifteen are asked for, eight exist";
}

TEST(VertexList, DerivesPrimitivesFromElements) {
    constexpr std::tuple<const char*, int, UINT, UINT> kRows[] = {
        {"point list", 1, 5, 5},     {"line list", 2, 5, 2},    {"line strip", 3, 5, 4}, {"triangle list", 4, 30, 10},
        {"triangle strip", 5, 4, 2}, {"triangle fan", 6, 7, 5}, {"no line", 3, 0, 0},    {"no triangle", 5, 1, 0}};
    const RecordedGfx gfx;
    KRN_VertexList reporter(PrimitiveMode::PointList, 0x42);
    for (const auto& [name, mode, elements, primitives] : kRows)
        EXPECT_EQ(PrimitiveCount(reporter, mode, elements), primitives) << name;
    for (const int mode : {0, 7}) {
        EXPECT_EQ(ErrorOf([&] { PrimitiveCount(reporter, mode, 5); }),
                  "KRN_ListBase: *undefined*: Invalid PointList mode selected! (" + std::to_string(mode) + ")");
    }
}

TEST(VertexList, PoolAndUsageFollowTheRequest) {
    constexpr std::tuple<const char*, int, bool, bool, bool, DWORD, DWORD> kRows[] = {
        {"plain", -1, false, false, true, 0, D3DPOOL_MANAGED},
        {"points", -1, false, true, true, D3DUSAGE_POINTS, D3DPOOL_MANAGED},
        {"dynamic", 0x208, false, true, true, 0x208, D3DPOOL_DEFAULT},
        {"system memory", 0x208, true, false, true, 0x208, D3DPOOL_SYSTEMMEM},
        {"without hardware", 8, false, false, false, 0x18, D3DPOOL_MANAGED},
    };
    for (const auto& [name, usage, system_memory, sprites, hardware, sent_usage, pool] : kRows) {
        SCOPED_TRACE(name);
        RecordedGfx gfx(RecordedGfx::State::Constructed);
        if (!hardware) gfx.recording.caps.DevCaps = 0;
        gfx.Init();
        KRN_VertexListTemp<KRN_LVertex> list(PrimitiveMode::TriangleStrip);
        list.PointSprites().sprites = sprites;
        EXPECT_TRUE(gfx->CreateVertexList(&list, 7, usage, system_memory));
        EXPECT_EQ(gfx.recording.Calls().back().arguments, (std::vector<DWORD>{7 * 28, sent_usage, 0x1C2, pool}));
        EXPECT_EQ(list.ElementCount(), 7u);
        EXPECT_EQ(list.PrimitiveCount(), 5u);
        list.SetMode(PrimitiveMode::LineList);
        EXPECT_EQ(list.PrimitiveCount(), 3u);
        EXPECT_EQ(list.SoftwareProcessing(), !hardware);
    }
    RecordedGfx poor([](Recording& recording) { recording.caps.MaxVertexBlendMatrices = 2; });
    KRN_VertexList weighted(PrimitiveMode::PointList, 0x101A);
    poor->CreateVertexList(&weighted, 2, 0, false);
    EXPECT_TRUE(weighted.SoftwareProcessing()) << "more weights than the hardware blends";
}

TEST(VertexList, RefusesWhatNoBufferHolds) {
    RecordedGfx gfx;
    KRN_VertexListTemp<KRN_LVertex> list;
    EXPECT_EQ(ErrorOf([&] { gfx->CreateVertexList(nullptr, 3, -1, false); }), "KRN_Gfx: VertexList is NULL pointer");
    for (const UINT elements : {0u, 0xFFFFFFFFu, 0xFFFFFFFFu / 28 + 1}) {
        EXPECT_EQ(ErrorOf([&] { gfx->CreateVertexList(&list, elements, -1, false); }),
                  "KRN_Gfx: CreateVertexBuffer in CreateVertexList failed: D3DERR_INVALIDCALL");
    }
    KRN_VertexList empty(PrimitiveMode::PointList, 0);
    EXPECT_EQ(ErrorOf([&] { gfx->CreateVertexList(&empty, 3, -1, false); }),
              "KRN_Gfx: CreateVertexBuffer in CreateVertexList failed: D3DERR_INVALIDCALL");
}

TEST(VertexList, LocksAPartInElements) {
    RecordedGfx gfx;
    KRN_VertexListTemp<KRN_LVertex> list;
    const std::string kLockFailed = "KRN_ListBase: *undefined*: Lock failed: D3DERR_INVALIDCALL";
    EXPECT_EQ(ErrorOf([&] { list.Lock(0, 1, 0); }), kLockFailed) << "no buffer yet";
    gfx->CreateVertexList(&list, 10, -1, false);
    ASSERT_NE(list.Lock(3, 2, D3DLOCK_NOSYSLOCK), nullptr);
    const std::vector<DWORD>& lock = gfx.recording.Calls().back().arguments;
    EXPECT_THAT(std::vector<DWORD>(lock.begin() + 1, lock.end()), ElementsAre(3 * 28, 2 * 28, D3DLOCK_NOSYSLOCK));
    EXPECT_TRUE(list.IsLocked());
    EXPECT_TRUE(list.Unlock());
    EXPECT_FALSE(list.IsLocked());
    EXPECT_EQ(ErrorOf([&] { list.Unlock(); }), "KRN_ListBase: *undefined*: Unlock failed: D3DERR_INVALIDCALL");
    EXPECT_EQ(ErrorOf([&] { list.Lock(9, 2, 0); }), kLockFailed);
    EXPECT_EQ(ErrorOf([&] { list.Lock(11, 0, 0); }), kLockFailed);
}

TEST(VertexList, CountsWhatItDraws) {
    RecordedGfx gfx;
    KRN_VertexListTemp<KRN_PointVertex> points(PrimitiveMode::PointList);
    KRN_VertexListTemp<KRN_LVertex> list;
    list.SetPosition(3, 5, 7, true);
    points.PointSprites().sprites = true;
    gfx->CreateVertexList(&points, 4, -1, false);
    gfx->CreateVertexList(&list, 30, -1, false);
    gfx->BeginScene();
    gfx->DrawTriangleList(list, 0, 0);
    EXPECT_EQ(gfx.recording.Draws().size(), 0u);
    gfx->DrawTriangleList(list, 0, -1);
    EXPECT_EQ(gfx.recording.Draws().back().count, 10u);
    for (const int count : {11, -2}) {
        EXPECT_EQ(ErrorOf([&] { gfx->DrawTriangleList(list, 0, count); }),
                  "KRN_Gfx: Number of elements in DrawTriangleList too high! (" + std::to_string(count) + ")");
    }
    EXPECT_EQ(gfx.recording.Draws().back().world.m[3][2], 7);
    EXPECT_EQ(gfx.recording.Draws().back().render_states.at(D3DRS_POINTSPRITEENABLE), 0u);
    const DrawStatistics& statistics = gfx->Statistics();
    gfx->SuppressDraws(true);
    gfx->DrawTriangleList(list, 0, 4);
    EXPECT_EQ(gfx.recording.Draws().size(), 1u) << "counted, not drawn";
    EXPECT_EQ(statistics.draw_calls, 2u);
    EXPECT_EQ(statistics.primitives, 14u);
    gfx->SuppressDraws(false);
    gfx->DrawTriangleList(points, 1, 3);
    const RecordedDraw& draw = gfx.recording.Draws().back();
    EXPECT_THAT((std::vector<DWORD>{draw.type, draw.first, draw.count, draw.fvf, draw.stride}),
                ElementsAre(D3DPT_POINTLIST, 1, 3, 0x42, 16));
    EXPECT_EQ(draw.render_states.at(D3DRS_POINTSPRITEENABLE), 1u);
    gfx->EndScene();
    gfx->PresentFrame();
    EXPECT_EQ(statistics.draw_calls, 0u);
}

}   // namespace
}   // namespace sparkrig
