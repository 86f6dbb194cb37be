#include <climits>
#include <cmath>

#include "base/text_data_file_reader.h"
#include "base/text_file_reader.h"
#include "tests/support/temporary_folder.h"

namespace sparkrig {
namespace {

TEST(LineIndex, FindsTheLines) {
    // Control characters at the start of a line are left out, but in the first line.
    const std::pair<const char*, std::vector<std::string>> kRows[] = {
        {"", {""}},
        {"a\r\nbc\r\ndef", {"a", "bc", "def"}},
        {"a\r\nbc\r\ndef\r\n", {"a", "bc", "def", ""}},
        {"a\rb\nc\r\r\nd\n\re", {"a", "b", "c", "", "d", "", "e"}},
        {"a\n\f\x01 b\n\f\n\tc", {"a", " b", "", "\tc"}},
        {"\fa\x02", {"\fa\x02"}},
        {"a\n\xE4", {"a", "\xE4"}},
        {"a\n\f\f", {"a", ""}}};
    for (const auto& [text, wanted] : kRows) {
        LineIndex index;
        ASSERT_EQ(index.Build(text), LineIndex::Fault::None);
        std::vector<std::string> lines;
        for (std::size_t i = 0; i < index.starts.size(); ++i)
            lines.emplace_back(text + index.starts[i], static_cast<std::size_t>(index.lengths[i]));
        EXPECT_EQ(lines, wanted) << text;
    }
}

TEST(LineIndex, FindsTheLineOfEveryOffset) {
    LineIndex index;
    index.Build("ab\r\n\r\n\fcd\n");
    std::vector<int> lines;
    for (int offset = 0; offset <= 10; ++offset) lines.push_back(index.LineOfOffset(offset));
    EXPECT_THAT(lines, ElementsAre(0, 0, 0, 0, 1, 1, 1, 2, 2, 2, 3));
}

using TextFileReaderTest = TemporaryFolder;

TEST_F(TextFileReaderTest, FetchesLines) {
    TextFileReader reader;
    WriteFile("a.ifl", "one\r\ntwo\r\n");
    EXPECT_STREQ(reader.GetErrorText(), "No error");
    ASSERT_EQ(reader.Load("A.ifl"), 0);
    ASSERT_EQ(reader.BuildLineIndex(), 0);
    EXPECT_EQ(reader.GetLineCount(), 3);
    EXPECT_STREQ(reader.GetLine(1), "two");
    EXPECT_STREQ(reader.GetLine(2), "");
    EXPECT_STREQ(reader.GetFileName(), "A.ifl");
    for (const int line : {3, -1}) {
        EXPECT_EQ(reader.GetLine(line), nullptr);
        EXPECT_EQ(reader.GetErrorText(), "Line #" + std::to_string(line) + " does not exist");
    }
}

TEST_F(TextFileReaderTest, TellsWhyItCannotLoad) {
    TextFileReader reader;
    EXPECT_EQ(reader.Load("none.ifl"), 1);
    EXPECT_STREQ(reader.GetErrorText(), "Can not open file none.ifl, Code:2");
    const std::tuple<std::string, int, const char*> kRows[] = {
        {"a\n" + std::string(65536, 'x'), 4, "Line too long in file a.ifl"},
        {std::string(8388480, '\n'), 3, "File a.ifl too big"},
        {std::string(65535, 'x') + "\n" + std::string(65535, 'y'), 0, "No error"},
        {std::string(8388479, '\n'), 0, "No error"}};
    for (const auto& [content, result, text] : kRows) {
        WriteFile("a.ifl", content);
        TextFileReader fresh;
        fresh.Load("a.ifl");
        EXPECT_EQ(fresh.BuildLineIndex(), result);
        EXPECT_STREQ(fresh.GetErrorText(), text);
    }
    WriteFile("limit.ifl", "ab\n" + std::string(65535, 'x'));
    reader.Load("limit.ifl");
    EXPECT_EQ(reader.BuildLineIndex(), 0);
    EXPECT_EQ(reader.GetLine(1), nullptr);
    EXPECT_STREQ(reader.GetErrorText(), "Line #1 is too long:65535");
}

class TextDataFileReaderTest : public TemporaryFolder, public testing::WithParamInterface<bool> {
  protected:
    void Open(const std::string& content) {
        WriteFile("a.txt", content);
        reader_.Open("a.txt", GetParam());
    }
    template <class Operation>
    std::pair<int, std::string> Token(Operation operation) {
        char buffer[128] = "unset";
        const int result = (reader_.*operation)(buffer);
        return {result, buffer};
    }
    std::string Rest() {
        std::string rest(100000, '\0');
        rest.resize(static_cast<std::size_t>(reader_.Read(rest.data(), static_cast<int>(rest.size()))));
        return rest;
    }

