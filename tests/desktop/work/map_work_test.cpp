// SPDX-License-Identifier: MIT
#include "work/map_work.h"

#include "temporary_folder.h"
#include "work/show_maker.h"
#include "work_pictures.h"

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace umbrix_desktop {
namespace {

namespace fs = std::filesystem;
using test::Listener;
using test::picture_of;
using test::wish_for;
using umbrixlib::test::TemporaryFolder;

std::vector<Show> const kAll = {Show::kSource, Show::kNormals, Show::kOcclusion, Show::kMap, Show::kRelit};

TEST(DesktopWork, MakesAllPicturesOfASmallPicture)
{
    TemporaryFolder const folder;
    fs::path const file = folder / "brick.png";
    test::save(test::hills(64, 48), file);
    Listener listener;
    Made const made = listener.make(wish_for(file, kAll));
    EXPECT_EQ(made.failure, "");
    EXPECT_EQ(made.width, 64);
    EXPECT_EQ(made.height, 48);
    EXPECT_EQ(made.area, (Area{0, 0, 64, 48}));
    EXPECT_EQ(made.description, "16-bit grey, PNG");
    for (Show const show : kAll) {
        ASSERT_NE(picture_of(made, show), nullptr);
        EXPECT_EQ(picture_of(made, show)->width, 64);
        EXPECT_EQ(picture_of(made, show)->height, 48);
    }
    EXPECT_EQ(picture_of(made, Show::kSource)->bytes, test::hills(64, 48).bytes);
}

TEST(DesktopWork, TellsNothingOfAPictureWithoutAName)
{
    Listener listener;
    Made const made = listener.make({});
    EXPECT_EQ(made.failure, "");
    EXPECT_EQ(made.width, 0);
    EXPECT_TRUE(std::ranges::all_of(made.pictures, [](auto const& each) { return each == nullptr; }));
}

TEST(DesktopWork, ShowsAPreviewBeforeTheWhole)
{
    TemporaryFolder const folder;
    fs::path const file = folder / "brick.png";
    test::save(test::hills(1030, 600), file);
    Listener listener;
    listener.make(wish_for(file, kAll));
    auto const told = listener.told();
    ASSERT_EQ(told.size(), 5U); // a preview, and the whole after each of four
    Made const& preview = *told.front();
    EXPECT_FALSE(preview.whole);
    EXPECT_EQ(preview.area, (Area{0, 0, 1030, 600}));
    for (Show const show : kAll) {
        ASSERT_NE(picture_of(preview, show), nullptr);
        EXPECT_EQ(picture_of(preview, show)->width, 344);
        EXPECT_EQ(picture_of(preview, show)->height, 200);
    }
    for (std::size_t i = 1; i < told.size(); ++i) {
        EXPECT_EQ(told[i]->whole, i + 1 == told.size());
        EXPECT_EQ(picture_of(*told[i], Show::kSource)->width, 1030);
    }
    auto const progress = listener.progress();
    EXPECT_TRUE(std::ranges::is_sorted(progress));
    EXPECT_FALSE(progress.empty());
}

TEST(DesktopWork, KeepsWhatDoesNotChange)
{
    TemporaryFolder const folder;
    fs::path const file = folder / "brick.png";
    test::save(test::hills(64, 48), file);
    Listener listener;
    Wish wish = wish_for(file, kAll);
    Made const first = listener.make(wish);
    wish.lighting.light.azimuth_degrees += 90;
    Made const lit = listener.make(wish);
    for (Show const show : {Show::kSource, Show::kNormals, Show::kOcclusion, Show::kMap}) {
        EXPECT_EQ(picture_of(lit, show), picture_of(first, show));
    }
    EXPECT_NE(picture_of(lit, Show::kRelit)->bytes, picture_of(first, Show::kRelit)->bytes);
    wish.settings.rays = 8;
    Made const other = listener.make(wish);
    EXPECT_EQ(picture_of(other, Show::kNormals), picture_of(first, Show::kNormals));
    EXPECT_NE(picture_of(other, Show::kMap)->bytes, picture_of(first, Show::kMap)->bytes);
    wish.settings.directions = 8; // which counts in none of them
    EXPECT_EQ(picture_of(listener.make(wish), Show::kMap), picture_of(other, Show::kMap));
}

TEST(DesktopWork, AddsWhatIsMissing)
{
    TemporaryFolder const folder;
    fs::path const file = folder / "brick.png";
    test::save(test::hills(64, 48), file);
    Listener listener;
    Made const first = listener.make(wish_for(file, {Show::kMap}));
    EXPECT_EQ(picture_of(first, Show::kNormals), nullptr);
    Made const second = listener.make(wish_for(file, {Show::kMap, Show::kNormals}));
    EXPECT_EQ(picture_of(second, Show::kMap), picture_of(first, Show::kMap));
    EXPECT_NE(picture_of(second, Show::kNormals), nullptr);
}

TEST(DesktopWork, TellsNothingOfAWishAfterANewerOne)
{
    TemporaryFolder const folder;
    fs::path const file = folder / "brick.png";
    test::save(test::hills(700, 600), file);
    std::atomic<std::uint64_t> newest = 0;
    std::atomic<int> late = 0;
    Listener listener([&](Made const& made) { late += made.wish < newest ? 1 : 0; });
    Wish wish = wish_for(file, kAll);
    for (int i = 1; i <= 30; ++i) {
        wish.settings.relief = static_cast<float>(i) / 1000;
        wish.visible = i % 2 == 0 ? std::optional(Area{10 * i, 100, 200, 200}) : std::nullopt;
        newest = listener.work().want(wish);
    }
    Made const made = listener.wait_for(newest);
    EXPECT_EQ(late, 0);
    std::uint64_t last = 0;
    for (auto const& told : listener.told()) {
        EXPECT_GE(told->wish, last);
        last = told->wish;
    }
    EXPECT_EQ(made.wish, newest);
    EXPECT_NE(picture_of(made, Show::kRelit), nullptr);
}

TEST(DesktopWork, BreaksOffWhenSomebodyWantsSomethingElseInBetween)
{
    TemporaryFolder const folder;
    fs::path const file = folder / "brick.png";
    test::save(test::hills(700, 600), file);
    Listener* self = nullptr;
    Wish next = wish_for(file, {Show::kNormals});
    std::uint64_t second = 0;
    std::mutex ready;
    std::unique_lock hold(ready);
    Listener listener([&](Made const& made) {
        std::scoped_lock const lock(ready);
        if (made.wish == 1) {
            second = self->work().want(next); // at its preview
        }
    });
    self = &listener;
    listener.work().want(wish_for(file, kAll));
    hold.unlock();
    Made const made = listener.wait_for(2);
    EXPECT_EQ(second, 2U);
    auto const told = listener.told();
    EXPECT_EQ(std::ranges::count(told, 1U, [](auto const& each) { return each->wish; }), 1);
    EXPECT_NE(picture_of(made, Show::kNormals), nullptr);
    EXPECT_EQ(picture_of(made, Show::kMap), nullptr);
}

TEST(DesktopWork, EndsInTheMiddleOfItsWork)
{
    TemporaryFolder const folder;
    fs::path const file = folder / "brick.png";
    test::save(test::hills(900, 900), file);
    for (int i = 0; i < 5; ++i) {
        Listener listener;
        Wish wish = wish_for(file, kAll);
        wish.settings.rays = 2000;
        listener.work().want(wish);
    }
}

TEST(DesktopWork, TellsWhyThereIsNoPicture)
{
    TemporaryFolder const folder;
    Listener listener;
    Made const missing = listener.make(wish_for(folder / "none.png", kAll));
    EXPECT_NE(missing.failure.find("none.png: "), std::string::npos) << missing.failure;
    EXPECT_EQ(missing.width, 0);

    fs::path const file = folder / "brick.png";
    test::save(test::hills(300, 300), file);
    fs::resize_file(file, fs::file_size(file) / 2);
    Made const damaged = listener.make(wish_for(file, kAll));
    EXPECT_NE(damaged.failure.find("brick.png: "), std::string::npos) << damaged.failure;
    EXPECT_NE(damaged.failure.find("; save it again"), std::string::npos) << damaged.failure;

    listener.work().forget_source();
    test::save(test::hills(30, 30), folder / "brick.png");
    EXPECT_EQ(listener.make(wish_for(file, kAll)).failure, "");
}

TEST(DesktopWork, KeepsItsSourceUntilItIsForgotten)
{
    TemporaryFolder const folder;
    fs::path const file = folder / "brick.png";
    test::save(test::hills(64, 48), file);
    Listener listener;
    Made const first = listener.make(wish_for(file, kAll));
    test::save(test::hills(32, 32), file);
    EXPECT_EQ(listener.make(wish_for(file, kAll)).width, 64);
    fs::remove(file);
    EXPECT_EQ(listener.make(wish_for(file, kAll)).failure, "");
    listener.work().forget_source();
    EXPECT_NE(listener.make(wish_for(file, kAll)).failure, "");
    test::save(test::hills(32, 32), file);
    EXPECT_EQ(listener.make(wish_for(file, kAll)).width, 32);
}

TEST(DesktopWork, MakesWhatItCanWithoutTheRest)
{
    TemporaryFolder const folder;
    fs::path const file = folder / "brick.png";
    test::save(test::hills(64, 48), file);
    Listener listener;
    Wish wish = wish_for(file, kAll);
    wish.lighting.albedo = (folder / "none.png").string();
    Made made = listener.make(wish);
    EXPECT_NE(made.failure.find("none.png"), std::string::npos) << made.failure;
    EXPECT_NE(picture_of(made, Show::kMap), nullptr);
    EXPECT_EQ(picture_of(made, Show::kRelit), nullptr);

    wish.lighting.albedo = (folder / "small.png").string();
    test::save(test::hills(8, 8, 3, umbrixlib::SampleType::kUint8), folder / "small.png");
    made = listener.make(wish);
    EXPECT_NE(made.failure.find("small.png: its size is 8 x 8"), std::string::npos) << made.failure;
    EXPECT_NE(picture_of(made, Show::kMap), nullptr);

    wish.lighting.albedo.clear();
    wish.settings.light = false;
    wish.settings.occlusion = false;
    made = listener.make(wish);
    EXPECT_NE(made.failure.find("without light and occlusion"), std::string::npos) << made.failure;
    EXPECT_EQ(picture_of(made, Show::kMap), nullptr);
    EXPECT_NE(picture_of(made, Show::kOcclusion), nullptr);
    EXPECT_NE(picture_of(made, Show::kNormals), nullptr);
}

TEST(DesktopWork, ShowsANormalMapAsItsOwnNormals)
{
    TemporaryFolder const folder;
    fs::path const file = folder / "brick.png";
    test::save(test::hills(64, 48, 3, umbrixlib::SampleType::kUint8), file);
    Listener listener;
    Wish wish = wish_for(file, kAll);
    wish.settings.kind = toolkit::Kind::kNormalMap;
    Made const made = listener.make(wish);
    EXPECT_EQ(picture_of(made, Show::kNormals)->bytes, picture_of(made, Show::kSource)->bytes);
    EXPECT_FALSE(made.notes.empty()); // it has no heights in an alpha
}

TEST(DesktopWork, TellsWhatHeightsAreOutOfRange)
{
    TemporaryFolder const folder;
    fs::path const file = folder / "brick.exr";
    toolkit::Picture picture = toolkit::in_floats(test::hills(64, 48));
    picture.samples<float>()[5] = 4.0f;
    test::save(picture, file);
    Listener listener;
    Made const made = listener.make(wish_for(file, kAll));
    EXPECT_NE(made.failure.find("; set the height range to "), std::string::npos) << made.failure;
    EXPECT_NE(picture_of(made, Show::kSource), nullptr);
}

} // namespace
} // namespace umbrix_desktop
