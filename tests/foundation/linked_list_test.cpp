// SPDX-License-Identifier: MIT
#include "foundation/list.h"
#include "foundation/n_layer.h"
#include "layers/nlayers.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <type_traits>
#include <utility>

namespace {

// Records and lists lie in memory as callers that were built earlier have them.
constexpr std::size_t kPointer = sizeof(void*);
template <typename T>
constexpr bool list_is_laid_out()
{
    using List = LinkedList<T>;
    using Node = typename List::node;
    return offsetof(List, head) == 0 && offsetof(List, tail) == kPointer &&
           offsetof(List, count) == 2 * kPointer && sizeof(List) == 3 * kPointer &&
           offsetof(Node, data) == 0 && offsetof(Node, next) == sizeof(T) &&
           offsetof(Node, prev) == sizeof(T) + kPointer && sizeof(Node) == sizeof(T) + 2 * kPointer &&
           std::is_same_v<decltype(List::head), Node*> && std::is_same_v<decltype(List::tail), Node*> &&
           std::is_same_v<decltype(List::count), int> && std::is_same_v<decltype(Node::data), T> &&
           std::is_same_v<decltype(Node::next), Node*> && std::is_same_v<decltype(Node::prev), Node*>;
}
static_assert(list_is_laid_out<n_layer>());
static_assert(list_is_laid_out<float*>());
static_assert(list_is_laid_out<layer_size>());

constexpr std::size_t kNumbers = 2 * sizeof(std::string); // of an n_layer, behind its texts
#define UMBRIX_LIES_AT(field, type, offset)                                                                  \
    static_assert(std::is_same_v<decltype(n_layer::field), type> && offsetof(n_layer, field) == (offset))
UMBRIX_LIES_AT(name, std::string, 0);
UMBRIX_LIES_AT(filename, std::string, sizeof(std::string));
UMBRIX_LIES_AT(blend_mode, int, kNumbers);
UMBRIX_LIES_AT(opacity, float, kNumbers + 4);
UMBRIX_LIES_AT(n_scale, float, kNumbers + 8);
UMBRIX_LIES_AT(L_Detail, float, kNumbers + 12);
UMBRIX_LIES_AT(gaussian, float, kNumbers + 16);
UMBRIX_LIES_AT(depth, float, kNumbers + 20);
UMBRIX_LIES_AT(normal_scale, float, kNumbers + 24);
UMBRIX_LIES_AT(edge_a, float, kNumbers + 28);
UMBRIX_LIES_AT(edge_b, float, kNumbers + 32);
UMBRIX_LIES_AT(spare_flag, bool, kNumbers + 36);
UMBRIX_LIES_AT(regenerate, bool, kNumbers + 37);
#undef UMBRIX_LIES_AT
static_assert(sizeof(n_layer) == kNumbers + 40);

n_layer named(char const* name)
{
    n_layer layer;
    layer.name = name;
    return layer;
}

LinkedList<n_layer> list_of_three()
{
    LinkedList<n_layer> list;
    list.Add(named("a"));
    list.Add(named("b"));
    list.Add(named("c"));
    return list;
}

/// Frees nodes that an assignment let go of.
template <typename T>
void release_chain(typename LinkedList<T>::node* node)
{
    while (node != nullptr) {
        delete std::exchange(node, node->next);
    }
}

TEST(LinkedList, AddToAnEmptyListMakesOneNodeHeadAndTail)
{
    LinkedList<n_layer> list;
    EXPECT_TRUE(list.Add(named("only")));
    EXPECT_EQ(list.count, 1);
    EXPECT_EQ(list.head, list.tail);
    EXPECT_EQ(list.head->next, nullptr);
    EXPECT_EQ(list.head->prev, nullptr);
}

TEST(LinkedList, AddKeepsTheOrderAndLinksBothWays)
{
    LinkedList<n_layer> const list = list_of_three();
    EXPECT_EQ(list.head->data.name, "a");
    EXPECT_EQ(list.tail->data.name, "c");
    EXPECT_EQ(list.tail->prev->data.name, "b");
    EXPECT_EQ(list.tail->prev->prev, list.head);
}

TEST(LinkedList, RemovingTheOnlyNodeEmptiesTheList)
{
    LinkedList<n_layer> list;
    list.Add(named("only"));
    EXPECT_EQ(list.Remove(0).name, "only");
    EXPECT_EQ(list.head, nullptr);
    EXPECT_EQ(list.tail, nullptr);
    EXPECT_EQ(list.count, 0);
}

TEST(LinkedList, RemovingTheLastNodeMovesTheTailBack)
{
    LinkedList<n_layer> list = list_of_three();
    EXPECT_EQ(list.Remove(2).name, "c");
    EXPECT_EQ(list.tail->data.name, "b");
    EXPECT_EQ(list.tail->next, nullptr);
    EXPECT_EQ(list.count, 2);
}

TEST(LinkedList, RemovingFromTheMiddleJoinsTheNeighbours)
{
    LinkedList<n_layer> list = list_of_three();
    EXPECT_EQ(list.Remove(1).name, "b");
    EXPECT_EQ(list.head->next, list.tail);
    EXPECT_EQ(list.tail->prev, list.head);
}

TEST(LinkedList, RemoveFromAnEmptyListGivesADefaultRecord)
{
    LinkedList<n_layer> list;
    EXPECT_EQ(list.Remove(0).name, "");
    EXPECT_EQ(list.count, 0);
}

TEST(LinkedList, RemoveFirstHandsTheRecordsBackInOrder)
{
    LinkedList<n_layer> list = list_of_three();
    EXPECT_EQ(list.RemoveFirst().name, "a");
    EXPECT_EQ(list.RemoveFirst().name, "b");
    EXPECT_EQ(list.RemoveFirst().name, "c");
    EXPECT_EQ(list.count, 0);
}

TEST(LinkedList, ANegativeIndexMeansTheFirstRecord)
{
    LinkedList<n_layer> list = list_of_three();
    EXPECT_EQ(list.Get(-1).name, "a");
    EXPECT_EQ(list.GetRef(-7), &list.head->data);
    EXPECT_EQ(list.Remove(-1).name, "a");
}

TEST(LinkedList, GetPastTheEndGivesEmptyStringsAndGetRefNull)
{
    LinkedList<n_layer> list = list_of_three();
    EXPECT_EQ(list.Get(list.count).filename, "");
    EXPECT_EQ(list.GetRef(list.count), nullptr);
}

TEST(LinkedList, GetRefWritesInPlace)
{
    LinkedList<n_layer> list = list_of_three();
    list.GetRef(1)->opacity = 40.0f;
    EXPECT_EQ(list.Get(1).opacity, 40.0f);
}

TEST(LinkedList, CopyOfAnEmptyListIsEmpty)
{
    LinkedList<n_layer> const empty;
    LinkedList<n_layer> const copy = empty;
    EXPECT_EQ(copy.head, nullptr);
    EXPECT_EQ(copy.count, 0);
}

TEST(LinkedList, CopiesAreDeep)
{
    LinkedList<n_layer> source = list_of_three();
    source.GetRef(2)->regenerate = true;
    LinkedList<n_layer> copy = source;
    EXPECT_TRUE(copy.Get(2).regenerate);
    copy.GetRef(0)->name = "changed";
    EXPECT_EQ(source.Get(0).name, "a");
}

TEST(LinkedList, AssignmentLetsGoOfItsNodesAndReturnsTheSource)
{
    LinkedList<n_layer> source = list_of_three();
    LinkedList<n_layer> target;
    target.Add(named("old"));
    auto* const old = target.head;
    LinkedList<n_layer> const& returned = (target = source);
    EXPECT_EQ(&returned, &source);
    EXPECT_EQ(old->data.name, "old") << "the old node must still be there";
    EXPECT_EQ(target.count, 3);
    EXPECT_EQ(target.Get(2).name, "c");
    EXPECT_EQ(source.count, 3);
    release_chain<n_layer>(old);
}

TEST(LinkedList, AssignmentToItselfEmptiesTheList)
{
    LinkedList<n_layer> list = list_of_three();
    auto* const old = list.head;
    LinkedList<n_layer> const& same = list;
    list = same;
    EXPECT_EQ(list.count, 0);
    EXPECT_EQ(list.head, nullptr);
    release_chain<n_layer>(old);
}

} // namespace
