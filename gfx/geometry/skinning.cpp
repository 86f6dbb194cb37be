#include "gfx/geometry/skinning.h"

#include <cstring>

#include "scene/vertex_codec.h"

namespace sparkrig {

namespace {

D3DXMATRIX Product(const D3DXMATRIX& a, const D3DXMATRIX& b) {
    D3DXMATRIX product;
    D3DXMatrixMultiply(&product, &a, &b);
    return product;
}

/// How a matrix moves normals. A singular one leaves none.
D3DXMATRIX NormalMatrix(const D3DXMATRIX& matrix) {
    D3DXMATRIX inverse, transposed;
    if (!D3DXMatrixInverse(&inverse, nullptr, &matrix)) return {};
    D3DXMatrixTranspose(&transposed, &inverse);
    return transposed;
}

/// A matrix of the palette, for positions and for normals.
struct Bone {
    D3DXMATRIX position, normal;
};

D3DXVECTOR3 Moved(const D3DXVECTOR3& v, const D3DXMATRIX& m) {
    return {v.x * m.m[0][0] + v.y * m.m[1][0] + v.z * m.m[2][0], v.x * m.m[0][1] + v.y * m.m[1][1] + v.z * m.m[2][1],
            v.x * m.m[0][2] + v.y * m.m[1][2] + v.z * m.m[2][2]};
}

void Add(const Bone& bone, float weight, const D3DXVECTOR3& position, const D3DXVECTOR3& normal, PlacedVertex& sum) {
    const auto& row = bone.position.m[3];
    sum.position = sum.position + (Moved(position, bone.position) + D3DXVECTOR3(row[0], row[1], row[2])) * weight;
    sum.normal = sum.normal + Moved(normal, bone.normal) * weight;
}

}   // namespace

bool IsSkinned(const KRN_MeshBase& mesh) { return mesh.influences > 0 && mesh.bones.size() >= 2; }

D3DXMATRIX LocalMatrix(const KRN_MeshBase& mesh) { return Product(mesh.PivotMatrix(), mesh.WorldMatrix()); }

void MakePalette(const KRN_MeshBase& mesh, const D3DXMATRIX& world, std::vector<D3DXMATRIX>& palette) {
    const D3DXMATRIX with_mesh = Product(LocalMatrix(mesh), world);
    palette.clear();
    for (std::size_t i = 0; i < mesh.bones.size(); ++i) {
        const KRN_3dObject* node = i < mesh.bone_nodes.size() ? mesh.bone_nodes[i] : nullptr;
        const bool moves_alone = node && node != &mesh;
        palette.push_back(moves_alone ? Product(Product(mesh.bones[i].offset, node->WorldMatrix()), world) : with_mesh);
    }
}

void PlaceVertices(const MeshGeometry& geometry, std::uint32_t first, std::span<const D3DXMATRIX> palette,
                   std::span<PlacedVertex> placed) {
    std::vector<Bone> bones;
    for (const D3DXMATRIX& matrix : palette) bones.push_back({matrix, NormalMatrix(matrix)});
    const VertexLayout& layout = geometry.layout;
    const bool indexed = (layout.format & D3DFVF_LASTBETA_UBYTE4) != 0 && bones.size() > 1;
    const int influences = indexed ? InfluencesOf(layout) : 1;
    const std::uint8_t* vertex = geometry.Vertex(first);
    for (PlacedVertex& sum : placed) {
        D3DXVECTOR3 position, normal;
        float weights[4] = {1, 0, 0, 0};
        std::uint8_t indices[4] = {};
        std::memcpy(&position, vertex + layout.position, sizeof position);
        if (layout.format & D3DFVF_NORMAL) std::memcpy(&normal, vertex + layout.normal, sizeof normal);
        if (indexed) {
            std::memcpy(weights, vertex + layout.rhw_or_weights,
                        sizeof(float) * static_cast<std::size_t>(influences - 1));
            std::memcpy(indices, vertex + BoneIndexOffset(layout), sizeof indices);
        }
        sum = {};
        float left = 1;   // the last weight is what the others leave
        for (int i = 0; i < influences; ++i) {
            const float weight = i + 1 < influences ? weights[i] : left;
            left -= weight;
            if (indices[i] < bones.size()) Add(bones[indices[i]], weight, position, normal, sum);
        }
        vertex += layout.stride;
    }
}

}   // namespace sparkrig
