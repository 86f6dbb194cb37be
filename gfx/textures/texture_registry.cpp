#include "gfx/textures/texture_registry.h"

#include <algorithm>
#include <utility>

namespace sparkrig {

int TextureRegistry::default_pool_textures_ = 0;

TextureRegistry::~TextureRegistry() {
    for (Entry& entry : entries_) DropTexture(entry);
}

bool TextureRegistry::InDefaultPool(IDirect3DTexture9& texture) const {
    D3DSURFACE_DESC desc;
    const HRESULT result = texture.GetLevelDesc(0, &desc);
    if (FAILED(result)) reporter_.Error("GetDesc failed: %s", DXGetErrorString9(result));
    return desc.Pool == D3DPOOL_DEFAULT;
}

int TextureRegistry::Add(DevicePtr<IDirect3DTexture9> texture, const std::string& key, const TextureOrigin& origin) {
    const bool default_pool = InDefaultPool(*texture);
    if (free_.empty()) {
        free_.push_back(static_cast<int>(entries_.size()));
        entries_.emplace_back();
    }
    const int index = free_.back();
    free_.pop_back();
    entries_[index] = {std::move(texture), key, origin, default_pool, 1};
    if (!key.empty()) by_key_.try_emplace(key, index);
    if (default_pool) ++default_pool_textures_;
    ++created_;
    return index;
}

int TextureRegistry::Share(const std::string& key) {
    const auto found = by_key_.find(key);
    if (found == by_key_.end()) return -1;
    ++entries_[found->second].users;
    return found->second;
}

bool TextureRegistry::IsEntry(int index) const {
    return index >= 0 && index < static_cast<int>(entries_.size()) && entries_[index].users > 0;
}

void TextureRegistry::AddUser(int index) {
    if (IsEntry(index)) ++entries_[index].users;
}

void TextureRegistry::Release(int index) {
    if (!IsEntry(index) || --entries_[index].users > 0) return;
    ForgetKey(index);
    DropTexture(entries_[index]);
    free_.push_back(index);
}

IDirect3DTexture9* TextureRegistry::Get(int index) const {
    return IsEntry(index) ? entries_[index].texture.Get() : nullptr;
}

void TextureRegistry::ReleaseDefaultPool() {
    for (int index = 0; index < static_cast<int>(entries_.size()); ++index) {
        if (!entries_[index].default_pool) continue;
        ForgetKey(index);
        DropTexture(entries_[index]);
    }
}

int TextureRegistry::Count() const {
    return static_cast<int>(std::ranges::count_if(entries_, [](const Entry& entry) { return bool(entry.texture); }));
}

void TextureRegistry::DropTexture(Entry& entry) {
    if (entry.texture && entry.default_pool) --default_pool_textures_;
    entry.texture.Reset();
}

void TextureRegistry::ForgetKey(int index) {
    const auto found = by_key_.find(entries_[index].key);
    if (found != by_key_.end() && found->second == index) by_key_.erase(found);
}

}   // namespace sparkrig
