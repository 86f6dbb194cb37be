#include "base/dyna_mem.h"

#include <gmock/gmock.h>

#include <memory>

#include "base/string.h"
#include "tests/base/reports.h"

namespace sparkrig {
namespace {

using testing::ElementsAre;

template <class List>
std::vector<int> Ids(const List& list) {
    std::vector<int> ids;
    for (int i = 0; i < list.GetCount(); ++i) ids.push_back(list.GetIdAt(i));
    return ids;
}

template <class List>
std::vector<int> Values(const List& list) {
    std::vector<int> values;
    for (int i = 0; i < list.GetCount(); ++i) values.push_back(*list.GetAt(i));
    return values;
}

template <class List>
void AddAll(List& list, std::initializer_list<int> values) {
    for (const int value : values) list.Add(value);
}

TEST(DynaMem, GivesTheLowestFreeId) {
    DynaMem<int, 4> list;
    EXPECT_EQ(list.Add(50), 0);
    EXPECT_EQ(list.Add(60), 1);
    EXPECT_EQ(list.AddNew(), 2);
    EXPECT_EQ(*list.Get(2), 0);
    EXPECT_TRUE(list.Delete(1));
    EXPECT_TRUE(list.Delete(0));
    EXPECT_FALSE(list.IsValid(0));
    EXPECT_EQ(list.GetCount(), 1);
    EXPECT_EQ(list.Add(70), 0);
    EXPECT_EQ(list.Add(80), 1);
    EXPECT_EQ(list.Add(90), 3);
    EXPECT_THAT(Values(list), ElementsAre(70, 80, 0, 90));
}

TEST(DynaMem, GrowsKeepingIdsAndAddresses) {
    DynaMem<int, 4> list;
    AddAll(list, {20, 30, 40, 50});
    EXPECT_EQ(list.GetCapacity(), 4);
    const int* first = list.Get(0);
    for (int i = 4; i < 1000; ++i) EXPECT_EQ(list.Add(i * 10 + 20), i);
    EXPECT_EQ(list.Get(0), first);
    for (int i = 0; i < 1000; ++i) ASSERT_EQ(*list.Get(i), i * 10 + 20);
    DynaMem<int, 4> thirteen;
    AddAll(thirteen, {1, 2, 3, 4, 5});
    EXPECT_EQ(thirteen.GetCapacity(), 13);
    DynaMem<char, 1024> large;
    for (int i = 0; i < 1025; ++i) large.Add('x');
    EXPECT_EQ(large.GetCapacity(), 1288);
}

TEST(DynaMem, PositionsSkipDeletedElements) {
    DynaMem<int, 4> list;
    AddAll(list, {20, 30, 40});
    list.Delete(0);
    EXPECT_EQ(*list.GetAt(0), 30);
    EXPECT_EQ(list.GetIdAt(0), 1);
    EXPECT_TRUE(list.DeleteAt(1));
    EXPECT_THAT(Ids(list), ElementsAre(1));
    EXPECT_EQ(list.GetAt(1), nullptr);
    EXPECT_EQ(list.GetIdAt(-1), -1);
    EXPECT_EQ(list.Get(-1), nullptr);
    EXPECT_EQ(list.Get(99), nullptr);
}

TEST(DynaMem, SetSizePacks) {
    DynaMem<int, 4> list;
    AddAll(list, {20, 30, 40});
    list.Delete(1);
    list.SetSize(-1);
    EXPECT_EQ(list.GetCapacity(), 2);
    EXPECT_THAT(Ids(list), ElementsAre(0, 1));
    EXPECT_THAT(Values(list), ElementsAre(20, 40));
    list.SetSize(7);
    EXPECT_EQ(list.Add(55), 2);
    list.Clear();
    list.SetSize(-1);
    EXPECT_EQ(list.Add(66), 0);
    EXPECT_EQ(list.GetCapacity(), 8);
}

struct WithFreeHint : DynaMem<int, 4> {
    void SetFreeHint(int hint) { free_hint_ = hint; }
};

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
    WithFreeHint broken;
    broken.Add(20);
    broken.SetFreeHint(4);
    EXPECT_EQ(ErrorOf([&] { broken.Add(30); }), "ErrorClassSimple: Maximum number of data elements reached: 4");
}

TEST(DynaMem, FixedListsKeepTheirPositions) {
    DynaMemSort<int, 4> list;
    AddAll(list, {50, 40, 30});
    list.SetFixed(true);
    list.Sort();
    EXPECT_THAT(Values(list), ElementsAre(30, 40, 50));
    list.Delete(1);
    list.Add(60);
    EXPECT_THAT(Values(list), ElementsAre(30, 50, 60));
    EXPECT_THAT(Ids(list), ElementsAre(2, 0, 1));
    list.SetFixed(false);
    EXPECT_THAT(Ids(list), ElementsAre(0, 1, 2));
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
    EXPECT_THAT(Values(list), ElementsAre(99));
}

TEST(DynaMem, AssignmentCopiesElementsAndIds) {
    DynaMemSort<int, 2> source;
    AddAll(source, {50, 20, 40, 30});
    source.Delete(1);
    source.Sort();
    DynaMemSort<int, 2> copy;
    AddAll(copy, {7, 8, 9});
    copy = source;
    EXPECT_THAT(Ids(copy), ElementsAre(3, 2, 0));
    *copy.Get(0) = 99;
    EXPECT_EQ(*source.Get(0), 50);
    EXPECT_EQ(copy.Add(11), 1);
    const DynaMemSort<int, 2> second = copy;
    EXPECT_THAT(Values(second), ElementsAre(99, 11, 40, 30));
    copy = DynaMemSort<int, 2>();
    EXPECT_EQ(copy.GetCount(), 0);
    source = *&source;
    EXPECT_EQ(source.GetCount(), 3);
}

TEST(DynaMemSort, SortsPositionsUntilTheNextChange) {
    DynaMemSort<int, 4> list;
    list.Sort();
    AddAll(list, {30, 50, 20, 40});
    list.Sort();
    EXPECT_THAT(Ids(list), ElementsAre(2, 0, 3, 1));
    list.Sort(std::greater<>());
    EXPECT_THAT(Values(list), ElementsAre(50, 40, 30, 20));
    list.Add(10);
    EXPECT_THAT(Ids(list), ElementsAre(0, 1, 2, 3, 4));
    list.Sort();
    list.SetSize(-1);   // packed in sorted order
    EXPECT_THAT(Ids(list), ElementsAre(0, 1, 2, 3, 4));
    EXPECT_THAT(Values(list), ElementsAre(10, 20, 30, 40, 50));
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
    EXPECT_EQ(list.GetAt(0), &b);
    EXPECT_EQ(list.Get(1), &b);
    const DynaPtrList<int*, 1> copy = list;
    list.Clear();
    EXPECT_EQ(list.GetCount(), 0);
    EXPECT_EQ(copy.Get(1), &b);
    EXPECT_EQ(ErrorOf([&] { list.Delete(0); }), "ErrorClassSimple: Can not delete object nr: 0");
}

TEST(DynaMem, ElementsAreDestroyedOnce) {
    const auto shared = std::make_shared<int>(5);
    {
        DynaMem<std::shared_ptr<int>, 2> list;
        for (int i = 0; i < 200; ++i) list.Add(shared);
        for (int i = 0; i < 200; i += 3) list.Delete(i);
        EXPECT_EQ(shared.use_count(), 1 + list.GetCount());
        list.Clear();
        EXPECT_EQ(shared.use_count(), 1);
        for (int i = 0; i < 100; ++i) list.Add(shared);
    }
    EXPECT_EQ(shared.use_count(), 1);
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

}   // namespace
}   // namespace sparkrig
