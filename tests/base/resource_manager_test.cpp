#include "base/resource_manager.h"

#include <string>
#include "tests/support/test.h"

namespace sparkrig {
namespace {

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
