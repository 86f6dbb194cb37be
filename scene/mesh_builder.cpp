#include "scene/mesh_builder.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "base/numeric.h"
#include "scene/vertex_codec.h"

namespace sparkrig {

namespace {

constexpr std::uint32_t kNone = 0xFFFFFFFF;
constexpr int kMostVerticesOfPoint = 128;
constexpr D3DCOLORVALUE kBlack = {0, 0, 0, 1};

struct RenderVertex {
    std::uint32_t point = 0;
    float u = 0, v = 0;
    SmoothingGroups groups;   // those that all its faces share
    int material_id = 0;
    int faces = 1;   // whose normals are summed
    D3DXVECTOR3 normal_sum;
    std::uint32_t next = kNone;   // made from the same point
};

/// The vertices made from a point, in the order they were made.
struct VertexChain {
    std::uint32_t first = kNone, last = kNone;
    int count = 0;
};

struct BuiltFace {
    std::uint32_t corners[3] = {};
    int group = -1;   // -1 for a face without area
};

SmoothingGroups Shared(const SmoothingGroups& a, const SmoothingGroups& b) {
    SmoothingGroups shared;
    for (int i = 0; i < a.count; ++i)
        if (std::find(b.numbers, b.numbers + b.count, a.numbers[i]) != b.numbers + b.count)
            shared.numbers[shared.count++] = a.numbers[i];
    return shared;
}

D3DXVECTOR3 Direction(const D3DXVECTOR3& from, const D3DXVECTOR3& to) {
    D3DXVECTOR3 direction = to - from;
    return *D3DXVec3Normalize(&direction, &direction);
}

class MeshBuilder {
  public:
    MeshBuilder(const MeshBuildContext& context, RawMesh& raw, KRN_MaterialInfo* material, KRN_Mesh& mesh,
                KVA_MeshLoadInfo& info)
        : context_(context), raw_(raw), material_(material), mesh_(mesh), info_(info), chains_(raw.points.size()) {}

    void Build();

  private:
    const char* Name() const { return mesh_.Name().c_str(); }
    void CheckFaces() const;
    DWORD ChooseFormat();
    int CountTextureSets();
    void NormaliseWeights();
    void BuildFaces();
    void BuildFace(std::size_t index);
    std::uint32_t FindOrMake(const RawFace& face, std::uint32_t point, const D3DXVECTOR3& normal, int material_id,
                             const RawTexturePoint* texture);
    int GroupOf(int material_id);
    void SmoothAcrossSplits();
    void SmoothChain(const VertexChain& chain);
    void WriteFaces(MeshGeometry& geometry) const;
    void WriteVertices(MeshGeometry& geometry) const;
    void WriteSkin(const RawPoint& point, const VertexLayout& layout, std::uint8_t* vertex) const;

