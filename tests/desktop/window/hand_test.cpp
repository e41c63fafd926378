// SPDX-License-Identifier: MIT
#include "document/project_file.h"
#include "fixed_look.h"
#include "main_window.h"
#include "panels/number_edit.h"
#include "projects.h"
#include "toolkit/settings/preset.h"
#include "views/light_handle.h"
#include "views/picture_view.h"

#include <QAccessible>
#include <QClipboard>
#include <QComboBox>
#include <QDockWidget>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QProcess>
#include <QPushButton>
#include <QSignalSpy>
#include <QSlider>
#include <QStatusBar>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <QWheelEvent>

namespace {

using namespace umbrix_desktop;

constexpr int kPatienceMs = 120000;

/// Heights of a few hills.
void save_heights(QString const& file, int side)
{
    QImage image(side, side, QImage::Format_Grayscale8);
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            int const along = std::abs(x % 16 - 8);
            int const across = std::abs(y % 16 - 8);
            image.scanLine(y)[x] = static_cast<uchar>(255 - along * along - across * across);
        }
    }
    QVERIFY(image.save(file, "PNG"));
}

QByteArray bytes_of(QString const& file)
{
    QFile opened(file);
    return opened.open(QIODevice::ReadOnly) ? opened.readAll() : QByteArray();
}

/// Answers the question that comes up next.
void answer_with(QMessageBox::StandardButton button)
{
    QTimer::singleShot(0, [button] {
        auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        QVERIFY(box != nullptr);
        box->button(button)->click();
    });
}

/// A hand drags from one place to another.
void drag(QWidget* widget, QPoint from, QPoint to)
{
    QTest::mousePress(widget, Qt::LeftButton, {}, from);
    for (int i = 1; i <= 4; ++i) {
        QTest::mouseMove(widget, from + (to - from) * i / 4);
    }
    QTest::mouseRelease(widget, Qt::LeftButton, {}, to);
}

} // namespace

/// Works the window as a hand would. Each test has a window of its own.
class DesktopHand : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void opens_a_picture();
    void drags_a_slider_as_one_step();
    void types_a_number();
    void resets_a_setting();
    void takes_a_preset();
    void drags_the_light();
    void drags_the_split();
    void zooms_about_the_cursor();
    void tells_what_is_under_the_cursor();
    void changes_what_is_looked_at_by_keys();
    void goes_on_after_a_damaged_picture();
    void goes_on_after_a_missing_picture();
    void reads_a_file_again_that_was_replaced();
    void saves_the_bytes_of_the_command_line();
    void asks_before_changes_are_lost();
    void opens_what_is_dropped();
    void keeps_all_in_a_project();
    void goes_on_after_a_damaged_project();
    void copies_and_pastes_a_command();
    void comes_back_where_it_was();
    void tells_the_name_of_everything();

private:
    void open(QString const& file);
    void wait_for(std::function<void()> const& act);
    State const& state() const { return window_->document().state(); }

    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<MainWindow> window_;
    QString heights_;
};

void DesktopHand::init()
{
    folder_ = std::make_unique<QTemporaryDir>();
    heights_ = folder_->filePath("hills_height.png");
    save_heights(heights_, 64);
    window_ = std::make_unique<MainWindow>();
    window_->resize(1000, 700);
    window_->show();
    QVERIFY(QTest::qWaitForWindowExposed(window_.get()));
}

void DesktopHand::cleanup()
{
    window_.reset();
}

void DesktopHand::wait_for(std::function<void()> const& act)
{
    QSignalSpy settled(window_.get(), &MainWindow::settled);
    act();
    QVERIFY(!settled.isEmpty() || settled.wait(kPatienceMs));
}

void DesktopHand::open(QString const& file)
{
    wait_for([&] { window_->open(file); });
}

void DesktopHand::opens_a_picture()
{
    open(heights_);
    QCOMPARE(window_->failure(), QString());
    QCOMPARE(window_->windowTitle(), QString("hills_height.png[*] - Umbrix"));
    QVERIFY(!window_->isWindowModified());
    QVERIFY(!window_->document().history().can_undo());
}

