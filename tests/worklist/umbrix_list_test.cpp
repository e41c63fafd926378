// SPDX-License-Identifier: MIT
// The list as a store, with a stand-in for DevIL.
#include "worklist/umbrix_list.h"

#include <climits>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <type_traits>

namespace {

static_assert(sizeof(umbrix_data) == 92);
static_assert(std::is_base_of_v<umbrix_data, umbrix_node>);
static_assert(!std::is_polymorphic_v<umbrix_list> && !std::is_copy_constructible_v<umbrix_list>);

constexpr int kNowhere[] = {INT_MIN, -1, 1, 2, INT_MAX}; // in a list of one job

/// Adds a job of which no two neighbouring arguments of a type are alike.
bool add(umbrix_list& list, std::string const& filename = "in.tga")
{
    return list.add_item(calc_type_occlusion, filename, "*.tga", true, false, true, false, 7, 1, 2, 3, 4, 5,
                         6, 7, 8, 9, 10, 11, 101, 102, 103, 104, true, false, true, false, true, 12, 13, 14,
                         -5, true, Modes_FlatIsFull);
}

n_layer layer_named(std::string const& name)
{
    n_layer layer;
    layer.name = name;
    return layer;
}

TEST(UmbrixList, AFreshListIsEmpty)
{
    umbrix_list list;
    EXPECT_EQ(list.get_size(), 0);
    EXPECT_EQ(list.items.head, nullptr);
}

TEST(UmbrixList, AddItemPutsEachArgumentInItsField)
{
    umbrix_list list;
    EXPECT_TRUE(add(list));
    EXPECT_EQ(list.get_size(), 1);
    EXPECT_EQ(list.get_calc_type(0), 5);
    EXPECT_EQ(list.get_filename(0), "in.tga");
    EXPECT_EQ(list.get_search_str(0), "*.tga");
    EXPECT_TRUE(list.get_multi_thread(0));
    EXPECT_FALSE(list.get_quiet(0));
    EXPECT_TRUE(list.get_preserve(0));
    EXPECT_FALSE(list.get_no_normal(0));
    EXPECT_EQ(list.get_rays(0), 7);
    EXPECT_EQ(list.get_radius(0), 1.0f);
    EXPECT_EQ(list.get_b_radius(0), 2.0f);
    EXPECT_EQ(list.get_h_scale(0), 3.0f);
    EXPECT_EQ(list.get_alpha_limit(0), 4.0f);
    EXPECT_EQ(list.get_theta_limit(0), 5.0f);
    EXPECT_EQ(list.get_contrast(0), 6.0f);
    EXPECT_EQ(list.get_h_contrast(0), 7.0f);
    EXPECT_EQ(list.get_brightness(0), 8.0f);
    EXPECT_EQ(list.get_h_brightness(0), 9.0f);
    EXPECT_EQ(list.get_smooth(0), 10.0f);
    EXPECT_EQ(list.get_h_smooth(0), 11.0f);
    EXPECT_EQ(list.get_max(0), 101);
    EXPECT_EQ(list.get_h_max(0), 102);
    EXPECT_EQ(list.get_min(0), 103);
    EXPECT_EQ(list.get_h_min(0), 104);
    EXPECT_TRUE(list.get_tile(0));
    EXPECT_FALSE(list.get_h_tile(0));
    EXPECT_TRUE(list.get_v_tile(0));
    EXPECT_FALSE(list.get_height_map(0));
    EXPECT_TRUE(list.get_generate_normal(0));
    EXPECT_EQ(list.get_n_scale(0), 12.0f);
    EXPECT_EQ(list.get_gaussian(0), 13.0f);
    EXPECT_EQ(list.get_L_Detail(0), 14.0f);
    EXPECT_EQ(list.get_mode(0), -5);
    EXPECT_TRUE(list.get_blend_height(0));
    EXPECT_EQ(list.get_UmbrixMode(0), Modes_FlatIsFull);
    EXPECT_EQ(list.get_layers_ptr(0)->count, 0);
    EXPECT_EQ(list.get_NLayers(0), nullptr);
    EXPECT_FALSE(list.get_data(0).normal_flag_1);
    EXPECT_FALSE(list.get_data(0).normal_flag_2);
}

TEST(UmbrixList, AddItemAppends)
{
    umbrix_list list;
    for (char const* name : {"a", "b", "c"}) {
        add(list, name);
    }
    EXPECT_EQ(list.get_size(), 3);
    EXPECT_EQ(list.get_filename(0) + list.get_filename(1) + list.get_filename(2), "abc");
}

TEST(UmbrixList, LimitsKeepTheirLowByte)
{
    umbrix_list list;
    list.add_item(calc_type_light, "", "", false, false, false, false, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
                  300, 256, -1, INT_MIN, false, false, false, false, false, 0, 0, 0, 0, false,
                  Modes_Projection);
    EXPECT_EQ(list.get_max(0), 44);
    EXPECT_EQ(list.get_h_max(0), 0);
    EXPECT_EQ(list.get_min(0), 255);
    EXPECT_EQ(list.get_h_min(0), 0);
}

bool are_equal(umbrix_data const& a, umbrix_data const& b)
{
#define UMBRIX_DIFFERS(type, name, offset) a.name != b.name ||
    return !(UMBRIX_DATA_FIELDS(UMBRIX_DIFFERS, UMBRIX_DIFFERS) false);
#undef UMBRIX_DIFFERS
}

/// Sets and reads one field of job 1 of three, and looks at what must not change.
template <typename T>
void check_accessors(void (umbrix_list::*set)(int, T), T (umbrix_list::*get)(int), T umbrix_data::*field,
                     T value)
{
    umbrix_list list;
    for (char const* name : {"a", "b", "c"}) {
        add(list, name);
    }
    T const before = (list.*get)(1);
    ASSERT_NE(before, value);
    for (int const nowhere : {INT_MIN, -1, 3, INT_MAX}) {
        (list.*set)(nowhere, value);
        EXPECT_EQ((list.*get)(nowhere), T{});
    }
    (list.*set)(1, value);
    EXPECT_EQ((list.*get)(0), before);
    EXPECT_EQ((list.*get)(1), value);
    EXPECT_EQ((list.*get)(2), before);
    umbrix_data changed = list.get_data(1);
    EXPECT_EQ(changed.*field, value);
    EXPECT_FALSE(are_equal(changed, list.get_data(0)));
    changed.*field = before;
    EXPECT_TRUE(are_equal(changed, list.get_data(0))) << "no other field changes";
    umbrix_list empty;
    EXPECT_EQ((empty.*get)(0), T{});
}

bool other(bool value)
{
    return !value;
}
template <typename T>
T other(T value)
{
    return static_cast<T>(value + 1);
}

TEST(UmbrixList, EachFieldHasASetterAndAGetter)
{
    umbrix_list sample;
    add(sample);
    int fields = 0;
#define UMBRIX_CHECK(type, name, offset)                                                                     \
    {                                                                                                        \
        SCOPED_TRACE(#name);                                                                                 \
        ++fields;                                                                                            \
        check_accessors<type>(&umbrix_list::set_##name, &umbrix_list::get_##name, &umbrix_data::name,        \
                              other(sample.get_##name(0)));                                                  \
    }
#define UMBRIX_SKIP(type, name, offset)
    UMBRIX_DATA_FIELDS(UMBRIX_CHECK, UMBRIX_SKIP)
#undef UMBRIX_CHECK
#undef UMBRIX_SKIP
    EXPECT_EQ(fields, 32);
}

TEST(UmbrixList, TextsAreSetAndRead)
{
    umbrix_list list;
    add(list);
    list.set_filename(0, "other.tga");
    list.set_search_str(0, "*.png");
    EXPECT_EQ(list.get_filename(0), "other.tga");
    EXPECT_EQ(list.get_search_str(0), "*.png");
    for (int const nowhere : kNowhere) {
        list.set_filename(nowhere, "x");
        list.set_search_str(nowhere, "x");
        EXPECT_EQ(list.get_filename(nowhere), "");
        EXPECT_EQ(list.get_search_str(nowhere), "");
    }
    EXPECT_EQ(list.get_filename(0), "other.tga");
    EXPECT_EQ(list.get_search_str(0), "*.png");
}

TEST(UmbrixList, ThePlainPartIsTheHeadOfAnOptionRecord)
{
    umbrix_list list;
    add(list);
    umbrix_data const data = list.get_data(0);
    umbrix_options options = {};
    std::memcpy(&options, &data, sizeof data);
    EXPECT_EQ(options.calc_type, 5);
    EXPECT_EQ(options.rays, 7);
    EXPECT_EQ(options.h_min, 104);
    EXPECT_EQ(options.L_Detail, 14.0f);
    EXPECT_EQ(options.mode, -5);
    EXPECT_FALSE(options.recurse);
}

TEST(UmbrixList, NothingIsReadOutOfRange)
{
    umbrix_list list;
    add(list);
    for (int const nowhere : kNowhere) {
        EXPECT_EQ(list.get_data(nowhere).rays, 0);
        umbrix_node const node = list.get_node(nowhere);
        EXPECT_EQ(node.filename + node.search_str, "");
        EXPECT_EQ(node.layers.count, 0);
        EXPECT_EQ(node.radius, 0.0f);
        EXPECT_EQ(node.NLayers, nullptr);
        EXPECT_EQ(list.get_layers(nowhere).count, 0);
        EXPECT_EQ(list.get_layers_ptr(nowhere), nullptr);
        EXPECT_EQ(list.get_NLayers(nowhere), nullptr);
        list.set_layers(nowhere, {});
        list.set_NLayers(nowhere, nullptr);
    }
    umbrix_list empty;
    EXPECT_EQ(empty.get_data(0).rays, 0);
    EXPECT_EQ(empty.get_radius(0), 0.0f);
}

TEST(UmbrixList, ACopyOfAJobIsADeepOne)
{
    umbrix_list list;
    add(list);
    list.get_layers_ptr(0)->Add(layer_named("low"));
    umbrix_node copy = list.get_node(0);
    EXPECT_EQ(copy.filename, "in.tga");
    EXPECT_EQ(copy.radius, 1.0f);
    EXPECT_EQ(copy.layers.Get(0).name, "low");
    copy.filename = "changed";
    copy.layers.GetRef(0)->name = "changed";
    list.get_layers(0).GetRef(0)->name = "changed";
    EXPECT_EQ(list.get_filename(0), "in.tga");
    EXPECT_EQ(list.get_layers(0).Get(0).name, "low");
}

TEST(UmbrixList, SetLayersLetsGoOfTheOldOnes)
{
    umbrix_list list;
    add(list);
    LinkedList<n_layer> layers;
    layers.Add(layer_named("old"));
    list.set_layers(0, layers);
    LinkedList<n_layer>* const own = list.get_layers_ptr(0);
    std::unique_ptr<LinkedList<n_layer>::node> const old(own->head);
    EXPECT_EQ(old->data.name, "old");
    layers.GetRef(0)->name = "new";
    layers.Add(layer_named("second"));
    list.set_layers(0, layers);
    EXPECT_EQ(old->data.name, "old") << "it must still be there";
    EXPECT_EQ(list.get_layers_ptr(0), own);
    EXPECT_EQ(own->count, 2);
    EXPECT_EQ(own->Get(0).name, "new");
    layers.GetRef(0)->name = "changed";
    EXPECT_EQ(own->Get(0).name, "new");
}

TEST(UmbrixList, OwnsTheStacksThatAreHandedOver)
{
    // The sanitizers tell what is released twice or never.
    umbrix_list list;
    add(list);
    add(list);
    for (int const index : {0, 1}) {
        auto* const stack = new NLayers(list.get_layers_ptr(index));
        list.set_NLayers(index, stack);
        EXPECT_EQ(list.get_NLayers(index), stack);
        EXPECT_EQ(list.get_node(index).NLayers, stack);
    }
    list.remove_item(1);
    EXPECT_EQ(list.get_size(), 1);
    EXPECT_NE(list.get_NLayers(0), nullptr);
}

TEST(UmbrixList, TheStackThatIsReplacedStaysWithTheCaller)
{
    umbrix_list list;
    add(list);
    auto const first = std::make_unique<NLayers>(list.get_layers_ptr(0));
    list.set_NLayers(0, first.get());
    list.set_NLayers(0, new NLayers(list.get_layers_ptr(0)));
    EXPECT_EQ(first->Count(), 0);
}

TEST(UmbrixList, RemovesTheJobAtAnIndex)
{
    umbrix_list list;
    for (char const* name : {"a", "b", "c"}) {
        add(list, name);
    }
    list.remove_item(1);
    EXPECT_EQ(list.get_size(), 2);
    EXPECT_EQ(list.get_filename(0) + list.get_filename(1), "ac");
    list.remove_item(1);
    EXPECT_EQ(list.items.tail, list.items.head);
    list.remove_item(7);
    EXPECT_EQ(list.get_size(), 1);
    list.remove_item(0);
    list.remove_item(0);
    list.remove_item(-1);
    EXPECT_EQ(list.get_size(), 0);
}

TEST(UmbrixList, ANegativeIndexRemovesTheFirstJobWithoutItsStack)
{
    umbrix_list list;
    add(list, "a");
    add(list, "b");
    auto const stack = std::make_unique<NLayers>(nullptr);
    list.set_NLayers(0, stack.get());
    list.remove_item(-3);
    EXPECT_EQ(list.get_size(), 1);
    EXPECT_EQ(list.get_filename(0), "b");
    EXPECT_EQ(stack->Count(), 0) << "it must still be there";
}

} // namespace
