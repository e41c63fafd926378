// SPDX-License-Identifier: MIT
// List files as they should be, byte for byte, with a stand-in for DevIL.
#include "worklist/umbrix_list.h"

#include "boundary/message_box.h"
#include "call_log.h"
#include "list_bytes.h"
#include "temporary_folder.h"

#include <bit>
#include <gmock/gmock.h>
#include <random>

#define UMBRIX_FILL(type, name, offset) fill(record.name);
#define UMBRIX_EXPECT_EQUAL(type, name, offset) EXPECT_EQ(a.name, b.name);

namespace {

using namespace umbrixlib::test;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> messages;

class UmbrixListFile : public testing::Test {
protected:
    void SetUp() override
    {
        messages.clear();
        set_message_handler(
            [](char const* text, char const* title) { messages.push_back(std::string(title) + "|" + text); });
    }
    void TearDown() override { set_message_handler(nullptr); }

    std::string file() const { return (folder_ / "jobs.ulist").string(); }

    bool load(Bytes const& bytes)
    {
        write_file(file(), bytes);
        return list_.load_list(file());
    }
    Bytes saved()
    {
        EXPECT_TRUE(list_.save_list(file()));
        return read_file(file());
    }
    void add_job() { list_.items.Add({}); }

    TemporaryFolder folder_;
    umbrix_list list_;
};

void expect_golden_numbers(umbrix_data const& data)
{
    EXPECT_EQ(data.calc_type, 5);
    EXPECT_FALSE(data.multi_thread);
    EXPECT_TRUE(data.quiet);
    EXPECT_FALSE(data.preserve);
    EXPECT_TRUE(data.no_normal);
    EXPECT_EQ(data.rays, 0x01020304);
    EXPECT_EQ(data.radius, 1.5f);
    EXPECT_EQ(data.h_scale, 2.5f);
    EXPECT_EQ(data.alpha_limit, 3.5f);
    EXPECT_EQ(data.theta_limit, 4.5f);
    EXPECT_EQ(data.contrast, 5.5f);
    EXPECT_EQ(data.h_contrast, 6.5f);
    EXPECT_EQ(data.brightness, 7.5f);
    EXPECT_EQ(data.h_brightness, 8.5f);
    EXPECT_EQ(data.smooth, 9.5f);
    EXPECT_EQ(data.h_smooth, 10.5f);
    EXPECT_EQ(data.b_radius, 11.5f);
    EXPECT_EQ(data.max, 11);
    EXPECT_EQ(data.h_max, 12);
    EXPECT_EQ(data.min, 13);
    EXPECT_EQ(data.h_min, 14);
    EXPECT_FALSE(data.tile);
    EXPECT_TRUE(data.h_tile);
    EXPECT_FALSE(data.v_tile);
    EXPECT_TRUE(data.blend_height);
    EXPECT_EQ(data.UmbrixMode, 2);
    EXPECT_FALSE(data.height_map);
    EXPECT_TRUE(data.generate_normal);
    EXPECT_FALSE(data.normal_flag_1);
    EXPECT_EQ(data.n_scale, 12.5f);
    EXPECT_EQ(data.gaussian, 13.5f);
    EXPECT_EQ(data.L_Detail, 14.5f);
    EXPECT_TRUE(data.normal_flag_2);
    EXPECT_EQ(data.mode, -2);
}

void expect_golden_numbers(n_layer const& layer)
{
    EXPECT_EQ(layer.blend_mode, 3);
    EXPECT_EQ(layer.opacity, 0.5f);
    EXPECT_EQ(layer.n_scale, 1.5f);
    EXPECT_EQ(layer.L_Detail, 2.5f);
    EXPECT_EQ(layer.gaussian, 3.5f);
    EXPECT_EQ(layer.depth, 4.5f);
    EXPECT_EQ(layer.normal_scale, 5.5f);
    EXPECT_EQ(layer.edge_a, 6.5f);
    EXPECT_EQ(layer.edge_b, 7.5f);
    EXPECT_TRUE(layer.spare_flag);
    EXPECT_FALSE(layer.regenerate);
}

void expect_default_numbers(umbrix_data const& data)
{
    EXPECT_EQ(data.calc_type, 0);
    EXPECT_FALSE(data.multi_thread || data.quiet || data.preserve || data.no_normal);
    EXPECT_EQ(data.rays, 300);
    EXPECT_EQ(data.radius, 1.0f);
    EXPECT_EQ(data.b_radius, 10.0f);
    EXPECT_EQ(data.h_scale, 1.0f);
    EXPECT_EQ(data.alpha_limit, 120.0f);
    EXPECT_EQ(data.theta_limit, 120.0f);
    for (float const off : {data.contrast, data.h_contrast, data.brightness, data.h_brightness, data.smooth,
                            data.h_smooth, data.gaussian}) {
        EXPECT_EQ(off, 0.0f);
    }
    EXPECT_EQ(data.max, 255);
    EXPECT_EQ(data.h_max, 255);
    EXPECT_EQ(data.min, 0);
    EXPECT_EQ(data.h_min, 0);
    EXPECT_TRUE(data.tile && data.h_tile && data.v_tile);
    EXPECT_FALSE(data.height_map || data.generate_normal || data.blend_height);
    EXPECT_FALSE(data.normal_flag_1 || data.normal_flag_2);
    EXPECT_EQ(data.n_scale, 1.0f);
    EXPECT_EQ(data.L_Detail, 1.0f);
    EXPECT_EQ(data.mode, 0);
    EXPECT_EQ(data.UmbrixMode, 0);
}

TEST_F(UmbrixListFile, ReadsEveryByteOfTheFormat)
{
    ASSERT_TRUE(load(golden_list()));
    ASSERT_EQ(list_.get_size(), 2);
    expect_golden_numbers(list_.get_data(0));
    expect_golden_numbers(list_.get_data(1));
    EXPECT_EQ(list_.get_filename(0), "a.tga");
    EXPECT_EQ(list_.get_search_str(0), "*.tga");
    EXPECT_EQ(list_.get_filename(1), "");
    EXPECT_EQ(list_.get_search_str(1), "");
    LinkedList<n_layer> const layers = list_.get_layers(0);
    ASSERT_EQ(layers.count, 2);
    EXPECT_EQ(layers.Get(0).filename, "low.png");
    EXPECT_EQ(layers.Get(0).name, "Low");
    EXPECT_EQ(layers.Get(1).filename + layers.Get(1).name, "");
    expect_golden_numbers(layers.Get(0));
    expect_golden_numbers(layers.Get(1));
    EXPECT_EQ(list_.get_layers(1).count, 0);
    EXPECT_THAT(messages, IsEmpty());
}

TEST_F(UmbrixListFile, WritesEveryByteOfTheFormat)
{
    ASSERT_TRUE(load(golden_list()));
    EXPECT_EQ(saved(), golden_list());
}

TEST_F(UmbrixListFile, AnEmptyListTakesEightBytes)
{
    EXPECT_EQ(saved(), (Bytes{0x66, 0x66, 0xa6, 0x40, 0, 0, 0, 0}));
    add_job();
    EXPECT_TRUE(list_.load_list(file()));
    EXPECT_EQ(list_.get_size(), 0);
}

TEST_F(UmbrixListFile, AnItemWithoutTextsAndLayersTakes104Bytes)
{
    list_.add_item(calc_type_light, "", "", false, false, false, false, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
                   0, 0, 0, false, false, false, false, false, 0, 0, 0, 0, false, Modes_Projection);
    EXPECT_EQ(saved(), joined({list_head(1), Bytes(104, 0)}));
    ASSERT_TRUE(list_.load_list(file()));
    EXPECT_EQ(list_.get_filename(0), "");
    EXPECT_EQ(list_.get_search_str(0), "");
}

TEST_F(UmbrixListFile, EachJobGetsAStackOverItsLayers)
{
    CallLog::instance().clear();
    ASSERT_TRUE(load(golden_list()));
    for (int const job : {0, 1}) {
        ASSERT_NE(list_.get_NLayers(job), nullptr);
        EXPECT_EQ(list_.get_NLayers(job)->records, list_.get_layers_ptr(job));
        EXPECT_EQ(list_.get_NLayers(job)->Count(), 0);
    }
    EXPECT_THAT(CallLog::instance().calls(),
                ElementsAre("ilInit()", "ilEnable(0x0620)", "ilEnable(0x0600)",
                            "ilSetInteger(0x0600, 0x0602)", "ilInit()", "ilEnable(0x0620)",
                            "ilEnable(0x0600)", "ilSetInteger(0x0600, 0x0602)"));
}

TEST_F(UmbrixListFile, LoadingReplacesTheJobs)
{
    ASSERT_TRUE(load(golden_list()));
    ASSERT_TRUE(list_.load_list(file()));
    EXPECT_EQ(list_.get_size(), 2);
    EXPECT_EQ(saved(), golden_list());
}

TEST_F(UmbrixListFile, AFileThatDoesNotOpenOrFitEmptiesTheList)
{
    add_job();
    EXPECT_FALSE(list_.load_list((folder_ / "none").string()));
    EXPECT_EQ(list_.get_size(), 0);
    EXPECT_THAT(messages, IsEmpty());

    add_job();
    list_.set_NLayers(0, new NLayers(list_.get_layers_ptr(0)));
    EXPECT_FALSE(load(joined({{0, 0, 0xa0, 0x40}, number_bytes(1), Bytes(104, 0)}))); // 5.0
    EXPECT_EQ(list_.get_size(), 0);
    EXPECT_THAT(messages, ElementsAre("Error|Incorrect File Version."));
}

TEST_F(UmbrixListFile, NoOtherVersionIsRead)
{
    Bytes const others[] = {
        {0x65, 0x66, 0xa6, 0x40},
        {0x67, 0x66, 0xa6, 0x40}, // the floats next to 5.2
        {0x66, 0x66, 0xa6, 0xc0}, // -5.2
        {0, 0, 0xc0, 0x7f},
        {0, 0, 0xc0, 0xff},       // what is no number
        {0x40, 0xa6, 0x66, 0x66}, // the other order of bytes
        {},
        {0x66, 0x66, 0xa6}, // what is no version
    };
    for (Bytes const& version : others) {
        messages.clear();
        EXPECT_FALSE(load(version.size() < 4 ? version : joined({version, number_bytes(0)})));
        EXPECT_EQ(list_.get_size(), 0);
        EXPECT_THAT(messages, ElementsAre("Error|Incorrect File Version."));
    }
}

TEST_F(UmbrixListFile, AFolderIsNoList)
{
    add_job();
    EXPECT_FALSE(list_.load_list(folder_.path().string()));
    EXPECT_EQ(list_.get_size(), 0);
    EXPECT_FALSE(list_.save_list(folder_.path().string()));
}

TEST_F(UmbrixListFile, SavingLooksAtTheOpeningOnly)
{
    add_job();
    EXPECT_FALSE(list_.save_list((folder_ / "none" / "jobs.ulist").string()));
    EXPECT_THAT(messages, IsEmpty());
    EXPECT_EQ(list_.get_size(), 1);
    EXPECT_TRUE(list_.save_list("/dev/full")) << "which takes no byte";
    EXPECT_THAT(messages, IsEmpty());
}

TEST_F(UmbrixListFile, SavingReplacesALongerFile)
{
    write_file(file(), Bytes(5000, 7));
    EXPECT_EQ(saved(), list_head(0));
}

TEST_F(UmbrixListFile, ATextIsSavedWholeAndReadUpToItsFirstZero)
{
    std::string const text("ab\0cd", 5);
    add_job();
    list_.set_filename(0, text);
    list_.set_search_str(0, std::string("\0", 1));
    n_layer layer;
    layer.name = text;
    list_.get_layers_ptr(0)->Add(layer);
    EXPECT_EQ(saved(), joined({list_head(1),
                               Bytes(92, 0),
                               text_bytes(text),
                               number_bytes(1),
                               {0},
                               number_bytes(1),
                               text_bytes(""),
                               text_bytes(text),
                               Bytes(40, 0)}));
    ASSERT_TRUE(list_.load_list(file()));
    EXPECT_EQ(list_.get_filename(0), "ab");
    EXPECT_EQ(list_.get_search_str(0), "");
    EXPECT_EQ(list_.get_layers(0).Get(0).name, "ab");
}

TEST_F(UmbrixListFile, AnyByteThatIsNotZeroIsTrue)
{
    Bytes file = joined({list_head(1), Bytes(92, 0xff), text_bytes(""), text_bytes(""), number_bytes(1),
                         text_bytes(""), text_bytes(""), Bytes(40, 0x02)});
    ASSERT_TRUE(load(file));
    umbrix_data const data = list_.get_data(0);
    EXPECT_EQ(data.multi_thread, true);
    EXPECT_EQ(static_cast<int>(data.normal_flag_2), 1);
    EXPECT_EQ(static_cast<int>(list_.get_layers(0).Get(0).spare_flag), 1);
    // Bools come out as 1, filler as 0; numbers keep their bits, as the floats that are none here.
    for (std::size_t const at : {4, 5, 6, 7, 60, 61, 62, 63, 68, 69, 70, 84}) {
        file[8 + at] = 1;
    }
    for (std::size_t const at : {71, 85, 86, 87}) {
        file[8 + at] = 0;
    }
    std::copy_n(Bytes{1, 0, 0, 0}.begin(), 4, file.end() - 4);
    EXPECT_EQ(saved(), file);
}

TEST_F(UmbrixListFile, FloatsKeepTheirBits)
{
    for (std::uint32_t const bits :
         {0x80000000U, 1U, 0x7f800000U, 0xff800000U, 0x7fc00001U, 0x7f800001U, 0xffffffffU, 0x7f7fffffU}) {
        Bytes file = golden_list();
        Bytes const value = number_bytes(bits);
        std::copy(value.begin(), value.end(), file.begin() + 8 + 12);
        std::copy(value.begin(), value.end(), file.begin() + 8 + 80);
        ASSERT_TRUE(load(file));
        EXPECT_EQ(std::bit_cast<std::uint32_t>(list_.items.head->data.radius), bits);
        EXPECT_EQ(saved(), file);
    }
}

TEST_F(UmbrixListFile, AFileThatEndsEarlyLeavesTheDefaults)
{
    ASSERT_TRUE(load(joined({list_head(3), job_block(), text_bytes("a"), text_bytes("b"), number_bytes(0)})));
    ASSERT_EQ(list_.get_size(), 3);
    expect_golden_numbers(list_.get_data(0));
    EXPECT_EQ(list_.get_filename(0), "a");
    for (int const job : {1, 2}) {
        expect_default_numbers(list_.get_data(job));
        EXPECT_EQ(list_.get_filename(job), "NONE");
        EXPECT_EQ(list_.get_search_str(job), "NONE.tga");
        EXPECT_EQ(list_.get_layers(job).count, 0);
        EXPECT_NE(list_.get_NLayers(job), nullptr);
    }
    EXPECT_THAT(messages, IsEmpty());

    ASSERT_TRUE(load({0x66, 0x66, 0xa6, 0x40}));
    EXPECT_EQ(list_.get_size(), 0);
}

/// Jobs with random values in all that is saved.
class RandomJobs {
public:
    umbrix_node job()
    {
        umbrix_node record;
        UMBRIX_DATA_FIELDS(UMBRIX_FILL, UMBRIX_FILL)
        record.filename = text();
        record.search_str = text();
        for (auto left = random_() % 4; left != 0; --left) {
            record.layers.Add(layer());
        }
        return record;
    }

private:
    n_layer layer()
    {
        n_layer record;
        UMBRIX_LAYER_FIELDS(UMBRIX_FILL)
        record.filename = text();
        record.name = text();
        return record;
    }

