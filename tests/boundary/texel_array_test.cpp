// SPDX-License-Identifier: MIT
#include "boundary/platform.h"
#include "boundary/texel_array.h"

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <gtest/gtest.h>
#include <new>
#include <vector>

namespace {

namespace platform = umbrixlib::detail::platform;
using umbrixlib::make_texel_array;

constexpr std::size_t kMebibyte = std::size_t{1} << 20;

/// Address space of this process in bytes; 0 where nobody tells.
std::size_t address_space()
{
    std::size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    return pages * 4096;
}

TEST(TexelArray, IsZeroAndHasRoomForAllOfItsElements)
{
    for (std::size_t const count :
         {std::size_t{0}, std::size_t{1}, kMebibyte - 1, kMebibyte, kMebibyte + 1, 3 * kMebibyte + 12345}) {
        auto const array = make_texel_array<float>(count);
        ASSERT_NE(array, nullptr);
        EXPECT_TRUE(std::all_of(array.get(), array.get() + count, [](float v) { return v == 0.0f; }))
            << count;
        std::fill_n(array.get(), count, 1.0f);
        EXPECT_TRUE(std::all_of(array.get(), array.get() + count, [](float v) { return v == 1.0f; }))
            << count;
    }
}

TEST(TexelArray, IsZeroAgainInThePlaceOfAReleasedOne)
{
    for (int i = 0; i < 5; ++i) {
        auto const array = make_texel_array<unsigned char>(6 * kMebibyte);
        EXPECT_TRUE(std::all_of(array.get(), array.get() + 6 * kMebibyte, [](int v) { return v == 0; }));
        std::fill_n(array.get(), 6 * kMebibyte, static_cast<unsigned char>(7));
    }
}

TEST(TexelArray, TakesNothingOnceItIsReleased)
{
    std::size_t const before = address_space();
    for (int i = 0; i < 64; ++i) {
        ASSERT_NE(make_texel_array<unsigned char>(16 * kMebibyte + 1), nullptr);
    }
    EXPECT_LT(address_space(), before + 256 * kMebibyte);
}

TEST(TexelArray, OfMoreThanThereIsRaises)
{
    // A compiler may leave out an allocation that nobody looks at.
    static void const* volatile looked_at = nullptr;
    for (std::size_t const count : {SIZE_MAX / 8, SIZE_MAX / 16 + 1}) {
        EXPECT_THROW(looked_at = make_texel_array<std::uint64_t>(count).get(), std::bad_alloc) << looked_at;
    }
}

TEST(PlatformMemory, LargePagesLeaveWhatIsThere)
{
    std::vector<unsigned char> bytes(9 * kMebibyte + 100);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<unsigned char>(i * 31);
    }
    std::vector<unsigned char> const before = bytes;
    platform::prefer_large_pages(bytes.data(), bytes.size());
    platform::prefer_large_pages(bytes.data() + 1, 5);
    platform::prefer_large_pages(bytes.data() + 7, 2 * kMebibyte);
    platform::prefer_large_pages(nullptr, 0);
    EXPECT_TRUE(bytes == before);
}

#if !defined(_WIN32)
TEST(PlatformMemory, MapsZeros)
{
    for (std::size_t const size : {std::size_t{1}, 2 * kMebibyte, 2 * kMebibyte + 1}) {
        auto* const bytes = static_cast<unsigned char*>(platform::map_zeros(size));
        ASSERT_NE(bytes, nullptr);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(bytes) % (2 * kMebibyte), 0U)
            << "where a large page begins";
        EXPECT_TRUE(std::all_of(bytes, bytes + size, [](int v) { return v == 0; }));
        bytes[size - 1] = 1;
        platform::unmap_zeros(bytes, size);
    }
}
#endif

} // namespace
