#include <gmock/gmock.h>

#include "tests/support/picture_files.h"
#include "tests/support/program_run.h"
#include "tests/support/temporary_folder.h"

namespace sparkrig {
namespace {

using testing::HasSubstr;

using TextureTool = TemporaryFolder;

ProgramRun RunTool(const std::string& arguments) { return RunProgram(TEXTURE_PROGRAM, arguments); }

TEST_F(TextureTool, DescribesPictures) {
    const TestPicture picture = TestPicture::Pattern(6, 3), opaque = TestPicture::Pattern(6, 3, false);
    const TestPicture cut_out = {2, 1, {0x00102030, 0xFF405060}};
    std::string levels = DdsHead({4, 4, 3, 4, D3DFMT_DXT1, 0, 0, 0, 0, 0});
    for (int i = 0; i < 3; ++i) levels += std::string("\x00\xF8\x1F\x00\xE4\xE4\xE4\xE4", 8);
    const std::tuple<const char*, std::string, std::string> rows[] = {
        {"a.png", PngFile(picture, 4), "a.png: 6 x 3, png, A8R8G8B8, 1 level, partial alpha\n"},
        {"b.bmp", BmpFile(opaque, D3DFMT_R8G8B8), "b.bmp: 6 x 3, bmp, R8G8B8, 1 level, no alpha\n"},
        {"c.tga", TgaFile(cut_out, D3DFMT_A1R5G5B5), "c.tga: 2 x 1, tga, A1R5G5B5, 1 level, on-off alpha\n"},
        {"d.jpg", JpgFile(opaque, 3), "d.jpg: 6 x 3, jpg, X8R8G8B8, 1 level, no alpha\n"},
        {"e.dds", levels, "e.dds: 4 x 4, dds, DXT1, 3 levels, no alpha\n"},
        {"f.ifl", "a.png\n\n>>Video1\nb.bmp\n",
         "f.ifl: 3 frames; the first: 6 x 3, png, A8R8G8B8, 1 level, partial alpha\n"},
    };
    std::string all_names, all_lines;
    for (const auto& [name, content, line] : rows) {
        WriteFile(name, content);
        all_names += std::string(" ") + name;
        all_lines += line;
    }
    const auto [code, text] = RunTool("info" + all_names);
    EXPECT_EQ(text, all_lines);
    EXPECT_EQ(code, 0);
}

TEST_F(TextureTool, NamesWhatCannotBeLoadedAndGoesOn) {
    WriteFile("text.png", "no picture");
    WriteFile("blank.ifl", "\n");
    WriteFile("lost.ifl", "gone.png\n");
    WriteFile("good.png", PngFile(TestPicture::Pattern(2, 1), 4));
    const auto [code, text] = RunTool("info gone.png text.png blank.ifl lost.ifl good.png");
    for (const char* line :
         {"gone.png: can not open file\n", "text.png: no picture that can be loaded\n",
          "blank.ifl: Empty texture file list\n", "lost.ifl: frame gone.png: can not open file\n", "good.png: 2 x 1"})
        EXPECT_THAT(text, HasSubstr(line));
    EXPECT_EQ(code, 1);
    EXPECT_EQ(RunTool("info good.png >/dev/full").exit_code, 1) << "nothing was printed";
    EXPECT_FALSE(std::filesystem::exists("logfile.txt"));
}

TEST_F(TextureTool, RefusesWhatItDoesNotKnow) {
    const std::tuple<const char*, const char*, int> rows[] = {
        {"", "a command is needed", 2},
        {"info", "FILE is required", 2},
        {"inof a.png", "unknown command inof; did you mean info?", 2},
        {"info --hlep a.png", "unknown option --hlep; did you mean --help?", 2},
        {"info -x a.png", "unknown option -x (", 2},
        {"--help", "texture", 0},
    };
    for (const auto& [arguments, text, code] : rows) {
        const ProgramRun run = RunTool(arguments);
        EXPECT_THAT(run.text, HasSubstr(text)) << arguments;
        EXPECT_EQ(run.exit_code, code) << arguments;
    }
}

}   // namespace
}   // namespace sparkrig
