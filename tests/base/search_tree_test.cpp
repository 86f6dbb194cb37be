#include "base/search_tree.h"

#include <string>
#include "tests/support/test.h"

namespace sparkrig {
namespace {

std::vector<std::string> Names(SearchTree<int>& tree) {
    std::vector<std::string> names;
    char name[16];
    tree.ResetIteration();
    while (tree.GetNext(name, sizeof name)) names.emplace_back(name);
    return names;
}

TEST(SearchTree, FindsNamesIgnoringCase) {
    SearchTree<int> tree;
    EXPECT_EQ(tree.Find("Fire"), nullptr);
    *tree.Insert(String("Fire")) = 17;
    *tree.Insert("x") = 23;
    EXPECT_EQ(*tree.Find("FIRE"), 17);
    EXPECT_EQ(*tree.Find(String("fire")), 17);
    EXPECT_EQ(*tree.Find("X"), 23);
    EXPECT_EQ(tree.Find("Fir"), nullptr);
    EXPECT_EQ(tree.Insert("FIRE"), nullptr);
    EXPECT_EQ(*tree.Find("fire"), 17);
    tree.Clear();
    EXPECT_EQ(tree.Find("fire"), nullptr);
    EXPECT_EQ(*tree.Insert("FIRE"), 0);
}

TEST(SearchTree, IteratesByFirstCharacterThenByInsertion) {
    SearchTree<int> tree;
    for (const char* name : {"_x", "fire", "Zoo", "9a", "Fire2", "a", " b", "FIRE1", "{"}) tree.Insert(name);
    EXPECT_THAT(Names(tree), ElementsAre(" b", "9a", "a", "fire", "Fire2", "FIRE1", "Zoo", "_x", "{"));
    EXPECT_EQ(tree.GetNext(), nullptr);
    tree.ResetIteration();
    char cut[4];
    tree.GetNext();
    tree.GetNext();
    tree.GetNext();
    tree.GetNext(cut, sizeof cut);
    EXPECT_STREQ(cut, "fir");
}

TEST(SearchTree, ReportsNamesItCannotHold) {
    SearchTree<int> tree;
    EXPECT_EQ(ErrorOf([&] { tree.Insert(""); }), "SearchTree: Empty name string");
    EXPECT_EQ(ErrorOf([&] { tree.Find(String()); }), "SearchTree: Empty name string");
    EXPECT_EQ(ErrorOf([&] { tree.Insert("\tx"); }), "SearchTree: Character in name string out of range: 9");
    EXPECT_EQ(ErrorOf([&] { tree.Find("\xFCx"); }), "SearchTree: Character in name string out of range: -4");
    EXPECT_NE(tree.Insert("x\xFC\t"), nullptr);
    EXPECT_NE(tree.Find("X\xFC\t"), nullptr);
    EXPECT_EQ(tree.Find("X\xDC\t"), nullptr);
    EXPECT_NE(tree.Insert("\x7F"), nullptr);
}

TEST(SearchTree, ValuesStayWhereTheyAre) {
    SearchTree<int> tree;
    std::vector<int*> values;
    for (int i = 0; i < 5000; ++i) values.push_back(tree.Insert(("spark" + std::to_string(i)).c_str()));
    for (int i = 0; i < 5000; ++i) *values[static_cast<std::size_t>(i)] = i;
    for (int i = 0; i < 5000; ++i) ASSERT_EQ(*tree.Find(("SPARK" + std::to_string(i)).c_str()), i);
    EXPECT_EQ(tree.Find("spark5000"), nullptr);
}

}   // namespace
}   // namespace sparkrig