void DesktopHand::drags_a_slider_as_one_step()
{
    open(heights_);
    auto* const slider = window_->findChild<NumberEdit*>("relief")->findChild<QSlider*>();
    QCOMPARE(slider->value(), 171);
    QStyleOptionSlider option;
    option.initFrom(slider);
    option.maximum = slider->maximum();
    option.sliderPosition = option.sliderValue = slider->value();
    QRect const handle =
        slider->style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, slider);
    wait_for([&] { drag(slider, handle.center(), handle.center() + QPoint(40, 0)); });
    QVERIFY(state().settings.relief > 0.2f);
    QCOMPARE(window_->document().history().undo_name(), std::string("Relief"));
    QVERIFY(window_->isWindowModified());
    float const dragged = state().settings.relief;

    wait_for([&] { QTest::keyClick(window_.get(), Qt::Key_Z, Qt::ControlModifier); });
    QCOMPARE(state().settings.relief, 0.05f);
    QCOMPARE(slider->value(), 171);
    QVERIFY(!window_->document().history().can_undo());
    QTest::keyClick(window_.get(), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(state().settings.relief, dragged);
}

void DesktopHand::types_a_number()
{
    auto* const field = window_->findChild<NumberEdit*>("relief")->findChild<QDoubleSpinBox*>();
    QCOMPARE(field->text(), QString("0.05"));
    field->setFocus();
    field->selectAll();
    QTest::keyClicks(field, "0.125");
    QTest::keyClick(field, Qt::Key_Return);
    QCOMPARE(state().settings.relief, 0.125f);
}

void DesktopHand::resets_a_setting()
{
    window_->document().edit("Relief", [](State& s) { s.settings.relief = 0.3f; });
    auto const buttons = window_->findChildren<QToolButton*>();
    auto const reset = std::find_if(buttons.begin(), buttons.end(),
                                    [](auto* button) { return button->accessibleName() == "Reset Relief"; });
    QVERIFY(reset != buttons.end());
    QVERIFY((*reset)->isEnabled());
    QTest::mouseClick(*reset, Qt::LeftButton);
    QCOMPARE(state().settings.relief, 0.05f);
    QVERIFY(!(*reset)->isEnabled());
}

void DesktopHand::takes_a_preset()
{
    auto const actions = window_->findChildren<QAction*>();
    auto const stone = std::find_if(actions.begin(), actions.end(),
                                    [](auto* action) { return action->text() == "As for stone"; });
    QVERIFY(stone != actions.end());
    (*stone)->trigger();
    QVERIFY(state().settings == toolkit::read_preset("stone").settings);
    QVERIFY(!(state().settings == toolkit::kDefaults));
    QTest::keyClick(window_.get(), Qt::Key_R, Qt::ControlModifier);
    QVERIFY(state().settings == toolkit::kDefaults);
    QCOMPARE(window_->document().history().undo_name(), std::string("Reset all settings"));
}

void DesktopHand::drags_the_light()
{
    open(heights_);
    wait_for([&] {
        window_->document().edit("Picture", [](State& s) {
            s.view.left = Show::kRelit;
            s.view.arrangement = Arrangement::kOne;
        });
    });
    PictureView& view = window_->picture_view();
    QVERIFY(view.light_place().has_value());
    QPoint const to = view.rect().center() + QPoint(60, -20);
    wait_for([&] { drag(&view, view.light_place()->toPoint(), to); });
    QCOMPARE(state().lighting.light, light_at(to, QRectF(view.rect())));
    QCOMPARE(window_->document().history().undo_name(), std::string("Light"));
    window_->document().undo();
    QCOMPARE(state().lighting.light, Lighting().light);
}

void DesktopHand::drags_the_split()
{
    open(heights_);
    QTest::keyClick(window_.get(), Qt::Key_F6);
    PictureView& view = window_->picture_view();
    QCOMPARE(state().view.arrangement, Arrangement::kSplit);
    QCOMPARE(view.split_column(), view.width() / 2);
    drag(&view, {view.width() / 2, 100}, {view.width() / 4, 100});
    QCOMPARE(view.split_column(), view.width() / 4);
    QCOMPARE(window_->document().history().undo_name(), std::string("Split"));
    window_->document().undo();
    QCOMPARE(state().view.split, 0.5);
    QCOMPARE(state().view.arrangement, Arrangement::kSplit);
}

