#include "effects/effect_textures.h"

#include "gfx/gfx.h"
#include "gfx/textures/texture_catalogue.h"

namespace sparkrig {

void LoadEffectTexture(KRN_Gfx& gfx, const char* name, std::shared_ptr<KRN_Texture>& texture) {
    if (!texture && *name) {
        KRN_Texture* shared = gfx.Catalogue().GetTexture(name);
        if (shared) texture = std::shared_ptr<KRN_Texture>(shared, [](KRN_Texture*) {});   // the catalogue's own
    }
    if (!texture) texture = std::make_shared<KRN_Texture>();
    if (!texture->HasSurface()) gfx.LoadTexture(texture.get(), name, 0, 0);
}

}   // namespace sparkrig
