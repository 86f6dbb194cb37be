#include "base/config_file_reader.h"

#include <climits>
#include <map>
#include <sstream>

#include "tests/support/temporary_folder.h"

namespace sparkrig {
namespace {

class ConfigFileReaderTest : public TemporaryFolder {
  protected:
    int Load(const std::string& content) {
        WriteFile("e.cfg", content);
        reader_.SetIndexKey("desc");
        return reader_.Load("e.cfg", true);
    }
    std::string Text(const char* key, int b = -1, int i = -1, int j = -1) {
        char buffer[32] = "unset";
        const int code = reader_.ReadString(key, buffer, sizeof buffer, b, i, j);
        return code == 0 ? buffer : "code " + std::to_string(code);
    }
    std::string Next() {
        char name[32] = "unset";
        const int found = reader_.NextBlock(name, sizeof name);
        return found ? name : std::string("none") + name;
    }
    /// The answers to some words: #N selects a block; next, enter, skip and exit walk; any other is a key.
    std::string Walk(const std::string& words) {
        std::istringstream stream(words);
        std::string answers;
        for (std::string word; stream >> word;) {
            if (word[0] == '#') {
                reader_.SelectBlock(std::stoi(word.substr(1)));
            } else if (word == "enter") {
                reader_.EnterBlock();
            } else if (word == "skip") {
                reader_.SkipBlock();
            } else if (word == "exit") {
                reader_.ExitBlock();
            } else {
                answers += (answers.empty() ? "" : ", ") + (word == "next" ? Next() : Text(word.c_str()));
            }
        }
        return answers;
    }
    template <class Action>
    void ExpectError(Action action, const std::string& message) {
        EXPECT_EQ(ErrorOf(action), "ConfigFileReader: " + message);
    }

