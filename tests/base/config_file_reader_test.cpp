#include "base/config_file_reader.h"

#include <sstream>

#include "tests/support/cases.h"
#include "tests/support/temporary_folder.h"

namespace sparkrig {
namespace {

const std::vector<Case> kWalks = ReadCases("tests/base/walks.txt");

class ConfigFileReaderTest : public TemporaryFolder {
  protected:
    int Load(const std::string& content) {
        WriteFile("e.cfg", content);
        reader_.SetIndexKey("desc");
        return reader_.Load("e.cfg", true);
    }
    /// The answers to some words, an error being one:
    ///   #N         selects a block; next, enter, skip and exit walk, line is the cursor's
    ///   KEY        the text behind it; KEY/I+J with numbers appended, KEY@B of block B; !N where the code is N
    ///   T:KEY      a value: Number, Real, Int, Short, Flag, vectors of 2 and 3, a List of four or Two at most
    std::string Walk(const std::string& words) {
        std::istringstream stream(words);
        std::string answers, answer;
        for (std::string word; stream >> word;) {
            const std::string error = ErrorOf([&] { answer = Answer(word); });
            if (error != "no error") answer = error.substr(std::string("ConfigFileReader: ").size());
            if (!answer.empty()) answers += (answers.empty() ? "" : " ") + answer;
        }
        return answers;
    }

    ConfigFileReader reader_;