    using Buffer = char (&)[128];
    static constexpr int (TextDataFileReader::*kQuoted)(Buffer) = &TextDataFileReader::ReadQuotedString;
    TextDataFileReader reader_;
};
INSTANTIATE_TEST_SUITE_P(StreamAndInMemory, TextDataFileReaderTest, testing::Bool(),
                         [](const auto& row) { return row.param ? "InMemory" : "Stream"; });

TEST_P(TextDataFileReaderTest, MovesThroughTheFile) {
    Open("one\ntwo\nthree");
    Reports reports;
    EXPECT_EQ(reader_.LineCount(), 3);
    EXPECT_EQ(reader_.Seek(13), 0);
    EXPECT_TRUE(reader_.IsEnd());
    EXPECT_EQ(reader_.Seek(14), 1);
    EXPECT_EQ(reader_.Seek(-1), 1);
    EXPECT_EQ(reader_.Tell(), 13);
    EXPECT_FALSE(reader_.Skip(-20));
    EXPECT_TRUE(reader_.Skip(5));
    EXPECT_EQ(reader_.Tell(), 5);
    EXPECT_FALSE(reader_.Skip(INT_MAX));
    EXPECT_EQ(reader_.SeekLine(1), 0);
    EXPECT_EQ(reader_.CurrentLine(), 1);
    EXPECT_EQ(reader_.NextLine(), 0);
    EXPECT_EQ(Rest(), "three");
    EXPECT_EQ(reader_.NextLine(), 1);
    EXPECT_THAT(reports.All(), ElementsAre("warning TextDataFileReader: a.txt: Invalid file position:14 @a.txt:3",
                                           "warning TextDataFileReader: a.txt: Invalid file position:-1 @a.txt:3",
                                           "warning TextDataFileReader: a.txt: Invalid line in file:3 @a.txt:3"));
}

TEST_P(TextDataFileReaderTest, RemembersThatItFoundTheEnd) {
    Open("ab");
    char c;
    EXPECT_EQ(reader_.Read(&c, 1), 1);
    EXPECT_FALSE(reader_.IsEnd());
    EXPECT_EQ(reader_.ReadChar(), 'b');
    EXPECT_EQ(reader_.PeekChar(), '\0');
    reader_.Seek(0);
    EXPECT_TRUE(reader_.IsEnd());   // until something is read
    EXPECT_EQ(reader_.ReadChar(), 'a');
    EXPECT_FALSE(reader_.IsEnd());
}

TEST_P(TextDataFileReaderTest, SkipsSpaceAndFindsCharacters) {
    Open(" \t\r\n\x01\xE4{x} \n");
    EXPECT_EQ(reader_.SkipSpace(), 0);
    EXPECT_EQ(reader_.PeekChar(), '\xE4');
    EXPECT_EQ(reader_.ExpectChar('{'), 0);
    EXPECT_EQ(reader_.ReadChar(), 'x');
    EXPECT_EQ(ErrorOf([&] { reader_.ExpectChar('{'); }), "TextDataFileReader: a.txt: '{' not found");
    EXPECT_EQ(reader_.SkipSpace(), 1);
    EXPECT_EQ(ErrorOf([&] { reader_.ExpectChar('\0'); }).substr(0, 28), "TextDataFileReader: a.txt: '");
}

TEST_P(TextDataFileReaderTest, ReadsWordsAndNumberTokens) {
    constexpr auto word = &TextDataFileReader::ReadWord, number = &TextDataFileReader::ReadNumberToken;
    using Operation = int (TextDataFileReader::*)(Buffer);
    const std::tuple<Operation, const char*, int, const char*, const char*> kRows[] = {
        {word, "{abc", 0, "{", "abc"},       {word, "abc{", 0, "abc", "{"},
        {word, "a\"b", 0, "a", "\"b"},       {word, ",x", 0, ",", "x"},
        {word, " x", 0, " ", "x"},           {word, "", 1, "", ""},
        {word, "end", 0, "end", ""},         {word, "\xE4\xF6 x", 0, "\xE4\xF6", " x"},
        {number, "-1.5e3", 0, "-1.5", "e3"}, {number, "x", 1, "", "x"},
        {number, "+7", 1, "+7", ""},         {number, "", 1, "", ""}};
    for (const auto& [operation, text, result, token, rest] : kRows) {
        Open(text);
        EXPECT_THAT(Token(operation), Pair(result, token)) << text;
        EXPECT_EQ(Rest(), rest) << text;
    }
    Open("  \n word");
    EXPECT_THAT(Token(&TextDataFileReader::ReadToken), Pair(0, "word"));
    EXPECT_THAT(Token(&TextDataFileReader::ReadToken), Pair(1, ""));
}

TEST_P(TextDataFileReaderTest, ReadsQuotedStrings) {
    Reports reports;
    Open(" \"fire.tga\" \"\" fire.tga \"open");
    EXPECT_THAT(Token(kQuoted), Pair(0, "fire.tga"));
    EXPECT_THAT(Token(kQuoted), Pair(0, ""));
    EXPECT_THAT(Token(kQuoted).first, 1);
    EXPECT_EQ(reports.Last(), "warning TextDataFileReader: a.txt: No text string found @a.txt:1");
    EXPECT_EQ(reader_.PeekChar(), 'i');   // the character that was no quote is gone
    reader_.ExpectChar(' ');
    EXPECT_THAT(Token(kQuoted), Pair(1, "open"));
    EXPECT_THAT(Token(kQuoted), Pair(1, ""));

    const std::string text(5000, 'q');
    Open("\"" + text + "\"!x");
    String string;
    EXPECT_EQ(reader_.ReadQuotedString(string), 0);
    EXPECT_TRUE(string == text.c_str());
    EXPECT_EQ(string.GetLength(), 5000);
    EXPECT_EQ(reader_.ReadQuotedString(string), 1);
    EXPECT_EQ(reader_.ReadChar(), 'x');
    EXPECT_EQ(reader_.ReadQuotedString(string), 1);
}

TEST_P(TextDataFileReaderTest, TokensHoldAtMost127Characters) {
    const std::string fits(127, '5'), too_long(128, '5');
    const auto expect = [&](auto operation, const std::string& before, const std::string& after) {
        Open(before + fits + after);
        EXPECT_THAT(Token(operation), Pair(0, fits));
        Open(before + too_long + after);
        EXPECT_EQ(ErrorOf([&] { Token(operation); }), "TextDataFileReader: a.txt: String too long (>127)");
    };
    expect(&TextDataFileReader::ReadWord, "", " ");
    expect(&TextDataFileReader::ReadNumberToken, "", " ");
    expect(kQuoted, "\"", "\"");
}

TEST_P(TextDataFileReaderTest, ReadsNumbers) {
    Open(" -17.9 99999999999999 x 2.5e1 1 2,3 , 4 5 ,x 6");
    int i = 5;
    EXPECT_EQ(reader_.ReadInt(i), 0);
    EXPECT_EQ(i, -17);
    EXPECT_EQ(reader_.ReadInt(i), 0);
    EXPECT_EQ(i, INT_MAX);
    EXPECT_EQ(reader_.ReadInt(i), 1);
    reader_.ExpectChar('x');
    float f = 5;
    EXPECT_EQ(reader_.ReadFloat(f), 0);
    EXPECT_EQ(f, 25);
    float vector[3];
    EXPECT_EQ(reader_.ReadVector3(vector), 0);
    EXPECT_THAT(vector, ElementsAre(1, 2, 3));
    reader_.ExpectChar(',');
    reader_.ExpectChar('x');
    EXPECT_EQ(reader_.ReadVector3(vector), 1);   // one number only is left
    EXPECT_EQ(reader_.ReadFloat(f), 1);
    Open("42");
    EXPECT_EQ(reader_.ReadInt(i), 1);   // nothing stands behind it
    EXPECT_EQ(i, 42);
}

TEST_P(TextDataFileReaderTest, ReportsFilesItCannotRead) {
    EXPECT_EQ(ErrorOf([&] { reader_.Open("none.txt", GetParam()); }),
              GetParam() ? "TextDataFileReader: none.txt: Can not open file none.txt, Code:2"
                         : "TextDataFileReader: none.txt: Can not open file none.txt");
    EXPECT_EQ(ErrorOf([&] { Open(std::string(8388480, '\r')); }), "TextDataFileReader: a.txt: File too big");
    EXPECT_EQ(ErrorOf([&] { Open(std::string(65536, 'x')); }), "TextDataFileReader: a.txt: Line too long");
    EXPECT_EQ(ErrorOf([&] { reader_.Open("100%s.txt", GetParam()); }).substr(0, 55),
              "TextDataFileReader: 100%s.txt: Can not open file 100%s.");
}

TEST_P(TextDataFileReaderTest, ReportsOfOthersNameItsLine) {
    struct User : KRN_Base {};
    Reports reports;
    {
        TextDataFileReader reader;
        WriteFile("b.txt", "\none\ntwo\n");
        reader.Open("b.txt", GetParam());
        reader.SeekLine(2);
        User().Warning("odd");
    }
    User().Warning("even");
    EXPECT_THAT(reports.All(), ElementsAre("warning Undefined: odd @b.txt:3", "warning Undefined: even"));
}

}   // namespace
}   // namespace sparkrig
