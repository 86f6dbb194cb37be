#include "gfx/textures/texture_catalogue.h"

#include "gfx/gfx.h"
#include "gfx/textures/texture.h"
#include "gfx/textures/video_sources.h"
#include "tests/support/picture_files.h"
#include "tests/support/recorded_gfx.h"
#include "tests/support/temporary_folder.h"

namespace sparkrig {
namespace {

class TextureCatalogue : public TemporaryFolder {
  protected:
    TextureCatalogue() {
        WriteFile("a.png", PngFile(TestPicture::Pattern(6, 3), 4));
        WriteFile("b.png", PngFile(TestPicture::Pattern(7, 3), 4));
    }
    void Load(const std::string& text) {
        WriteFile("catalogue.cfg", text);
        catalogue_.Load("catalogue.cfg", nullptr, false);
    }

    RecordedGfx gfx_;
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
