#include "base/string.h"

#include <array>
#include <climits>
#include <random>
#include <string>
#include <utility>
#include "tests/support/test.h"

namespace sparkrig {
namespace {

/// Nothing is found in a string without one.
bool HasBuffer(const String& text) { return text.IndexOf("") == 0; }

std::string Folded(std::string text, char first, int step) {   // in ASCII only
    for (char& c : text) c = static_cast<char>(c >= first && c < first + 26 ? c + step : c);
    return text;
}
std::string Lower(const std::string& text) { return Folded(text, 'A', 32); }

TEST(String, IsWhatTheStandardLibraryMakesOfTheSameSteps) {
    std::mt19937 random(5);
    const auto word = [&] {
        std::string letters(random() % 4, ' ');
        for (char& c : letters) c = "aAbB\xE4\xC4["[random() % 7];
        return letters;
    };
    String text;
    std::string held;
    for (int step = 0; step < 20000; ++step) {
        const std::string a = word(), b = word();
        const bool exact = step % 2 == 0;
        const std::size_t half = held.size() / 2, place = exact ? held.find(a) : Lower(held).find(Lower(a));
        const bool found = HasBuffer(text) && place != std::string::npos;
        switch (random() % (held.size() > 30 ? 2 : 8)) {
            case 0: text.Assign(a.c_str()), held = a; break;
            case 1: text.Assign(text.c_str() + half), held = held.substr(half); break;   // a part of its own buffer
            case 2: text.Append(a.c_str()), held += a; break;
            case 3: text.Append(text), held += held; break;
            case 4: text.MakeUpper(), held = Folded(held, 'a', -32); break;
            case 5: text.MakeLower(), held = Lower(held); break;
            case 6: text.Format("%s-%s", text.c_str(), a.c_str()), held += "-" + a; break;
            default:
                EXPECT_EQ(text.Replace(a.c_str(), b.empty() ? nullptr : b.c_str(), exact), found);
                if (found) held.replace(place, a.size(), b);
        }
        ASSERT_EQ(text.c_str(), held) << step;
        ASSERT_EQ(text.GetLength(), static_cast<int>(held.size()));
        EXPECT_TRUE(HasBuffer(text) || held.empty());
        EXPECT_EQ(text.IndexOf(a.c_str()), HasBuffer(text) ? static_cast<int>(Lower(held).find(Lower(a))) : -1);
        EXPECT_EQ(text.StartsWith(a.c_str()), Lower(held).starts_with(Lower(a)));
        String copy = text, other(b.c_str());
        EXPECT_TRUE(copy == text && copy == held.c_str());
        const auto sign = [](int order) { return (order > 0) - (order < 0); };
        EXPECT_EQ(text.Compare(a.c_str(), b.c_str()), sign(a.compare(b)));
        EXPECT_EQ(text.CompareNoCase(a.c_str(), b.c_str()), sign(Lower(a).compare(Lower(b))));
        EXPECT_EQ(text.CompareN(a.c_str(), b.c_str(), 2), sign(a.substr(0, 2).compare(b.substr(0, 2))));
        EXPECT_EQ(text.CompareNNoCase(a.c_str(), b.c_str(), 2),
                  sign(Lower(a).substr(0, 2).compare(Lower(b).substr(0, 2))));
        other.Assign(copy);
        copy = std::move(other);
        EXPECT_TRUE(copy == text) << step;
    }
}

TEST(String, AnEmptyOneThatIsAssignedReleasesItsBuffer) {
    String text("fire");
    for (const auto& empty : {+[](String& s) { s.Assign(""); }, +[](String& s) { s.Format("%s", ""); }}) {
        text = "smoke";
        empty(text);
        EXPECT_FALSE(HasBuffer(text));
    }
    text.Format("%s", std::string(9000, 'x').c_str());
    EXPECT_EQ(text.GetLength(), 4094) << "cut";
    const char* buffer = text.c_str();
    const String taken = std::move(text);
    EXPECT_EQ(taken.c_str(), buffer);
    EXPECT_TRUE(HasBuffer(String("")));
    for (const String& none : {String(), String(nullptr)}) {
        EXPECT_TRUE(!HasBuffer(none) && none.GetLength() == 0 && none == "");
        EXPECT_TRUE(none.StartsWith(nullptr) && none.StartsWith("") && !none.StartsWith("a"));
        EXPECT_EQ(none.IndexOf("a"), -1);
    }
    EXPECT_FALSE(String("a").StartsWith(nullptr) || String("a").Replace(nullptr, "x", true));
    EXPECT_EQ(String("a").IndexOf(nullptr), -1);
    EXPECT_EQ(taken.Find("campfire", "fire"), 4);
    char small[4] = "zzz";
    taken.Copy(small, sizeof small, "flame");
    EXPECT_STREQ(small, "fla");
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

TEST(ToFloats, ReadsUpToTheFirstEmptyPiece) {
    const std::tuple<const char*, int, bool, std::array<float, 3>> kRows[] = {
        {"0.5,2,0.25", 3, true, {0.5f, 2, 0.25f}}, {"3,2", 3, false, {3, 2, -7}},    {" 4x, 5", 2, true, {4, 5, -7}},
        {"6,,8", 3, false, {6, -7, -7}},           {"9,8,7,6", 2, true, {9, 8, -7}}, {nullptr, 1, false, {-7, -7, -7}},
        {nullptr, 0, true, {-7, -7, -7}},          {"2,", 2, false, {2, -7, -7}}};
    for (const auto& [list, count, complete, wanted] : kRows) {
        std::array<float, 3> values = {-7, -7, -7};
        EXPECT_EQ(ToFloats(list, values.data(), count), complete);
        EXPECT_EQ(values, wanted) << count;
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
