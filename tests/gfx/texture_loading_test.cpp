// Textures from files, lists of files, video sources and the catalogue.
#include <sys/inotify.h>
#include <unistd.h>

#include <functional>

#include "gfx/gfx.h"
#include "gfx/textures/frame_list.h"
#include "gfx/textures/texture.h"
#include "gfx/textures/texture_catalogue.h"
#include "gfx/textures/texture_loader.h"
#include "gfx/textures/video_sources.h"
#include "tests/support/picture_files.h"
#include "tests/support/recorded_gfx.h"
#include "tests/support/temporary_folder.h"

namespace sparkrig {
namespace {

class TextureLoading : public TemporaryFolder {
  protected:
    void Load(const char* name, int parameter = -1, int format = -1, int levels = 1) {
        gfx_->LoadTexture(&texture_, name, 0, parameter, format, levels);
    }
    std::string LoadError(const char* name, int parameter = -1) {
        return ErrorOf([&] { Load(name, parameter); });
    }
    D3DCOLOR PixelAt(int x, int y) {
        texture_.Lock(nullptr, D3DLOCK_READONLY);
        const D3DCOLOR pixel = texture_.GetPixel(x, y);
        texture_.Unlock();
        return pixel;
    }
    static D3DSURFACE_DESC DescOf(const KRN_Texture& texture) {
        D3DSURFACE_DESC desc = {};
        texture.DeviceTexture()->GetLevelDesc(0, &desc);
        return desc;
    }
    D3DSURFACE_DESC Desc() const { return DescOf(texture_); }
    TextureSettings& Settings() { return gfx_->TextureOptions(); }
    static void WritePng(const char* name, UINT width, UINT height, int channels = 4) {
        WriteFile(name, PngFile(TestPicture::Pattern(width, height), channels));
    }

