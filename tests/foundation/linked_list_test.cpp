// SPDX-License-Identifier: MIT
#include "foundation/list.h"
#include "foundation/n_layer.h"

#include <gtest/gtest.h>
#include <utility>

namespace {

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
