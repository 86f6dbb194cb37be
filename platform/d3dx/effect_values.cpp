#include "platform/d3dx/effect_values.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

namespace sparkrig {

DWORD WordOf(NumberType number, float value) {
    switch (number) {
        case NumberType::Float: return std::bit_cast<DWORD>(value);
        case NumberType::Bool: return value != 0 ? 1 : 0;
        default: break;
    }
    if (std::isnan(value)) return 0;
    const double rounded = std::round(std::clamp(static_cast<double>(value), -2147483648.0, 2147483647.0));
    return std::bit_cast<DWORD>(static_cast<INT>(rounded));
}

DWORD WordOf(NumberType number, INT value) {
    switch (number) {
        case NumberType::Float: return std::bit_cast<DWORD>(static_cast<float>(value));
        case NumberType::Bool: return value != 0 ? 1 : 0;
        default: return std::bit_cast<DWORD>(value);
    }
}

float FloatOf(NumberType number, DWORD word) {
    return number == NumberType::Float ? std::bit_cast<float>(word) : static_cast<float>(std::bit_cast<INT>(word));
}

INT IntOf(NumberType number, DWORD word) {
    if (number != NumberType::Float) return std::bit_cast<INT>(word);
    return std::bit_cast<INT>(WordOf(NumberType::Int, std::bit_cast<float>(word)));
}

D3DXMATRIX MatrixOf(const EffectVariable& variable, const std::vector<DWORD>& words, UINT element) {
    D3DXMATRIX matrix = kIdentityMatrix;
    const DWORD* word = words.data() + static_cast<std::size_t>(element) * variable.WordsPerElement();
    for (DWORD row = 0; row < variable.rows; ++row)
        for (DWORD column = 0; column < variable.columns; ++column)
            matrix.m[row][column] = FloatOf(variable.number, *word++);
    return matrix;
}

void StoreMatrix(const EffectVariable& variable, std::vector<DWORD>& words, UINT element, const D3DXMATRIX& matrix) {
    DWORD* word = words.data() + static_cast<std::size_t>(element) * variable.WordsPerElement();
    for (DWORD row = 0; row < variable.rows; ++row)
        for (DWORD column = 0; column < variable.columns; ++column)
            *word++ = WordOf(variable.number, matrix.m[row][column]);
}

void StoreVector(const EffectVariable& variable, std::vector<DWORD>& words, UINT element, const D3DXVECTOR4& vector) {
    const float components[4] = {vector.x, vector.y, vector.z, vector.w};
    DWORD* word = words.data() + static_cast<std::size_t>(element) * variable.WordsPerElement();
    for (DWORD i = 0; i < variable.columns; ++i) word[i] = WordOf(variable.number, components[i]);
}

void CopyToGlobals(const EffectVariable& variable, const std::vector<DWORD>& words, BYTE* place) {
    constexpr std::size_t kRowBytes = 16;
    const std::size_t row_bytes = variable.columns * sizeof(DWORD);
    const std::size_t rows = words.size() / variable.columns;
    for (std::size_t row = 0; row < rows; ++row)
        std::memcpy(place + row * kRowBytes, words.data() + row * variable.columns, row_bytes);
}

std::shared_ptr<ParameterValue> EffectPool::Share(const EffectVariable& variable,
                                                  std::shared_ptr<ParameterValue> initial) {
    std::string key;
    for (const DWORD part : {static_cast<DWORD>(variable.kind), static_cast<DWORD>(variable.number), variable.rows,
                             variable.columns, variable.elements})
        key += std::to_string(part) + ' ';
    std::weak_ptr<ParameterValue>& place = values_[key + variable.name];
    if (std::shared_ptr<ParameterValue> present = place.lock()) return present;
    place = initial;
    return initial;
}

}   // namespace sparkrig
