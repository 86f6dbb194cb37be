#include "effects/draw_order.h"

#include <algorithm>

namespace sparkrig {

void DrawOrder::Clear() { order_.clear(); }

void DrawOrder::RankTextures(std::span<const RegroupTraits> traits) {
    textures_.clear();
    for (const RegroupTraits& one : traits) textures_.push_back(one.texture);
    std::sort(textures_.begin(), textures_.end());
    textures_.erase(std::unique(textures_.begin(), textures_.end()), textures_.end());
    ranks_.clear();
    for (const RegroupTraits& one : traits) {
        const auto place = std::lower_bound(textures_.begin(), textures_.end(), one.texture);
        ranks_.push_back(static_cast<std::uint32_t>(place - textures_.begin()));
    }
}

}   // namespace sparkrig
