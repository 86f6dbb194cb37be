#include <gmock/gmock.h>
#include <sys/stat.h>

#include "tests/support/program_run.h"
#include "tests/support/temporary_folder.h"

namespace sparkrig {
namespace {

using testing::HasSubstr;

class Pack : public TemporaryFolder {
  protected:
    static ProgramRun Run(const std::string& arguments) { return RunProgram(PACK_PROGRAM, arguments); }
    /// What it printed.
    static std::string ExpectOutcome(const std::string& arguments, int exit_code, const std::string& text) {
        const ProgramRun outcome = Run(arguments);
        EXPECT_EQ(outcome.exit_code, exit_code) << arguments;
        EXPECT_THAT(outcome.text, HasSubstr(text)) << arguments;
        return outcome.text;
    }
    static std::string Content() {
        std::string content;
        for (int i = 0; i < 9000; ++i) content += static_cast<char>(i * i % 23);
        return content;
    }
};

TEST_F(Pack, PacksAndUnpacksInEveryMode) {
    const std::string content = Content();
    WriteFile("a.bin", content);
    ASSERT_EQ(chmod("a.bin", 0640), 0);
    for (int mode = 1; mode <= 8; ++mode) {
        const std::string number = std::to_string(mode);
        const std::string packed = ExpectOutcome("A.BIN --mode " + number, 0, "A.BIN: mode " + number + " (");
        const std::string size = std::to_string(ReadFile("a.bin").size());
        EXPECT_THAT(packed, HasSubstr(" 9000 bytes packed into " + size));
        EXPECT_EQ(ReadFile("a.bin").substr(0, 6), std::string("\xA7VT\xA7\1") + static_cast<char>(mode));
        const std::string listed = ExpectOutcome("--list a.bin", 0, "a.bin: mode " + number + " (");
        EXPECT_THAT(listed, HasSubstr(size + " bytes packed, 9000 plain"));
        if (mode == 3) continue;   // the next one packs a packed file
        EXPECT_EQ(Run("--unpack a.bin").exit_code, 0);
        EXPECT_EQ(ReadFile("a.bin"), content);
        struct stat status {};
        stat("a.bin", &status);
        EXPECT_EQ(status.st_mode & 07777, 0640u);
    }
    EXPECT_FALSE(std::filesystem::exists("logfile.txt"));   // that of the program in this folder stays
}

TEST_F(Pack, ScramblesDifferentlyEachTime) {
    WriteFile("a.bin", Content());
    WriteFile("b.bin", Content());
    Run("a.bin --mode 5");
    Run("b.bin --mode 5");
    EXPECT_NE(ReadFile("a.bin"), ReadFile("b.bin"));
}

TEST_F(Pack, LeavesEmptyContentEmptyAndPlain) {
    const std::string packed("\xA7VT\xA7\1\1\0\0\0\0\0", 11);
    const std::tuple<std::string, const char*, const char*> kRows[] = {
        {"", "a.bin --mode 2", "a.bin: mode 0 (plain), empty\n"},
        {packed, "a.bin --mode 2", "a.bin: mode 0 (plain), empty\n"},
        {packed, "--unpack a.bin", "a.bin: plain, 0 bytes\n"}};
    for (const auto& [before, arguments, text] : kRows) {
        WriteFile("a.bin", before);
        EXPECT_EQ(ExpectOutcome(arguments, 0, ""), text);
        EXPECT_EQ(ReadFile("a.bin"), "");
    }
}

TEST_F(Pack, LeavesAFileWithDamagedDataAsItIs) {
    for (const int mode : {1, 2}) {
        WriteFile("a.bin", Content());
        Run("a.bin --mode " + std::to_string(mode));
        std::string damaged = ReadFile("a.bin");
        for (const std::size_t length : mode == 1 ? std::vector<std::size_t>{7} : std::vector<std::size_t>{7, 16})
            --damaged[length];   // of the data, once or twice in the stream
        WriteFile("a.bin", damaged);
        for (const char* task : {"--unpack a.bin", "--list a.bin", "a.bin --mode 3"})
            EXPECT_EQ(Run(task).exit_code, 1) << task << mode;
        EXPECT_EQ(ReadFile("a.bin"), damaged);
    }
}

TEST_F(Pack, SaysWhatItFinds) {
    WriteFile("plain.bin", "plain");
    WriteFile("broken.bin", "\xA7VT\xA7\1\2\x2\5");
    EXPECT_THAT(Run("--list plain.bin").text, HasSubstr("plain.bin: mode 0 (plain), 5 bytes packed, 5 plain"));
    constexpr const char* kRows[][2] = {{"--list broken.bin plain.bin", "pack: broken.bin: End of read buffer"},
                                        {"--list broken.bin plain.bin", "plain.bin: mode 0"},
                                        {"broken.bin --mode 3", "pack: broken.bin: End of read buffer"},
                                        {"--unpack plain.bin", "pack: plain.bin: is plain already"},
                                        {"--unpack none.bin", "pack: none.bin: No such file or directory"},
                                        {"none.bin --mode 1", "pack: none.bin: No such file or directory"}};
    for (const auto& [arguments, text] : kRows) ExpectOutcome(arguments, 1, text);
    EXPECT_EQ(ReadFile("plain.bin"), "plain");
}

TEST_F(Pack, RefusesWrongUsage) {
    WriteFile("a.bin", "plain");
    constexpr const char* kRows[][2] = {{"a.bin", "one of --mode, --list and --unpack is needed"},
                                        {"--list", "a file is needed"},
                                        {"a.bin --mode 9", "--mode: 9 is no whole number from 1 to 8"},
                                        {"a.bin --mode x", "--mode: x is no"},
                                        {"a.bin --mode 1 --unpack", "one of --mode, --list and --unpack is needed"},
                                        {"a.bin b.bin --mode 1", "one file at a time"},
                                        {"--lst a.bin", "unknown option --lst; did you mean --list?"},
                                        {"--unpak=3 a.bin", "unknown option --unpak; did you mean --unpack?"}};
    for (const auto& [arguments, text] : kRows) ExpectOutcome(arguments, 2, text);
    EXPECT_EQ(ReadFile("a.bin"), "plain");
    ExpectOutcome("--help", 0, "4  LZMA, strongest");
}

}   // namespace
}   // namespace sparkrig