    const MeshBuildContext& context_;
    RawMesh& raw_;
    KRN_MaterialInfo* material_;
    KRN_Mesh& mesh_;
    KVA_MeshLoadInfo& info_;
    std::vector<VertexChain> chains_;   // one for each point
    std::vector<RenderVertex> vertices_;
    std::vector<BuiltFace> faces_;
    int duplicates_ = 0, invalid_faces_ = 0, groups_ = 0;
};

void MeshBuilder::Build() {
    CheckFaces();
    const DWORD format = ChooseFormat();
    NormaliseWeights();
    BuildFaces();
    if (duplicates_ > 0) context_.reporter.Warning("%i vertices duplicated in mesh '%s'", duplicates_, Name());
    SmoothAcrossSplits();
    if (info_.submaterial_groups.empty()) groups_ = 1;
    if (vertices_.empty()) context_.reporter.Error("Mesh without vertices: '%s'", Name());
    info_.groups = static_cast<std::uint32_t>(groups_);
    MeshGeometry& geometry =
        mesh_.CreateGeometry({.faces = static_cast<std::uint32_t>(raw_.faces.size()) - invalid_faces_,
                              .vertices = static_cast<std::uint32_t>(vertices_.size()),
                              .groups = info_.groups,
                              .format = format,
                              .system_memory = context_.flags.system_memory});
    WriteFaces(geometry);
    WriteVertices(geometry);
    mesh_.ComputeBounds();
    if (!mesh_.bones.empty()) mesh_.clip_mode = 0;
    mesh_.SortByGroup();
}

/// Corners come from the file: they must name what is there.
void MeshBuilder::CheckFaces() const {
    const auto check = [this](const auto& faces, std::size_t points) {
        for (std::size_t i = 0; i < faces.size(); ++i)
            for (const std::uint32_t corner : faces[i].corners)
                if (corner >= points)
                    context_.reporter.Error("Invalid face %i in mesh '%s'", static_cast<int>(i), Name());
    };
    check(raw_.faces, raw_.points.size());
    check(raw_.texture_faces, raw_.texture_points.size());
}

// ---- Vertex format and skin

DWORD MeshBuilder::ChooseFormat() {
    constexpr DWORD kFormats[] = {0x12, 0, 0x1018, 0x101A, 0x101C};   // by influences
    constexpr DWORD kColours = D3DFVF_DIFFUSE | D3DFVF_SPECULAR, kSecondSetOfThree = 0x40000;
    if (mesh_.influences == 1) {
        context_.reporter.Warning("Only one bone in object %s", Name());
        mesh_.influences = 2;
    }
    if (mesh_.influences < 0 || mesh_.influences > kMostInfluences)
        context_.reporter.Error("Invalid number of weightings: %i", mesh_.influences);
    if (mesh_.influences > 0 && mesh_.bones.empty()) context_.reporter.Error("Invalid bone index: %i", 0);
    DWORD format = kFormats[mesh_.influences];
    if (context_.flags.vertex_colours) format |= kColours;
    int sets = CountTextureSets();
    if (material_ && material_->has_bump_map) format |= kSecondSetOfThree;
    if (sets == 0 && !raw_.texture_faces.empty()) sets = 1;
    return format | static_cast<DWORD>(sets) << D3DFVF_TEXCOUNT_SHIFT;
}

int MeshBuilder::CountTextureSets() {
    if (!material_) return 0;
    int sets = material_->has_diffuse_map ? 1 : 0;
    if (material_->has_bump_map) ++sets;
    if (material_->has_reflection_map) mesh_.reflection_stage = sets++;
    return sets;
}

void MeshBuilder::NormaliseWeights() {
    if (mesh_.influences == 0) return;
    for (RawPoint& point : raw_.points) {
        float sum = 0;
        for (int i = 0; i < mesh_.influences; ++i) sum += point.weights[i];
        if (sum == 0) {
            point.weights[0] = 1;
            std::ranges::fill(point.bones, std::uint8_t{0});
        } else {
            for (int i = 0; i < mesh_.influences; ++i) point.weights[i] /= sum;
        }
    }
}

// ---- Faces

void MeshBuilder::BuildFaces() {
    if (material_) info_.submaterial_groups.assign(material_->submaterials.size(), -1);
    faces_.resize(raw_.faces.size());
    vertices_.reserve(std::min(raw_.points.size() * 2, 3 * raw_.faces.size()));
    for (std::size_t i = 0; i < raw_.faces.size(); ++i) BuildFace(i);
}

void MeshBuilder::BuildFace(std::size_t index) {
    const RawFace& face = raw_.faces[index];
    const D3DXVECTOR3 corners[3] = {raw_.points[face.corners[0]].position, raw_.points[face.corners[1]].position,
                                    raw_.points[face.corners[2]].position};
    const D3DXVECTOR3 normal = D3DXVec3Cross(corners[1] - corners[0], corners[2] - corners[0]);
    const float length = D3DXVec3Length(normal);
    if (!(length > 0)) {
        context_.reporter.Warning("Invalid face %i in mesh '%s'", static_cast<int>(index), Name());
        ++invalid_faces_;
        return;
    }
    D3DXVECTOR3 unit;
    D3DXVec3Normalize(&unit, &normal);
    const int submaterials = static_cast<int>(info_.submaterial_groups.size());
    const int material_id = submaterials > 0 ? PositiveMod(face.material_id, submaterials) : 0;
    const bool textured = index < raw_.texture_faces.size();
    for (int k = 0; k < 3; ++k) {
        const D3DXVECTOR3 e1 = Direction(corners[k], corners[(k + 1) % 3]);
        const D3DXVECTOR3 e2 = Direction(corners[k], corners[(k + 2) % 3]);
        const float angle = std::acos(std::clamp(D3DXVec3Dot(e1, e2), -1.0f, 1.0f));
        const RawTexturePoint* texture =
            textured ? &raw_.texture_points[raw_.texture_faces[index].corners[k]] : nullptr;
        const std::uint32_t vertex = FindOrMake(face, face.corners[k], unit * angle, material_id, texture);
        if (texture) {
            vertices_[vertex].u = texture->u;
            vertices_[vertex].v = texture->v;
        }
        faces_[index].corners[k] = vertex;
    }
    faces_[index].group = GroupOf(material_id);
}

std::uint32_t MeshBuilder::FindOrMake(const RawFace& face, std::uint32_t point, const D3DXVECTOR3& normal,
                                      int material_id, const RawTexturePoint* texture) {
    VertexChain& chain = chains_[point];
    const auto add_to = [&](std::uint32_t index) {
        vertices_[index].normal_sum += normal;
        ++vertices_[index].faces;
        return index;
    };
    for (std::uint32_t i = chain.first; i != kNone; i = vertices_[i].next) {
        RenderVertex& vertex = vertices_[i];
        if (vertex.material_id != material_id) continue;
        if (texture && (vertex.u != texture->u || vertex.v != texture->v)) continue;
        const SmoothingGroups shared = Shared(face.smoothing, vertex.groups);
        if (shared.count == 0) continue;
        vertex.groups = shared;
        return add_to(i);
    }
    if (chain.count == kMostVerticesOfPoint) {
        context_.reporter.Warning("Too many smoothing groups on vertex %i!", static_cast<int>(point));
        return add_to(chain.first);
    }
    const auto made = static_cast<std::uint32_t>(vertices_.size());
    vertices_.push_back({.point = point, .groups = face.smoothing, .material_id = material_id, .normal_sum = normal});
    if (chain.count++ > 0) ++duplicates_;
    (chain.first == kNone ? chain.first : vertices_[chain.last].next) = made;
    chain.last = made;
    return made;
}

/// Groups are numbered as they are first used.
int MeshBuilder::GroupOf(int material_id) {
    if (info_.submaterial_groups.empty()) return 0;
    int& group = info_.submaterial_groups[static_cast<std::size_t>(material_id)];
    if (group < 0) group = groups_++;
    return group;
}

// ---- Normals

void MeshBuilder::SmoothAcrossSplits() {
    for (const VertexChain& chain : chains_)
        if (chain.count > 1) SmoothChain(chain);
}

/// Vertices of one point that share a smoothing group have one normal. The order of pairs does not matter: what is
/// added is what stood before.
void MeshBuilder::SmoothChain(const VertexChain& chain) {
    std::vector<RenderVertex> before;
    for (std::uint32_t i = chain.first; i != kNone; i = vertices_[i].next) before.push_back(vertices_[i]);
    std::size_t place = 0;
    for (std::uint32_t i = chain.first; i != kNone; i = vertices_[i].next, ++place) {
        for (std::size_t other = 0; other < before.size(); ++other) {
            if (other == place || Shared(before[place].groups, before[other].groups).count == 0) continue;
            vertices_[i].normal_sum += before[other].normal_sum;
            vertices_[i].faces += before[other].faces;
        }
    }
}

// ---- What is drawn

void MeshBuilder::WriteFaces(MeshGeometry& geometry) const {
    std::size_t written = 0;
    for (const BuiltFace& face : faces_) {
        if (face.group < 0) continue;
        for (int k = 0; k < 3; ++k) geometry.indices[3 * written + k] = static_cast<std::uint16_t>(face.corners[k]);
        geometry.groups[written++] = static_cast<std::uint16_t>(face.group);
    }
}

void MeshBuilder::WriteVertices(MeshGeometry& geometry) const {
    const VertexLayout& layout = geometry.layout;
    for (std::uint32_t i = 0; i < vertices_.size(); ++i) {
        const RenderVertex& source = vertices_[i];
        const RawPoint& point = raw_.points[source.point];
        std::uint8_t* vertex = geometry.Vertex(i);
        D3DXVECTOR3 normal = source.normal_sum * (1 / static_cast<float>(source.faces));
        if (D3DXVec3Length(normal) == 0) context_.reporter.Warning("Zero normal sum in object %s!", Name());
        D3DXVec3Normalize(&normal, &normal);
        const float texture[2] = {source.u, source.v};
        std::memcpy(vertex + layout.position, &point.position, sizeof point.position);
        std::memcpy(vertex + layout.normal, &normal, sizeof normal);
        if (layout.texture_sets > 0) std::memcpy(vertex + layout.texture_offset[0], texture, sizeof texture);
        if (mesh_.influences > 0) WriteSkin(point, layout, vertex);
    }
}

void MeshBuilder::WriteSkin(const RawPoint& point, const VertexLayout& layout, std::uint8_t* vertex) const {
    const std::size_t weights = static_cast<std::size_t>(mesh_.influences - 1) * sizeof(float);
    std::memcpy(vertex + layout.rhw_or_weights, point.weights, weights);
    std::memcpy(vertex + BoneIndexOffset(layout), point.bones, sizeof point.bones);
}

// ---- Materials

MeshMaterial WireframeMaterial(const D3DCOLORVALUE& colour) {
    MeshMaterial material;
    material.colours = {colour, colour, kBlack, kBlack, kDefaultSpecularPower};
    return material;
}

void SetGroup(KRN_Mesh& mesh, std::size_t group, const KRN_MaterialInfo& material) {
    mesh.Material(static_cast<int>(group)) = material.drawn;
    mesh.Textures(static_cast<int>(group)) = material.textures;
}

}   // namespace

void BuildMesh(const MeshBuildContext& context, RawMesh& raw, KRN_MaterialInfo* material, KRN_Mesh& mesh,
               KVA_MeshLoadInfo& info) {
    MeshBuilder(context, raw, material, mesh, info).Build();
}

void SetGroupMaterials(KRN_MaterialInfo* material, const KVA_MeshLoadInfo& info, KRN_Mesh& mesh) {
    if (!material) {
        mesh.Material(0) = WireframeMaterial(info.wireframe);
    } else if (material->submaterials.empty()) {
        SetGroup(mesh, 0, *material);
    } else {
        for (std::size_t i = 0; i < info.submaterial_groups.size(); ++i)
            if (info.submaterial_groups[i] >= 0)
                SetGroup(mesh, static_cast<std::size_t>(info.submaterial_groups[i]), *material->submaterials[i]);
    }
}

void SetCloneMaterials(KRN_MaterialInfo* material, const KVA_MeshLoadInfo& info, const KVA_MeshLoadInfo& source,
                       KRN_Mesh& clone) {
    if (!material || material->submaterials.empty()) {
        clone.SetGroupCount(1);
        SetGroupMaterials(material, info, clone);
        return;
    }
    const auto& submaterials = material->submaterials;
    clone.SetGroupCount(source.groups);
    if (source.submaterial_groups.empty()) return SetGroup(clone, 0, *submaterials[0]);
    for (std::size_t i = 0; i < source.submaterial_groups.size(); ++i)
        if (source.submaterial_groups[i] >= 0)
            SetGroup(clone, static_cast<std::size_t>(source.submaterial_groups[i]),
                     *submaterials[i % submaterials.size()]);
}

}   // namespace sparkrig
