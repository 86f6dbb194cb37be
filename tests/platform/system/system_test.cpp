#include "platform/system/system.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "platform/system/result_codes.h"
#include "tests/support/temporary_folder.h"

namespace sparkrig {
namespace {

class Paths : public TemporaryFolder {
  protected:
    Paths() {
        std::filesystem::create_directories("Cfg/Sub");
        WriteFile("Cfg/Sub/Effects.cfg", "fire");
        WriteFile("Cfg/a.cfg", "lower");
        WriteFile("Cfg/A.cfg", "upper");
    }
};

TEST_F(Paths, AreFoundInAnyCaseWithEitherSeparator) {
    constexpr const char* kRows[][2] = {{"cfg\\sub\\EFFECTS.CFG", "Cfg/Sub/Effects.cfg"},
                                        {"Cfg/Sub/Effects.cfg", "Cfg/Sub/Effects.cfg"},
                                        {"CFG/new.cfg", "Cfg/new.cfg"},
                                        {"none\\New.cfg", "none/New.cfg"},
                                        {"cfg\\a.CFG", "Cfg/A.cfg"},
                                        {"cfg/a.cfg", "Cfg/a.cfg"},
                                        {"cfg\\..\\CFG//sub\\", "Cfg/../Cfg//Sub/"},
                                        {"", ""}};
    for (const auto& [name, resolved] : kRows) EXPECT_EQ(ResolvePath(name), resolved) << name;
    EXPECT_EQ(ResolvePath((Folder().string() + "\\CFG").c_str()), Folder().string() + "/Cfg");
}

TEST_F(Paths, OnlyRegularFilesOpen) {
    EXPECT_TRUE(FileExists("cfg\\A.CFG"));
    EXPECT_FALSE(FileExists("cfg"));
    EXPECT_FALSE(FileExists("cfg\\none"));
    std::FILE* file = OpenFileStream("cfg\\sub\\effects.cfg", "rb");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(std::fgetc(file), 'f');
    EXPECT_EQ(FileModificationTime(file), FileModificationTime("cfg\\sub\\effects.cfg"));
    std::fclose(file);
    EXPECT_EQ(OpenFileStream("cfg", "rb"), nullptr);
    EXPECT_EQ(errno, EISDIR);
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    EXPECT_EQ(OpenFileStream("pipe", "rb"), nullptr);   // would wait for ever
    EXPECT_EQ(OpenFileStream("none", "rb"), nullptr);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(FileModificationTime("none"), -1);
}

TEST_F(Paths, CurrentDirectoryMoves) {
    EXPECT_TRUE(SetCurrentDirectoryA("cfg\\SUB"));
    EXPECT_EQ(GetCurrentDirectoryA(), Folder().string() + "/Cfg/Sub");
    EXPECT_FALSE(SetCurrentDirectoryA("none"));
}

TEST_F(Paths, NameFoldersThatAreMadeAndSpecialFiles) {
    EXPECT_TRUE(MakeFolder("made"));
    EXPECT_TRUE(MakeFolder("made")) << "it is there already";
    EXPECT_FALSE(MakeFolder("none/made"));
    EXPECT_EQ(errno, ENOENT);

    EXPECT_FALSE(IsSpecialFile("made/file")) << "it is not there";
    std::FILE* stream = OpenFileStream("made/file", "w");
    ASSERT_NE(stream, nullptr);
    EXPECT_FALSE(IsTerminal(stream));
    std::fclose(stream);
    EXPECT_FALSE(IsSpecialFile("made/file"));
    EXPECT_FALSE(MakeFolder("made/file"));
    EXPECT_TRUE(IsSpecialFile("made"));
    EXPECT_TRUE(IsSpecialFile("/dev/null"));
}

using ReplaceFile = Paths;

TEST_F(ReplaceFile, KeepsPermissionsAndLinks) {
    ASSERT_EQ(chmod("Cfg/a.cfg", 0640), 0);
    std::filesystem::create_symlink("Cfg/a.cfg", "link");
    ASSERT_TRUE(ReplaceFileContent("LINK", "new", 3));
    EXPECT_TRUE(std::filesystem::is_symlink("link"));
    EXPECT_EQ(ReadFile("Cfg/a.cfg"), "new");
    struct stat status {};
    ASSERT_EQ(stat("Cfg/a.cfg", &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640u);
    const mode_t mask = umask(027);
    EXPECT_TRUE(ReplaceFileContent("fresh", "", 0));
    umask(mask);
    ASSERT_EQ(stat("fresh", &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640u);
    EXPECT_FALSE(ReplaceFileContent("none/fresh", "x", 1));
    EXPECT_EQ(errno, ENOENT);
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    const int reader = open("pipe", O_RDONLY | O_NONBLOCK);
    char read_back[4] = "";
    EXPECT_TRUE(ReplaceFileContent("pipe", "new", 3));
    EXPECT_EQ(read(reader, read_back, 3), 3);
    EXPECT_TRUE(IsSpecialFile("pipe")) << "a device would be gone";
    close(reader);
}

TEST_F(ReplaceFile, KeepsTheOwner) {
    const bool root = geteuid() == 0;   // giving a file away is root's right: a file of ours stays ours
    EXPECT_TRUE(!root || chown("Cfg/a.cfg", 1234, 2345) == 0);
    ASSERT_TRUE(ReplaceFileContent("Cfg/a.cfg", "new", 3));
    struct stat status {};
    ASSERT_EQ(stat("Cfg/a.cfg", &status), 0);
    EXPECT_EQ(status.st_uid, root ? 1234u : geteuid());
    EXPECT_EQ(status.st_gid, root ? 2345u : getegid());
}

TEST_F(ReplaceFile, LeavesTheOldContentWhenTheDiskIsFull) {
    const std::string content(50000, 'n');
    EXPECT_EQ(
        [&] {
            const FileSizeLimit limit;
            return ReplaceFileContent("Cfg/a.cfg", content.data(), content.size()) ? 0 : errno;
        }(),
        EFBIG);
    EXPECT_EQ(ReadFile("Cfg/a.cfg"), "lower");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator("Cfg"), {}), 3);   // nothing left beside it
}

TEST(System, HasAClockMemoryLibrariesAndNamesOfCodes) {
    const std::int64_t before = QueryPerformanceCounter();
    Sleep(2);
    EXPECT_GE(QueryPerformanceCounter() - before, QueryPerformanceFrequency() / 500);
    EXPECT_GT(AvailablePhysicalMemory(), 1u << 20);
    EXPECT_TRUE(LoadLibraryA("d3d9.dll"));
    EXPECT_STREQ(DXGetErrorString9(D3D_OK), "S_OK");
    EXPECT_STREQ(DXGetErrorString9(D3DERR_DEVICELOST), "D3DERR_DEVICELOST");
    EXPECT_STREQ(DXGetErrorString9(D3DXERR_LOADEDMESHASNODATA), "D3DXERR_LOADEDMESHASNODATA");
    EXPECT_STREQ(DXGetErrorString9(12345), "Unknown");
}

class Registry : public TemporaryFolder {
  protected:
    Registry() { setenv("XDG_CONFIG_HOME", Folder().c_str(), 1); }
    ~Registry() override { unsetenv("XDG_CONFIG_HOME"); }

