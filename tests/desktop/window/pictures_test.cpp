// SPDX-License-Identifier: MIT
#include "document/document.h"
#include "fixed_look.h"
#include "panels/light_panel.h"
#include "panels/settings_panel.h"
#include "panels/solid_panel.h"
#include "panels/view_bar.h"
#include "views/picture_view.h"

#include <QDir>
#include <QImage>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

using namespace umbrix_desktop;

/// Compares pictures of widgets with those in the folder UMBRIX_PICTURES, which are looked at by hand when
/// they change. What a run has drawn is in the folder "drawn" below the one that it runs in.
class DesktopPictures : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void of_a_picture_alone();
    void of_two_side_by_side();
    void of_a_split();
    void of_a_difference();
    void of_tiles();
    void of_texels_near_by();
    void of_the_light();
    void of_nothing();
    void of_the_settings();
    void of_changed_settings();
    void of_the_light_panel();
    void of_the_view_bar();
    void of_a_body_without_opengl();

private:
    void compare(QWidget& widget, QSize size, QString const& name);
    void compare_view(View const& view, QString const& name, QSize size = {480, 300});

    Shown shown_;
};

namespace {

/// A picture of @p channels whose samples are what @p sample makes of place and channel, from the top row on.
std::shared_ptr<toolkit::Picture> painted(int channels,
                                          std::function<int(int x, int y, int channel)> const& sample)
{
    constexpr int kSide = 64;
    auto picture = std::make_shared<toolkit::Picture>(toolkit::make_picture(kSide, kSide, channels));
    for (int y = 0; y < kSide; ++y) {
        for (int x = 0; x < kSide; ++x) {
            for (int c = 0; c < channels; ++c) {
                auto const row = static_cast<std::size_t>(kSide - 1 - y);
                picture->texel(row * kSide + static_cast<std::size_t>(x))[c] =
                    static_cast<std::uint8_t>(std::clamp(sample(x, y, c), 0, 255));
            }
        }
    }
    return picture;
}

} // namespace

void DesktopPictures::initTestCase()
{
    QDir().mkpath("drawn");
    Made made;
    made.width = made.height = 64;
    made.area = {0, 0, 64, 64};
    auto const hill = [](int x, int y) { return std::hypot(x - 24, y - 40); };
    made.pictures[static_cast<std::size_t>(Show::kSource)] =
        painted(1, [&](int x, int y, int) { return 250 - static_cast<int>(5 * hill(x, y)); });
    made.pictures[static_cast<std::size_t>(Show::kMap)] = painted(3, [&](int x, int y, int c) {
        return 147 + (c == 0 ? 2 * (x - 24) : c == 1 ? 2 * (y - 40) : 40 - x - y);
    });
    made.pictures[static_cast<std::size_t>(Show::kRelit)] =
        painted(1, [&](int x, int y, int) { return 128 + 2 * (x - 24) - 2 * (y - 40); });
    shown_.take(made);
}

void DesktopPictures::compare(QWidget& widget, QSize size, QString const& name)
{
    widget.resize(size);
    widget.show();
    QVERIFY(QTest::qWaitForWindowExposed(&widget));
    QImage const drawn = widget.grab().toImage().convertToFormat(QImage::Format_RGB32);
    QString const file = QString("drawn/%1.png").arg(name);
    QVERIFY(drawn.save(file));
    QImage const expected(QString(UMBRIX_PICTURES "/%1.png").arg(name));
    QVERIFY2(drawn == expected.convertToFormat(QImage::Format_RGB32),
             qPrintable(QString("%1 is not the picture of that name").arg(QDir::current().filePath(file))));
}

void DesktopPictures::compare_view(View const& view, QString const& name, QSize size)
{
    PictureView widget(shown_);
    widget.set_view(view);
    widget.set_light(Lighting().light);
    compare(widget, size, name);
}

void DesktopPictures::of_a_picture_alone()
{
    View view;
    view.arrangement = Arrangement::kOne;
    view.left = Show::kMap;
    compare_view(view, "alone");
}

void DesktopPictures::of_two_side_by_side()
{
    compare_view({}, "side_by_side");
}

void DesktopPictures::of_a_split()
{
    View view;
    view.arrangement = Arrangement::kSplit;
    view.split = 0.4;
    compare_view(view, "split");
}

void DesktopPictures::of_a_difference()
{
    View view;
    view.arrangement = Arrangement::kDifference;
    compare_view(view, "difference");
}

void DesktopPictures::of_tiles()
{
    View view;
    view.arrangement = Arrangement::kOne;
    view.left = Show::kMap;
    view.tiles = 3;
    compare_view(view, "tiles");
}

void DesktopPictures::of_texels_near_by()
{
    View view;
    view.channel = Channel::kGreen;
    view.zoom = 32;
    view.centre_x = 0.3;
    compare_view(view, "near");
}

void DesktopPictures::of_the_light()
{
    View view;
    view.arrangement = Arrangement::kOne;
    view.left = Show::kRelit;
    compare_view(view, "light");
}

void DesktopPictures::of_nothing()
{
    Shown const nothing;
    PictureView widget(nothing);
    widget.set_message("Open a height map or a normal map, or drop it here.");
    compare(widget, {320, 200}, "nothing");
}

void DesktopPictures::of_the_settings()
{
    Document document;
    SettingsPanel panel(document);
    compare(panel, {380, 640}, "settings");
}

void DesktopPictures::of_changed_settings()
{
    Document document;
    SettingsPanel panel(document);
    document.edit("Settings", [](State& state) {
        state.settings.relief = 0.2f;
        state.settings.h_scale = 0.125f;
        state.settings.mode = Modes_Squared;
        state.settings.light = false;
    });
    panel.resize(380, 640);
    panel.show();
    panel.verticalScrollBar()->setValue(320);
    compare(panel, {380, 640}, "settings_changed");
}

void DesktopPictures::of_the_light_panel()
{
    Document document;
    LightPanel panel(document);
    compare(panel, {360, 220}, "light_panel");
}

void DesktopPictures::of_the_view_bar()
{
    Document document;
    ViewBar bar(document);
    compare(bar, {640, 36}, "view_bar");
}

/// The platform that the test runs on has none.
void DesktopPictures::of_a_body_without_opengl()
{
    SolidPanel panel(shown_);
    QSignalSpy complaints(&panel, &SolidPanel::complained);
    compare(panel, {260, 140}, "body_without_opengl");
    panel.hide();
    panel.show();
    panel.renew();
    panel.set_state({});
    QCOMPARE(complaints.size(), 1);
}

UMBRIX_WIDGET_TEST_MAIN(DesktopPictures)

#include "pictures_test.moc"
