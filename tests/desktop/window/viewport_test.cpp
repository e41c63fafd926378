// SPDX-License-Identifier: MIT
#include "views/viewport.h"

#include <gtest/gtest.h>

namespace umbrix_desktop {
namespace {

TEST(Viewport, FitsThePictureIntoTheArea)
{
    Viewport const wide = viewport_of({}, {400, 300}, {800, 200});
    EXPECT_EQ(wide.zoom, 0.5);
    EXPECT_EQ(wide.left(), 0);
    EXPECT_EQ(wide.top(), 100);
    View tiled;
    tiled.tiles = 2;
    EXPECT_EQ(viewport_of(tiled, {400, 300}, {100, 100}).zoom, 1.5);
    EXPECT_EQ(viewport_of(tiled, {400, 300}, {100, 100}).left(), 50);
}

TEST(Viewport, TellsTheTexelUnderAPlace)
{
    View view;
    view.zoom = 10;
    Viewport const viewport = viewport_of(view, {100, 100}, {4, 4});
    EXPECT_EQ(viewport.left(), 30);
    EXPECT_EQ(viewport.texel_under({30, 30}), QPoint(0, 0));
    EXPECT_EQ(viewport.texel_under({69.9, 40}), QPoint(3, 1));
    EXPECT_EQ(viewport.texel_under({70, 40}), std::nullopt);
    EXPECT_EQ(viewport.texel_under({29.9, 40}), std::nullopt);
}

TEST(Viewport, RepeatsTexelsOfTiles)
{
    View view;
    view.zoom = 10;
    view.tiles = 2;
    Viewport const viewport = viewport_of(view, {100, 100}, {4, 4});
    EXPECT_EQ(viewport.left(), 10);
    EXPECT_EQ(viewport.texel_under({15, 15}), QPoint(0, 0));
    EXPECT_EQ(viewport.texel_under({55, 15}), QPoint(0, 0));
    EXPECT_EQ(viewport.texel_under({45, 85}), QPoint(3, 3));
}

TEST(Viewport, ZoomsAboutThePlaceUnderTheCursor)
{
    View view;
    view.zoom = 1;
    Viewport const before = viewport_of(view, {200, 200}, {1000, 1000});
    QPointF const cursor(150, 30);
    View const near = zoomed(view, before, cursor, 2);
    EXPECT_EQ(near.zoom, 2);
    Viewport const after = viewport_of(near, {200, 200}, {1000, 1000});
    EXPECT_EQ(after.texels_at(cursor), before.texels_at(cursor));
}

TEST(Viewport, StepsLeadToPowersOfTwo)
{
    View const fit;
    Viewport const fitting = viewport_of(fit, {300, 300}, {1000, 1000}); // 0.3
    EXPECT_NEAR(zoomed(fit, fitting, {150, 150}, 1).zoom, 0.353553, 1e-6);
    EXPECT_EQ(zoomed(fit, fitting, {150, 150}, 2).zoom, 0.5);
    EXPECT_EQ(zoomed(fit, fitting, {150, 150}, -1).zoom, 0.25);
    EXPECT_EQ(zoomed(fit, fitting, {150, 150}, 100).zoom, kMostZoom);
    EXPECT_EQ(zoomed(fit, fitting, {150, 150}, -100).zoom, kLeastZoom);
}

TEST(Viewport, FollowsAHandUpToTheBorders)
{
    View view;
    view.zoom = 2;
    Viewport const before = viewport_of(view, {100, 100}, {100, 100});
    EXPECT_EQ(panned(view, before, {20, -40}).centre_x, 0.4);
    EXPECT_EQ(panned(view, before, {20, -40}).centre_y, 0.7);
    EXPECT_EQ(panned(view, before, {2000, -4000}).centre_x, 0);
    EXPECT_EQ(panned(view, before, {2000, -4000}).centre_y, 1);
}

TEST(Viewport, TellsWhatIsVisible)
{
    View view;
    EXPECT_EQ(visible_area(viewport_of(view, {100, 100}, {100, 100})), std::nullopt);
    view.zoom = 4;
    EXPECT_EQ(visible_area(viewport_of(view, {100, 100}, {100, 100})), (Area{37, 37, 26, 26}));
    view.centre_x = 0;
    EXPECT_EQ(visible_area(viewport_of(view, {100, 100}, {100, 100})), (Area{0, 37, 13, 26}));
    view.tiles = 2;
    EXPECT_EQ(visible_area(viewport_of(view, {100, 100}, {100, 100})), std::nullopt);
}

} // namespace
} // namespace umbrix_desktop