    RecordedGfx gfx_;
    KRN_Texture texture_;
};

TEST_F(TextureLoading, PoolsFollowTheNumber) {
    const TestPicture picture = TestPicture::Pattern(6, 3);
    WriteFile("a.png", PngFile(picture, 4));
    Settings().sharing = false;
    const std::tuple<int, D3DPOOL, DWORD> loaded[] = {{-1, D3DPOOL_MANAGED, 0},
                                                      {0, D3DPOOL_MANAGED, 0},
                                                      {1, D3DPOOL_DEFAULT, 0},
                                                      {2, D3DPOOL_MANAGED, 0},
                                                      {3, D3DPOOL_DEFAULT, D3DUSAGE_RENDERTARGET},
                                                      {1 | kLoadWithoutStretching, D3DPOOL_DEFAULT, 0}};
    const std::tuple<int, D3DPOOL, DWORD> made[] = {
        {-1, D3DPOOL_MANAGED, 0},  {4, D3DPOOL_MANAGED, 0},
        {1, D3DPOOL_DEFAULT, 0},   {1 | kCreateDynamic, D3DPOOL_DEFAULT, D3DUSAGE_DYNAMIC},
        {2, D3DPOOL_SYSTEMMEM, 0}, {3, D3DPOOL_DEFAULT, D3DUSAGE_RENDERTARGET}};
    const auto expect = [&](int number, D3DPOOL pool, DWORD usage) {
        EXPECT_EQ(Desc().Pool, pool) << number;
        EXPECT_EQ(Desc().Usage, usage) << number;
        EXPECT_EQ(Desc().Format, D3DFMT_A8R8G8B8) << number;
        EXPECT_EQ(texture_.Width(), 6.0f) << number;
    };
    for (const auto& [number, pool, usage] : made) {
        gfx_->CreateTexture(&texture_, 6, 3, number, -1, 1);
        expect(number, pool, usage);
    }
    for (const auto& [number, pool, usage] : loaded) {
        Load("a.png", number);
        expect(number, pool, usage);
    }
    Load("a.png");
    EXPECT_EQ(PixelAt(4, 2), picture.At(4, 2));
    EXPECT_EQ(ErrorOf([&] { gfx_->CreateTexture(nullptr, 4, 4, 4, -1, 1); }),
              "KRN_Gfx: KRN_Texture pointer in CreateTexture is NULL pointer!");
    EXPECT_EQ(ErrorOf([&] { gfx_->CreateTexture(&texture_, 4, 4, 5, -1, 1); }),
              "KRN_Gfx: Wrong texture parameter in CreateTexture!");
    EXPECT_EQ(ErrorOf([&] { gfx_->CreateTexture(&texture_, 4, 4, 4 | kCreateDynamic, -1, 1); }),
              "KRN_Gfx: CreateTexture failed: D3DERR_INVALIDCALL");
}

TEST_F(TextureLoading, ReportsWhatIsWrong) {
    std::string list;
    for (int i = 0; i <= kMaxSequenceFrames; ++i) list += "a.png\n";
    WriteFile("long.ifl", list);
    WriteFile("text.png", "no picture");
    WriteFile("blank.ifl", "\n  \n\t\n");
    WriteFile("self.ifl", "self.ifl\n");
    WriteFile("missing.ifl", "a.png\nmore\\gone.png\n");
    WritePng("a.png", 2, 2);
    const std::tuple<const char*, int, const char*> rows[] = {
        {"", -1, "KRN_Gfx: Invalid file name in LoadTexture"},
        {nullptr, -1, "KRN_Gfx: Invalid file name in LoadTexture"},
        {"a.png", 4, "KRN_Gfx: Wrong texture parameter in LoadTexture!"},
        {"a.png", -2, "KRN_Gfx: Wrong texture parameter in LoadTexture!"},
        {"gone.png", -1, "KRN_Gfx: Can not open file gone.png"},
        {"text.png", -1, "KRN_Gfx:  D3DXGetImageInfoFromFile failed: D3DXERR_INVALIDDATA (file:text.png)"},
        {"blank.ifl", -1, "KRN_Gfx: Empty texture file list"},
        {"long.ifl", -1, "KRN_Gfx: More than 4096 frames in texture file list 'long.ifl'"},
        {"self.ifl", -1, "KRN_Gfx: Texture file list in texture file list 'self.ifl': self.ifl"},
        {"missing.ifl", -1, "KRN_Gfx: Can not open file more\\gone.png"},
        {">>Video0", -1, "KRN_Gfx: Invalid video source for texture: 0"},
        {">>Video-200000", -1, "KRN_Gfx: Invalid video source for texture: -200000"},
        {">>Video17", -1, "KRN_Gfx: Invalid video source for texture: 17"},
        {">>Video", -1, "KRN_Gfx: Invalid video source for texture: 0"},
        {">>Video16", -1, "KRN_Gfx: Invalid video source specifications for source 16"},
    };
    for (const auto& [name, parameter, error] : rows) EXPECT_EQ(LoadError(name, parameter), error);
    EXPECT_EQ(ErrorOf([&] { gfx_->LoadTexture(nullptr, "a.png", 0, -1); }),
              "KRN_Gfx: KRN_Texture pointer in LoadTexture is NULL pointer!");
    Reports reports;   // of paths that leave the data
    Load((Folder() / "a.png").c_str());
    EXPECT_EQ(reports.Last(), "warning ErrorClassSimple: Absolute file path: '" + (Folder() / "a.png").string() + "'");
    LoadError("\\\\server\\a.png");
    EXPECT_EQ(reports.All()[1], "warning ErrorClassSimple: Network file accessed: '\\\\server\\a.png'");
}

TEST_F(TextureLoading, LooksBelowTheTextureAndTheBasePath) {
    std::filesystem::create_directories(Folder() / "textures");
    std::filesystem::create_directories(Folder() / "base");
    WritePng("textures/only.png", 2, 1);
    WritePng("textures/both.png", 3, 1);
    WritePng("base/both.png", 4, 1);
    WritePng("base/low.png", 5, 1);
    gfx_->SetDefaultTexturePath("textures");
    gfx_->SetBasePath("base\\");
    const std::tuple<const char*, float> rows[] = {
        {"only.png", 2}, {"both.png", 3}, {"LOW.png", 5}, {"base\\Both.png", 4}};
    for (const auto& [name, width] : rows) {
        Load(name);
        EXPECT_EQ(texture_.Width(), width) << name;
    }
}

TEST_F(TextureLoading, ManyLookUpsFindWhatOneFinds) {
    std::filesystem::create_directories(Folder() / "Textures/sub.png");
    WriteFile("here.png", "");
    WriteFile("Textures/There.png", "");
    TexturePaths paths;
    paths.SetDefaultTexturePath("textures");
    paths.SetBasePath(Folder().c_str());
    TextureLookup lookup(paths);
    std::filesystem::create_symlink("here.png", Folder() / "link.png");
    std::filesystem::create_symlink("nowhere.png", Folder() / "dangling.png");
    std::filesystem::create_directory_symlink("Textures", Folder() / "folder.png");
    for (const char* name :
         {"here.png", "HERE.png", "link.png", "dangling.png", "folder.png", "there.PNG", "textures\\there.png",
          "TEXTURES/There.png", "sub.png", "gone.png", "no/here.png", "", ".", "textures/"}) {
        std::string found;
        EXPECT_EQ(lookup.Contains(name), paths.Find(name, found)) << name;
    }
}

TEST_F(TextureLoading, SharesAFileUntilItChanges) {
    WritePng("a.png", 2, 2);
    KRN_Texture second, third;
    Load("a.png");
    gfx_->LoadTexture(&second, "A.PNG", 0, -1);
    EXPECT_EQ(second.DeviceTexture(), texture_.DeviceTexture());
    EXPECT_EQ(second.Identifier(), texture_.Identifier());
    EXPECT_EQ(gfx_.recording.Count("CreateTexture"), 1);

    std::filesystem::last_write_time("a.png", std::filesystem::last_write_time("a.png") + std::chrono::seconds(3));
    gfx_->LoadTexture(&third, "a.png", 0, -1);
    EXPECT_NE(third.DeviceTexture(), texture_.DeviceTexture());
    Settings().sharing = false;
    gfx_->LoadTexture(&second, "a.png", 0, -1);
    EXPECT_NE(second.DeviceTexture(), third.DeviceTexture());
    EXPECT_EQ(gfx_->CreatedTextures(), 3u);
}

/// How often a file is opened while something is done.
int Opens(const char* file, const std::function<void()>& action) {
    const int notices = inotify_init1(IN_NONBLOCK);
    inotify_add_watch(notices, file, IN_OPEN);
    action();
    char buffer[4096];
    const ssize_t bytes = read(notices, buffer, sizeof buffer);
    close(notices);
    return bytes < 0 ? 0 : static_cast<int>(bytes / static_cast<ssize_t>(sizeof(inotify_event)));
}

TEST_F(TextureLoading, ReadsAPictureOnce) {
    WritePng("a.png", 6, 3);
    KRN_Texture other;
    EXPECT_EQ(Opens("a.png", [&] { Load("a.png"); }), 1);
    EXPECT_EQ(Opens("a.png", [&] { Load("a.png", 1 | kLoadWithoutStretching); }), 1);
    EXPECT_EQ(Opens("a.png", [&] { gfx_->LoadTexture(&other, "./a.png", 0, 1 | kLoadWithoutStretching); }), 0);
    EXPECT_EQ(other.Width(), 6.0f);
}

TEST_F(TextureLoading, AlphaOfADefaultPoolPictureIsReadFromItsFile) {
    TestPicture picture = TestPicture::Pattern(8, 8, false);
    for (const bool partial : {false, true}) {
        if (partial) picture.pixels[5 * 8 + 3] = 0x80112233;   // on a sample
        const std::string name = partial ? "partial.png" : "full.png";
        WriteFile(name, PngFile(picture, 4));
        Load(name.c_str(), 1);
        texture_.AnalyseAlpha();
        EXPECT_EQ(texture_.HasPartialAlpha(), partial);
    }
    gfx_->CreateTexture(&texture_, 8, 8, 1, -1, 1);
    EXPECT_EQ(ErrorOf([&] { texture_.AnalyseAlpha(); }), "KRN_Texture: LockRect failed: D3DERR_INVALIDCALL");
}

TEST_F(TextureLoading, KeepsThePresentTextureWhileAnotherLoadsIfAsked) {
    WritePng("a.png", 2, 2);
    Load("a.png");
    WriteFile("half.ifl", "a.png\ngone.png\n");
    for (const char* name : {"gone.png", "half.ifl"}) {
        LoadError(name, kLoadKeepsTexture);
        EXPECT_TRUE(texture_.HasSurface()) << name;
    }
    WriteFile("one.ifl", "a.png\n");
    Load("one.ifl");
    const int before = gfx_.recording.LiveObjects();
    LoadError("half.ifl", kLoadKeepsTexture);
    EXPECT_EQ(texture_.SequenceFrames(), 1);
    EXPECT_EQ(gfx_.recording.LiveObjects(), before);
    LoadError("gone.png", 0);
    EXPECT_FALSE(texture_.HasSurface());
}

TEST_F(TextureLoading, ChoosesSizeAndFilters) {
    WritePng("odd.png", 300, 200, 3);
    Settings().compression = true;
    Settings().sharing = false;
    const std::tuple<const char*, int, int, int, UINT, UINT, float, std::size_t> rows[] = {
        {"one level keeps the size", 0, -1, 1, 300, 200, 300, 0},
        {"compressed levels are stretched", 0, -1, 3, 512, 256, 512, 0},
        {"or surrounded", kLoadWithoutStretching, -1, 3, 512, 256, 300, 1},
        {"as many as there are", kLoadWithoutStretching, static_cast<int>(D3DFMT_DXT1), 0, 512, 256, 300, 1},
    };
    for (const auto& [name, parameter, format, levels, width, height, shown_width, warnings] : rows) {
        Reports reports;
        Load("odd.png", parameter, format, levels);
        EXPECT_EQ(Desc().Width, width) << name;
        EXPECT_EQ(Desc().Height, height) << name;
        EXPECT_EQ(Desc().Format, D3DFMT_DXT1) << name;
        EXPECT_EQ(texture_.Width(), shown_width) << name;
        const std::string warning = "warning KRN_Gfx: Loading none-power of 2 texture 'odd.png' with options: ";
        EXPECT_EQ(reports.All(), std::vector(warnings, warning + "mipmaps+noStretch+compressed")) << name;
        RECT rectangle;
        texture_.GetRect(rectangle);
        EXPECT_EQ(rectangle, (RECT{0, 0, static_cast<LONG>(shown_width), shown_width == 512 ? 256 : 200}));
    }
}

TEST_F(TextureLoading, FormatsThatTheDeviceLacksBecomeTheNearest) {
    gfx_.recording.refused_texture_formats.insert({D3DFMT_A8B8G8R8, D3DFMT_L8, D3DFMT_A8L8});
    const TestPicture grey = {2, 1, {0xFF404040, 0xFF909090}};
    const std::string swapped =
        DdsHead({1, 1, 1, 0x41, 0, 32, 0xFF, 0xFF00, 0xFF0000, 0xFF000000}) + "\x30\x20\x10\xFF";
    const std::tuple<std::string, D3DFORMAT, D3DCOLOR> rows[] = {
        {swapped, D3DFMT_A8R8G8B8, 0xFF302010},
        {PngFile(grey, 1), D3DFMT_X8R8G8B8, 0xFF404040},
        {PngFile(grey, 2), D3DFMT_A8R8G8B8, 0xFF404040},
        {TgaFile(grey, D3DFMT_L8), D3DFMT_X8R8G8B8, 0xFF404040}};
    Settings().sharing = false;
    for (const auto& [file, format, pixel] : rows) {
        WriteFile("a.png", file);
        for (const int target : {3, 0}) {
            Load("a.png", target);
            EXPECT_EQ(texture_.Format(), format);
        }
        EXPECT_EQ(PixelAt(0, 0), pixel);
    }
}

TEST_F(TextureLoading, FollowsTheDevicesCapabilities) {
    gfx_.Destroy();
    RecordedGfx poor([](Recording& recording) { recording.caps.TextureCaps = D3DPTEXTURECAPS_POW2; });
    WritePng("odd.png", 5, 9, 3);
    KRN_Texture texture;
    poor->LoadTexture(&texture, "odd.png", 0, 0, -1, 1);
    EXPECT_EQ(DescOf(texture).Width, 8u);
    EXPECT_EQ(DescOf(texture).Height, 16u);
    EXPECT_EQ(texture.DeviceTexture()->GetLevelCount(), 5u);   // without the capability the count passed on is 0
    texture.Release();
}

// ---- Sequences

TEST_F(TextureLoading, AListLoadsAFrameForEachLine) {
    std::filesystem::create_directories(Folder() / "fire/more");
    WritePng("fire/f0.png", 2, 2);
    WritePng("fire/more/f1.png", 3, 2);
    WritePng("f2.png", 4, 2);
    WriteFile("fire/FIRE.ifl", "\t f0.png\r\n\r\n  More\\F1.png  \r\nf2.png\r\n");
    const int before = gfx_.recording.LiveObjects();
    Load("fire\\fire.ifl");
    EXPECT_EQ(texture_.SequenceFrames(), 3);
    EXPECT_EQ(texture_.CurrentFrame(), 0);
    EXPECT_STREQ(texture_.Name().c_str(), "fire\\fire.ifl");
    for (int i = 0; i < 3; ++i) {
        texture_.SelectSequenceFrame(i);
        EXPECT_EQ(texture_.Width(), 2.0f + static_cast<float>(i));
    }
    texture_.SetSequenceTiming({1.0f, 0.5f, PlaybackMode::Loop});
    texture_.Update(1.75f);
    EXPECT_EQ(texture_.CurrentFrame(), 1);
    EXPECT_EQ(ErrorOf([&] { texture_.SelectSequenceFrame(3); }), "KRN_Texture: Invalid sequence number");
    EXPECT_EQ(ErrorOf([&] { texture_.FreeSequenceFrame(3); }), "KRN_Texture: Invalid sequence to free: 3");
    EXPECT_EQ(ErrorOf([&] { texture_.SelectLayer(1, false); }), "KRN_Texture: No stages with texture sequence allowed");
    texture_.FreeSequenceFrame(1);
    EXPECT_FALSE(texture_.HasSurface());
    Load("f2.png");
    EXPECT_EQ(texture_.SequenceFrames(), 0);
    EXPECT_EQ(gfx_.recording.LiveObjects(), before + 1);
}

// ---- Video sources

TEST_F(TextureLoading, AVideoSourceGivesItsPictures) {
    VideoSource& source = gfx_->Video(15);
    EXPECT_EQ(ErrorOf([&] { gfx_->UpdateVideoSource(16); }),
              "KRN_Gfx: Invalid video source nurber in UpdateVideoSource(): 16");
    EXPECT_EQ(ErrorOf([&] { gfx_->UpdateVideoSource(15); }),
              "KRN_Gfx: No video source update function specified for source 15");
    source.format = D3DFMT_A8R8G8B8;
    source.width = 5;
    source.height = 3;
    int updates = 0;
    source.update = [&updates](D3DLOCKED_RECT* locked) {
        static_cast<D3DCOLOR*>(locked->pBits)[2] = 0x11223344;
        ++updates;
    };
    KRN_Texture other;
    Load(">>Video16");
    gfx_->LoadTexture(&other, ">>Video16", 0, -1);
    EXPECT_EQ(other.DeviceTexture(), texture_.DeviceTexture());
    EXPECT_EQ(texture_.VideoSourceIndex(), 15);
    EXPECT_EQ(texture_.Width(), 5.0f);
    gfx_->SetTexture(&texture_, -1);
    EXPECT_EQ(updates, 1);
    EXPECT_EQ(PixelAt(2, 0), 0x11223344u);

    // It goes on showing its pictures, whatever the other layers get.
    texture_.SelectLayer(1, false);
    WritePng("a.png", 2, 2);
    Load("a.png");
    texture_.SetStageMap(1, MapKind::Diffuse, 1);
    gfx_->SetTexture(&texture_, -1);
    EXPECT_EQ(updates, 2);
    EXPECT_EQ(texture_.VideoSourceIndex(), -1) << "of the layer in use";
}

TEST_F(TextureLoading, KnowsTheFileOfWhatItShows) {
    WritePng("a.png", 2, 2);
    VideoSource& source = gfx_->Video(0);
    source = {.format = D3DFMT_A8R8G8B8, .width = 2, .height = 2, .update = {}, .texture = {}};
    const auto expect_file = [this](const char* name, bool has_time) {
        EXPECT_STREQ(texture_.Name().c_str(), name);
        EXPECT_EQ(texture_.TimeStamp() != 0, has_time) << name;
    };
    Load("a.png");
    expect_file("a.png", true);
    Load(texture_.Name().c_str());
    expect_file("a.png", true);
    Load(">>Video1");
    expect_file(">>Video1", false);
    Load("a.png");
    EXPECT_EQ(LoadError("gone.png"), "KRN_Gfx: Can not open file gone.png");
    expect_file("", false);
    Settings().placeholders = true;   // which read no file
    WriteFile("a.png", "no picture");
    WriteFile("b.png", "no picture");
    KRN_Texture other;
    Load("a.png");
    expect_file("a.png", false);
    gfx_->LoadTexture(&other, "b.png", 0, -1);
    EXPECT_EQ(other.DeviceTexture(), texture_.DeviceTexture());
    EXPECT_EQ(texture_.Width(), 8.0f);
    EXPECT_EQ(PixelAt(7, 5), 0xFFC8C8C8);
}

// ---- Empty textures

TEST_F(TextureLoading, CountsTheDefaultPoolAndDropsItAtAReset) {
    const int before = TextureRegistry::DefaultPoolTextures();
    KRN_Texture managed, loaded;
    WritePng("a.png", 2, 2);
    Load("a.png", 1);
    gfx_->LoadTexture(&loaded, "a.png", 0, 0);
    gfx_->CreateTexture(&texture_, 4, 4, 1, -1, 1);
    gfx_->CreateTexture(&managed, 4, 4, 4, -1, 1);
    EXPECT_EQ(TextureRegistry::DefaultPoolTextures(), before + 1);
    gfx_->ResetDevice(nullptr, -1);
    EXPECT_EQ(TextureRegistry::DefaultPoolTextures(), before);
    EXPECT_FALSE(texture_.HasSurface());
    EXPECT_FALSE(texture_.IsValid());
    EXPECT_TRUE(managed.IsValid());
    EXPECT_TRUE(loaded.HasSurface()) << "whatever else has its file";
    // The slot is not given to another texture while its user has not let go.
    KRN_Texture another;
    gfx_->CreateTexture(&another, 4, 4, 4, -1, 1);
    EXPECT_FALSE(texture_.HasSurface());
    gfx_->CreateTexture(&texture_, 4, 4, 1, -1, 1);
    EXPECT_TRUE(texture_.IsValid());
}

// ---- The catalogue

class TextureCatalogue : public TextureLoading {
  protected:
    TextureCatalogue() {
        WritePng("a.png", 6, 3);
        WritePng("b.png", 7, 3);
    }
    void Load(const std::string& text) {
        WriteFile("catalogue.cfg", text);
        catalogue_.Load("catalogue.cfg", nullptr, false);
    }

