#include "scene/kva_mesh.h"

#include <algorithm>

#include "scene/kva_nodes.h"

namespace sparkrig {

namespace {

constexpr float kLeastWeight = 0.1f;
constexpr std::size_t kMostBones = 256;   // a vertex names them by a byte
constexpr int kInitialWithoutPivot = 2 * 256 + 11;

/// Makes room for the announced number of elements. What the rest of the file cannot hold is an error.
template <class Element>
void Announce(KvaText& text, std::vector<Element>& elements, int& read, const char* what) {
    int count = 0;
    if (!text.Integer(count)) return;
    const auto left = static_cast<int>(text.Content().size()) - text.Tell();
    if (count < 0 || count > left) text.Error("%i %s do not fit into the %i bytes left", count, what, left);
    elements.assign(static_cast<std::size_t>(count), {});
    read = 0;
}

/// The next element of a list whose indices count up from 0.
template <class Element>
Element& Next(KvaText& text, std::vector<Element>& elements, int& read, const char* wrong_order, const char* too_many) {
    int index = -1;
    text.Integer(index);
    if (index != read) text.Error("%s", wrong_order);
    if (static_cast<std::size_t>(read) >= elements.size()) text.Error("%s", too_many);
    return elements[static_cast<std::size_t>(read++)];
}

std::uint32_t ReadCorner(KvaText& text) {
    int index = -1;
    text.Integer(index);
    return static_cast<std::uint32_t>(index);   // compared with the points when they are all there
}

void ReadSmoothing(KvaText& text, RawFace& face) {
    face.smoothing.count = 0;
    int group = 0;
    while (text.PeekVisible() != '*' && text.Integer(group)) {
        if (face.smoothing.count == kMostSmoothingGroups) {
            text.Warning("More than %i smoothing groups", kMostSmoothingGroups);
        } else {
            face.smoothing.numbers[face.smoothing.count++] = static_cast<std::uint8_t>(group);
        }
        if (text.PeekVisible() != ',') return;
        text.Skip(1);
    }
}

class MeshBlock {
  public:
    MeshBlock(KvaText& text, int version, KRN_Mesh& mesh, RawMesh& raw)
        : text_(text), version_(version), mesh_(mesh), raw_(raw) {}

    bool Read();

  private:
    void ReadVertexList();
    void ReadFaceList();
    void ReadTextureVertexList();
    void ReadTextureFaceList();
    void ReadWeights();
    void ReadMeshInitial();
    void ReadBoneWeight();
    void ReadIndexWeight(std::size_t bone);
    void AddWeight(RawPoint& point, std::uint8_t bone, float weight);
    std::size_t FindOrAddBone(const String& name);

