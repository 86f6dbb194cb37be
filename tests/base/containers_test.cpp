// Lists with ids, trees of names, and the resources that several users hold.
#include <map>
#include <random>

#include "base/dyna_mem.h"
#include "base/resource_manager.h"
#include "base/search_tree.h"
#include "tests/support/test.h"

namespace sparkrig {
namespace {

/// "id=value" by position.
template <class List>
std::string Shown(const List& list) {
    std::string shown;
    for (int i = 0; i < list.GetCount(); ++i)
        shown += (i > 0 ? " " : "") + std::to_string(list.GetIdAt(i)) + "=" + std::to_string(*list.GetAt(i));
    return shown;
}

template <class List>
void AddAll(List& list, std::initializer_list<int> values) {
    for (const int value : values) list.Add(value);
}

/// By the list's own iteration.
template <class List>
std::map<int, int> Iterated(List& list) {
    std::map<int, int> seen;
    list.ResetIteration();
    for (int id = -1; const auto* value = list.GetNext(&id);) seen[id] = *value;
    EXPECT_EQ(list.GetNext(), nullptr);
    return seen;
}

/// A number that counts itself.
struct Counted {
    Counted(int number = 0) : value(number) { ++live; }
    Counted(const Counted& other) : value(other.value) { ++live; }
    Counted& operator=(const Counted&) = default;
    ~Counted() { --live; }
    operator int() const { return value; }
    int value;
    static inline int live = 0;
};

TEST(DynaMem, HoldsUnderTheLowestFreeIdsWhatAMapHolds) {
    std::mt19937 random(3);
    DynaMem<Counted, 4> list;
    std::map<int, int> held;   // by id
    for (int step = 0; step < 3000; ++step) {
        const unsigned action = random() % 40;
        const auto position = held.empty() ? 0u : random() % held.size();
        const auto some = std::next(held.begin(), position);
        if (action < 22 || held.empty()) {
            int id = 0;
            while (held.contains(id)) ++id;
            ASSERT_EQ(list.Add(step), id);
            held[id] = step;
        } else if (action < 39) {
            ASSERT_EQ(*list.Get(some->first), some->second);
            ASSERT_EQ(list.GetIdAt(static_cast<int>(position)), some->first);
            EXPECT_TRUE(action % 2 == 0 ? list.Delete(some->first) : list.DeleteAt(static_cast<int>(position)));
            EXPECT_FALSE(list.IsValid(some->first));
            held.erase(some);
        } else {   // packs
            list.SetSize(-1);
            const std::map<int, int> before = std::exchange(held, {});
            for (const auto& [id, value] : before) held.emplace(held.size(), value);
            EXPECT_EQ(list.GetCapacity(), list.GetCount());
        }
        ASSERT_EQ(Iterated(list), held);
        DynaMem<Counted, 4> copy;
        copy.Add(7);
        copy = list;
        ASSERT_EQ(Iterated(copy), held);
        ASSERT_EQ(Counted::live, 2 * list.GetCount());
        ASSERT_EQ(list.GetCount(), static_cast<int>(held.size()));
    }
    list = *&list;
    EXPECT_EQ(Iterated(list), held);
    for (const int wrong : {-1, 99999}) {
        EXPECT_EQ(list.Get(wrong), nullptr);
        EXPECT_EQ(list.GetAt(wrong), nullptr);
        EXPECT_EQ(list.GetIdAt(wrong), -1);
    }
    list.Clear();
    list.SetSize(-1);
    EXPECT_EQ(list.Add(66), 0);
    EXPECT_EQ(*list.Get(list.AddNew()), 0);
}

TEST(DynaMem, GrowsKeepingAddresses) {
    DynaMem<int, 4> list;
    AddAll(list, {20, 30, 40, 50});
    EXPECT_EQ(list.GetCapacity(), 4);
    const int* first = list.Get(0);
    list.Add(60);
    EXPECT_EQ(list.GetCapacity(), 13);
    for (int i = 5; i < 1000; ++i) list.Add(i);
    EXPECT_EQ(list.Get(0), first);
    EXPECT_EQ(*first, 20);
    DynaMem<char, 1024> large;
    for (int i = 0; i < 1025; ++i) large.Add('x');
    EXPECT_EQ(large.GetCapacity(), 1288);
}

TEST(DynaMem, ReportsMisuse) {
    DynaMem<int, 4> list;
    AddAll(list, {20, 30, 40, 50});
    EXPECT_EQ(ErrorOf([&] { list.SetSize(3); }), "ErrorClassSimple: New size too small");
    EXPECT_EQ(ErrorOf([&] { list.SetSize(-2); }), "ErrorClassSimple: New size too small");
    EXPECT_EQ(ErrorOf([&] { list.Delete(17); }), "ErrorClassSimple: Can not delete object nr: 17");
    list.Delete(2);
    EXPECT_EQ(ErrorOf([&] { list.Delete(2); }), "ErrorClassSimple: Can not delete object nr: 2");
    EXPECT_EQ(ErrorOf([&] { list.DeleteAt(3); }), "ErrorClassSimple: Can not delete object nr: -1");
    list.SetFixed(true);
    EXPECT_EQ(list.Add(60), 2);
    EXPECT_EQ(ErrorOf([&] { list.Add(70); }), "ErrorClassSimple: Can not expand fixed list");
    EXPECT_EQ(ErrorOf([&] { list.SetSize(9); }), "ErrorClassSimple: Can not SetSize() of fixed list");
    struct : DynaMem<int, 4> {
        using DynaMem::free_hint_;
    } broken;
    broken.Add(20);
    broken.free_hint_ = 4;
    EXPECT_EQ(ErrorOf([&] { broken.Add(30); }), "ErrorClassSimple: Maximum number of data elements reached: 4");
}

TEST(DynaMem, FixedListsKeepTheirPositions) {
    DynaMemSort<int, 4> list;
    AddAll(list, {50, 40, 30});
    list.SetFixed(true);
    list.Sort();
    EXPECT_EQ(Shown(list), "2=30 1=40 0=50");
    list.Delete(1);
    list.Add(60);
    EXPECT_EQ(Shown(list), "2=30 0=50 1=60");
    list.SetFixed(false);
    EXPECT_EQ(Shown(list), "0=50 1=60 2=30");
}

TEST(DynaMem, IteratesUpwardsWhileTheCurrentIsDeleted) {
    DynaMem<int, 2> list;
    list.ResetIteration();
    EXPECT_EQ(list.GetNext(), nullptr);
    AddAll(list, {20, 30, 40, 50, 60});
    list.Delete(1);
    list.ResetIteration();
    std::vector<int> seen;
    for (int id = -1; const int* value = list.GetNext(&id);) {
        seen.push_back(*value);
        list.Delete(id);
        if (id == 3) list.Add(99);   // into slot 0, below the cursor
    }
    EXPECT_THAT(seen, ElementsAre(20, 40, 50, 60));
    EXPECT_EQ(list.GetNext(), nullptr);
    EXPECT_EQ(Shown(list), "0=99");
}

TEST(DynaMemSort, SortsPositionsUntilTheNextChange) {
    DynaMemSort<int, 4> list;
    list.Sort();
    AddAll(list, {30, 50, 20, 40});
    list.Sort();
    EXPECT_EQ(Shown(list), "2=20 0=30 3=40 1=50");
    list.Sort(std::greater<>());
    EXPECT_EQ(Shown(DynaMemSort<int, 4>(list)), "1=50 3=40 0=30 2=20");
    list.Add(10);
    EXPECT_EQ(Shown(list), "0=50 1=40 2=30 3=20 4=10");   // it has grown, and so was packed
    list.Sort();
    list.SetSize(-1);   // packed in sorted order
    EXPECT_EQ(Shown(list), "0=10 1=20 2=30 3=40 4=50");
}

TEST(DynaPtrList, HoldsWhatItDoesNotOwn) {
    int a = 20, b = 30;
    DynaPtrList<int*, 1> list;
    EXPECT_EQ(list.Add(&a), 0);
    EXPECT_EQ(list.Add(&b), 1);
    EXPECT_EQ(list.Add(nullptr), -1);
    EXPECT_EQ(list.GetNext(), &a);
    EXPECT_EQ(list.GetNext(), &b);
    EXPECT_TRUE(list.DeleteAt(0));
    EXPECT_EQ(list.Get(1), &b);
    const DynaPtrList<int*, 1> copy = list;
    list.Clear();
    EXPECT_EQ(list.GetCount(), 0);
    EXPECT_EQ(copy.Get(1), &b);
    EXPECT_EQ(ErrorOf([&] { list.Delete(0); }), "ErrorClassSimple: Can not delete object nr: 0");
}

TEST(DynaMem, ElementThatFailsToBeMadeLeavesTheListAsItWas) {
    struct Fussy {
        Fussy() { Reporter().Error("no"); }
        Fussy(const Fussy&) = default;
        struct Reporter : ErrorClassSimple {};
    };
    DynaMem<Fussy, 2> list;
    EXPECT_EQ(ErrorOf([&] { list.AddNew(); }), "ErrorClassSimple: no");
    EXPECT_EQ(list.GetCount(), 0);
    EXPECT_FALSE(list.IsValid(0));
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
    std::string names;
    tree.ResetIteration();
    for (char name[5]; tree.GetNext(name, sizeof name);) names += std::string(name) + ",";   // cut
    EXPECT_EQ(names, " b,9a,a,fire,Fire,FIRE,Zoo,_x,{,");
    EXPECT_EQ(tree.GetNext(), nullptr);
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
    std::vector<int*> values(5000);
    for (int i = 0; int*& value : values) value = tree.Insert(("spark" + std::to_string(i++)).c_str());
    for (int i = 0; i < 5000; ++i) *values[static_cast<std::size_t>(i)] = i;
    for (int i = 0; i < 5000; ++i) ASSERT_EQ(*tree.Find(("SPARK" + std::to_string(i)).c_str()), i);
    EXPECT_EQ(tree.Find("spark5000"), nullptr);
}

struct Resource : KRN_ResourceBase {};

TEST(ResourceManager, CountsUsersUntilTheLastLeaves) {
    KRN_ResourceManager manager;
    Resource texture, other;
    const int first = manager.Register(&other, "b.tga");
    const int id = manager.Register(&texture, "a.tga");
    EXPECT_EQ(manager.Acquire("A.TGA"), id);
    EXPECT_EQ(manager.GetAt(1).references, 2);
    EXPECT_EQ(manager.GetObject(id), &texture);
    EXPECT_EQ(manager.Acquire(id), id);
    EXPECT_FALSE(manager.Unacquire(id));
    EXPECT_FALSE(manager.Unacquire(id));
    EXPECT_TRUE(manager.Unacquire(id));
    EXPECT_EQ(manager.Acquire("a.tga"), -1);
    EXPECT_FALSE(manager.IsValidId(id));
    EXPECT_EQ(manager.GetObject(id), nullptr);
    EXPECT_TRUE(manager.Unacquire(first));
    EXPECT_EQ(manager.Register(&texture, "c.tga"), first);
    EXPECT_EQ(manager.Acquire(-1), -1);
    EXPECT_TRUE(manager.Unacquire(-1));
    EXPECT_EQ(manager.GetCount(), 1);
}

TEST(ResourceManager, FirstOfEqualNamesWinsAndLongNamesAreCut) {
    KRN_ResourceManager manager;
    Resource a, b;
    const std::string name(300, 'n');
    EXPECT_EQ(manager.Register(&a, name.c_str()), 0);
    manager.Register(&b, name.c_str());
    EXPECT_EQ(manager.Acquire(name.c_str()), 0);
    EXPECT_EQ(std::string(manager.GetAt(0).name), name.substr(0, 255));
}

TEST(ResourceManager, ReportsMisuse) {
    KRN_ResourceManager manager;
    EXPECT_EQ(ErrorOf([&] { manager.Acquire(12); }), "ResourceManager: Invalid ID number in Acquire:12");
    EXPECT_EQ(ErrorOf([&] { manager.Acquire(""); }), "ResourceManager: Invalid file name in Acquire!");
    EXPECT_EQ(ErrorOf([&] { manager.Unacquire(3); }), "ResourceManager: Invalid ID number in Unacquire");
}

TEST(ResourceBase, IsValidWhileItsEntryLives) {
    KRN_ResourceManager manager;
    Resource texture;
    EXPECT_FALSE(texture.IsValid());
    texture.Attach(&manager, manager.Register(&texture, "a.tga"));
    EXPECT_TRUE(texture.IsValid());
    manager.Unacquire(texture.ResourceId());
    EXPECT_FALSE(texture.IsValid());
    texture.Attach(&manager, manager.Register(nullptr, "b.tga"));
    EXPECT_FALSE(texture.IsValid());
    EXPECT_EQ(texture.Manager(), &manager);
}

}   // namespace
}   // namespace sparkrig
