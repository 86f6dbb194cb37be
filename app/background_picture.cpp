#include "app/background_picture.h"

#include "base/error.h"
#include "gfx/textures/texture_loader.h"
#include "platform/system/system.h"

namespace sparkrig {

std::string LoadBackgroundPicture(KRN_Gfx& gfx, KRN_Texture& picture, const char* path) try {
    if (path[0] == 0 || !FileExists(path)) {
        picture.Release();
    } else {
        gfx.LoadTexture(&picture, path, 0, kLoadKeepsTexture, -1, 1);
    }
    return {};
} catch (const ErrorRecord& error) {
    if (!picture.IsValid()) picture.Release();   // it would be tried again every frame
    return error.message;
}

}   // namespace sparkrig