    KRN_TextureCatalogue& catalogue_ = gfx_->Catalogue();
};

TEST_F(TextureCatalogue, ReadsNamesAndFiles) {
    Reports reports;
    Load(
        "; a comment \"x\" = \"a.png\"\n"
        "\"Smoke\" = \"a.png\" ; \"gone\" = \"b.png\"\r\n"
        "junk \"fire\"\n = \t\"b.png\" junk {\n"
        ";\"last\" = \"a.png\"");
    EXPECT_THAT(reports.All(), IsEmpty());
    EXPECT_EQ(catalogue_.GetTexture("SMOKE")->Width(), 6.0f);
    EXPECT_EQ(catalogue_.GetTexture("fire")->Width(), 7.0f);
    for (const char* name : {"x", "gone", "last", "a.png", "", "\xFC"})
        EXPECT_FALSE(catalogue_.GetTexture(name)) << name;
    const std::tuple<const char*, std::size_t> bad_lines[] = {
        // and the warnings that each gives
        {"\"one\" \"a.png\"", 1}, {"\"one\" : \"a.png\"", 2},   {"\"one\"", 1},
        {"\"one\" = ;", 0},       {"\"one\" ; = \"a.png\"", 1}, {"\"one\" \"a.png\" \"two\" \"b.png\"", 2}};
    for (const auto& [line, warnings] : bad_lines) {
        catalogue_.Clear();
        reports.Clear();
        Load(std::string(line) + "\n\"good\" = \"b.png\"\n");
        EXPECT_FALSE(catalogue_.GetTexture("one")) << line;
        EXPECT_TRUE(catalogue_.GetTexture("good")) << line << ": costs no other";
        EXPECT_EQ(reports.All().size(), warnings) << line;
    }
}

TEST_F(TextureCatalogue, WarnsOfDuplicatesMissingFilesAndPaths) {
    Reports reports;
    Load(
        "\"Smoke\" = \"a.png\"\n\"SMOKE\" = \"b.png\"\n\"gone\" = \"gone.png\"\n\"far\" = \"/far.png\"\n\"\" = "
        "\"a.png\"\n");
    EXPECT_THAT(reports.All(),
                ElementsAre("warning KRN_TextureCatalogue: Duplicate entry 'SMOKE' in file 'b.png' @catalogue.cfg:2",
                            "warning KRN_TextureCatalogue: Texture file not found: 'gone.png' @catalogue.cfg:3",
                            "warning ErrorClassSimple: Absolute file path: '/far.png' @catalogue.cfg:4",
                            "warning KRN_TextureCatalogue: Texture file not found: '/far.png' @catalogue.cfg:4",
                            "warning KRN_TextureCatalogue: Invalid name '' of file 'a.png' @catalogue.cfg:5"));
    EXPECT_EQ(catalogue_.GetTexture("smoke")->Width(), 6.0f);
}

TEST_F(TextureCatalogue, PutsTheBaseDirectoryInFront) {
    std::filesystem::create_directories(Folder() / "pictures");
    std::filesystem::rename("a.png", "pictures/a.png");
    WriteFile("catalogue.cfg", "\"smoke\" = \"a.png\"\n\"mirror\" = \">>Video3\"\n");
    VideoSource& source = gfx_->Video(2);
    source.format = D3DFMT_A8R8G8B8;
    source.width = source.height = 5;
    Reports reports;
    catalogue_.Load("catalogue.cfg", "pictures", true);
    EXPECT_THAT(reports.All(), IsEmpty());
    EXPECT_EQ(catalogue_.GetTexture("smoke")->Width(), 6.0f);
    EXPECT_EQ(catalogue_.GetTexture("mirror")->VideoSourceIndex(), 2);   // no file, and in no directory
    catalogue_.Clear();
    catalogue_.Load("catalogue.cfg", "pictures", false);
    EXPECT_EQ(reports.All().size(), 1u);
}

TEST_F(TextureCatalogue, LoadsAtFirstUseAndShowsGreyForAMissingFile) {
    WriteFile("broken.png", "no picture");
    Load("\"smoke\" = \"a.png\"\n\"gone\" = \"gone.png\"\n\"broken\" = \"broken.png\"\n");
    EXPECT_EQ(gfx_.recording.Count("CreateTexture"), 0);
    KRN_Texture* const smoke = catalogue_.GetTexture("smoke");
    EXPECT_EQ(catalogue_.GetTexture("smoke"), smoke);
    KRN_Texture* const grey = catalogue_.GetTexture("gone");
    EXPECT_EQ(grey->GetSize().x, 4);
    grey->Lock(nullptr, D3DLOCK_READONLY);
    EXPECT_EQ(grey->GetPixel(2, 1), 0xFF969696);
    grey->Unlock();
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(ErrorOf([&] { catalogue_.GetTexture("broken"); }),
                  "KRN_Gfx:  D3DXGetImageInfoFromFile failed: D3DXERR_INVALIDDATA (file:broken.png)");
}

TEST_F(TextureCatalogue, BorrowedTexturesSurviveAReset) {
    Load("\"smoke\" = \"a.png\"\n");
    KRN_Texture* const smoke = catalogue_.GetTexture("smoke");
    smoke->SelectLayer(2, false);   // the catalogue's picture is that of layer 0, whatever is chosen
    gfx_->ResetDevice(nullptr, -1);
    EXPECT_NE(smoke->LayerTexture(0), nullptr);
    EXPECT_EQ(smoke->LayerTexture(2), nullptr);
    EXPECT_EQ(smoke->CurrentLayer(), 2);
    EXPECT_EQ(gfx_.recording.LiveDefaultPoolObjects() > 0, true);
}

TEST_F(TextureCatalogue, CutShortAtEveryLengthItLoads) {
    const std::string text = "; c\n\"Smoke\" = \"a.png\"\n\"fire\" = \"b.png\" ; d\n";
    for (std::size_t length = 0; length <= text.size(); ++length) {
        catalogue_.Clear();
        Load(text.substr(0, length));
        EXPECT_EQ(catalogue_.GetTexture("smoke") != nullptr, length >= 21) << length;
    }
}

}   // namespace
}   // namespace sparkrig
