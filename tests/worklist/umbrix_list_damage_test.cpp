// SPDX-License-Identifier: MIT
// List files as they should not be: cut off, with impossible lengths and counts, with random bytes.
#include "worklist/umbrix_list.h"

#include "boundary/message_box.h"
#include "list_bytes.h"
#include "list_walk.h"
#include "memory_file.h"
#include "memory_watch.h"

#include <gtest/gtest.h>
#include <memory>
#include <random>

namespace {

using namespace umbrixlib::test;

/// Places in `golden_list`.
enum Place : std::size_t {
    kJobs = 4,
    kBlock = 8,
    kFilename = kBlock + 92,
    kPattern = kFilename + 4 + 5,
    kLayers = kPattern + 4 + 5,
    kLayer1File = kLayers + 4,
    kLayer1Name = kLayer1File + 4 + 7,
    kLayer1Block = kLayer1Name + 4 + 3,
    kLayer2File = kLayer1Block + 40,
    kLayer2Name = kLayer2File + 4,
    kLayer2Block = kLayer2Name + 4,
    kSecondJob = kLayer2Block + 40,
    kSecondFilename = kSecondJob + 92,
    kSecondPattern = kSecondFilename + 4,
    kSecondLayers = kSecondPattern + 4,
    kEnd = kSecondLayers + 4,
};

class UmbrixListDamage : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_EQ(golden_list().size(), kEnd);
        set_message_handler([](char const*, char const*) {});
    }
    void TearDown() override { set_message_handler(nullptr); }

    /// Loads the bytes into a fresh list, which is what the list's memory is measured by.
    bool load(Bytes const& bytes)
    {
        list_ = std::make_unique<umbrix_list>();
        file_.set_content(bytes.data(), bytes.size());
        std::size_t const before = memory_watch.live;
        memory_watch.peak = before;
        bool const result = list_->load_list(file_.name());
        EXPECT_LE(memory_watch.peak - before, most_memory(bytes));
        return result;
    }

    /// What a file may cost: a fixed part, some times what is in it, and the records that it tells of.
    static std::size_t most_memory(Bytes const& bytes)
    {
        ToldRecords const told = told_by(bytes);
        return 128 * 1024 + 16 * bytes.size() + 700 * static_cast<std::size_t>(told.jobs) +
               200 * static_cast<std::size_t>(told.layers);
    }

    static ToldRecords told_by(Bytes const& bytes) { return ListWalk(bytes.data(), bytes.size()).told(); }

    std::string filename(int job = 0) { return list_->get_filename(job); }

    MemoryFile file_;
    std::unique_ptr<umbrix_list> list_;
};

TEST_F(UmbrixListDamage, AFileMayEndAtAnyByte)
{
    Bytes const whole = golden_list();
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        SCOPED_TRACE(size);
        ASSERT_EQ(load(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size))), size >= 4);
        ASSERT_EQ(list_->get_size(), size < kBlock ? 0 : 2);
        if (size < kBlock) {
            continue;
        }
        EXPECT_EQ(list_->get_rays(0), size < kFilename ? 300 : 0x01020304);
        EXPECT_EQ(list_->get_mode(0), size < kFilename ? 0 : -2);
        EXPECT_EQ(filename(), size < kPattern ? "NONE" : "a.tga");
        EXPECT_EQ(list_->get_search_str(0), size < kLayers ? "NONE.tga" : "*.tga");
        LinkedList<n_layer> const layers = list_->get_layers(0);
        ASSERT_EQ(layers.count, size < kLayer1File ? 0 : 2);
        EXPECT_EQ(layers.Get(0).filename, size < kLayer1Name ? "" : "low.png");
        EXPECT_EQ(layers.Get(0).name, size < kLayer1Block ? "" : "Low");
        EXPECT_EQ(layers.Get(0).edge_b, size < kLayer2File ? 0.0f : 7.5f);
        EXPECT_EQ(layers.Get(1).edge_b, size < kSecondJob ? 0.0f : 7.5f);
        EXPECT_EQ(list_->get_rays(1), size < kSecondFilename ? 300 : 0x01020304);
        EXPECT_EQ(filename(1), size < kSecondPattern ? "NONE" : "");
        EXPECT_EQ(list_->get_search_str(1), size < kSecondLayers ? "NONE.tga" : "");
        EXPECT_EQ(list_->get_layers(1).count, 0);
        EXPECT_NE(list_->get_NLayers(1), nullptr);
    }
}