    ConfigFileReader reader_;
};

constexpr char kEffects[] =
    "before = \"first\"\n"      // 1
    "#Fire\n"                   // 2
    "desc = \"Fire\"\n"         // 3
    ";life = 3\n"               // 4
    "scale = 2\n"               // 5
    "PARTICLE {\n"              // 6
    "\ttexture=\"fire\"\n"      // 7
    "  POSITION {\n"            // 8
    "    type = \"linear\"\n"   // 9
    "    scale = 9\n"           // 10
    "  }\n"                     // 11
    "  scale = 3\n"             // 12
    "}\n"                       // 13
    "sound = \"crackle\"\n"     // 14
    "MESH {\n"                  // 15
    "}\n"                       // 16
    "# Smoke\n"                 // 17
    "desc=\"Smoke\"\n"          // 18
    "sound = \"hiss\"";         // 19

TEST_F(ConfigFileReaderTest, FindsBlocksAndTheirIndexValues) {
    ASSERT_EQ(Load(kEffects), 0);
    EXPECT_EQ(reader_.GetBlockCount(), 2);
    for (const auto& [block, lines] : std::map<int, int>{{0, 15}, {1, 3}, {-1, 19}, {2, -1}})
        EXPECT_EQ(reader_.GetBlockLineCount(block), lines);
    EXPECT_EQ(reader_.FindBlock("SMOKE"), 1);
    EXPECT_EQ(reader_.FindBlock("fog"), -1);
}

TEST_F(ConfigFileReaderTest, ReadsKeysOfBlocksAtAnyDepthWhileNoneIsSelected) {
    Load(kEffects);
    const std::tuple<const char*, int, const char*> kRows[] = {
        {"texture", 0, "fire"}, {"TYPE", 0, "linear"},    {"texture", 1, "code 1"},
        {"sound", 1, "hiss"},   {"sound", -1, "crackle"}, {"before", -1, "first"},
        {"sound", 2, "code 2"}, {"scale", 0, "code 9"},   {"life", 0, "code 1"}};   // a comment
    for (const auto& [key, block, text] : kRows) EXPECT_EQ(Text(key, block), text) << key << block;
}

TEST_F(ConfigFileReaderTest, WalksSubBlocks) {
    Load(kEffects);
    reader_.SelectBlock(0);
    float scale = 0;
    EXPECT_EQ(reader_.ReadFloat("scale", scale), 0);
    EXPECT_EQ(scale, 2);
    EXPECT_EQ(Walk("texture next"), "code 1, PARTICLE");   // a key only inside a sub-block
    EXPECT_EQ(reader_.CursorLineNumber(), 6);
    EXPECT_EQ(Walk("next enter texture sound"), "PARTICLE, fire, code 1");
    reader_.ReadFloat("scale", scale);
    EXPECT_EQ(scale, 3);
    EXPECT_EQ(Walk("next skip texture next"), "POSITION, code 1, none");   // a key above the cursor
    EXPECT_EQ(Walk("exit desc sound next skip next sound"),
              "code 1, crackle, MESH, none, code 1");   // of the next entry
    EXPECT_EQ(Walk("#1 sound next"), "hiss, none");
    EXPECT_EQ(Walk("#-1 before next"), "first, PARTICLE");   // the whole file
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
        EXPECT_EQ(Text(key), text) << line;
    }
}

TEST_F(ConfigFileReaderTest, AppendsNumbersToKeys) {
    Load("#\ndesc \"d\"\nchild \"a\"\nchild3 \"b\"\nchild3_0 \"c\"\n");
    EXPECT_EQ(Text("child"), "a");
    EXPECT_EQ(Text("child", -1, -1, 5), "a");
    EXPECT_EQ(Text("child", 0, 3), "b");
    EXPECT_EQ(Text("child", 0, 3, 0), "c");
    EXPECT_EQ(Text("child", 0, 4), "code 1");
    EXPECT_EQ(Text(std::string(400, 'k').c_str()), "code 1");
}

TEST_F(ConfigFileReaderTest, ReadsNumbers) {
    Load(
        "#\ndesc \"d\"\na = 1E3\nb = 1e3\nc =x\nd =\ne = -70000.9\nf = 9e99\ng= 0.49\nh =-0.5 \n"
        "i = 1234567890123456789012345678901234567890\nj \t = 7");
    double number = -5;
    const std::tuple<const char*, int, int, double> kRows[] = {
        {"a", -1, 0, 1},    {"b", -1, 0, 1000},
        {"d", -1, 1, 1000}, {"z", -1, 1, 1000},
        {"b", 1, 2, 1000},  {"c", -1, 0, 0},
        {"j", -1, 0, 7},    {"i", -1, 0, 1234567890123456789012345678901.0}};   // 31 digits count
    for (const auto& [key, block, result, wanted] : kRows) {
        EXPECT_EQ(reader_.ReadNumber(key, number, block), result) << key;
        EXPECT_DOUBLE_EQ(number, wanted) << key;
    }
    int i = 0;
    EXPECT_EQ(reader_.ReadInt("e", i), 0);
    EXPECT_EQ(i, -70000);
    reader_.ReadInt("f", i);
    EXPECT_EQ(i, INT_MAX);
    std::int16_t s = 0;
    EXPECT_EQ(reader_.ReadShort("e", s), 0);
    EXPECT_EQ(s, -32768);
    EXPECT_EQ(reader_.ReadShort("b", s), 0);
    EXPECT_EQ(s, 1000);
    bool flag = true;
    EXPECT_EQ(reader_.ReadBool("g", flag), 0);
    EXPECT_FALSE(flag);
    EXPECT_EQ(reader_.ReadBool("h", flag), 0);
    EXPECT_TRUE(flag);
    EXPECT_EQ(reader_.ReadBool("d", flag), 1);
}

TEST_F(ConfigFileReaderTest, ReadsVectors) {
    Load("#\ndesc \"d\"\na = 1, 2 ,\t-3.5,4\nb = 1,2\nc 1,2,3\nd = 1,,3\n");
    float vector[3] = {7, 8, 9};
    for (const char* key : {"b", "c", "d"}) EXPECT_EQ(reader_.ReadVector3(key, vector), 1) << key;
    EXPECT_EQ(reader_.ReadVector3("z", vector), 2);
    EXPECT_EQ(reader_.ReadVector3("a", vector, 9), 2);
    EXPECT_THAT(vector, ElementsAre(7, 8, 9));   // as they were
    EXPECT_EQ(reader_.ReadVector3("a", vector), 0);
    EXPECT_THAT(vector, ElementsAre(1, 2, -3.5f));
    float pair[2];
    EXPECT_EQ(reader_.ReadVector2("b", pair), 0);
    EXPECT_THAT(pair, ElementsAre(1, 2));
}

TEST_F(ConfigFileReaderTest, ReadsListsUpToTheirCapacity) {
    Load("#\ndesc \"d\"\na = 1, 2, 3\nb 4,5\nc = 6, 7,\nd = 8,,9\n");
    float values[4] = {};
    int total = -1;
    EXPECT_EQ(reader_.ReadFloatList("a", values, 4, &total), 3);
    EXPECT_THAT(values, ElementsAre(1, 2, 3, 0));
    EXPECT_EQ(total, 3);
    EXPECT_EQ(reader_.ReadFloatList("a", values + 1, 2, &total), 2);
    EXPECT_THAT(values, ElementsAre(1, 1, 2, 0));
    EXPECT_EQ(total, 3);
    EXPECT_EQ(reader_.ReadFloatList("b", values, 4, &total), 0);
    EXPECT_EQ(reader_.ReadFloatList("z", values, 4, &total), 0);
    EXPECT_EQ(total, 0);
    EXPECT_EQ(reader_.ReadFloatList("c", values, 4, nullptr), 2);
    EXPECT_EQ(reader_.ReadFloatList("d", values, 4, nullptr), 1);   // what is missing ends the list
}

TEST_F(ConfigFileReaderTest, CutsTexts) {
    Load("#\ndesc \"" + std::string(9000, 'd') + "\"\nWHATALONGNAME {\n}\n");
    reader_.SelectBlock(0);
    EXPECT_EQ(Text("desc"), std::string(31, 'd'));
    String text;
    EXPECT_EQ(reader_.ReadString("desc", text), 0);
    EXPECT_EQ(text.GetLength(), 8128);
    char name[6];
    EXPECT_EQ(reader_.NextBlock(name, sizeof name), 1);
    EXPECT_STREQ(name, "WHATA");
    EXPECT_EQ(reader_.ReadString("none", text), 1);
    EXPECT_EQ(reader_.FindBlock(std::string(1023, 'd').c_str()), 0);
}

TEST_F(ConfigFileReaderTest, ChildrenInheritTheirParentsKeys) {
    Load("#A\ndesc=\"A\"\nsound=\"a\"\n##A1\nsound=\"a1\"\n##A2\ndesc=\"A2\"\n# B\ndesc=\"B\"\n##B1\ndesc=\"B1\"\n");
    EXPECT_EQ(Text("desc", 1), "A");
    EXPECT_EQ(Text("sound", 1), "a1");
    EXPECT_EQ(Text("sound", 2), "a");
    EXPECT_EQ(Text("sound", 4), "code 1");
    reader_.SelectBlock(1);
    EXPECT_EQ(Text("desc"), "code 1");
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

TEST_F(ConfigFileReaderTest, ReportsBracesThatDoNotFit) {
    constexpr const char* kRows[][2] = {{"#\na {\n}\n }\n", "Invalid '}' in file 'e.cfg' at line 4"},
                                        {"#\na { b\n}\n", "Invalid block start/end in file 'e.cfg' at line 2"},
                                        {"#\na {\n} \xE4\n", "Invalid block start/end in file 'e.cfg' at line 3"},
                                        {"#\na {}\n", "Invalid block start/end in file 'e.cfg' at line 2"},
                                        {"#\ndesc=\"{\"\n", "Invalid block start/end in file 'e.cfg' at line 2"},
                                        {"#\ndesc=\"d\"\na {\n", "Unfinished block in file 'e.cfg'"}};
    for (const auto& row : kRows) ExpectError([&] { Load(row[0]); }, row[1]);
    for (const char* fine : {"} before the first block {\n#\ndesc=\"d\"\n", "#\ndesc=\"d\"\na {\n#\ndesc=\"e\"\n",
                             "#\ndesc=\"d\"\n; {\n}\n"})
        EXPECT_EQ(ErrorOf([&] { Load(fine); }), "no error") << fine;
}

TEST_F(ConfigFileReaderTest, ReportsAWrongWalk) {
    Load("#\ndesc=\"d\"\nNAME{\n}\n{\n}\nGOOD {\nlast \t {\n}\n}\n");
    ExpectError([&] { Walk("next"); }, "NextBlock() before block read start in file 'e.cfg'");
    ExpectError([&] { Walk("enter"); }, "Invalid EnterBlock() at line 1 in file 'e.cfg'");
    ExpectError([&] { Walk("#0 next"); }, "Unreachable code in file 'e.cfg' at line 3");
    ExpectError([&] { Walk("enter"); }, "Invalid EnterBlock() at line 1 in file 'e.cfg'");
    ExpectError([&] { Walk("exit"); }, "Invalid ExitBlock() at line: 1 in file 'e.cfg'");
    Load("#\ndesc=\"d\"\n {\n}\n");
    ExpectError([&] { Walk("#0 next"); }, "Invalid block start in file 'e.cfg' at line 3");
}

TEST_F(ConfigFileReaderTest, StaysInsideAnUnfinishedEntry) {
    Load("#\ndesc=\"d\"\nA {\nB {\nx=1\n#\ndesc=\"e\"\nC {\nD {\n}\n}\n");
    EXPECT_EQ(Walk("#0 next enter next enter desc next"), "A, B, code 1, none");
    ExpectError([&] { Walk("exit"); }, "Invalid ExitBlock() at line: 5 in file 'e.cfg'");
}

TEST_F(ConfigFileReaderTest, ReturnsTheCodesOfTheLineReader) {
    EXPECT_EQ(reader_.Load("none.cfg", true), 1);
    EXPECT_STREQ(reader_.GetErrorText(), "Can not open file none.cfg, Code:2");
    EXPECT_EQ(Walk("desc #-1 desc next"), "code 1, code 1, none");
    EXPECT_EQ(Load(std::string(8388480, '\n')), 3);
    EXPECT_EQ(Load("#\n" + std::string(65536, 'x')), 4);
    EXPECT_EQ(Load(""), 0);
    EXPECT_EQ(reader_.GetBlockCount(), 0);
}

TEST_F(ConfigFileReaderTest, ReportsOfOthersNameTheKeysLine) {
    struct User : KRN_Base {};
    Reports reports;
    Load(kEffects);
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
        ASSERT_EQ(Next(), "A");
        reader_.EnterBlock();
        ASSERT_EQ(Text("key"), "code 1");
    }
    EXPECT_EQ(Next(), "none");
    for (int i = 0; i < 200000; ++i) reader_.ExitBlock();
    EXPECT_EQ(Next(), "none");
}

}   // namespace
}   // namespace sparkrig