void DesktopHand::zooms_about_the_cursor()
{
    open(heights_);
    PictureView& view = window_->picture_view();
    for (int i = 0; i < 3; ++i) {
        QWheelEvent turn({50, 50}, view.mapToGlobal(QPointF(50, 50)), {}, {0, 120}, {}, {}, Qt::NoScrollPhase,
                         false);
        QApplication::sendEvent(&view, &turn);
    }
    QVERIFY(state().view.zoom > 8);
    QVERIFY(state().view.centre_x < 0.5);
    QVERIFY(!window_->isWindowModified()); // where one looks is no work
    QTest::keyClick(&view, Qt::Key_0);
    QCOMPARE(state().view.zoom, 0.0);
    QTest::keyClick(&view, Qt::Key_1);
    QCOMPARE(state().view.zoom, 1.0);
}

void DesktopHand::tells_what_is_under_the_cursor()
{
    open(heights_);
    QTest::keyClick(&window_->picture_view(), Qt::Key_1);
    QSignalSpy words(&window_->picture_view(), &PictureView::pointed);
    PictureView& view = window_->picture_view();
    // At full size the 64 x 64 texels lie around the middle of the left half.
    QPoint const corner(qRound((view.width() - 4) / 2 / 2.0 - 32), qRound(view.height() / 2.0 - 32));
    QTest::mouseMove(&view, corner + QPoint(8, 8));
    QTRY_VERIFY(!words.isEmpty());
    QCOMPARE(words.last().first().toString(), QString("8, 8   Source: height 1.00000"));
}

void DesktopHand::changes_what_is_looked_at_by_keys()
{
    open(heights_);
    QTest::keyClick(window_.get(), Qt::Key_2, Qt::AltModifier);
    QCOMPARE(state().view.left, Show::kNormals);
    QTest::keyClick(window_.get(), Qt::Key_F5);
    QCOMPARE(state().view.arrangement, Arrangement::kOne);
    QTest::keyClick(window_.get(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(state().view.arrangement, Arrangement::kSide);
}

void DesktopHand::goes_on_after_a_damaged_picture()
{
    QString const damaged = folder_->filePath("damaged.png");
    QFile file(damaged);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write("\x89PNG\r\n\x1a\nand no picture") > 0);
    file.close();
    open(damaged);
    QVERIFY2(window_->failure().contains("damaged.png"), qPrintable(window_->failure()));
    QCOMPARE(window_->statusBar()->currentMessage(), window_->failure());
    open(heights_);
    QCOMPARE(window_->failure(), QString());
}

void DesktopHand::goes_on_after_a_missing_picture()
{
    open(folder_->filePath("nothing.png"));
    QVERIFY2(window_->failure().contains("nothing.png"), qPrintable(window_->failure()));
    open(heights_);
    QCOMPARE(window_->failure(), QString());
}

void DesktopHand::reads_a_file_again_that_was_replaced()
{
    open(heights_);
    QString const other = folder_->filePath("other.png");
    save_heights(other, 32);
    wait_for([&] {
        QVERIFY(QFile::remove(heights_));
        QVERIFY(QFile::rename(other, heights_));
    });
    auto const labels = window_->statusBar()->findChildren<QLabel*>();
    QVERIFY(std::any_of(labels.begin(), labels.end(),
                        [](auto* label) { return label->text().startsWith("32 x 32"); }));
}

void DesktopHand::saves_the_bytes_of_the_command_line()
{
    open(heights_);
    window_->document().edit("Relief", [](State& s) { s.settings.relief = 0.1f; });
    QString const ours = folder_->filePath("ours.png");
    window_->save_map(ours);
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(ours), kPatienceMs);
    QString const theirs = folder_->filePath("theirs.png");
    QProcess tool;
    tool.start(UMBRIX_TOOL, {"map", heights_, "-o", theirs, "--relief", "0.1"});
    QVERIFY(tool.waitForFinished(kPatienceMs));
    QCOMPARE(tool.exitCode(), 0);
    QVERIFY(!bytes_of(ours).isEmpty());
    QCOMPARE(bytes_of(ours), bytes_of(theirs));
}

void DesktopHand::asks_before_changes_are_lost()
{
    QVERIFY(window_->projects().may_go());
    window_->document().edit("Relief", [](State& s) { s.settings.relief = 0.3f; });
    answer_with(QMessageBox::Cancel);
    QVERIFY(!window_->close());
    QVERIFY(window_->isVisible());
    answer_with(QMessageBox::Discard);
    QVERIFY(window_->close());
}

