#include "base/file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <random>

#include "base/file_validator.h"
#include "tests/support/picture_files.h"
#include "tests/support/temporary_folder.h"

namespace sparkrig {
namespace {

class FileOnDisk : public TemporaryFolder {
  protected:
    bool Open(const std::string& content, bool read_only, bool in_memory) {
        WriteFile("a.bin", content);
        return file_.Open("a.bin", read_only, in_memory, true);
    }
    std::string Content() const { return ReadFile("a.bin"); }

    const int handles_before_ = File::m_OpenHandlesCount;
    File file_;
};

class FileTest : public FileOnDisk, public testing::WithParamInterface<bool> {};
INSTANTIATE_TEST_SUITE_P(OnDiskAndInMemory, FileTest, testing::Bool(),
                         [](const auto& row) { return row.param ? "InMemory" : "OnDisk"; });

TEST_P(FileTest, ReadsLittleEndianNumbersAndStrings) {
    WriteFile("a.bin", std::string("\x78\x56\x34\x92\xFE\xFF\x81\3\0\0\0abc\0\0\0\0\xFF\xFF\xFF\xFFz", 23));
    File& file = file_;
    ASSERT_TRUE(file.Open("A.BIN", true, GetParam(), true));
    EXPECT_EQ(file.GetSize(), 23);
    EXPECT_EQ(file.ReadInt32(), static_cast<std::int32_t>(0x92345678));
    EXPECT_EQ(file.ReadInt16(), -2);
    EXPECT_EQ(file.ReadByte(), -127);
    String text("old");
    EXPECT_TRUE(file.ReadString(text));
    EXPECT_STREQ(text.c_str(), "abc");
    EXPECT_TRUE(file.ReadString(text));
    EXPECT_STREQ(text.c_str(), "");
    EXPECT_TRUE(file.ReadString(text));   // a negative length
    EXPECT_EQ(file.ReadByte(), 'z');
    EXPECT_EQ(file.Tell(), 23);
    EXPECT_TRUE(file.Read(nullptr, 0));
    EXPECT_EQ(ErrorOf([&] { file.ReadByte(); }), "File: A.BIN: Error reading from file (Success)");
    EXPECT_FALSE(file.IsModified());
}

TEST_P(FileTest, RefusesToReadOutsideTheContent) {
    ASSERT_TRUE(Open("0123456", true, GetParam()));
    char bytes[16];
    EXPECT_EQ(ErrorOf([&] { file_.Read(bytes, 8); }), "File: a.bin: Error reading from file (Success)");
    file_.Seek(9);
    EXPECT_EQ(ErrorOf([&] { file_.Read(bytes, 1); }), "File: a.bin: Error reading from file (Success)");
    file_.Seek(3);
    EXPECT_THROW(file_.Read(bytes, -2), ErrorMsg);
    ASSERT_TRUE(Open("\xFF\xFF\xFF\x7Fx", true, GetParam()));   // claims two thousand million characters
    String text;
    EXPECT_EQ(ErrorOf([&] { file_.ReadString(text); }), "File: a.bin: Error reading from file (Success)");
}

TEST_P(FileTest, ReportsWhatIsNotAllowed) {
    File& file = file_;
    EXPECT_EQ(ErrorOf([&] { file.ReadByte(); }), "File: File is not readable");
    ASSERT_TRUE(Open("0123456789", true, GetParam()));
    EXPECT_EQ(ErrorOf([&] { file.WriteByte('x'); }), "File: a.bin: File is not writeable");
    EXPECT_EQ(ErrorOf([&] { file.SetSize(3); }), "File: a.bin: Can not delete data without write permission");
    ASSERT_TRUE(Open("0123456789", false, GetParam()));
    EXPECT_EQ(ErrorOf([&] { file.SetSize(-1); }), "File: a.bin: DeleteData() failed: Invalid argument, file:'a.bin'");
    EXPECT_EQ(ErrorOf([&] { file.Write("x", -1); }), "File: a.bin: Error writing to file (File too large)");
    file.Close();
    EXPECT_EQ(ErrorOf([&] { file.WriteByte('x'); }), "File: a.bin: File is not writeable");
}

/// The descriptor under which this process has the file open, or -1.
int DescriptorOf(const std::filesystem::path& file) {
    const std::filesystem::path wanted = std::filesystem::canonical(file);
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code error;
        if (std::filesystem::read_symlink(entry, error) == wanted) return std::stoi(entry.path().filename().string());
    }
    return -1;
}

/// Puts another stream in the place of the one that is open, as a disk that goes away would.
void Replace(const std::filesystem::path& file, int stream) {
    dup2(stream, DescriptorOf(file));
    close(stream);
}
/// It can be neither positioned nor cut.
int Pipe() {
    int ends[2] = {-1, -1};
    if (pipe(ends) == 0) close(ends[0]);
    return ends[1];
}

TEST_F(FileOnDisk, OpenWarnsOnlyWhenAsked) {
    Reports reports;
    File file;
    EXPECT_FALSE(file.Open("none.bin", true, false, false));
    EXPECT_FALSE(file.Open("none.bin", false, true, true));
    EXPECT_EQ(errno, ENOENT);
    std::filesystem::create_directory("folder");
    EXPECT_FALSE(file.Open("folder", true, true, true));
    EXPECT_THAT(reports.All(), ElementsAre("warning File: Open() failed: No such file or directory, file:'none.bin'",
                                           "warning File: Open() failed: Is a directory, file:'folder'"));
    EXPECT_FALSE(file.IsOpen());
    EXPECT_EQ(file.GetFileTime(), -1);
}

TEST_F(FileOnDisk, CountsOpenFiles) {
    Open("0123", true, true);
    {
        File second;
        second.Open("a.bin", true, false, true);
        second.Open("a.bin", true, false, true);
        EXPECT_EQ(File::m_OpenHandlesCount, handles_before_ + 2);
    }
    EXPECT_EQ(File::m_OpenHandlesCount, handles_before_ + 1);
    struct stat status {};
    stat("a.bin", &status);
    EXPECT_EQ(file_.GetFileTime(), status.st_mtime);
    EXPECT_EQ(file_.PackMode(), 0);
    Reports reports;
    File::m_OpenHandlesCount = 0;
    file_.Close();
    EXPECT_EQ(reports.Last(), "warning File: Invalid m_OpenHandlesCount !");
    File::m_OpenHandlesCount = handles_before_;
}

TEST_F(FileOnDisk, HandsItsBufferOut) {
    Open("0123", false, true);
    EXPECT_EQ(file_.GetBuffer()[2], '2');
    file_.Close(true);
    EXPECT_THAT(file_.TakeBuffer(), ElementsAre('0', '1', '2', '3'));
    EXPECT_EQ(file_.GetBuffer(), nullptr);
}

TEST_F(FileOnDisk, MemoryReachesTheFileThatWasOpened) {
    const std::string longest(255, 'n');
    WriteFile(longest, "0123");
    {
        File file;
        ASSERT_TRUE(file.Open(longest.c_str(), false, true, true));
        file.SetSize(3);
        file.Write("x", 1);
        EXPECT_EQ(ReadFile(longest).substr(0, 3), "012");
        std::filesystem::create_directory("elsewhere");
        std::filesystem::current_path("elsewhere");
    }   // the destructor closes
    EXPECT_EQ(ReadFile("../" + longest), "012x");
    EXPECT_TRUE(std::filesystem::is_empty("."));
}

TEST_F(FileOnDisk, OfTwoGibibytesIsRefusedAndClosed) {
    WriteFile("a.bin", "");
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    std::error_code refused;
    std::filesystem::resize_file("a.bin", std::uintmax_t{1} << 31, refused);   // without a byte on the disk
    std::signal(SIGXFSZ, handler);
    if (refused == std::errc::file_too_large) GTEST_SKIP() << "a limit on this process keeps such files from it";
    ASSERT_FALSE(refused) << refused.message();
    EXPECT_EQ(ErrorOf([&] { file_.Open("a.bin", true, false, true); }),
              "File: a.bin: Error reading from file (File too large)");
    EXPECT_FALSE(file_.IsOpen());
    EXPECT_EQ(File::m_OpenHandlesCount, handles_before_);
}

TEST_F(FileOnDisk, ReportsAStreamThatBreaks) {
    const std::string content(20000, 'n');
    File& file = file_;
    Open(content, false, false);
    Replace("a.bin", Pipe());
    EXPECT_EQ(ErrorOf([&] { file.Seek(15000); }), "File: a.bin: fseek failed: -1");
    EXPECT_EQ(ErrorOf([&] { file.SetSize(5); }), "File: a.bin: DeleteData() failed: Invalid argument, file:'a.bin'");
    Open(content, false, false);
    Replace("a.bin", open("/dev/full", O_RDWR));
    EXPECT_EQ(ErrorOf([&] { file.Write(content.data(), static_cast<int>(content.size())); }),
              "File: a.bin: Error writing to file (No space left on device)");
    Reports reports;
    file.Close();
    EXPECT_EQ(Content(), content);
    Open(content, false, true);
    file.Write("x", 1);
    Replace("a.bin", Pipe());
    EXPECT_EQ(ErrorOf([&] { file.Close(); }), "File: a.bin: fseek failed (WriteVirtualFile): -1");
    EXPECT_EQ(Content(), content);
}

TEST_F(FileOnDisk, WarnsWhenTheStreamDoesNotClose) {
    Open("0123", true, false);
    Reports reports;
    close(DescriptorOf("a.bin"));
    file_.Close();
    EXPECT_EQ(reports.Last(), "warning File: Could not close file: 'a.bin' - Bad file descriptor");
    File::m_OpenHandlesCount = handles_before_;
}

// ---- Packed files

const std::string kHeader = "\xA7VT\xA7\1";

/// The bytes of a packed file with this mode in its header and this stream behind it.
std::string PackedFile(int mode, const std::string& stream) { return kHeader + static_cast<char>(mode) + stream; }

const std::string kStoredHello("\0\5\0\0\0hello", 10);

class PackedFileTest : public FileOnDisk {
  protected:
    std::string Unpacked(bool in_memory) {
        File file;
        file.Open("a.bin", true, in_memory, true);
        std::string content(static_cast<std::size_t>(file.GetSize()), '\0');
        file.Read(content.data(), file.GetSize());
        return content;
    }
};

TEST_F(PackedFileTest, IsToldFromAPlainOne) {
    for (const int mode : {1, 77}) {
        WriteFile("a.bin", PackedFile(mode, kStoredHello));
        for (const bool in_memory : {false, true}) EXPECT_EQ(Unpacked(in_memory), "hello");
    }
    for (const std::string& plain :   // too short, too short, of mode 0, with another magic
         {std::string("\xA7VT\xA7"), kHeader, PackedFile(0, kStoredHello), std::string("\xA7VT\xA8\1\1")}) {
        WriteFile("a.bin", plain);
        for (const bool in_memory : {false, true}) EXPECT_EQ(Unpacked(in_memory), plain);
    }
}

TEST_F(PackedFileTest, OfAnotherVersionIsPlainWithAWarning) {
    WriteFile("a.bin", "\xA7VT\xA7\2\1abc");
    Reports reports;
    EXPECT_EQ(Unpacked(true), "\xA7VT\xA7\2\1abc");
    EXPECT_THAT(reports.All(), ElementsAre("warning File: Unknown header version of file:'a.bin'"));
    file_.Open("a.bin", true, false, false);
    EXPECT_EQ(reports.All().size(), 1u);
}

/// Any operations, on disk, in memory and packed, beside a string and a place in it.
TEST_F(PackedFileTest, HoldsWhatAStringHolds) {
    std::mt19937 random(5);
    for (int round = 0; round < 45; ++round) {
        const int mode = round % 9;   // 0: a plain file
        std::string held = "hello";
        File& file = file_;
        ASSERT_TRUE(Open(mode > 0 ? PackedFile(mode, kStoredHello) : held, false, round % 2 == 0));
        EXPECT_EQ(file.PackMode(), mode);
        std::size_t place = 0;
        const auto write = [&](const std::string& bytes) {
            held.resize(std::max(held.size(), place + bytes.size()));   // a gap reads as zeros
            held.replace(place, bytes.size(), bytes);
            place += bytes.size();
        };
        for (int step = 0; step < 40; ++step) {
            const auto number = static_cast<std::int32_t>(random());
            const std::string bytes = Little(static_cast<UINT>(number), 4);
            const int at = 1 + static_cast<int>(random() % 300);
            switch (random() % 7) {
                case 0: file.WriteInt32(number), write(bytes); break;
                case 1: file.WriteInt16(static_cast<std::int16_t>(number)), write(bytes.substr(0, 2)); break;
                case 2: file.WriteByte(static_cast<std::int8_t>(number)), write(bytes.substr(0, 1)); break;
                case 3:
                    file.WriteString(at % 2 == 0 ? "xyz" : "");
                    write(at % 2 == 0 ? Little(3, 4) + "xyz" : Little(0, 4));
                    break;
                case 4: file.Seek(at), place = static_cast<std::size_t>(at); break;
                case 5:
                    file.SetSize(at);
                    if (static_cast<std::size_t>(at) >= held.size()) break;
                    held.resize(static_cast<std::size_t>(at));
                    place = held.size();   // it stands at the end then
                    break;
                default:
                    if (place + 4 > held.size()) break;
                    EXPECT_EQ(Little(static_cast<UINT>(file.ReadInt32()), 4), held.substr(place, 4));
                    place += 4;
            }
            ASSERT_EQ(file.GetSize(), static_cast<int>(held.size())) << round << " " << step;
            ASSERT_EQ(file.Tell(), static_cast<int>(place)) << round << " " << step;
        }
        EXPECT_TRUE(mode == 0 || Content() == PackedFile(mode, kStoredHello)) << "until it is closed";
        file.Close();
        EXPECT_EQ(mode == 0 ? Content() : Unpacked(false), held) << round;
        EXPECT_TRUE(mode == 0 || held.empty() || Content().substr(0, 6) == kHeader + static_cast<char>(mode));
    }
}

TEST_F(PackedFileTest, ThatIsOnlyReadStaysAsItIsAndOneThatIsEmptiedIsEmpty) {
    const std::string packed = PackedFile(2, kStoredHello);
    Open(packed, true, false);
    EXPECT_EQ(ErrorOf([&] { file_.SetPackMode(1); }), "File: a.bin: File is not writeable");
    Open(packed, false, true);
    file_.ReadByte();
    file_.Close();
    EXPECT_EQ(Content(), packed);
    Open(packed, false, true);
    file_.SetSize(0);
    file_.Close();
    EXPECT_EQ(Content(), "");
}

TEST_F(PackedFileTest, WithAnUnknownModeIsNotPackedBack) {
    for (const int mode : {9, -1}) {
        Open(PackedFile(mode, kStoredHello), false, true);
        file_.WriteByte('j');
        EXPECT_EQ(ErrorOf([&] { file_.Close(); }), "File: a.bin: Can not pack with mode: " + std::to_string(mode));
        EXPECT_EQ(Content(), PackedFile(mode, kStoredHello));
    }
}

TEST_F(PackedFileTest, ThatIsBrokenNamesItselfAndIsClosed) {
    Reports reports;
    EXPECT_EQ(ErrorOf([&] { Open(PackedFile(1, "\x09z"), true, false); }),
              "CCompress: Unknown compression algorithm: 9");
    EXPECT_EQ(reports.Last(), "error CCompress: Unknown compression algorithm: 9 @a.bin:0");
    EXPECT_FALSE(file_.IsOpen());
    EXPECT_EQ(File::m_OpenHandlesCount, handles_before_);
    EXPECT_EQ(ErrorOf([&] { Open(PackedFile(1, ""), true, false); }), "CCompress: Invalid input buffer");
}

TEST_F(PackedFileTest, KeepsItsContentWhenTheDiskIsFull) {
    Open(PackedFile(8, kStoredHello), false, true);
    file_.Write(std::string(20000, 'n').c_str(), 20000);
    const std::string error = [&] {
        const FileSizeLimit limit;
        return ErrorOf([&] { file_.Close(); });
    }();
    EXPECT_FALSE(file_.IsOpen() || file_.IsModified());
    EXPECT_EQ(error, "File: a.bin: Error writing to file (File too large)");
    EXPECT_EQ(Content(), PackedFile(8, kStoredHello));
    for (const auto& entry : std::filesystem::directory_iterator(".")) {
        const std::string name = entry.path().filename();
        EXPECT_TRUE(name == "a.bin" || name == "logfile.txt") << name << " was left behind";
    }
}

TEST(FileValidator, AcceptsRelativePathsOnly) {
    constexpr const char* kRows[][2] = {
        {"data\\a.tga", ""},
        {"a", ""},
        {"\\", ""},
        {"", ""},
        {"C:\\data\\a.tga", "warning ErrorClassSimple: Absolute file path: 'C:\\data\\a.tga'"},
        {"\\data\\a.tga", "warning ErrorClassSimple: Absolute file path: '\\data\\a.tga'"},
        {"/data/a.tga", "warning ErrorClassSimple: Absolute file path: '/data/a.tga'"},
        {"\\\\server\\a.tga", "warning ErrorClassSimple: Network file accessed: '\\\\server\\a.tga'"}};
    for (const auto& [path, report] : kRows) {
        Reports reports;
        EXPECT_EQ(CFileValidator().CheckPath(path), *report == '\0') << path;
        EXPECT_EQ(reports.Last(), report);
    }
}

}   // namespace
}   // namespace sparkrig