    std::string text()
    {
        std::string result(random_() % 40, ' ');
        for (char& each : result) {
            each = static_cast<char>(1 + random_() % 255);
        }
        return result;
    }

    void fill(bool& field) { field = random_() % 2 == 0; }
    template <typename T>
    void fill(T& field)
    {
        field = static_cast<T>(static_cast<int>(random_() % 1000) - 500);
    }

    std::mt19937 random_{5};
};

void expect_equal(n_layer const& a, n_layer const& b)
{
    EXPECT_EQ(a.filename, b.filename);
    EXPECT_EQ(a.name, b.name);
    UMBRIX_LAYER_FIELDS(UMBRIX_EXPECT_EQUAL)
}

void expect_equal(umbrix_node const& a, umbrix_node const& b)
{
    UMBRIX_DATA_FIELDS(UMBRIX_EXPECT_EQUAL, UMBRIX_EXPECT_EQUAL)
    EXPECT_EQ(a.filename, b.filename);
    EXPECT_EQ(a.search_str, b.search_str);
    ASSERT_EQ(a.layers.count, b.layers.count);
    for (int i = 0; i < a.layers.count; ++i) {
        expect_equal(a.layers.Get(i), b.layers.Get(i));
    }
}

TEST_F(UmbrixListFile, AListComesBackAsItWasSaved)
{
    RandomJobs random;
    for (int jobs = 0; jobs < 40; ++jobs) {
        umbrix_list list;
        for (int i = 0; i < jobs; ++i) {
            list.items.Add(random.job());
        }
        ASSERT_TRUE(list.save_list(file()));
        ASSERT_TRUE(list_.load_list(file()));
        ASSERT_EQ(list_.get_size(), jobs);
        for (int i = 0; i < jobs; ++i) {
            expect_equal(list_.get_node(i), list.get_node(i));
        }
    }
}

} // namespace