constexpr std::uint32_t kImpossible[] = {kEnd,        0x7fffffffU, 0x7fffffffU - 8, 0x10000000U,
                                         0x80000000U, 0x80000001U, 0xffffffffU,     0xfffffff8U};

TEST_F(UmbrixListDamage, AnImpossibleLengthEndsTheFile)
{
    struct Length {
        std::size_t at;
        int layers; ///< Of job 0 after it.
    };
    for (Length const& length : {Length{kFilename, 0}, Length{kPattern, 0}, Length{kLayer1File, 2},
                                 Length{kLayer1Name, 2}, Length{kLayer2File, 2}, Length{kLayer2Name, 2},
                                 Length{kSecondFilename, 2}, Length{kSecondPattern, 2}}) {
        for (std::uint32_t const value : kImpossible) {
            SCOPED_TRACE(testing::Message() << "at " << length.at << " " << std::hex << value);
            Bytes file = golden_list();
            Bytes const bytes = number_bytes(value);
            std::copy(bytes.begin(), bytes.end(), file.begin() + static_cast<std::ptrdiff_t>(length.at));
            ASSERT_TRUE(load(file));
            ASSERT_EQ(list_->get_size(), 2);
            EXPECT_EQ(list_->get_rays(0), 0x01020304);
            EXPECT_EQ(filename(), length.at <= kFilename ? "NONE" : "a.tga");
            EXPECT_EQ(list_->get_search_str(0), length.at <= kPattern ? "NONE.tga" : "*.tga");
            ASSERT_EQ(list_->get_layers(0).count, length.layers);
            EXPECT_EQ(list_->get_layers(0).Get(0).filename, length.at <= kLayer1File ? "" : "low.png");
            EXPECT_EQ(list_->get_layers(0).Get(1).edge_b, length.at <= kLayer2Name ? 0.0f : 7.5f);
            EXPECT_EQ(list_->get_rays(1), length.at < kSecondJob ? 300 : 0x01020304);
            EXPECT_EQ(filename(1), length.at <= kSecondFilename ? "NONE" : "");
            EXPECT_EQ(list_->get_search_str(1), "NONE.tga");
        }
    }
}

TEST_F(UmbrixListDamage, ATextCutInTheMiddleIsLeftOut)
{
    Bytes const start = joined({list_head(2), job_block()});
    ASSERT_TRUE(load(joined({start, number_bytes(4), {'a', 'b', 'c'}})));
    EXPECT_EQ(filename(), "NONE");
    EXPECT_EQ(list_->get_search_str(0), "NONE.tga");
    EXPECT_EQ(filename(1), "NONE") << "nothing is there after it";
    ASSERT_TRUE(load(joined({start, number_bytes(3), {'a', 'b', 'c'}})));
    EXPECT_EQ(filename(), "abc");

    Bytes const layer = joined({start, text_bytes("a"), text_bytes("b"), number_bytes(1), text_bytes("c")});
    ASSERT_TRUE(load(joined({layer, number_bytes(2), {'d'}})));
    ASSERT_EQ(list_->get_layers_ptr(0)->count, 1);
    EXPECT_EQ(list_->get_layers(0).Get(0).filename, "c");
    EXPECT_EQ(list_->get_layers(0).Get(0).name, "");
}

TEST_F(UmbrixListDamage, ANegativeCountIsNone)
{
    for (std::uint32_t const value : {0x80000000U, 0x80000001U, 0xffffffffU}) {
        Bytes file = golden_list();
        Bytes const bytes = number_bytes(value);
        std::copy(bytes.begin(), bytes.end(), file.begin() + kLayers);
        ASSERT_TRUE(load(file));
        ASSERT_EQ(list_->get_size(), 2);
        EXPECT_EQ(list_->get_layers(0).count, 0);
        std::copy(bytes.begin(), bytes.end(), file.begin() + kJobs);
        ASSERT_TRUE(load(file));
        EXPECT_EQ(list_->get_size(), 0);
    }
}

