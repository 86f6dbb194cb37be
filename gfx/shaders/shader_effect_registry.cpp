#include "gfx/shaders/shader_effect_registry.h"

#include <algorithm>

namespace sparkrig {

int ShaderEffectRegistry::Add(std::unique_ptr<ShaderEffectData> data, const std::string& key) {
    auto slot = std::ranges::find_if(entries_, [](const Entry& entry) { return !entry.data; });
    if (slot == entries_.end()) slot = entries_.emplace(entries_.end());
    *slot = {std::move(data), key, 1};
    return static_cast<int>(slot - entries_.begin());
}

int ShaderEffectRegistry::Share(const std::string& key) {
    const auto found =
        std::ranges::find_if(entries_, [&](const Entry& entry) { return entry.data && entry.key == key; });
    if (found == entries_.end()) return -1;
    ++found->users;
    return static_cast<int>(found - entries_.begin());
}

void ShaderEffectRegistry::Release(int index) {
    Entry& entry = entries_[static_cast<std::size_t>(index)];
    if (--entry.users == 0) entry = {};
}

void ShaderEffectRegistry::OnLostDevice() {
    for (const Entry& entry : entries_) {
        if (!entry.data) continue;
        entry.data->effect->OnLostDevice();
        entry.data->filled_in = -1;   // its screen textures are gone
        entry.data->initialised = false;
        entry.data->EndDrawing();
    }
}

void ShaderEffectRegistry::OnResetDevice() {
    for (const Entry& entry : entries_)
        if (entry.data) entry.data->effect->OnResetDevice();
}

}   // namespace sparkrig