    static constexpr char kPath[] = "Software\\Vantrell\\Sparkrig";

    static std::string Query(const RegistryKey& key, const char* name) {
        char buffer[1023];
        DWORD size = sizeof buffer;
        const LONG error = RegQueryValueExA(key, name, buffer, size);
        return error == ERROR_SUCCESS ? buffer : FormatMessageA(error);
    }
};

TEST_F(Registry, KeepsValuesUnderNamesOfAnyCase) {
    RegistryKey key;
    EXPECT_EQ(RegOpenKeyExA(kPath, KEY_READ, key), ERROR_FILE_NOT_FOUND);
    ASSERT_EQ(RegCreateKeyExA(kPath, KEY_WRITE, key), ERROR_SUCCESS);
    EXPECT_EQ(Query(key, "BgrdTexturePath"), "The system cannot find the file specified.");
    EXPECT_EQ(RegSetValueExA(key, "BgrdTexturePath", "textures\\\"sky\".tga"), ERROR_SUCCESS);
    EXPECT_EQ(RegSetValueExA(key, "BGRDTEXTUREPATH", "b.tga"), ERROR_SUCCESS);
    EXPECT_EQ(RegSetValueExA(key, "Empty", ""), ERROR_SUCCESS);
    RegCloseKey(key);
    EXPECT_EQ(RegSetValueExA(key, "x", "y"), ERROR_INVALID_HANDLE);

    ASSERT_EQ(RegOpenKeyExA("SOFTWARE\\vantrell\\sparkrig", KEY_READ, key), ERROR_SUCCESS);
    EXPECT_EQ(Query(key, "bgrdtexturepath"), "b.tga");
    EXPECT_EQ(Query(key, "empty"), "");
    EXPECT_EQ(RegSetValueExA(key, "x", "y"), ERROR_ACCESS_DENIED);
    char buffer[6] = "";
    DWORD size = 5;
    EXPECT_EQ(RegQueryValueExA(key, "bgrdtexturepath", buffer, size), ERROR_MORE_DATA);
    EXPECT_EQ(size, 6u);
    EXPECT_EQ(RegQueryValueExA(key, "bgrdtexturepath", buffer, size), ERROR_SUCCESS);
    EXPECT_EQ(ReadFile("sparkrig/registry.toml").find("BGRD"), std::string::npos);
}

TEST_F(Registry, NeverOverwritesWhatItCannotUnderstand) {
    std::filesystem::create_directory("sparkrig");
    WriteFile("sparkrig/registry.toml", "not = = toml");
    RegistryKey key{kPath, KEY_WRITE};
    EXPECT_EQ(RegOpenKeyExA(kPath, KEY_READ, key), ERROR_BADDB);
    EXPECT_EQ(RegCreateKeyExA(kPath, KEY_WRITE, key), ERROR_BADDB);
    EXPECT_EQ(RegSetValueExA(key, "v", "x"), ERROR_BADDB);
    EXPECT_EQ(ReadFile("sparkrig/registry.toml"), "not = = toml");
}

TEST_F(Registry, RefusesWhatIsNoText) {
    RegistryKey key;
    RegCreateKeyExA(kPath, KEY_WRITE, key);
    EXPECT_EQ(RegSetValueExA(key, "v", "\xFF\xFE.tga"), ERROR_UNSUPPORTED_TYPE);
    EXPECT_EQ(Query(key, "v"), "The system cannot find the file specified.");
    WriteFile("sparkrig/registry.toml", "['Software\\Vantrell\\Sparkrig']\nv = 17\n");
    EXPECT_EQ(Query(key, "v"), "Data of this type is not supported.");
    EXPECT_EQ(FormatMessageA(4711), "Unknown error 4711.");
}

}   // namespace
}   // namespace sparkrig
