#include "app/name_lines.h"

#include <gtest/gtest.h>

#include "tests/support/temporary_folder.h"

namespace sparkrig {
namespace {

TEST(NameLines, FindsQuotedTexts) {
    const ScratchFolder folder;
    const std::string file =
        folder.Write("a.cfg", "; \"spot\"\n\"spot\" = \"a.png\"\r\ndesc = \"Fire\"\n  \"open\nFire\n\"SPOT\"");
    const NameLines lines(file.c_str());
    EXPECT_EQ(lines.LineCount(), 6);
    const std::tuple<const char*, int, int> kRows[] = {{"spot", 2, 2}, {"spot", 3, 6},   {"fire", 1, 3},
                                                       {"fire", 4, 0}, {"a.png", -5, 2}, {"open", 1, 0}};
    for (const auto& [text, from, line] : kRows) EXPECT_EQ(lines.Find(text, from), line) << text << from;
    const char* const kFirst[] = {"", "spot", "Fire", "", "", "SPOT"};
    for (int line = 1; line <= 6; ++line) EXPECT_EQ(lines.FirstQuoted(line), kFirst[line - 1]) << line;
    EXPECT_EQ(NameLines("no such file").LineCount(), 0);
}

}   // namespace
}   // namespace sparkrig
