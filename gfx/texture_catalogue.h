// Short names for textures, read from cfg/texCatalogue.cfg. Each texture is made and loaded at its first use.
#pragma once
#include "base/error.h"
#include "base/string.h"

namespace sparkrig {

class KRN_Gfx;
class KRN_Texture;

class KRN_TextureCatalogue : public KRN_Base {
  public:
    explicit KRN_TextureCatalogue(KRN_Gfx& gfx);
    ~KRN_TextureCatalogue();
    KRN_TextureCatalogue(const KRN_TextureCatalogue&) = delete;
    KRN_TextureCatalogue& operator=(const KRN_TextureCatalogue&) = delete;

    /// Adds the entries of a catalogue file. With use_directory, file names are taken below `directory`.
    void Load(const char* file, const char* directory, bool use_directory);
    bool Add(const char* name, const char* file, int load_parameter, bool flag);
    /// Null for a name that is not in the catalogue; a grey 4 x 4 picture for one whose file is missing.
    KRN_Texture* GetTexture(const char* name);
    /// Lets go of every entry.
    void Clear();

  private:
    struct Entries;
    KRN_Gfx& gfx_;
    Entries* entries_;   // owned
};

}   // namespace sparkrig