  private:
    std::string Answer(const std::string& word) {
        char name[32] = "unset";
        if (word[0] == '#') return reader_.SelectBlock(std::stoi(word.substr(1))), "";
        if (word == "enter") return reader_.EnterBlock(), "";
        if (word == "skip") return reader_.SkipBlock(), "";
        if (word == "exit") return reader_.ExitBlock(), "";
        if (word == "line") return std::to_string(reader_.CursorLineNumber());
        if (word == "next") return reader_.NextBlock(name, sizeof name) ? name : std::string("none") + name;
        return word[1] == ':' ? Value(word[0], word.substr(2)) : Value('T', word);
    }
    static int NumberBehind(char mark, std::string& word) {
        const std::size_t at = word.find(mark);
        if (at == std::string::npos) return -1;
        const int number = std::stoi(word.substr(at + 1));
        word.resize(at);
        return number;
    }
    std::string Value(char type, std::string word) {
        const int b = NumberBehind('@', word), j = NumberBehind('+', word), i = NumberBehind('/', word);
        const char* const key = word.c_str();
        std::ostringstream shown;
        shown.precision(10);
        const auto show = [&](int code, const auto&... values) {
            if (code != 0) return "!" + std::to_string(code);
            const char* comma = "";
            ((shown << comma << values, comma = ","), ...);
            return shown.str();
        };
        char text[32] = "unset";
        double number = -5;
        int integer = -5, total = -5;
        std::int16_t small = -5;
        bool flag = true;
        float pair[2] = {7, 8}, vector[3] = {7, 8, 9}, list[4] = {};
        std::string answer;
        switch (type) {
            case 'T': return show(reader_.ReadString(key, text, sizeof text, b, i, j), text);
            case 'N': answer = show(reader_.ReadNumber(key, number, b, i, j), number); break;
            case 'R': return show(reader_.ReadFloat(key, pair[0], b, i, j), pair[0]);
            case 'I': return show(reader_.ReadInt(key, integer, b, i, j), integer);
            case 'S': return show(reader_.ReadShort(key, small, b, i, j), small);
            case 'F': return show(reader_.ReadBool(key, flag, b, i, j), flag);
            case '2': return show(reader_.ReadVector2(key, pair, b, i, j), pair[0], pair[1]);
            case '3': answer = show(reader_.ReadVector3(key, vector, b, i, j), vector[0], vector[1], vector[2]); break;
            default:
                integer = reader_.ReadFloatList(key, list, type == 'L' ? 4 : 2, &total, b, i, j);
                return show(0, integer, total, list[0], list[1], list[2], list[3]);
        }
        EXPECT_TRUE(answer[0] != '!' || (number == -5 && vector[0] + vector[1] + vector[2] == 24)) << "as they were";
        return answer;
    }
};

TEST_F(ConfigFileReaderTest, FindsBlocksAndTheirIndexValues) {
    ASSERT_EQ(Load(kWalks.at(0).text), 0);
    EXPECT_EQ(reader_.GetBlockCount(), 2);
    for (const auto& [block, lines] : {std::pair(0, 15), {1, 4}, {-1, 20}, {2, -1}})
        EXPECT_EQ(reader_.GetBlockLineCount(block), lines);
    EXPECT_EQ(reader_.FindBlock("SMOKE"), 1);
    EXPECT_EQ(reader_.FindBlock("fog"), -1);
    EXPECT_EQ(reader_.Load("none.cfg", true), 1);
    EXPECT_STREQ(reader_.GetErrorText(), "Can not open file none.cfg, Code:2");
    EXPECT_EQ(Walk("desc #-1 desc next"), "!1 !1 none");
    EXPECT_EQ(Load("#\n" + std::string(65536, 'x')), 4);
    EXPECT_EQ(Load(""), 0);
    EXPECT_EQ(reader_.GetBlockCount(), 0);
}

TEST_F(ConfigFileReaderTest, AnswersAWalkThroughItsBlocks) {
    ASSERT_GT(kWalks.size(), 10u);
    for (const auto& [head, content] : kWalks) {
        const std::size_t behind = head.find(" => ");
        EXPECT_EQ(content.empty() ? 0 : Load(content), 0);
        reader_.Load("e.cfg", true);   // no block is selected
        EXPECT_EQ(Walk(head.substr(0, behind)), head.substr(behind + 4)) << content;
    }
}

TEST_F(ConfigFileReaderTest, ReportsBracesThatDoNotFit) {
    constexpr const char* kRows[][2] = {{"#\na {\n}\n }\n", "Invalid '}' in file 'e.cfg' at line 4"},
                                        {"#\na { b\n}\n", "Invalid block start/end in file 'e.cfg' at line 2"},
                                        {"#\na {\n} \xE4\n", "Invalid block start/end in file 'e.cfg' at line 3"},
                                        {"#\ndesc=\"{\"\n", "Invalid block start/end in file 'e.cfg' at line 2"},
                                        {"#\ndesc=\"d\"\na {\n", "Unfinished block in file 'e.cfg'"}};
    for (const auto& row : kRows) EXPECT_EQ(ErrorOf([&] { Load(row[0]); }), std::string("ConfigFileReader: ") + row[1]);
    EXPECT_EQ(Load("} before the first block {\n#\ndesc=\"d\"\n; {\na {\n#\ndesc=\"e\"\n"), 0);
}

TEST_F(ConfigFileReaderTest, MatchesKeysWithTheirSeparators) {
    constexpr const char* kRows[][3] = {{"desc=\"X\"", "desc", "X"},
                                        {"desc = \"X\"", "desc", "X"},
                                        {" \tDesc \"X\"", "desc", "X"},
                                        {"desc\t= \"X\"", "desc", "code 1"},
                                        {"description \"X\"", "desc", "code 1"},
                                        {"desc", "desc", "code 1"},
                                        {" ;desc = \"X\"", "desc", "code 1"},
                                        {"desc = X", "desc", "code 9"},
                                        {"desc = \"X", "desc", "code 9"},
                                        {"desc = \"\"", "desc", ""},
                                        {"a b = \"X\"", "a b", "X"},
                                        {"a=b \"X\"", "A=B", "X"},
                                        {"a b = \"X\"", "a", "X"},
                                        {"1st\t\"X\"", "1s", "X"},
                                        {"desc = \"X;{\" }", "desc", "X;{"}};
    for (const auto& [line, key, text] : kRows) {
        WriteFile("k.cfg", line);
        ASSERT_EQ(reader_.Load("k.cfg", false), 0);
        ASSERT_EQ(reader_.BuildLineIndex(), 0);
        char buffer[32] = "";
        const int code = reader_.ReadString(key, buffer, sizeof buffer);
        EXPECT_EQ(code == 0 ? buffer : "code " + std::to_string(code), text) << line;
    }
}

TEST_F(ConfigFileReaderTest, CutsTexts) {
    Load("#\ndesc \"" + std::string(9000, 'd') + "\"\nWHATALONGNAME {\n}\n");
    reader_.SelectBlock(0);
    EXPECT_EQ(Walk("desc"), std::string(31, 'd'));
    String text;
    EXPECT_EQ(reader_.ReadString("desc", text), 0);
    EXPECT_EQ(text.GetLength(), 8128);
    char name[6];
    EXPECT_EQ(reader_.NextBlock(name, sizeof name), 1);
    EXPECT_STREQ(name, "WHATA");
    EXPECT_EQ(reader_.ReadString("none", text), 1);
    EXPECT_EQ(reader_.FindBlock(std::string(1023, 'd').c_str()), 0);
}

TEST_F(ConfigFileReaderTest, WarnsOfMissingAndRepeatedIndexValues) {
    Reports reports;
    Load("##orphan\n#A\ndesc=\"A\"\n#\n#a\ndesc=\"a\"\n##A1\n");
    EXPECT_THAT(reports.All(),
                ElementsAre("warning ConfigFileReader: No 'desc' entry in entry 0 in file 'e.cfg' @e.cfg:1",
                            "warning ConfigFileReader: No 'desc' entry in entry 2 in file 'e.cfg' @e.cfg:4",
                            "warning ConfigFileReader: 'desc' entry in 'e.cfg' (3) not unique: 'a' @e.cfg:6",
                            "warning ConfigFileReader: 'desc' entry in 'e.cfg' (4) not unique: 'a' @e.cfg:7"));
    EXPECT_EQ(reader_.FindBlock("A"), 1);
    EXPECT_EQ(ErrorOf([&] { Load("#\ndesc=\"\"\n"); }), "SearchTree: Empty name string");
}

TEST_F(ConfigFileReaderTest, ReportsOfOthersNameTheKeysLine) {
    struct User : KRN_Base {};
    Reports reports;
    Load(kWalks.at(0).text);
    for (const char* words : {"#0 scale", "missing", "next enter texture"}) {
        Walk(words);
        User().Warning("%s", words);
    }
    EXPECT_THAT(reports.All(),
                ElementsAre("warning Undefined: #0 scale @e.cfg:5", "warning Undefined: missing @e.cfg:2",
                            "warning Undefined: next enter texture @e.cfg:7"));
}

TEST_F(ConfigFileReaderTest, SurvivesDeepNesting) {
    std::string content = "#\ndesc=\"d\"\n";
    for (int i = 0; i < 200000; ++i) content += "A {\n";
    for (int i = 0; i < 200000; ++i) content += "}\n";
    Load(content);
    reader_.SelectBlock(0);
    for (int i = 0; i < 200000; ++i) {
        ASSERT_EQ(Walk("next"), "A");
        reader_.EnterBlock();
        ASSERT_EQ(Walk("key"), "!1");
    }
    EXPECT_EQ(Walk("next"), "none");
    for (int i = 0; i < 200000; ++i) reader_.ExitBlock();
    EXPECT_EQ(Walk("next"), "none");
}

}   // namespace
}   // namespace sparkrig
