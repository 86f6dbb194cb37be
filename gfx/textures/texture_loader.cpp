#include "gfx/textures/texture_loader.h"

#include <algorithm>
#include <climits>
#include <cstdlib>

#include "base/report_listener.h"
#include "gfx/textures/frame_list.h"
#include "gfx/textures/texture.h"
#include "platform/d3dx/image_file.h"
#include "platform/d3dx/pixel_formats.h"
#include "platform/system/system.h"

namespace sparkrig {
namespace {

constexpr D3DCOLOR kPlaceholderColour = 0xFFC8C8C8;
constexpr UINT kPlaceholderSize = 8;

/// How a pool number, of LoadTexture or CreateTexture, is made.
struct PoolRow {
    int number;
    DWORD usage;
    D3DPOOL pool;
};
constexpr PoolRow kLoadPools[] = {{-1, 0, D3DPOOL_MANAGED},
                                  {0, 0, D3DPOOL_MANAGED},
                                  {1, 0, D3DPOOL_DEFAULT},
                                  {2, 0, D3DPOOL_MANAGED},
                                  {3, D3DUSAGE_RENDERTARGET, D3DPOOL_DEFAULT}};
constexpr PoolRow kCreatePools[] = {{-1, 0, D3DPOOL_MANAGED},
                                    {1, 0, D3DPOOL_DEFAULT},
                                    {2, 0, D3DPOOL_SYSTEMMEM},
                                    {3, D3DUSAGE_RENDERTARGET, D3DPOOL_DEFAULT},
                                    {4, 0, D3DPOOL_MANAGED}};

template <std::size_t n>
const PoolRow* FindPool(const PoolRow (&rows)[n], int number) {
    for (const PoolRow& row : rows)
        if (row.number == number) return &row;
    return nullptr;
}

bool HasCap(const GraphicsDevice& graphics, DWORD cap) { return (graphics.Caps().TextureCaps & cap) != 0; }

/// The size that a device without free sizes gives to a picture.
UINT DeviceSide(const GraphicsDevice& graphics, UINT side) {
    return HasCap(graphics, D3DPTEXTURECAPS_POW2) ? RoundUpToPowerOfTwo(side) : side;
}

}   // namespace

TextureLoader::TextureLoader(const GraphicsDevice& graphics, const PresentationSettings& presentation,
                             TextureRegistry& registry, VideoSources& videos, TextureBinder& binder)
    : graphics_(graphics), presentation_(presentation), registry_(registry), videos_(videos), binder_(binder) {}
TextureLoader::~TextureLoader() = default;

bool TextureLoader::CanLoad(const char* name) const {
    std::string found;
    return IsVideoName(name) || paths_.Find(name, found);
}

bool TextureLoader::CanLoad(const char* name, TextureLookup& lookup) const {
    return IsVideoName(name) || lookup.Contains(name);
}

TextureLoader::Request TextureLoader::TakeApart(D3DCOLOR colour_key, int parameter, int format, int mip_levels) const {
    const int bits = parameter == -1 ? 0 : parameter & (kLoadWithoutStretching | kLoadKeepsTexture);
    const PoolRow* row = FindPool(kLoadPools, parameter == -1 ? -1 : parameter & ~bits);
    if (!row) graphics_.Reporter().Error("Wrong texture parameter in LoadTexture!");
    return {.colour_key = colour_key,
            .format = format,
            .mip_levels = mip_levels,
            .stretching = (bits & kLoadWithoutStretching) == 0,
            .keeps_texture = (bits & kLoadKeepsTexture) != 0,
            .usage = row->usage,
            .pool = row->pool};
}

void TextureLoader::LoadTexture(KRN_Texture* texture, const char* file, D3DCOLOR colour_key, int parameter, int format,
                                int mip_levels) {
    if (!texture) graphics_.Reporter().Error("KRN_Texture pointer in LoadTexture is NULL pointer!");
    const std::string name = file ? file : "";   // a copy: it may be the texture's own name, which is let go of
    validator_.CheckPath(name.c_str());
    if (name.empty()) graphics_.Reporter().Error("Invalid file name in LoadTexture");
    texture->Attach(graphics_, registry_, binder_);
    if (IsVideoName(name.c_str())) {
        texture->Show(LoadVideoSource(*texture, name.c_str()));
    } else {
        const Request request = TakeApart(colour_key, parameter, format, mip_levels);
        if (!request.keeps_texture) {
            texture->ReleaseFrames();
            texture->ReleaseCurrent();
        }
        LoadFile(*texture, name.c_str(), request);
    }
    texture->layers_[texture->current_layer_].name = name.c_str();
}

void TextureLoader::LoadFile(KRN_Texture& texture, const char* name, const Request& request) {
    std::string found;
    if (!paths_.Find(name, found)) graphics_.Reporter().Error("Can not open file %s", name);
    if (IsFrameListName(name))
        texture.ShowFrames(LoadFrameList(texture, found, request));
    else
        texture.Show(LoadPicture(texture, found, request));
}

// ---- Video sources

TextureLoader::Picture TextureLoader::LoadVideoSource(const KRN_Texture& texture, const char* name) {
    const long number = std::strtol(name + sizeof kVideoPrefix - 1, nullptr, 10);
    const int slot = static_cast<int>(std::clamp<long>(number, INT_MIN + 1, INT_MAX)) - 1;
    if (!VideoSources::IsSlot(slot)) graphics_.Reporter().Error("Invalid video source for texture: %i", slot + 1);
    VideoSource& source = videos_[slot];
    int entry = settings_.sharing ? registry_.Share(name) : -1;
    if (entry < 0) {
        if (source.width < 1 || source.height < 1)
            graphics_.Reporter().Error("Invalid video source specifications for source %i", slot + 1);
        DevicePtr<IDirect3DTexture9> made;
        const HRESULT result =
            graphics_.Device()->CreateTexture(DeviceSide(graphics_, source.width), DeviceSide(graphics_, source.height),
                                              1, 0, source.format, D3DPOOL_MANAGED, made.Receive());
        if (FAILED(result))
            graphics_.Reporter().Error("CreateTexture for video source failed: %s ", DXGetErrorString9(result));
        source.texture = made;
        entry = registry_.Add(std::move(made), name);
    }
    Picture picture = texture.PictureOfEntry(entry);
    picture.SetSize(static_cast<float>(source.width), static_cast<float>(source.height));
    picture.video_source = slot;
    return picture;
}

// ---- Image-file lists

std::vector<TextureLoader::Picture> TextureLoader::LoadFrameList(const KRN_Texture& texture, const std::string& list,
                                                                 const Request& request) {
    const std::vector<std::string> names = ReadFrameList(graphics_.Reporter(), list.c_str());
    const SourceFileScope place(list.c_str());
    char directory[1024];
    GetDirectory(list.c_str(), directory, sizeof directory);
    std::vector<Picture> frames;
    try {
        for (const std::string& name : names) frames.push_back(LoadFrame(texture, directory, name.c_str(), request));
    } catch (const ErrorRecord&) {   // all frames or none
        for (const Picture& frame : frames) registry_.Release(frame.entry);
        throw;
    }
    return frames;
}

TextureLoader::Picture TextureLoader::LoadFrame(const KRN_Texture& texture, const char* directory, const char* name,
                                                const Request& request) {
    if (IsVideoName(name)) return LoadVideoSource(texture, name);
    validator_.CheckPath(name);
    const std::string beside = *directory ? JoinPath(directory, name) : name;
    std::string file = name;
    if (!FileExists(name) && FileExists(beside.c_str()))
        file = beside;
    else if (!paths_.Find(name, file))
        graphics_.Reporter().Error("Can not open file %s", name);
    return LoadPicture(texture, file, request);
}

// ---- Image files

TextureLoader::Picture TextureLoader::LoadPlaceholder(const KRN_Texture& texture) {
    if (!placeholder_) {
        auto made = std::make_unique<KRN_Texture>();
        CreateTexture(made.get(), kPlaceholderSize, kPlaceholderSize, -1, -1, 1);
        made->Clear(kPlaceholderColour, nullptr);
        placeholder_ = std::move(made);
    }
    const int entry = placeholder_->InUse().entry;
    registry_.AddUser(entry);
    return texture.PictureOfEntry(entry);
}

/// Width and height 0: the file's own.
struct TextureLoader::Plan {
    UINT width, height;
    D3DFORMAT format;
    UINT levels;
    DWORD filter, mip_filter;
};

TextureLoader::Plan TextureLoader::MakePlan(const std::string& file, const D3DXIMAGE_INFO& info,
                                            const Request& request) const {
    Plan plan = {D3DX_DEFAULT_NONPOW2,
                 D3DX_DEFAULT_NONPOW2,
                 static_cast<D3DFORMAT>(request.format),
                 static_cast<UINT>(request.mip_levels),
                 request.stretching ? D3DX_FILTER_LINEAR : D3DX_FILTER_NONE,
                 D3DX_FILTER_BOX};
    if (request.format == -1)
        plan.format = ChooseTextureFormat({info.Format, info.Width, info.Height, presentation_.mode.Format,
                                           settings_.compression, settings_.compression_threshold});
    if (!HasCap(graphics_, D3DPTEXTURECAPS_MIPMAP)) plan.levels = 0;
    if (IsPowerOfTwo(info.Width) && IsPowerOfTwo(info.Height)) return plan;
    const bool compressed_levels = request.mip_levels != 1 && IsDxt(plan.format);
    if (compressed_levels || HasCap(graphics_, D3DPTEXTURECAPS_POW2)) {
        plan.width = RoundUpToPowerOfTwo(info.Width);
        plan.height = RoundUpToPowerOfTwo(info.Height);
    } else {
        plan.mip_filter = D3DX_FILTER_LINEAR;
    }
    if (compressed_levels && !request.stretching)
        graphics_.Reporter().Warning("Loading none-power of 2 texture '%s' with options: mipmaps+noStretch+compressed",
                                     file.c_str());
    return plan;
}

int TextureLoader::LoadImageFile(const std::string& file, const std::string& key, const Request& request) {
    std::vector<BYTE> bytes;
    D3DXIMAGE_INFO info = {};
    HRESULT result = ReadWholeFile(file.c_str(), bytes) ? D3D_OK : D3DXERR_INVALIDDATA;
    const UINT size = static_cast<UINT>(bytes.size());
    if (SUCCEEDED(result)) result = D3DXGetImageInfoFromFileInMemory(bytes.data(), size, &info);
    if (FAILED(result))
        graphics_.Reporter().Error(" D3DXGetImageInfoFromFile failed: %s (file:%s)", DXGetErrorString9(result),
                                   file.c_str());
    const Plan plan = MakePlan(file, info, request);
    DevicePtr<IDirect3DTexture9> made;
    result = D3DXCreateTextureFromFileInMemoryEx(graphics_.Device(), bytes.data(), size, plan.width, plan.height,
                                                 plan.levels, request.usage, plan.format, request.pool, plan.filter,
                                                 plan.mip_filter, request.colour_key, nullptr, made.Receive());
    if (FAILED(result))
        graphics_.Reporter().Error(" D3DXCreateTextureFromFileA failed: %s (file:%s)", DXGetErrorString9(result),
                                   file.c_str());
    return registry_.Add(std::move(made), key, {file, info.Width, info.Height});
}

namespace {

/// Shared is what is made the same way: a texture of the default pool goes with a reset and does not serve the others.
std::string SharingKey(const char* file, DWORD usage, D3DPOOL pool) {
    return FileKey(file) + "|" + std::to_string(usage) + "|" + std::to_string(pool);
}

}   // namespace

TextureLoader::Picture TextureLoader::LoadPicture(const KRN_Texture& texture, const std::string& file,
                                                  const Request& request) {
    if (settings_.placeholders) return LoadPlaceholder(texture);
    const std::string key = SharingKey(file.c_str(), request.usage, request.pool);
    int entry = settings_.sharing ? registry_.Share(key) : -1;
    if (entry < 0) entry = LoadImageFile(file, key, request);
    Picture picture = texture.PictureOfEntry(entry);
    const TextureOrigin& origin = registry_.OriginOf(entry);
    if (!request.stretching) picture.SetSize(static_cast<float>(origin.width), static_cast<float>(origin.height));
    picture.time_stamp = static_cast<std::uint32_t>(FileModificationTime(file.c_str()));
    return picture;
}

// ---- Empty textures

void TextureLoader::CreateTexture(KRN_Texture* texture, UINT width, UINT height, int mode, int format, int mip_levels) {
    if (!texture) graphics_.Reporter().Error("KRN_Texture pointer in CreateTexture is NULL pointer!");
    texture->Attach(graphics_, registry_, binder_);
    texture->ReleaseFrames();
    texture->ReleaseCurrent();
    const bool dynamic = mode != -1 && (mode & kCreateDynamic) != 0;
    const PoolRow* row = FindPool(kCreatePools, dynamic ? mode & ~kCreateDynamic : mode);
    if (!row) graphics_.Reporter().Error("Wrong texture parameter in CreateTexture!");
    const DWORD usage = row->usage | (dynamic ? D3DUSAGE_DYNAMIC : 0);
    const D3DFORMAT chosen = format == -1 ? AlphaFormatOf(presentation_.mode.Format) : static_cast<D3DFORMAT>(format);
    DevicePtr<IDirect3DTexture9> made;
    const HRESULT result =
        graphics_.Device()->CreateTexture(DeviceSide(graphics_, width), DeviceSide(graphics_, height),
                                          static_cast<UINT>(mip_levels), usage, chosen, row->pool, made.Receive());
    if (FAILED(result)) graphics_.Reporter().Error("CreateTexture failed: %s", DXGetErrorString9(result));
    Picture picture = texture->PictureOfEntry(registry_.Add(std::move(made), ""));
    picture.SetSize(static_cast<float>(width), static_cast<float>(height));
    texture->Show(picture);
}

}   // namespace sparkrig
