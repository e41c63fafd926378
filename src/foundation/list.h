// SPDX-License-Identifier: MIT
#pragma once

inline namespace umbrix_v0 {

/// Doubly linked list that holds its records by value and owns its nodes. If `T` is a pointer the list owns
/// the pointer alone. Every indexed access walks from the head. No locks: any number of readers, or one
/// writer.
template <typename T>
class LinkedList {
public:
    /// One record of the list and its neighbours, null at the ends.
    struct node {
        T data;     ///< The record.
        node* next; ///< Towards the tail.
        node* prev; ///< Towards the head.
    };

    LinkedList() = default;

    /// A deep copy, in the same order.
    LinkedList(LinkedList const& source) { append_all(source); }

    /// Contract: the nodes held so far are let go, not released, and the result refers to the source; a
    /// released list and a reference to the target are expected. Assigning a list to itself therefore empties
    /// it. Test: LinkedList.AssignmentLetsGoOfItsNodesAndReturnsTheSource
    LinkedList const& operator=(LinkedList const& source) // NOLINT(bugprone-unhandled-self-assignment)
    {
        head = nullptr;
        tail = nullptr;
        count = 0;
        append_all(source);
        return source;
    }

    ~LinkedList()
    {
        while (count != 0) {
            RemoveFirst();
        }
    }

    /// Appends a copy of @p value. Always true.
    bool Add(T value)
    {
        node* const added = new node{value, nullptr, tail};
        (head == nullptr ? head : tail->next) = added;
        tail = added;
        ++count;
        return true;
    }

    /// A copy of the record at @p index, counted from 0; a negative index means the first. Past the end a
    /// value-initialised record.
    T Get(int index) const
    {
        node const* const found = walk_to(index);
        return found == nullptr ? T{} : found->data;
    }

    /// The record in place, or null past the end. A negative index means the first.
    T* GetRef(int index)
    {
        node* const found = walk_to(index);
        return found == nullptr ? nullptr : &found->data;
    }

    /// Unlinks the record at @p index and hands it back. A negative index means the first. An empty list
    /// stays as it is and gives a value-initialised record, and so does an index past the end, which callers
    /// avoid.
    T Remove(int index)
    {
        node* const found = walk_to(index);
        return found == nullptr ? T{} : unlink(found);
    }

    /// As `Remove(0)`. The caller guarantees at least one node.
    T RemoveFirst() { return unlink(head); }

    node* head = nullptr; ///< First node, null if empty.
    node* tail = nullptr; ///< Last node, null if empty.
    int count = 0;        ///< Number of records.

private:
    void append_all(LinkedList const& source)
    {
        for (node const* each = source.head; each != nullptr; each = each->next) {
            Add(each->data);
        }
    }

    node* walk_to(int index) const
    {
        node* at = head;
        for (int step = 0; step < index && at != nullptr; ++step) {
            at = at->next;
        }
        return at;
    }

    T unlink(node* gone)
    {
        (gone->prev == nullptr ? head : gone->prev->next) = gone->next;
        (gone->next == nullptr ? tail : gone->next->prev) = gone->prev;
        --count;
        T data = gone->data;
        delete gone;
        return data;
    }
};

} // namespace umbrix_v0
