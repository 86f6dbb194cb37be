#include "base/string.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <utility>

namespace sparkrig {
namespace {

/// Nothing is found in a string without one.
bool HasBuffer(const String& text) { return text.IndexOf("") == 0; }

TEST(String, TellsNoBufferFromAnEmptyOne) {
    EXPECT_FALSE(HasBuffer(String()) || HasBuffer(String(nullptr)));
    EXPECT_TRUE(HasBuffer(String("")));
    for (const String& empty : {String(), String(nullptr), String("")}) {
        EXPECT_EQ(empty.GetLength(), 0);
        EXPECT_STREQ(empty.c_str(), "");
    }
}

TEST(String, AssignReleasesOnEmptyAndKeepsItself) {
    String text("fire");
    text.Assign(text.c_str());
    EXPECT_STREQ(text.c_str(), "fire");
    text.Assign(text.c_str() + 2);   // a part of the own buffer
    EXPECT_STREQ(text.c_str(), "re");
    String copy = text;
    copy.Assign(text);
    copy.MakeUpper();
    EXPECT_STREQ(text.c_str(), "re");
    text.Assign("");
    EXPECT_FALSE(HasBuffer(text));
    EXPECT_STREQ(copy.c_str(), "RE");
}

TEST(String, BufferControlKeepsTheContent) {
    String text;
    char* buffer = text.GetBuffer(5);
    EXPECT_EQ(text.GetLength(), 5);
    EXPECT_STREQ(buffer, "");
    std::copy_n("smoke", 6, buffer);
    EXPECT_EQ(text.GetBuffer(3), buffer);
    text.SetLength(7);
    EXPECT_STREQ(text.c_str(), "smoke");
    text.SetLength(2);
    EXPECT_STREQ(text.c_str(), "sm");
    text.SetLength(0);
    EXPECT_FALSE(HasBuffer(text));
    text.Alloc(4);
    EXPECT_EQ(text.GetLength(), 4);
    EXPECT_STREQ(text.c_str(), "");
    text.Alloc(-1);
    EXPECT_FALSE(HasBuffer(text));
}

TEST(String, FormatsCutsAndMayQuoteItself) {
    String text("17");
    text.Format("%s sparks of %i", text.c_str(), 23);
    EXPECT_STREQ(text.c_str(), "17 sparks of 23");
    text.Format("%s", "");
    EXPECT_FALSE(HasBuffer(text));
    text.Format("%s", std::string(9000, 'x').c_str());
    EXPECT_EQ(text.GetLength(), 4094);
}

TEST(String, AppendsAlsoItself) {
    String text;
    text.Append("ab");
    text.Append("");
    text.Append(String("cd"));
    text.Append(text);
    EXPECT_STREQ(text.c_str(), "abcdabcd");
}

TEST(String, SearchesIgnoringCase) {
    const std::tuple<const char*, const char*, int> kRows[] = {
        {"abc", "B", 1},    {"abc", "abcd", -1},  {"abc", nullptr, -1}, {"abc", "", 0},
        {nullptr, "a", -1}, {"xxABxAb", "ab", 2}, {"\xE4z", "Z", 1}};
    for (const auto& [text, part, index] : kRows) EXPECT_EQ(String(text).IndexOf(part), index) << part;
}

TEST(String, StartsWithIgnoresCase) {
    const std::tuple<const char*, const char*, bool> kRows[] = {
        {"Trace:x", "trace:", true}, {"tra", "trace:", false}, {nullptr, nullptr, true}, {nullptr, "", true},
        {"a", nullptr, false},       {"", nullptr, true},      {nullptr, "a", false}};
    for (const auto& [text, prefix, starts] : kRows)
        EXPECT_EQ(String(text).StartsWith(prefix), starts) << text << prefix;
}

TEST(String, ReplacesTheFirstOccurrenceOnly) {
    const struct {
        const char *text, *part, *replacement;
        bool exact, found;
        const char* result;
    } kRows[] = {{"abcb", "b", "XY", true, true, "aXYcb"}, {"abcb", "b", nullptr, true, true, "acb"},
                 {"abcb", "B", "XY", true, false, "abcb"}, {"abcb", "B", "XY", false, true, "aXYcb"},
                 {"cab", "cab", "", true, true, ""},       {"ab", nullptr, "x", true, false, "ab"}};
    for (const auto& row : kRows) {
        String text(row.text);
        EXPECT_EQ(text.Replace(row.part, row.replacement, row.exact), row.found) << row.result;
        EXPECT_STREQ(text.c_str(), row.result);
    }
}

TEST(String, ComparesBytesUnsignedAndCaseInAsciiOnly) {
    const String s;
    EXPECT_EQ(s.Compare("a\xE4", "az"), 1);
    EXPECT_EQ(s.Compare("ab", "abc"), -1);
    EXPECT_EQ(s.CompareN("abX", "abY", 2), 0);
    EXPECT_EQ(s.CompareNoCase("FIRE", "fire"), 0);
    EXPECT_NE(s.CompareNoCase("\xC4", "\xE4"), 0);
    EXPECT_EQ(s.CompareNNoCase("AbX", "aBy", 2), 0);
    EXPECT_EQ(s.Find("campfire", "fire"), 4);
    EXPECT_EQ(s.Find("campfire", "Fire"), -1);
    char small[4] = "zzz";
    s.Copy(small, sizeof small, "flame");
    EXPECT_STREQ(small, "fla");
    String mixed("aZ\xE4@[`{");
    mixed.MakeUpper();
    EXPECT_STREQ(mixed.c_str(), "AZ\xE4@[`{");
    mixed.MakeLower();
    EXPECT_STREQ(mixed.c_str(), "az\xE4@[`{");
    String().MakeUpper();
}

TEST(String, MovesWithoutCopying) {
    String text("smoke");
    const char* buffer = text.c_str();
    const String taken = std::move(text);
    EXPECT_EQ(taken.c_str(), buffer);
    EXPECT_TRUE(taken == "smoke");
}

TEST(ToFloats, ReadsUpToTheFirstEmptyPiece) {
    const struct {
        const char* list;
        int count;
        bool complete;
        float values[3];
    } kRows[] = {{"0.5,2,0.25", 3, true, {0.5f, 2, 0.25f}}, {"3,2", 3, false, {3, 2, -7}},
                 {" 4x, 5", 2, true, {4, 5, -7}},           {"6,,8", 3, false, {6, -7, -7}},
                 {"9,8,7,6", 2, true, {9, 8, -7}},          {nullptr, 1, false, {-7, -7, -7}},
                 {nullptr, 0, true, {-7, -7, -7}},          {"2,", 2, false, {2, -7, -7}}};
    for (const auto& row : kRows) {
        float values[3] = {-7, -7, -7};
        EXPECT_EQ(ToFloats(row.list, values, row.count), row.complete) << row.list;
        for (int i = 0; i < 3; ++i) EXPECT_EQ(values[i], row.values[i]) << row.list;
    }
}

TEST(Paths, AreSplitAtTheLastSeparatorOfEitherKind) {
    constexpr const char* kRows[][3] = {{"cfg/sub\\a.cfg", "cfg/sub", "a.cfg"},
                                        {"a.cfg", "", "a.cfg"},
                                        {"cfg\\", "cfg", ""},
                                        {"/x", "", "x"},
                                        {"", "", ""}};
    for (const auto& [path, directory, file] : kRows) {
        char out[32];
        GetDirectory(path, out, sizeof out);
        EXPECT_STREQ(out, directory) << path;
        GetFileName(path, out, sizeof out);
        EXPECT_STREQ(out, file) << path;
    }
    char small[4];
    GetFileName("cfg/effects.cfg", small, sizeof small);
    EXPECT_STREQ(small, "eff");
}

TEST(Paths, GetAnotherDirectory) {
    char path[256] = "cfg/sub\\a.cfg";
    ReplaceDirectory(path, "new");
    EXPECT_STREQ(path, "new\\a.cfg");
    ReplaceDirectory(path, std::string(400, 'd').c_str());
    EXPECT_EQ(std::string(path), std::string(255, 'd'));
}

TEST(CommandLine, CountsAndFindsWords) {
    const char* line = "  app.exe   /Full x ";
    EXPECT_EQ(CountWords(line), 3);
    EXPECT_EQ(CountWords("   "), 0);
    EXPECT_EQ(WordLength(GetWord(line, 1)), 5);
    EXPECT_EQ(*GetWord(line, 2), 'x');
    EXPECT_EQ(GetWord(line, 3), nullptr);
    EXPECT_EQ(GetWord("", 0), nullptr);
    EXPECT_TRUE(HasOption(line, "/full"));
    EXPECT_FALSE(HasOption("/fullscreen", "/full"));
    EXPECT_FALSE(HasOption("/ful", "/full"));
}

TEST(CommandLine, ReadsTheValueBehindAnOption) {
    const std::tuple<const char*, bool, int> kRows[] = {{"app.exe /resx:1024 /full", true, 1024},
                                                        {"/RESX=768", true, 768},
                                                        {"/resx=-5", true, -5},
                                                        {"/resx=-2147483648", true, INT_MIN},
                                                        {"/resx=-2147483649", true, INT_MIN},
                                                        {"/resx:", true, 0},
                                                        {"/resx 1024", false, 77},
                                                        {"/resxx:3 /resx:4", false, 77},
                                                        {"app.exe", false, 77},
                                                        {"/resx:1a", true, 10 + ('a' - '0')},
                                                        {"/resx:31234567890", true, 1234567890},
                                                        {"/resx:9999999999", true, INT_MAX}};
    for (const auto& [line, found, wanted] : kRows) {
        int value = 77;
        EXPECT_EQ(GetOptionValue(line, "/resx", &value), found) << line;
        EXPECT_EQ(value, wanted) << line;
    }
}

}   // namespace
}   // namespace sparkrig
