#include "platform/d3d9_gl/uniform_blocks.h"

#include <algorithm>
#include <cmath>

#include "platform/d3d9/capabilities.h"

namespace sparkrig {

namespace {

D3DMATRIX Multiply(const D3DMATRIX& a, const D3DMATRIX& b) {
    D3DMATRIX product;
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) {
            float sum = 0.0f;
            for (int i = 0; i < 4; ++i) sum += a.m[row][i] * b.m[i][column];
            product.m[row][column] = sum;
        }
    }
    return product;
}

D3DVECTOR Cross(const D3DVECTOR& a, const D3DVECTOR& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
float Dot(const D3DVECTOR& a, const D3DVECTOR& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

D3DVECTOR Row(const D3DMATRIX& matrix, int row) { return {matrix.m[row][0], matrix.m[row][1], matrix.m[row][2]}; }

// The rows of the transposed inverse: the cross products of M's rows over its determinant. All zero if M is singular.
std::array<Vec4, 3> NormalMatrix(const D3DMATRIX& matrix) {
    const D3DVECTOR x = Row(matrix, 0), y = Row(matrix, 1), z = Row(matrix, 2);
    const float determinant = Dot(x, Cross(y, z));
    const float scale = determinant != 0.0f ? 1.0f / determinant : 0.0f;
    const auto row = [scale](const D3DVECTOR& v) { return Vec4{v.x * scale, v.y * scale, v.z * scale, 0.0f}; };
    return {row(Cross(y, z)), row(Cross(z, x)), row(Cross(x, y))};
}

D3DVECTOR TransformDirection(const D3DVECTOR& v, const D3DMATRIX& matrix) {
    const auto component = [&](int i) { return v.x * matrix.m[0][i] + v.y * matrix.m[1][i] + v.z * matrix.m[2][i]; };
    return {component(0), component(1), component(2)};
}

bool IsAffine(const D3DMATRIX& matrix) {
    return matrix.m[0][3] == 0.0f && matrix.m[1][3] == 0.0f && matrix.m[2][3] == 0.0f && matrix.m[3][3] == 1.0f;
}

LightRow ToRow(const D3DLIGHT9& light, const D3DMATRIX& view) {
    const D3DVECTOR turned = TransformDirection(light.Position, view);
    const D3DVECTOR direction = TransformDirection(light.Direction, view);
    const float length = std::sqrt(Dot(direction, direction));
    const float scale = length > 0.0f ? -1.0f / length : 0.0f;   // from the lit thing to where the light comes from
    const auto colour = [](const D3DCOLORVALUE& value) { return Rgba{value.r, value.g, value.b, value.a}; };
    LightRow row;
    row.diffuse = colour(light.Diffuse);
    row.specular = colour(light.Specular);
    row.ambient = colour(light.Ambient);
    row.position = {turned.x + view.m[3][0], turned.y + view.m[3][1], turned.z + view.m[3][2], light.Range};
    row.direction = {direction.x * scale, direction.y * scale, direction.z * scale, static_cast<float>(light.Type)};
    row.attenuation = {light.Attenuation0, light.Attenuation1, light.Attenuation2, light.Falloff};
    row.cone = {std::cos(light.Theta / 2.0f), std::cos(light.Phi / 2.0f), 0.0f, 0.0f};
    return row;
}

}   // namespace

void FillStates(const DeviceState& state, UINT target_width, UINT target_height, StatesBlock& block) {
    const float width = static_cast<float>(state.viewport.Width), height = static_cast<float>(state.viewport.Height);
    block.half_pixel = {1.0f / width, -1.0f / height, 2.0f / static_cast<float>(target_width),
                        2.0f / static_cast<float>(target_height)};
    block.point = {state.Float(D3DRS_POINTSIZE), state.Float(D3DRS_POINTSIZE_MIN),
                   std::min(state.Float(D3DRS_POINTSIZE_MAX), kMaxPointSize), height};
    block.point_scale = {state.Float(D3DRS_POINTSCALE_A), state.Float(D3DRS_POINTSCALE_B),
                         state.Float(D3DRS_POINTSCALE_C), 0.0f};
    const float start = state.Float(D3DRS_FOGSTART), end = state.Float(D3DRS_FOGEND);
    constexpr float kStep = 1e30f;   // fog that starts where it ends: nothing before, all behind
    block.fog = {start, end, state.Float(D3DRS_FOGDENSITY), end != start ? 1.0f / (end - start) : kStep};
    block.fog_colour = ToRgba(state.render[D3DRS_FOGCOLOR]);
    block.texture_factor = ToRgba(state.render[D3DRS_TEXTUREFACTOR]);
    block.pixel = {static_cast<float>(state.render[D3DRS_ALPHAREF] & 255), IsAffine(state.projection) ? 1.0f : 0.0f,
                   0.0f, 0.0f};
    for (DWORD stage = 0; stage < kTextureStages; ++stage) {
        const auto& row = state.stages[stage];
        const auto number = [&row](D3DTEXTURESTAGESTATETYPE type) { return std::bit_cast<float>(row[type]); };
        block.constants[stage] = ToRgba(row[D3DTSS_CONSTANT]);
        block.bump[stage] = {number(D3DTSS_BUMPENVMAT00), number(D3DTSS_BUMPENVMAT01), number(D3DTSS_BUMPENVMAT10),
                             number(D3DTSS_BUMPENVMAT11)};
    }
}

void FillTransforms(const DeviceState& state, TransformsBlock& block) {
    block.world_view = Multiply(state.world[0], state.view);
    block.view = state.view;
    block.projection = state.projection;
    block.normal = NormalMatrix(block.world_view);
}

void FillLighting(const DeviceState& state, LightingBlock& block) {
    const auto colour = [](const D3DCOLORVALUE& value) { return Rgba{value.r, value.g, value.b, value.a}; };
    block.ambient = ToRgba(state.render[D3DRS_AMBIENT]);
    block.diffuse_material = colour(state.material.Diffuse);
    block.ambient_material = colour(state.material.Ambient);
    block.specular_material = colour(state.material.Specular);
    block.emissive_material = colour(state.material.Emissive);
    std::size_t count = 0;
    for (const auto& [index, slot] : state.lights) {
        if (slot.enabled && count < kMaxActiveLights) block.lights[count++] = ToRow(slot.light, state.view);
    }
    block.counts = {static_cast<float>(count), state.material.Power, 0.0f, 0.0f};
    block.texture = state.texture_matrices;
}

}   // namespace sparkrig
