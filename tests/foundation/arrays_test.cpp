// SPDX-License-Identifier: MIT
#include "foundation/arrays.h"

#include <climits>
#include <gtest/gtest.h>
#include <memory>
#include <new>
#include <vector>

namespace {

template <typename T>
class ArraysOf : public testing::Test {
protected:
    /// An array of elements, none of which is the fill value 1.
    static T* array_of(int count)
    {
        T* const array = new T[static_cast<std::size_t>(count)];
        for (int i = 0; i < count; ++i) {
            array[i] = old(i);
        }
        return array;
    }

    static T old(int i) { return std::is_same_v<T, bool> ? T(false) : static_cast<T>(i + 2); }
    static constexpr T kFill = static_cast<T>(1);
};

using Elements = testing::Types<float, int, bool>;
TYPED_TEST_SUITE(ArraysOf, Elements);

TYPED_TEST(ArraysOf, SetUpArrayKeepsAllButTheLastOldElementAndFillsTheRest)
{
    for (int const old_size : {0, 1, 2, 7}) {
        for (int const new_size : {old_size, old_size + 1, old_size + 5}) {
            std::unique_ptr<TypeParam[]> const result(
                set_up_array(this->array_of(old_size), old_size, new_size, this->kFill));
            for (int i = 0; i < new_size; ++i) {
                TypeParam const expected = i < old_size - 1 ? this->old(i) : this->kFill;
                EXPECT_EQ(result[static_cast<std::size_t>(i)], expected)
                    << i << " from " << old_size << " to " << new_size;
            }
        }
    }
}

TYPED_TEST(ArraysOf, SetUpArrayToASmallerSizeKeepsTheFirstElementsAndFillsNone)
{
    for (int const new_size : {4, 3, 1, 0}) {
        std::unique_ptr<TypeParam[]> const result(set_up_array(this->array_of(5), 5, new_size, this->kFill));
        ASSERT_NE(result, nullptr);
        for (int i = 0; i < new_size; ++i) {
            EXPECT_EQ(result[static_cast<std::size_t>(i)], this->old(i)) << i << " of " << new_size;
        }
    }
}

TYPED_TEST(ArraysOf, SetUpArrayTakesNoArrayAndSizesBelowZero)
{
    TypeParam* const none = nullptr;
    std::unique_ptr<TypeParam[]> const grown(set_up_array(none, 0, 2, this->kFill));
    EXPECT_EQ(grown[0], this->kFill);
    EXPECT_EQ(grown[1], this->kFill);
    std::unique_ptr<TypeParam[]> const from_below(set_up_array(none, -3, 1, this->kFill));
    EXPECT_EQ(from_below[0], this->kFill);
    std::unique_ptr<TypeParam[]> const lowest(set_up_array(none, INT_MIN, 1, this->kFill));
    EXPECT_EQ(lowest[0], this->kFill);
    std::unique_ptr<TypeParam[]> const empty(set_up_array(this->array_of(2), 2, -1, this->kFill));
    EXPECT_NE(empty, nullptr);
}

TYPED_TEST(ArraysOf, FillArraySetsEveryElementAndTheSize)
{
    int size = -7;
    std::unique_ptr<TypeParam[]> const array(fill_array(size, 3, this->kFill));
    EXPECT_EQ(size, 3);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(array[i], this->kFill);
    }
}

TYPED_TEST(ArraysOf, FillArrayBelowOneElementGivesAnEmptyBlockAndStoresTheCount)
{
    for (int const count : {0, -1, INT_MIN}) {
        int size = 5;
        std::unique_ptr<TypeParam[]> const array(fill_array(size, count, this->kFill));
        EXPECT_NE(array, nullptr);
        EXPECT_EQ(size, count);
    }
}

TYPED_TEST(ArraysOf, AddValAppendsOneValueACall)
{
    TypeParam* array = nullptr;
    int size = 0;
    for (int i = 0; i < 20; ++i) {
        array = add_val(array, size, static_cast<TypeParam>(i % 3));
        ASSERT_EQ(size, i + 1);
        for (int k = 0; k <= i; ++k) {
            ASSERT_EQ(array[k], static_cast<TypeParam>(k % 3));
        }
    }
    delete[] array;
}

TYPED_TEST(ArraysOf, AddValOnASizeBelowZeroGivesOneElementAndAddsOneToTheSize)
{
    TypeParam* const none = nullptr;
    int size = -4;
    std::unique_ptr<TypeParam[]> const array(add_val(none, size, this->kFill));
    EXPECT_EQ(size, -3);
    EXPECT_EQ(array[0], this->kFill);
}

TEST(Arrays, SetUpArrayOverwritesTheLastOldElement)
{
    std::unique_ptr<int[]> const result(set_up_array(new int[3]{1, 2, 3}, 3, 5, 9));
    EXPECT_EQ(std::vector<int>(result.get(), result.get() + 5), (std::vector<int>{1, 2, 9, 9, 9}));
    std::unique_ptr<int[]> const same(set_up_array(new int[3]{1, 2, 3}, 3, 3, 9));
    EXPECT_EQ(std::vector<int>(same.get(), same.get() + 3), (std::vector<int>{1, 2, 9}));
}

TEST(Arrays, AddValDoesNotReleaseAnArrayOfSizeZero)
{
    std::unique_ptr<int[]> const kept(new int[1]{5});
    int size = 0;
    std::unique_ptr<int[]> const result(add_val(kept.get(), size, 8));
    EXPECT_EQ(size, 1);
    EXPECT_EQ(result[0], 8);
    EXPECT_EQ(kept[0], 5) << "still the caller's";
}

TEST(Arrays, AddStringAppendsOneStringACall)
{
    std::vector<std::unique_ptr<std::string[]>> arrays;
    std::string* array = nullptr;
    int size = 0;
    for (int i = 0; i < 5; ++i) {
        array = add_string(array, size, "a string too long to be kept inside " + std::to_string(i));
        arrays.emplace_back(array);
        ASSERT_EQ(size, i + 1);
        for (int k = 0; k <= i; ++k) {
            ASSERT_EQ(array[k], "a string too long to be kept inside " + std::to_string(k));
        }
    }
}

TEST(Arrays, AddStringNeverReleasesTheOldArray)
{
    std::unique_ptr<std::string[]> const old(new std::string[2]{"one", "two"});
    int size = 2;
    std::unique_ptr<std::string[]> const result(add_string(old.get(), size, "three"));
    EXPECT_EQ(size, 3);
    EXPECT_EQ(result[1], "two");
    EXPECT_EQ(result[2], "three");
    EXPECT_EQ(old[0], "one") << "still the caller's";
    EXPECT_EQ(old[1], "two");
}

TEST(Arrays, AddStringOnASizeBelowOneStoresOne)
{
    int size = -6;
    std::unique_ptr<std::string[]> const result(add_string(nullptr, size, "only"));
    EXPECT_EQ(size, 1);
    EXPECT_EQ(result[0], "only");
}

} // namespace
