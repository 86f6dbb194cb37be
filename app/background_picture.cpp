#include "app/background_picture.h"

#include "platform/system/system.h"

namespace sparkrig {

void LoadBackgroundPicture(KRN_Gfx& gfx, KRN_Texture& picture, const char* path) {
    if (path[0] == 0 || !FileExists(path)) {
        picture.Release();
        return;
    }
    gfx.LoadTexture(&picture, path, 0, -1, -1, 1);
}

}   // namespace sparkrig
