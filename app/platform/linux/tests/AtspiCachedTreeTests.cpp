#include "platform/linux/atspi/AtspiCachedTree.hpp"

#include <gtest/gtest.h>

namespace lectorbell::platform::atspi {
namespace {

struct Item {
    std::string path;
    std::string parent;
    int index;
    int childCount;
    AtspiRole role = ATSPI_ROLE_PARAGRAPH;
};

CachedTree treeOf(const std::vector<Item>& items) {
    CachedTree tree;
    for (const Item& item : items) {
        CachedElement element;
        element.parent = item.parent;
        element.index = item.index;
        element.childCount = item.childCount;
        element.role = item.role;
        tree.add(item.path, element);
    }
    tree.linkChildren();
    return tree;
}

// Every element from `start` on, as the read-ahead visits them.
std::vector<std::string> documentOrder(const CachedTree& tree, const std::string& start) {
    std::vector<std::string> order{start};
    for (const std::string* next = tree.next(start); next && order.size() < 50;
         next = tree.next(*next)) {
        order.push_back(*next);
    }
    return order;
}

TEST(CachedTree, VisitsTheRestOfTheDocumentDepthFirst) {
    // doc ─┬─ a ─┬─ a1
    //      │     └─ a2
    //      ├─ pw ── pw1      (a password field: its insides are never visited)
    //      └─ b
    const std::vector<Item> page{
        {"doc", "app", 0, 3, ATSPI_ROLE_DOCUMENT_WEB},
        {"b", "doc", 2, 0},
        {"a2", "a", 1, 0},
        {"a", "doc", 0, 2},
        {"a1", "a", 0, 0},
        {"pw", "doc", 1, 1, ATSPI_ROLE_PASSWORD_TEXT},
        {"pw1", "pw", 0, 0, ATSPI_ROLE_STATIC},
    };
    struct Case {
        std::string start;
        std::vector<std::string> expected;
    };
    const Case cases[] = {
        {"doc", {"doc", "a", "a1", "a2", "pw", "b"}},
        {"a2", {"a2", "pw", "b"}},
        {"b", {"b"}},
        {"pw1", {"pw1", "b"}},
        {"unknown", {"unknown"}},
    };
    CachedTree tree = treeOf(page);
    for (const Case& c : cases) {
        EXPECT_EQ(documentOrder(tree, c.start), c.expected) << "from " << c.start;
    }
}

TEST(CachedTree, KeepsNoChildrenWhereTheCacheIsIncomplete) {
    struct Case {
        const char* name;
        std::vector<Item> items;
        std::vector<std::string> expectedChildrenOfRoot;
    };
    const Case cases[] = {
        {"all listed, out of order",
         {{"r", "", 0, 2}, {"y", "r", 1, 0}, {"x", "r", 0, 0}},
         {"x", "y"}},
        {"one missing", {{"r", "", 0, 3}, {"x", "r", 0, 0}, {"y", "r", 1, 0}}, {}},
        {"a gap in the indices", {{"r", "", 0, 2}, {"x", "r", 0, 0}, {"y", "r", 2, 0}}, {}},
        {"two at one index", {{"r", "", 0, 2}, {"x", "r", 0, 0}, {"y", "r", 0, 0}}, {}},
        {"not counted by the application", {{"r", "", 0, -1}, {"x", "r", 0, 0}}, {}},
    };
    for (const Case& c : cases) {
        CachedTree tree = treeOf(c.items);
        ASSERT_NE(tree.element("r"), nullptr) << c.name;
        EXPECT_EQ(tree.element("r")->children, c.expectedChildrenOfRoot) << c.name;
        if (c.expectedChildrenOfRoot.empty()) {
            // Where the children are unknown, the walk is not led past them.
            EXPECT_EQ(tree.next("r"), nullptr) << c.name;
        }
    }
}

} // namespace
} // namespace lectorbell::platform::atspi
