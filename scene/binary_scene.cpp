#include "scene/binary_scene.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>

#include "base/little_endian.h"
#include "platform/d3d9/d3d9.h"
#include "platform/system/system.h"
#include "scene/map_files.h"
#include "scene/scene_records.h"
#include "scene/vertex_codec.h"

namespace sparkrig {

namespace {

constexpr std::uint8_t kMagic[3] = {'3', 'S', 'C'};
constexpr std::uint32_t kColourBits = D3DFVF_DIFFUSE | D3DFVF_SPECULAR;
constexpr std::uint32_t kSecondSetOfThree = 0x40000;
constexpr std::uint32_t kFaceBytes = 3 * 2 + 2;   // indices and group
constexpr std::uint32_t kLeastNodeBytes = 199;    // without names and keys

// ---- Reading

/// The place of the first number that is not below the limit; their count for none. Mostly there is none.
std::size_t FirstNotBelow(const std::vector<std::uint16_t>& numbers, std::uint32_t limit) {
    std::uint16_t highest = 0;
    for (const std::uint16_t number : numbers) highest = std::max(highest, number);
    if (highest < limit) return numbers.size();
    const auto place = std::ranges::find_if(numbers, [limit](std::uint16_t number) { return number >= limit; });
    return static_cast<std::size_t>(place - numbers.begin());
}

/// Whether decoding writes every byte of a vertex: nothing but the first coordinate pair stands behind the normal.
bool AllIsStored(DWORD format, DWORD stored) {
    constexpr DWORD kStored =
        D3DFVF_POSITION_MASK | D3DFVF_NORMAL | D3DFVF_LASTBETA_UBYTE4 | 1u << D3DFVF_TEXCOUNT_SHIFT;
    return format == stored && (format & ~kStored) == 0;
}

class BinarySceneReader {
  public:
    explicit BinarySceneReader(const BinarySceneSource& source)
        : source_(source), file_(source.file), archive_(source.file, source.version, source.name.c_str()) {}

    void Read(KRN_3dScene& scene);

  private:
    void ReadMesh(KRN_Mesh& mesh);
    void ReadGeometry(KRN_Mesh& mesh);
    DWORD FormatInMemory(const KRN_Mesh& mesh, DWORD stored) const;
    void ReadVertices(const KRN_Mesh& mesh, DWORD format, MeshGeometry& geometry);
    void ReadFaces(const KRN_Mesh& mesh, MeshGeometry& geometry);
    void CheckBoneIndices(const KRN_Mesh& mesh, const MeshGeometry& geometry) const;
    void FindTextures(TextureRecord& textures) const;
    const std::uint8_t* Take(std::size_t bytes);

    template <class Node, int N, class Reader>
    void ReadList(NodeList<Node, N>& list, const char* what, Reader read) {
        for (std::uint32_t left = archive_.Count(kLeastNodeBytes, what); left > 0; --left) read(list.Add());
    }

