#include "gfx/textures/texture_catalogue.h"

#include "base/file_validator.h"
#include "base/report_listener.h"
#include "gfx/device/with_restore.h"
#include "gfx/textures/catalogue_file.h"
#include "gfx/textures/texture.h"
#include "gfx/textures/texture_loader.h"
#include "gfx/textures/video_sources.h"

namespace sparkrig {
namespace {

constexpr D3DCOLOR kMissingFileColour = 0xFF969696;
constexpr UINT kMissingFileSize = 4;

/// The tree takes names that begin with a character of ASCII.
bool CanBeName(const char* name) { return static_cast<signed char>(*name) >= 32; }

}   // namespace

KRN_TextureCatalogue::KRN_TextureCatalogue(TextureLoader& loader) : loader_(loader) { SetName("KRN_TextureCatalogue"); }
KRN_TextureCatalogue::~KRN_TextureCatalogue() = default;

void KRN_TextureCatalogue::Clear() { entries_.Clear(); }

void KRN_TextureCatalogue::Load(const char* file, const char* directory, bool use_directory) {
    const bool below = use_directory && directory && *directory;
    TextureLookup lookup(loader_.Paths());
    const SourceFileScope place(file);
    CatalogueFile catalogue(file);
    String name, entry_file;
    while (catalogue.Next(name, entry_file)) {
        loader_.Validator().CheckPath(entry_file.c_str());
        const bool is_file = !IsVideoName(entry_file.c_str());
        const std::string path = below && is_file ? JoinPath(directory, entry_file.c_str()) : entry_file.c_str();
        if (Insert(name.c_str(), path.c_str(), 1, true) && !loader_.CanLoad(path.c_str(), lookup))
            WarnOfMissingFile(path.c_str());
    }
}

bool KRN_TextureCatalogue::Add(const char* name, const char* file, int load_parameter, bool flag) {
    if (!Insert(name, file, load_parameter, flag)) return false;
    if (!loader_.CanLoad(file)) WarnOfMissingFile(file);
    return true;
}

void KRN_TextureCatalogue::WarnOfMissingFile(const char* file) const { Warning("Texture file not found: '%s'", file); }

bool KRN_TextureCatalogue::Insert(const char* name, const char* file, int load_parameter, bool flag) {
    if (!CanBeName(name)) {
        Warning("Invalid name '%s' of file '%s'", name, file);
        return false;
    }
    TextureData* entry = entries_.Insert(name);
    if (!entry) {
        Warning("Duplicate entry '%s' in file '%s'", name, file);
        return false;
    }
    entry->file = file;
    entry->load_parameter = load_parameter;
    entry->flag = flag;
    return true;
}

KRN_Texture* KRN_TextureCatalogue::GetTexture(const char* name) {
    TextureData* entry = CanBeName(name) ? entries_.Find(name) : nullptr;
    if (!entry) return nullptr;
    if (!entry->texture) {
        auto texture = std::make_unique<KRN_Texture>();
        LoadInto(*texture, *entry);
        entry->texture = std::move(texture);
    }
    return entry->texture.get();
}

void KRN_TextureCatalogue::LoadInto(KRN_Texture& texture, const TextureData& entry) {
    if (loader_.CanLoad(entry.file.c_str())) {
        loader_.LoadTexture(&texture, entry.file.c_str(), 0, entry.load_parameter, -1, 1);
        return;
    }
    loader_.CreateTexture(&texture, kMissingFileSize, kMissingFileSize, -1, -1, 1);
    texture.Clear(kMissingFileColour, nullptr);
}

/// As it was loaded at first, whichever layer or frame is chosen now.
void KRN_TextureCatalogue::LoadAgain(KRN_Texture& texture, const TextureData& entry) {
    if (const int frame = texture.CurrentFrame(); texture.SequenceFrames() > 0) {
        LoadInto(texture, entry);
        if (frame < texture.SequenceFrames()) texture.SelectSequenceFrame(frame);
        return;
    }
    const int layer = texture.CurrentLayer();
    const auto load = [&] {
        texture.SelectLayer(0, false);
        LoadInto(texture, entry);
    };
    WithRestore(load, [&] { texture.SelectLayer(layer, false); });
}

void KRN_TextureCatalogue::Restore() {
    entries_.ResetIteration();
    while (TextureData* entry = entries_.GetNext())
        if (entry->texture && !entry->texture->LayerTexture(0)) LoadAgain(*entry->texture, *entry);
}

}   // namespace sparkrig