    KvaText& text_;
    int version_;
    KRN_Mesh& mesh_;
    RawMesh& raw_;
    int points_ = 0, faces_ = 0, texture_points_ = 0, texture_faces_ = 0;   // read so far
    D3DXMATRIX initial_ = kIdentityMatrix;                                  // of the mesh
};

bool MeshBlock::Read() {
    KRN_ClipObject box;
    const bool whole = text_.Block({
        {"MESH_NUMVERTEX", [&] { Announce(text_, raw_.points, points_, "vertices"); }},
        {"MESH_NUMFACES", [&] { Announce(text_, raw_.faces, faces_, "faces"); }},
        {"MESH_VERTEX_LIST", [&] { ReadVertexList(); }},
        {"MESH_FACE_LIST", [&] { ReadFaceList(); }},
        {"MESH_NUMTVERTEX", [&] { Announce(text_, raw_.texture_points, texture_points_, "t-vertices"); }},
        {"MESH_TVERTLIST", [&] { ReadTextureVertexList(); }},
        {"MESH_NUMTVFACES", [&] { Announce(text_, raw_.texture_faces, texture_faces_, "t-faces"); }},
        {"MESH_TFACELIST", [&] { ReadTextureFaceList(); }},
        {"MESH_WEIGHTS", [&] { ReadWeights(); }},
        {"BOUNDINGBOX_MIN", [&] { text_.Triple(box.box_minimum); }},
        {"BOUNDINGBOX_MAX", [&] { text_.Triple(box.box_maximum); }},
    });
    mesh_.box_minimum = box.box_minimum;
    mesh_.box_maximum = box.box_maximum;
    return whole;
}

void MeshBlock::ReadVertexList() {
    text_.Block({{"MESH_VERTEX", [&] {
                      RawPoint& point =
                          Next(text_, raw_.points, points_, "Wrong vertex list order!", "Too many vertices");
                      text_.Triple(point.position);
                  }}});
}

void MeshBlock::ReadFaceList() {
    RawFace* face = nullptr;
    const auto read_face = [&] {
        face = &Next(text_, raw_.faces, faces_, "Wrong face list order!", "Too many faces");
        for (int corner = 0; corner < 3; ++corner) {
            text_.ExpectChar("ABC"[corner]);
            text_.ExpectChar(':');
            face->corners[corner] = ReadCorner(text_);
        }
    };
    const auto read_smoothing = [&] {
        if (face) ReadSmoothing(text_, *face);
    };
    const auto read_id = [&] {
        if (face) text_.Integer(face->material_id);
    };
    text_.Block({{"MESH_FACE", read_face}, {"MESH_SMOOTHING", read_smoothing}, {"MESH_MTLID", read_id}});
}

void MeshBlock::ReadTextureVertexList() {
    text_.Block({{"MESH_TVERT", [&] {
                      RawTexturePoint& point = Next(text_, raw_.texture_points, texture_points_,
                                                    "Wrong vertex list order!", "Too many t-vertices");
                      float uvw[3];
                      if (text_.Triple(uvw)) point = {uvw[0], 1 - uvw[1]};
                  }}});
}

void MeshBlock::ReadTextureFaceList() {
    mesh_.textured = true;
    text_.Block({{"MESH_TFACE", [&] {
                      RawTextureFace& face =
                          Next(text_, raw_.texture_faces, texture_faces_, "Wrong face list order!", "Too many t-faces");
                      for (std::uint32_t& corner : face.corners) corner = ReadCorner(text_);
                  }}});
}

// ---- Skin

void MeshBlock::ReadWeights() {
    text_.Block({{"MESH_INIT_TM", [&] { ReadMeshInitial(); }}, {"BONE_WEIGHT", [&] { ReadBoneWeight(); }}});
}

void MeshBlock::ReadMeshInitial() {
    NodeTransform initial;
    if (!ReadTransform(text_, initial)) return;
    initial_ = initial.matrix;
    if (version_ < kInitialWithoutPivot) D3DXMatrixMultiply(&initial_, &mesh_.PivotMatrix(), &initial_);
    KRN_BoneInfo& itself = mesh_.bones[FindOrAddBone(mesh_.Name())];
    itself.initial = itself.mesh_initial = itself.offset = kIdentityMatrix;
}

std::size_t MeshBlock::FindOrAddBone(const String& name) {
    const auto place = std::ranges::find(mesh_.bones, name, &KRN_BoneInfo::name);
    if (place != mesh_.bones.end()) return static_cast<std::size_t>(place - mesh_.bones.begin());
    if (mesh_.bones.size() == kMostBones)
        text_.Error("More than %zu bones in object '%s'", kMostBones, mesh_.Name().c_str());
    mesh_.bones.emplace_back().name = name;
    return mesh_.bones.size() - 1;
}

void MeshBlock::ReadBoneWeight() {
    String name;
    std::size_t bone = 0;
    const auto read_initial = [&] {
        NodeTransform initial;
        if (!ReadTransform(text_, initial)) return;
        bone = FindOrAddBone(name);
        KRN_BoneInfo& info = mesh_.bones[bone];
        info.initial = initial.matrix;
        info.mesh_initial = initial_;
        D3DXMatrixMultiply(&info.offset, &info.mesh_initial, &info.initial);
    };
    text_.Block({{"BONE_NAME", [&] { text_.LimitedText(name); }},
                 {"BONE_INIT_TM", read_initial},
                 {"INDEX_WEIGHT", [&] { ReadIndexWeight(bone); }}});
}

void MeshBlock::ReadIndexWeight(std::size_t bone) {
    int index = -1;
    float weight = 0;
    text_.Integer(index);
    if (index < 0 || static_cast<std::size_t>(index) >= raw_.points.size())
        text_.Error("Invalid weight index: %i", index);
    if (!text_.Number(weight) || !(weight >= kLeastWeight)) return;
    RawPoint& point = raw_.points[static_cast<std::size_t>(index)];
    AddWeight(point, static_cast<std::uint8_t>(bone), weight);
    mesh_.influences = std::max<int>(mesh_.influences, point.pairs);
}

/// A fifth bone takes the place of the one that counts least.
void MeshBlock::AddWeight(RawPoint& point, std::uint8_t bone, float weight) {
    int place = point.pairs;
    if (point.pairs == kMostInfluences) {
        const float* w = point.weights;
        const int first = w[1] <= w[0] ? 1 : 0, second = w[3] <= w[2] ? 3 : 2;
        place = w[first] < w[second] || (w[first] == w[second] && second != 3) ? first : second;
        text_.Warning("More than 4 bones in vertex of object '%s'", mesh_.Name().c_str());
    } else {
        ++point.pairs;
    }
    point.weights[place] = weight;
    point.bones[place] = bone;
}

}   // namespace

bool ReadMesh(KvaText& text, int version, KRN_Mesh& mesh, RawMesh& raw) {
    return MeshBlock(text, version, mesh, raw).Read();
}

}   // namespace sparkrig
