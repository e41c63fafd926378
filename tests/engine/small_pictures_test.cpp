// SPDX-License-Identifier: MIT
// Pictures of few texels are worked on without a team of threads.
#include "normals/make_normals.h"
#include "process_threads.h"
#include "umbrix/height_map_options.h"
#include "umbrix/make_map.h"

#include <gtest/gtest.h>
#include <omp.h>
#include <thread>
#include <vector>

namespace {

using umbrixlib::PictureView;
using umbrixlib::SampleType;
using namespace umbrixlib::test;

/// How many threads @p work leaves behind: OpenMP keeps a team for the thread that had one.
template <typename Work>
std::ptrdiff_t threads_woken_by(Work const& work)
{
    std::ptrdiff_t woken = 0;
    std::thread([&] {
        omp_set_num_threads(3);
        wait_for_teams_to_go(2); // the main thread and this one
        std::ptrdiff_t const before = threads_of_process();
        work();
        woken = threads_of_process() - before;
        EXPECT_EQ(omp_get_max_threads(), 3); // as it was
    }).join();
    return woken;
}

struct Square {
    explicit Square(int side_) : side(side_)
    {
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            bytes[i] = static_cast<std::uint8_t>(i * 7 % 251);
        }
    }
    PictureView view() const { return {bytes.data(), side, side, 3, SampleType::kUint8}; }

    int side;
    std::vector<std::uint8_t> bytes = std::vector<std::uint8_t>(static_cast<std::size_t>(side) * side * 3);
};

TEST(SmallPictures, GetNormalsOnTheCallingThread)
{
    for (int const side : {2, 64, 65}) {
        Square const square(side);
        umbrixlib::NormalsRequest request;
        request.heights = square.view();
        EXPECT_EQ(threads_woken_by([&] { umbrixlib::make_normals(request); }), side > 64 ? 2 : 0) << side;
    }
}

TEST(SmallPictures, GetMapsOnTheCallingThread)
{
    for (int const side : {2, 64, 65}) {
        Square const square(side);
        umbrixlib::MapRequest request;
        request.source = square.view();
        request.options = umbrixlib::height_map_options(0.05f, side);
        request.options.rays = 4;
        EXPECT_EQ(threads_woken_by([&] { umbrixlib::make_map(request); }) > 0, side > 64) << side;
    }
}

} // namespace
