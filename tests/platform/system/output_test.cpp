#include <gtest/gtest.h>

#include <cerrno>

#include "platform/system/system.h"
#include "tests/support/temporary_folder.h"

namespace sparkrig {
namespace {

TEST(Output, MakesFoldersAndKnowsSpecialFiles) {
    const ScratchFolder folder;
    const std::string made = folder.Path("made"), file = made + "/file";
    EXPECT_TRUE(MakeFolder(made.c_str()));
    EXPECT_TRUE(MakeFolder(made.c_str())) << "it is there already";
    EXPECT_FALSE(MakeFolder(folder.Path("none/made").c_str()));
    EXPECT_EQ(errno, ENOENT);

    EXPECT_FALSE(IsSpecialFile(file.c_str())) << "it is not there";
    std::FILE* stream = OpenFileStream(file.c_str(), "w");
    ASSERT_NE(stream, nullptr);
    EXPECT_FALSE(IsTerminal(stream));
    std::fclose(stream);
    EXPECT_FALSE(IsSpecialFile(file.c_str()));
    EXPECT_FALSE(MakeFolder(file.c_str()));
    EXPECT_TRUE(IsSpecialFile(made.c_str()));
    EXPECT_TRUE(IsSpecialFile("/dev/null"));
}

}   // namespace
}   // namespace sparkrig
