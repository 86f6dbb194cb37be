#include "base/config_file_reader.h"

#include <gmock/gmock.h>

#include <climits>

#include "tests/base/reports.h"
#include "tests/support/temporary_folder.h"

namespace sparkrig {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

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
    std::string LoadError(const std::string& content) {
        return ErrorOf([&] { Load(content); });
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
    EXPECT_EQ(reader_.GetBlockLineCount(0), 15);
    EXPECT_EQ(reader_.GetBlockLineCount(1), 3);
    EXPECT_EQ(reader_.GetBlockLineCount(-1), 19);
    EXPECT_EQ(reader_.GetBlockLineCount(2), -1);
    EXPECT_EQ(reader_.FindBlock("SMOKE"), 1);
    EXPECT_EQ(reader_.FindBlock("fog"), -1);
}

TEST_F(ConfigFileReaderTest, ReadsKeysOfBlocksAtAnyDepthWhileNoneIsSelected) {
    Load(kEffects);
    EXPECT_EQ(Text("texture", 0), "fire");
    EXPECT_EQ(Text("TYPE", 0), "linear");
    EXPECT_EQ(Text("texture", 1), "code 1");
    EXPECT_EQ(Text("sound", 1), "hiss");
    EXPECT_EQ(Text("sound"), "crackle");
    EXPECT_EQ(Text("before"), "first");
    EXPECT_EQ(Text("sound", 2), "code 2");
    EXPECT_EQ(Text("life", 0), "code 1");   // a comment
    EXPECT_EQ(Text("scale", 0), "code 9");
}

TEST_F(ConfigFileReaderTest, WalksSubBlocks) {
    Load(kEffects);
    reader_.SelectBlock(0);
    float scale = 0;
    EXPECT_EQ(reader_.ReadFloat("scale", scale), 0);
    EXPECT_EQ(scale, 2);
    EXPECT_EQ(Text("texture"), "code 1");   // only inside a sub-block
    EXPECT_EQ(Next(), "PARTICLE");
    EXPECT_EQ(reader_.CursorLineNumber(), 6);
    EXPECT_EQ(Next(), "PARTICLE");
    reader_.EnterBlock();
    EXPECT_EQ(Text("texture"), "fire");
    EXPECT_EQ(Text("sound"), "code 1");
    reader_.ReadFloat("scale", scale);
    EXPECT_EQ(scale, 3);
    EXPECT_EQ(Next(), "POSITION");
    reader_.SkipBlock();
    EXPECT_EQ(Text("texture"), "code 1");   // stands above the cursor now
    EXPECT_EQ(Next(), "none");
    reader_.ExitBlock();
    EXPECT_EQ(Text("desc"), "code 1");
    EXPECT_EQ(Text("sound"), "crackle");
    EXPECT_EQ(Next(), "MESH");
    reader_.SkipBlock();
    EXPECT_EQ(Next(), "none");
    EXPECT_EQ(Text("sound"), "code 1");   // of the next entry
    reader_.SelectBlock(1);
    EXPECT_EQ(Text("sound"), "hiss");
    EXPECT_EQ(Next(), "none");
    reader_.SelectBlock(-1);   // the whole file
    EXPECT_EQ(Text("before"), "first");
    EXPECT_EQ(Next(), "PARTICLE");
}

TEST_F(ConfigFileReaderTest, MatchesKeysWithTheirSeparators) {
    const struct {
        const char *line, *key, *text;
    } kRows[] = {{"desc=\"X\"", "desc", "X"},
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
    for (const auto& row : kRows) {
        WriteFile("k.cfg", row.line);
        ConfigFileReader reader;
        ASSERT_EQ(reader.Load("k.cfg", false), 0);
        ASSERT_EQ(reader.BuildLineIndex(), 0);
        char buffer[32];
        const int code = reader.ReadString(row.key, buffer, sizeof buffer);
        EXPECT_EQ(code == 0 ? buffer : "code " + std::to_string(code), row.text) << row.line;
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
    EXPECT_EQ(reader_.ReadNumber("a", number), 0);
    EXPECT_EQ(number, 1);
    EXPECT_EQ(reader_.ReadNumber("b", number), 0);
    EXPECT_EQ(number, 1000);
    EXPECT_EQ(reader_.ReadNumber("d", number), 1);
    EXPECT_EQ(reader_.ReadNumber("z", number), 1);
    EXPECT_EQ(reader_.ReadNumber("b", number, 1), 2);
    EXPECT_EQ(number, 1000);
    EXPECT_EQ(reader_.ReadNumber("c", number), 0);
    EXPECT_EQ(number, 0);
    EXPECT_EQ(reader_.ReadNumber("i", number), 0);
    EXPECT_DOUBLE_EQ(number, 1234567890123456789012345678901.0);   // 31 digits count
    EXPECT_EQ(reader_.ReadNumber("j", number), 0);
    EXPECT_EQ(number, 7);
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
    EXPECT_EQ(LoadError("#\ndesc=\"\"\n"), "SearchTree: Empty name string");
}

TEST_F(ConfigFileReaderTest, ReportsBracesThatDoNotFit) {
    const struct {
        const char *content, *error;
    } kRows[] = {{"#\na {\n}\n }\n", "ConfigFileReader: Invalid '}' in file 'e.cfg' at line 4"},
                 {"#\na { b\n}\n", "ConfigFileReader: Invalid block start/end in file 'e.cfg' at line 2"},
                 {"#\na {\n} \xE4\n", "ConfigFileReader: Invalid block start/end in file 'e.cfg' at line 3"},
                 {"#\na {}\n", "ConfigFileReader: Invalid block start/end in file 'e.cfg' at line 2"},
                 {"#\ndesc=\"{\"\n", "ConfigFileReader: Invalid block start/end in file 'e.cfg' at line 2"},
                 {"#\ndesc=\"d\"\na {\n", "ConfigFileReader: Unfinished block in file 'e.cfg'"},
                 {"} before the first block {\n#\ndesc=\"d\"\n", "no error"},
                 {"#\ndesc=\"d\"\na {\n#\ndesc=\"e\"\n", "no error"},
                 {"#\ndesc=\"d\"\n; {\n}\n", "no error"}};
    for (const auto& row : kRows) EXPECT_EQ(LoadError(row.content), row.error) << row.content;
}

TEST_F(ConfigFileReaderTest, ReportsAWrongWalk) {
    Load("#\ndesc=\"d\"\nNAME{\n}\n{\n}\nGOOD {\nlast \t {\n}\n}\n");
    EXPECT_EQ(ErrorOf([&] { Next(); }), "ConfigFileReader: NextBlock() before block read start in file 'e.cfg'");
    EXPECT_EQ(ErrorOf([&] { reader_.EnterBlock(); }),
              "ConfigFileReader: Invalid EnterBlock() at line 1 in file 'e.cfg'");
    reader_.SelectBlock(0);
    EXPECT_EQ(ErrorOf([&] { Next(); }), "ConfigFileReader: Unreachable code in file 'e.cfg' at line 3");
    EXPECT_EQ(ErrorOf([&] { reader_.EnterBlock(); }),
              "ConfigFileReader: Invalid EnterBlock() at line 1 in file 'e.cfg'");
    EXPECT_EQ(ErrorOf([&] { reader_.ExitBlock(); }),
              "ConfigFileReader: Invalid ExitBlock() at line: 1 in file 'e.cfg'");
    Load("#\ndesc=\"d\"\n {\n}\n");
    reader_.SelectBlock(0);
    EXPECT_EQ(ErrorOf([&] { Next(); }), "ConfigFileReader: Invalid block start in file 'e.cfg' at line 3");
}

TEST_F(ConfigFileReaderTest, StaysInsideAnUnfinishedEntry) {
    Load("#\ndesc=\"d\"\nA {\nB {\nx=1\n#\ndesc=\"e\"\nC {\nD {\n}\n}\n");
    reader_.SelectBlock(0);
    EXPECT_EQ(Next(), "A");
    reader_.EnterBlock();
    EXPECT_EQ(Next(), "B");
    reader_.EnterBlock();
    EXPECT_EQ(Text("desc"), "code 1");
    EXPECT_EQ(Next(), "none");
    EXPECT_EQ(ErrorOf([&] { reader_.ExitBlock(); }),
              "ConfigFileReader: Invalid ExitBlock() at line: 5 in file 'e.cfg'");
}

TEST_F(ConfigFileReaderTest, ReturnsTheCodesOfTheLineReader) {
    EXPECT_EQ(reader_.Load("none.cfg", true), 1);
    EXPECT_STREQ(reader_.GetErrorText(), "Can not open file none.cfg, Code:2");
    EXPECT_EQ(Text("desc"), "code 1");
    reader_.SelectBlock(-1);
    EXPECT_EQ(Text("desc"), "code 1");
    EXPECT_EQ(Next(), "none");
    EXPECT_EQ(Load(std::string(8388480, '\n')), 3);
    EXPECT_EQ(Load("#\n" + std::string(65536, 'x')), 4);
    EXPECT_EQ(Load(""), 0);
    EXPECT_EQ(reader_.GetBlockCount(), 0);
}

TEST_F(ConfigFileReaderTest, ReportsOfOthersNameTheKeysLine) {
    struct User : KRN_Base {};
    Reports reports;
    Load(kEffects);
    reader_.SelectBlock(0);
    Text("scale");
    User().Warning("scale");
    Text("missing");
    User().Warning("missing");
    Next();
    reader_.EnterBlock();
    Text("texture");
    User().Warning("texture");
    EXPECT_THAT(reports.All(), ElementsAre("warning Undefined: scale @e.cfg:5", "warning Undefined: missing @e.cfg:2",
                                           "warning Undefined: texture @e.cfg:7"));
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