void DesktopHand::opens_what_is_dropped()
{
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(heights_)});
    wait_for([&] {
        QDragEnterEvent enter({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, {});
        QApplication::sendEvent(window_.get(), &enter);
        QVERIFY(enter.isAccepted());
        QDropEvent drop({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, {});
        QApplication::sendEvent(window_.get(), &drop);
    });
    QCOMPARE(state().source, QFile::encodeName(heights_).toStdString());
}

void DesktopHand::keeps_all_in_a_project()
{
    open(heights_);
    window_->document().edit("Relief", [](State& s) { s.settings.relief = 0.3f; });
    State const kept = state();
    std::string const file = folder_->filePath("hills.umbrix").toStdString();
    save_project(kept, file);
    window_->document().set_saved(file);
    QVERIFY(!window_->isWindowModified());
    QCOMPARE(window_->windowTitle(), QString("hills.umbrix[*] - Umbrix"));
    window_->document().edit("Relief", [](State& s) { s.settings.relief = 0.4f; });
    QTest::keyClick(window_.get(), Qt::Key_S, Qt::ControlModifier);
    QVERIFY(!window_->isWindowModified());
    MainWindow other;
    QSignalSpy settled(&other, &MainWindow::settled);
    other.open(QString::fromStdString(file));
    QCOMPARE(other.failure(), QString());
    QVERIFY(other.document().state() == state());
    QVERIFY(!settled.isEmpty() || settled.wait(kPatienceMs));
}

void DesktopHand::goes_on_after_a_damaged_project()
{
    QString const damaged = folder_->filePath("damaged.umbrix");
    QFile file(damaged);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write("[settings\n") > 0);
    file.close();
    window_->open(damaged);
    QVERIFY2(window_->failure().contains("damaged.umbrix"), qPrintable(window_->failure()));
    open(heights_);
    QCOMPARE(window_->failure(), QString());
}

void DesktopHand::copies_and_pastes_a_command()
{
    open(heights_);
    window_->document().edit("Relief", [](State& s) { s.settings.relief = 0.125f; });
    QTest::keyClick(window_.get(), Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
    QString const line = QGuiApplication::clipboard()->text();
    QVERIFY2(line.startsWith("umbrix map ") && line.contains("--relief 0.125"), qPrintable(line));
    window_->document().undo();
    QTest::keyClick(window_.get(), Qt::Key_V, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(state().settings.relief, 0.125f);
    QGuiApplication::clipboard()->setText("umbrix map a.png --releif 0.2");
    QTest::keyClick(window_.get(), Qt::Key_V, Qt::ControlModifier | Qt::ShiftModifier);
    QVERIFY2(window_->failure().contains("releif"), qPrintable(window_->failure()));
    QCOMPARE(state().settings.relief, 0.125f);
}

void DesktopHand::comes_back_where_it_was()
{
    window_->findChild<QDockWidget*>("light")->hide();
    QVERIFY(window_->close());
    MainWindow other;
    other.take_its_place();
    other.show();
    QVERIFY(!other.findChild<QDockWidget*>("light")->isVisible());
    QVERIFY(other.findChild<QDockWidget*>("settings")->isVisible());
    other.findChild<QDockWidget*>("light")->show();
}

void DesktopHand::tells_the_name_of_everything()
{
    int looked_at = 0;
    for (QWidget* const widget : window_->findChildren<QWidget*>()) {
        bool const is_worked = widget->focusPolicy() != Qt::NoFocus && widget->isVisible() &&
                               (qobject_cast<QAbstractButton*>(widget) || qobject_cast<QComboBox*>(widget) ||
                                qobject_cast<QAbstractSpinBox*>(widget) || qobject_cast<QSlider*>(widget) ||
                                qobject_cast<PictureView*>(widget));
        if (is_worked) {
            QString const name = QAccessible::queryAccessibleInterface(widget)->text(QAccessible::Name);
            QVERIFY2(!name.isEmpty(), widget->metaObject()->className());
            ++looked_at;
        }
    }
    QVERIFY(looked_at > 30);
}

UMBRIX_WIDGET_TEST_MAIN(DesktopHand)

#include "hand_test.moc"
