// Short names for textures, read from cfg/texCatalogue.cfg. Each texture is made and loaded at its first use.
//
// A line of the file reads: "name" = "file". Lines that begin with ";" are comments.
#pragma once
#include <memory>

#include "base/search_tree.h"
#include "base/string.h"

namespace sparkrig {

class KRN_Texture;
class TextureLoader;

class KRN_TextureCatalogue : public KRN_Base {
  public:
    /// `loader` outlives the catalogue.
    explicit KRN_TextureCatalogue(TextureLoader& loader);
    ~KRN_TextureCatalogue();
    KRN_TextureCatalogue(const KRN_TextureCatalogue&) = delete;
    KRN_TextureCatalogue& operator=(const KRN_TextureCatalogue&) = delete;

    /// Adds the entries of a catalogue file. With use_directory, file names are taken below `directory`.
    void Load(const char* file, const char* directory, bool use_directory);
    /// False, with a warning, for a name that is there already; a file that is not found is a warning too.
    bool Add(const char* name, const char* file, int load_parameter, bool flag);
    /// Null for a name that is not in the catalogue; a grey 4 x 4 picture for one whose file is missing.
    KRN_Texture* GetTexture(const char* name);
    /// After a device reset: loads again what went with the default pool, so that borrowed textures stay good.
    void Restore();
    /// Lets go of every entry.
    void Clear();

  private:
    struct TextureData {
        std::unique_ptr<KRN_Texture> texture;   // made at first use
        String file;
        int load_parameter = 1;
        bool flag = true;
    };
    /// False when the name can not be taken.
    bool Insert(const char* name, const char* file, int load_parameter, bool flag);
    void WarnOfMissingFile(const char* file) const;
    void LoadInto(KRN_Texture& texture, const TextureData& entry);
    void LoadAgain(KRN_Texture& texture, const TextureData& entry);

    TextureLoader& loader_;
    SearchTree<TextureData> entries_;
};

}   // namespace sparkrig