TEST_F(UmbrixListDamage, ACountBeyondTheFileIsTakenAtItsWord)
{
    struct Count {
        std::uint32_t told;
        int there; ///< Records of the least size in the file.
        int made;
    };
    for (Count const& each : {Count{1, 0, 1}, Count{65, 0, 65}, Count{1000, 1, 1000}, Count{1000, 999, 1000},
                              Count{1000, 1001, 1000}, Count{99'999, 5, 99'999}, Count{100'000, 0, 100'000},
                              Count{100'001, 0, 100'000}, Count{0x7fffffff, 1000, 100'000},
                              Count{100'001, 100'001, 100'001}, Count{100'003, 100'002, 100'002}}) {
        SCOPED_TRACE(testing::Message() << each.told << " told, " << each.there << " there");
        auto const there = static_cast<std::size_t>(each.there);
        ASSERT_TRUE(load(joined({list_head(each.told), Bytes(there * 104, 0)})));
        ASSERT_EQ(list_->get_size(), each.made);
        EXPECT_EQ(list_->get_rays(0), each.there > 0 ? 0 : 300);
        EXPECT_EQ(filename(0), each.there > 0 ? "" : "NONE");
        int const last = each.made - 1;
        EXPECT_EQ(list_->get_rays(last), each.there > last ? 0 : 300);
        EXPECT_EQ(filename(last), each.there > last ? "" : "NONE");
        EXPECT_NE(list_->get_NLayers(last), nullptr);

        ASSERT_TRUE(
            load(joined({list_head(2), Bytes(92 + 8, 0), number_bytes(each.told), Bytes(there * 48, 0)})));
        ASSERT_EQ(list_->get_size(), 2);
        EXPECT_EQ(list_->get_layers_ptr(0)->count, each.made);
        EXPECT_EQ(list_->get_layers_ptr(0)->GetRef(last)->filename, "");
        EXPECT_EQ(list_->get_layers_ptr(1)->count, 0);
    }
}

/// Numbers that are likely to do harm.
std::uint32_t hostile_number(std::mt19937& random)
{
    constexpr std::uint32_t kNumbers[] = {
        0,           1,          63,          64,          65,          0x7fU,       0xffU,    0x100U,
        0x7fffffffU, 0x80000000, 0xffffffffU, 0x7ffffff0U, 0xfffffff0U, 0x01000000U, 0x10000U, 1000};
    return random() % 4 == 0 ? static_cast<std::uint32_t>(random())
                             : kNumbers[random() % std::size(kNumbers)];
}

/// One to eight changes: a byte, a number, a cut, a piece taken out or doubled.
Bytes mutated(Bytes bytes, std::mt19937& random)
{
    for (auto changes = 1 + random() % 8; changes != 0 && bytes.size() > 8; --changes) {
        // Behind the version, most of the time.
        std::size_t const at = random() % 20 == 0 ? random() % 8 : 4 + random() % (bytes.size() - 4);
        auto const place = bytes.begin() + static_cast<std::ptrdiff_t>(at);
        std::size_t const rest = bytes.size() - at;
        auto const end = place + static_cast<std::ptrdiff_t>(std::min<std::size_t>(rest, random() % 120));
        switch (random() % 8) {
        case 0:
            bytes.resize(at);
            break;
        case 1:
            bytes.erase(place, end);
            break;
        case 2: {
            Bytes const piece(place, end);
            bytes.insert(place, piece.begin(), piece.end());
            break;
        }
        case 3:
        case 4:
            *place = static_cast<std::uint8_t>(random());
            break;
        default: {
            Bytes const number = number_bytes(hostile_number(random));
            std::copy_n(number.begin(), std::min<std::size_t>(rest, 4), place);
        }
        }
    }
    return bytes;
}

TEST_F(UmbrixListDamage, RandomChangesDoNoHarm)
{
    std::mt19937 random(42);
    int accepted = 0;
    long long jobs = 0;
    long long layers = 0;
    int large_lists = 0;
    for (int round = 0; round < 100000; ++round) {
        Bytes const bytes = mutated(golden_list(), random);
        ToldRecords const told = told_by(bytes);
        // Most of those that tell of many records are left out, for their time.
        if (told.jobs + told.layers > 1000 && ++large_lists % 300 != 0) {
            continue;
        }
        bool loaded = false;
        ASSERT_NO_THROW(loaded = load(bytes));
        ASSERT_EQ(list_->get_size(), loaded ? told.jobs : 0);
        long long layers_there = 0;
        for (auto const* each = list_->items.head; each != nullptr; each = each->next) {
            ASSERT_LE(each->data.filename.size() + each->data.search_str.size(), bytes.size() + 16);
            ASSERT_NE(each->data.NLayers, nullptr);
            layers_there += each->data.layers.count;
        }
        ASSERT_EQ(layers_there, loaded ? told.layers : 0);
        accepted += loaded ? 1 : 0;
        jobs += list_->get_size();
        layers += layers_there;
        ASSERT_FALSE(HasFailure()) << "round " << round;
    }
    // The changes must reach the reader's depths, and not just its first test.
    EXPECT_GT(accepted, 60000);
    EXPECT_GT(jobs, 100000);
    EXPECT_GT(layers, 100000);
}

} // namespace
