// SPDX-License-Identifier: MIT
#include "fixed_look.h"
#include "panels/solid_panel.h"
#include "views/solid_view.h"

#include <QDir>
#include <QImage>
#include <QSignalSpy>
#include <QTest>
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <numbers>

using namespace umbrix_desktop;

/// The map on a body, drawn by OpenGL, for which there has to be a screen.
class DesktopSolid : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    void lights_ground_as_relight_does_data();
    void lights_ground_as_relight_does();
    void is_drawn_as_before_data();
    void is_drawn_as_before();

private:
    /// Maps of a waved ground, or of one colour.
    void show_map(std::function<int(int x, int y, int channel)> const& sample);

    Shown shown_;
};

void DesktopSolid::initTestCase()
{
    QDir().mkpath("drawn");
}

void DesktopSolid::cleanup()
{
    shown_.clear();
}

void DesktopSolid::show_map(std::function<int(int, int, int)> const& sample)
{
    auto map = std::make_shared<toolkit::Picture>(toolkit::make_picture(64, 64, 3));
    for (int i = 0; i < 64 * 64; ++i) {
        for (int c = 0; c < 3; ++c) {
            map->texel(static_cast<std::size_t>(i))[c] = static_cast<std::uint8_t>(sample(i % 64, i / 64, c));
        }
    }
    Made made;
    made.width = made.height = 64;
    made.area = {0, 0, 64, 64};
    made.pictures[static_cast<std::size_t>(Show::kMap)] = map;
    shown_.take(made);
}

void DesktopSolid::lights_ground_as_relight_does_data()
{
    QTest::addColumn<double>("azimuth");
    QTest::addColumn<double>("elevation");
    QTest::addColumn<double>("ambient");
    QTest::newRow("above") << 0.0 << 90.0 << 0.0;
    QTest::newRow("from the upper left") << 135.0 << 45.0 << 0.0;
    QTest::newRow("from the right") << 0.0 << 30.0 << 0.1;
    QTest::newRow("from below") << 270.0 << 60.0 << 0.2;
}

void DesktopSolid::lights_ground_as_relight_does()
{
    QFETCH(double, azimuth);
    QFETCH(double, elevation);
    QFETCH(double, ambient);
    std::array<int, 3> const channels{150, 110, 170};
    show_map([&](int, int, int c) { return channels[static_cast<std::size_t>(c)]; });
    Lighting lighting;
    lighting.light = {azimuth, elevation};
    lighting.exposure = 0.7;
    lighting.ambient = ambient;
    SolidView view(shown_);
    view.set_solid(Solid::kPlane);
    view.set_lighting(lighting, Modes_Projection);
    view.resize(200, 200);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    QTest::keyClick(&view, Qt::Key_Up); // the body stands upright then
    QTest::keyClick(&view, Qt::Key_Up);
    int const drawn = qRed(view.grabFramebuffer().pixel(100, 100));

    toolkit::Relighting const look{Modes_Projection, lighting.exposure, lighting.weights, lighting.ambient};
    toolkit::ChannelWeights const weights = toolkit::channel_weights(lighting.light, look);
    double direct = 0;
    double all_around = 0;
    for (std::size_t c = 0; c < 3; ++c) {
        direct += weights[c] * channels[c];
        all_around += toolkit::ambient_weight(look) * channels[c];
    }
    double const expected = std::min(std::max(direct, 0.0) + all_around, 255.0);
    QVERIFY2(std::abs(drawn - expected) <= 2, qPrintable(QString("%1, not %2").arg(drawn).arg(expected)));
}

void DesktopSolid::is_drawn_as_before_data()
{
    QTest::addColumn<int>("solid");
    QTest::newRow("plane") << static_cast<int>(Solid::kPlane);
    QTest::newRow("sphere") << static_cast<int>(Solid::kSphere);
    QTest::newRow("cylinder") << static_cast<int>(Solid::kCylinder);
}

void DesktopSolid::is_drawn_as_before()
{
    QFETCH(int, solid);
    // Round hills, lit from azimuths 0, 240 and 120.
    constexpr double kTurn = 2 * std::numbers::pi;
    show_map([](int x, int y, int c) {
        double const azimuth = -c * kTurn / 3;
        return static_cast<int>(147 + 90 *
                                          (std::sin(x * kTurn / 16) * std::cos(azimuth) +
                                           std::sin(y * kTurn / 16) * std::sin(azimuth)) /
                                          1.5);
    });
    SolidView view(shown_);
    view.set_solid(static_cast<Solid>(solid));
    view.set_lighting(Lighting(), Modes_Projection);
    view.resize(240, 200);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    QImage const drawn = view.grabFramebuffer().convertToFormat(QImage::Format_RGB32);
    QString const name = QString("body_%1.png").arg(QTest::currentDataTag());
    QVERIFY(drawn.save("drawn/" + name));
    QImage const expected = QImage(UMBRIX_PICTURES "/" + name).convertToFormat(QImage::Format_RGB32);
    QCOMPARE(drawn.size(), expected.size());
    for (int y = 0; y < drawn.height(); ++y) {
        for (int x = 0; x < drawn.width(); ++x) {
            // Drivers differ in the last bits.
            QVERIFY2(std::abs(qRed(drawn.pixel(x, y)) - qRed(expected.pixel(x, y))) <= 2,
                     qPrintable(QString("%1, %2").arg(x).arg(y)));
        }
    }
}

UMBRIX_WIDGET_TEST_MAIN(DesktopSolid)

#include "solid_test.moc"
