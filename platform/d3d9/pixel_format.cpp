#include "platform/d3d9/pixel_format.h"

#include <algorithm>
#include <iterator>

namespace sparkrig {

namespace {

constexpr unsigned kTex = kRoleTexture, kBoth = kRoleTexture | kRoleTarget, kDepth = kRoleDepth;

// clang-format off
constexpr PixelFormat kFormats[] = {
    // format         bytes  blocks  alpha  roles
    {D3DFMT_A8R8G8B8,   4,   false,  true,  kBoth },
    {D3DFMT_X8R8G8B8,   4,   false,  false, kBoth },
    {D3DFMT_R5G6B5,     2,   false,  false, kBoth },
    {D3DFMT_X1R5G5B5,   2,   false,  false, kTex  },
    {D3DFMT_A1R5G5B5,   2,   false,  true,  kTex  },
    {D3DFMT_A4R4G4B4,   2,   false,  true,  kTex  },
    {D3DFMT_A8,         1,   false,  true,  kTex  },
    {D3DFMT_L8,         1,   false,  false, kTex  },
    {D3DFMT_A8L8,       2,   false,  true,  kTex  },
    {D3DFMT_V8U8,       2,   false,  false, kTex  },
    {D3DFMT_DXT1,       8,   true,   true,  kTex  },
    {D3DFMT_DXT2,      16,   true,   true,  kTex  },
    {D3DFMT_DXT3,      16,   true,   true,  kTex  },
    {D3DFMT_DXT4,      16,   true,   true,  kTex  },
    {D3DFMT_DXT5,      16,   true,   true,  kTex  },
    {D3DFMT_D16,        2,   false,  false, kDepth},
    {D3DFMT_D24X8,      4,   false,  false, kDepth},
    {D3DFMT_D24S8,      4,   false,  false, kDepth},
    {D3DFMT_D32,        4,   false,  false, kDepth},
    {D3DFMT_R8G8B8,     3,   false,  false, 0     },
    {D3DFMT_A8B8G8R8,   4,   false,  true,  0     },
    {D3DFMT_P8,         1,   false,  false, 0     },
    {D3DFMT_L16,        2,   false,  false, 0     },
};
// clang-format on

}   // namespace

const PixelFormat* FindPixelFormat(D3DFORMAT format) {
    const auto* row = std::ranges::find(kFormats, format, &PixelFormat::format);
    return row == std::end(kFormats) ? nullptr : row;
}

}   // namespace sparkrig