    const BinarySceneSource& source_;
    File& file_;
    RecordReader archive_;
};

void BinarySceneReader::Read(KRN_3dScene& scene) {
    SceneRecords::Header(archive_, scene.header);
    SceneRecords::Node(archive_, scene);
    if (source_.version >= 103) SceneRecords::Volume(archive_, scene);
    SceneRecords::Settings(archive_, scene);
    if (scene.environment) FindTextures(*scene.environment);
    ReadList(scene.meshes, "meshes", [this](KRN_Mesh& mesh) { ReadMesh(mesh); });
    ReadList(scene.cameras, "cameras", [this](KRN_Camera& camera) { SceneRecords::Camera(archive_, camera); });
    ReadList(scene.helpers, "helpers", [this](KRN_3dObject& helper) { SceneRecords::Node(archive_, helper); });
    ReadList(scene.lights, "lights", [this](KRN_Light& light) { SceneRecords::Light(archive_, light); });
}

void BinarySceneReader::ReadMesh(KRN_Mesh& mesh) {
    SceneRecords::MeshStart(archive_, mesh);
    for (int group = 0; group < mesh.MaterialCount(); ++group) FindTextures(mesh.Textures(group));
    if (mesh.clone_source.GetLength() == 0) ReadGeometry(mesh);
    SceneRecords::MeshEnd(archive_, mesh);
}

/// A texture that is not there stays named in its slot, so that writing the scene again loses nothing.
void BinarySceneReader::FindTextures(TextureRecord& textures) const {
    for (MapSlot& slot : textures.slots) {
        if (!slot.InUse() || (slot.role == MapRole::Bump && !source_.flags.bump_maps)) continue;
        const std::string path = PathIn(source_.directory, slot.file.c_str());
        if (FileExists(path.c_str())) {
            slot.path = path.c_str();
        } else {
            file_.Warning("File '%s': Can not open texture: %s", source_.name.c_str(), slot.file.c_str());
        }
    }
}

/// The next bytes of the file, which is in memory.
const std::uint8_t* BinarySceneReader::Take(std::size_t bytes) {
    const auto left = static_cast<std::size_t>(file_.GetSize() - file_.Tell());
    if (bytes > left) file_.Error("Error reading from file (%s)", std::strerror(0));
    const std::uint8_t* start = file_.GetBuffer() + file_.Tell();
    file_.Seek(file_.Tell() + static_cast<int>(bytes));
    return start;
}

DWORD BinarySceneReader::FormatInMemory(const KRN_Mesh& mesh, DWORD stored) const {
    DWORD format = stored;
    if (source_.flags.vertex_colours) format |= kColourBits;
    bool bump = false;
    for (int group = 0; group < mesh.MaterialCount(); ++group)
        for (const MapSlot& slot : mesh.Textures(group).slots) bump |= slot.InUse() && slot.role == MapRole::Bump;
    if (!bump || !source_.flags.bump_maps) return format;
    const DWORD sets = (format & D3DFVF_TEXCOUNT_MASK) >> D3DFVF_TEXCOUNT_SHIFT;
    if (sets > 1) mesh.Error("Multiple texture coords not supported");
    if (sets == 0) return format;
    return (format & ~DWORD{D3DFVF_TEXCOUNT_MASK}) | 2u << D3DFVF_TEXCOUNT_SHIFT | kSecondSetOfThree;
}

void BinarySceneReader::ReadGeometry(KRN_Mesh& mesh) {
    std::uint32_t counts[3];   // vertices, faces, vertex format
    archive_.Words(counts);
    const auto [vertices, faces, stored] = counts;
    const DWORD format = FormatInMemory(mesh, stored);
    const auto stride = static_cast<DWORD>(ComputeVertexLayout(format).stride);
    const bool transformed = (format & D3DFVF_POSITION_MASK) == D3DFVF_XYZRHW;
    if (vertices == 0 || faces == 0 || stride == 0 || transformed || VertexFormatStride(format) != stride)
        mesh.Error(" D3DXCreateMeshFVF failed: %s ", DXGetErrorString9(D3DERR_INVALIDCALL));
    const auto left = static_cast<std::uint32_t>(file_.GetSize() - file_.Tell());
    if (faces > left / kFaceBytes) file_.Error("%u faces do not fit into the %u bytes left", faces, left);
    MeshGeometry& geometry = mesh.CreateGeometry({.faces = faces,
                                                  .vertices = vertices,
                                                  .groups = static_cast<std::uint32_t>(mesh.MaterialCount()),
                                                  .format = format,
                                                  .system_memory = source_.flags.system_memory,
                                                  .clear_vertices = !AllIsStored(format, stored),
                                                  .make_records = false});
    ReadVertices(mesh, stored, geometry);
    ReadFaces(mesh, geometry);
    mesh.influences = InfluencesOf(geometry.layout);
    mesh.MeasureRadius();
    mesh.SortByGroup();
}

void BinarySceneReader::ReadVertices(const KRN_Mesh& mesh, DWORD format, MeshGeometry& geometry) {
    const StoredVertices stored = {ComputeVertexLayout(format), source_.version >= 101, source_.version < 102};
    const std::size_t bytes = std::size_t{geometry.VertexCount()} * stored.Stride();
    DecodeVertices(stored, Take(bytes), geometry);
    CheckBoneIndices(mesh, geometry);
}

void BinarySceneReader::CheckBoneIndices(const KRN_Mesh& mesh, const MeshGeometry& geometry) const {
    if ((geometry.layout.format & D3DFVF_LASTBETA_UBYTE4) == 0) return;
    const int checked = source_.version < 101 ? 4 : std::min(InfluencesOf(geometry.layout), 4);
    for (std::uint32_t i = 0; i < geometry.VertexCount(); ++i) {
        const std::uint8_t* indices = geometry.Vertex(i) + BoneIndexOffset(geometry.layout);
        for (int bone = 0; bone < checked; ++bone)
            if (indices[bone] >= mesh.bones.size())
                mesh.Error("Invalid bone index: %i", LoadLittleEndian<std::int32_t>(indices));
    }
}

void BinarySceneReader::ReadFaces(const KRN_Mesh& mesh, MeshGeometry& geometry) {
    const std::size_t faces = geometry.FaceCount();
    const std::uint8_t* indices = Take(6 * faces);
    const std::uint8_t* groups = Take(2 * faces);
    for (std::size_t i = 0; i < 3 * faces; ++i) geometry.indices[i] = LoadLittleEndian<std::uint16_t>(indices + 2 * i);
    for (std::size_t i = 0; i < faces; ++i) geometry.groups[i] = LoadLittleEndian<std::uint16_t>(groups + 2 * i);
    const std::size_t bad_index = FirstNotBelow(geometry.indices, geometry.VertexCount());
    if (bad_index < 3 * faces)
        mesh.Error("Invalid face %i in mesh '%s'", static_cast<int>(bad_index / 3), mesh.Name().c_str());
    const std::size_t bad_group = FirstNotBelow(geometry.groups, static_cast<std::uint32_t>(mesh.MaterialCount()));
    if (bad_group < faces)
        mesh.Error("Invalid group %i of face %i in mesh '%s'", geometry.groups[bad_group], static_cast<int>(bad_group),
                   mesh.Name().c_str());
}

// ---- Writing

void WriteGeometry(const MeshGeometry& geometry, File& file) {
    RecordWriter archive(file);
    archive.Words(geometry.VertexCount());
    archive.Words(geometry.FaceCount());
    archive.Words(geometry.layout.format);
    const std::uint32_t stride = StoredVertices{geometry.layout}.Stride();
    ByteBuffer bytes(std::size_t{geometry.VertexCount()} * stride);
    for (std::uint32_t i = 0; i < geometry.VertexCount(); ++i)
        EncodeVertex(geometry, i, bytes.data() + std::size_t{i} * stride);
    file.Write(bytes.data(), static_cast<int>(bytes.size()));
    for (const std::uint16_t index : geometry.indices) archive.U16(index);
    for (const std::uint16_t group : geometry.groups) archive.U16(group);
}

template <class List>
void WriteList(const List& list, File& file) {
    file.WriteInt32(list.Count());
    for (const auto& node : list) node.Write(file);
}

}   // namespace

bool IsBinaryScene(const std::uint8_t (&start)[4]) { return std::equal(kMagic, kMagic + 3, start); }

void ReadBinaryScene(const BinarySceneSource& source, KRN_3dScene& scene) {
    if (source.version > kNewestSceneVersion)
        scene.Error("Unknown 3sc file version: %i (%s)", source.version, source.name.c_str());
    if (source.version < kOldestSceneVersion)
        scene.Error("'%s': Obsolete 3sc file version: %i", source.name.c_str(), source.version);
    scene.header.binary = true;
    scene.header.version = source.version;
    BinarySceneReader(source).Read(scene);
    scene.header.name = scene.Name();
    scene.SetNodeName(source.name.c_str());
    scene.SortBlendedMeshes();
    scene.LinkHierarchy();
    scene.render_settings.words[0] = 0;
    scene.ResolveClones();
    scene.SetSceneTime(scene.header.StartTime(), true);
    if (source.version < 103) scene.MeasureBounds();
    if (scene.cameras.Count() > 0) scene.SelectCamera(0);
}

void KRN_Mesh::Write(File& file) const {
    RecordWriter archive(file);
    SceneRecords::MeshStart(archive, *this);
    if (clone_source.GetLength() == 0) {
        if (!Geometry()) Error("Mesh without vertices: '%s'", Name().c_str());
        WriteGeometry(*Geometry(), file);
    }
    SceneRecords::MeshEnd(archive, *this);
}

void KRN_3dScene::Write(File& file) const {
    RecordWriter archive(file);
    KRN_3dObject node;
    CopyNode(*this, node, true);
    node.SetNodeName(header.name);
    SceneRecords::Node(archive, node);
    SceneRecords::Volume(archive, *this);
    SceneRecords::Settings(archive, *this);
    WriteList(meshes, file);
    WriteList(cameras, file);
    WriteList(helpers, file);
    WriteList(lights, file);
}

void WriteBinaryScene(const KRN_3dScene& scene, File& file) {
    RecordWriter archive(file);
    file.Write(kMagic, sizeof kMagic);
    file.WriteByte(kNewestSceneVersion);
    SceneRecords::Header(archive, scene.header);
    scene.Write(file);
}

void SaveBinaryScene(const KRN_3dScene& scene, const char* name) {
    const std::string target = ResolvePath(name), part = target + ".part";
    File file;
    if (IsSpecialFile(target.c_str())) file.Error("Can not write '%s': it is a folder, a device or a pipe", name);
    if (!ReplaceFileContent(part.c_str(), "", 0) || !file.Open(part.c_str(), false, true, true))
        file.Error("Can not write '%s': %s", name, std::strerror(errno));
    std::error_code error;
    try {
        WriteBinaryScene(scene, file);
        file.Close();
        std::filesystem::rename(part, target, error);
    } catch (const ErrorRecord&) {   // passed on: what is half written goes
        std::filesystem::remove(part, error);
        throw;
    }
    if (!error) return;
    const std::string reason = error.message();
    std::filesystem::remove(part, error);
    file.Error("Can not write '%s': %s", name, reason.c_str());
}

}   // namespace sparkrig
