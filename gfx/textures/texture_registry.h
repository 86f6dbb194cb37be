// The device textures of KRN_Gfx, by key, each with the number of its users.
#pragma once
#include <string>
#include <unordered_map>
#include <vector>

#include "base/error.h"
#include "platform/d3d9/d3d9.h"

namespace sparkrig {

/// Where a texture's picture came from; nothing for one that was made empty.
struct TextureOrigin {
    std::string file;             // under which it can be opened
    UINT width = 0, height = 0;   // of the picture in it
};

/// An entry lives from Add until its last user lets go; its index is then used again. Around a reset the entries of
/// the default pool stay, without their texture, until their users let go of them too.
class TextureRegistry {
  public:
    /// What fails is reported by `reporter`, which outlives the registry.
    explicit TextureRegistry(const KRN_Base& reporter) : reporter_(reporter) {}
    TextureRegistry(const TextureRegistry&) = delete;
    TextureRegistry& operator=(const TextureRegistry&) = delete;
    ~TextureRegistry();

    /// A new entry with one user. Entries under the empty key are never shared.
    int Add(DevicePtr<IDirect3DTexture9> texture, const std::string& key, const TextureOrigin& origin = {});
    /// The entry under the key with one user more; -1 when there is none that holds a texture.
    int Share(const std::string& key);
    void AddUser(int index);
    /// One user less; -1 does nothing.
    void Release(int index);

    /// Borrowed; null for -1 and for an entry whose texture went with a reset.
    IDirect3DTexture9* Get(int index) const;

    /// Of an entry that exists.
    const TextureOrigin& OriginOf(int index) const { return entries_[static_cast<std::size_t>(index)].origin; }

    /// Before a reset: lets go of every texture of the default pool.
    void ReleaseDefaultPool();

    /// How many entries hold a texture now, and how many textures were ever added.
    int Count() const;
    UINT Created() const { return created_; }
    /// One more that stands elsewhere: the screen copy.
    void CountCreated() { ++created_; }
    /// Default-pool textures of the whole process.
    static int DefaultPoolTextures() { return default_pool_textures_; }

  private:
    struct Entry {
        DevicePtr<IDirect3DTexture9> texture;
        std::string key;
        TextureOrigin origin;
        bool default_pool = false;
        int users = 0;   // 0: the slot is free
    };
    bool InDefaultPool(IDirect3DTexture9& texture) const;
    bool IsEntry(int index) const;
    void DropTexture(Entry& entry);
    void ForgetKey(int index);

    const KRN_Base& reporter_;
    std::vector<Entry> entries_;
    std::vector<int> free_;
    std::unordered_map<std::string, int> by_key_;   // the first entry of each key that holds a texture
    UINT created_ = 0;
    static int default_pool_textures_;
};

}   // namespace sparkrig
