// SPDX-License-Identifier: MIT
/// The damaged pictures through the readers, in this process: each gives the same picture or the same
/// sentence whatever is in the memory that a reader gets.
#include "damaged_pictures.h"
#include "temporary_folder.h"
#include "test_share.h"
#include "toolkit/base/failure.h"
#include "toolkit/pictures/decoded_image.h"

#include <gtest/gtest.h>
#include <malloc.h>

namespace umbrixlib::test {
namespace {

using namespace umbrixlib::toolkit;

constexpr double kMostTexels = 1 << 22;
constexpr int kRuns = 10;

struct Reading {
    TexelBytes bytes{};
    int width = 0;
    std::string sentence{};

    bool operator==(Reading const&) const = default;
};

Reading read(std::filesystem::path const& file)
{
    try {
        DecodedImage const image(file, "input", kMostTexels);
        return {image.picture().bytes, image.width(), ""};
    } catch (Failure const& failure) {
        return {{}, 0, failure.what()};
    }
}

/// New memory, and what was given back, is filled with it; 0 leaves memory as it is.
void fill_memory_with(int byte)
{
    mallopt(M_PERTURB, byte);
}

TEST(DamagedPictures, GiveTheSameInTenRuns)
{
    TemporaryFolder const folder;
    std::size_t taken = 0;
    std::size_t refused = 0;
    auto const pictures = damaged_pictures(test_share());
    ASSERT_GE(pictures.size(), 2500 / test_share());
    for (DamagedPicture const& picture : pictures) {
        auto const file = folder.path() / picture.name();
        write_file(file, picture.bytes);
        Reading const first = read(file);
        for (int run = 1; run < kRuns; ++run) {
            fill_memory_with(run * 28);
            Reading const again = read(file);
            EXPECT_TRUE(again == first)
                << picture.name() << ", run " << run << ": " << first.sentence << again.sentence;
        }
        fill_memory_with(0);
        EXPECT_EQ(first.sentence.find('\n'), std::string::npos) << picture.name();
        ++(first.sentence.empty() ? taken : refused);
        std::filesystem::remove(file);
    }
    std::printf("%zu files, %zu taken, %zu refused\n", pictures.size(), taken, refused);
    EXPECT_GT(taken, 400 / test_share());
    EXPECT_GT(refused, 400 / test_share());
}

} // namespace
} // namespace umbrixlib::test
