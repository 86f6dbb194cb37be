#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>

#include "platform/system/system.h"

namespace sparkrig {
namespace {

TEST(Output, MakesFoldersAndKnowsSpecialFiles) {
    char name[] = "/tmp/sparkrig_output_XXXXXX";
    const std::string folder = mkdtemp(name), made = folder + "/made", file = made + "/file";
    EXPECT_TRUE(MakeFolder(made.c_str()));
    EXPECT_TRUE(MakeFolder(made.c_str())) << "it is there already";
    EXPECT_FALSE(MakeFolder((folder + "/none/made").c_str()));
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
    std::system(("rm -r " + folder).c_str());
}

}   // namespace
}   // namespace sparkrig
