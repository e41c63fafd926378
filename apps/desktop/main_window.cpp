// SPDX-License-Identifier: MIT
#include "main_window.h"

#include "docks.h"
#include "menus.h"
#include "projects.h"
#include "toolkit/pictures/naming.h"
#include "views/picture_view.h"

#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QMimeData>
#include <QSettings>
#include <QStatusBar>

namespace umbrix_desktop {

namespace {

constexpr QSize kUsualSize(1280, 800);
constexpr char const* kPlaceKey = "window/place";
constexpr char const* kDocksKey = "window/docks";

/// Which pictures a view needs.
/// @param with_map The map is needed, too.
std::array<bool, kShows> shows_of(View const& view, bool with_map)
{
    std::array<bool, kShows> shows{};
    shows[static_cast<std::size_t>(Show::kMap)] = with_map;
    shows[static_cast<std::size_t>(view.left)] = true;
    if (view.arrangement != Arrangement::kOne) {
        shows[static_cast<std::size_t>(view.right)] = true;
    }
    return shows;
}

/// The file that is dropped; "" if it is none of this machine.
QString dropped_file(QMimeData const& data)
{
    return data.hasUrls() ? data.urls().first().toLocalFile() : QString();
}

} // namespace

MainWindow::MainWindow(QWidget* parent) : QMainWindow(parent), view_(new PictureView(shown_))
{
    setCentralWidget(view_);
    docks_ = new Docks(*this, document_, shown_);
    projects_ = new Projects(*this, document_);
    make_status_bar();
    menus_ = new Menus(*this);
    setAcceptDrops(true);
    view_->set_message(tr("Open a height map or a normal map, or drop it here."));
    view_->set_view(document_.state().view);
    view_->set_light(document_.state().lighting.light);
    connect(view_, &PictureView::view_edited, this, [this](QString const& name, View const& view) {
        document_.edit(name.toStdString(), [&](State& state) { state.view = view; });
    });
    connect(view_, &PictureView::light_edited, this, [this](toolkit::Light light) {
        document_.edit(tr("Light").toStdString(), [&](State& state) { state.lighting.light = light; });
    });
    connect(view_, &PictureView::gesture_began, this, [this] { document_.begin_gesture(); });
    connect(view_, &PictureView::gesture_ended, this, [this] { document_.end_gesture(); });
    connect(view_, &PictureView::pointed, pointed_, &QLabel::setText);
    connect(projects_, &Projects::complained, this, &MainWindow::fail);
    connect(projects_, &Projects::told, this,
            [this](QString const& text) { statusBar()->showMessage(text); });
    connect(projects_, &Projects::opened, menus_, &Menus::remember);
    connect(docks_, &Docks::complained, this, &MainWindow::fail);
    connect(docks_, &Docks::albedo_wanted, this, &MainWindow::ask_for_albedo);
    connect(docks_, &Docks::map_wanted, this, &MainWindow::want);
    connect(&watch_, &SourceWatch::changed, this, &MainWindow::reload);
    connect(&work_, &WindowWork::made, this,
            [this](std::shared_ptr<Made const> const& made) { take(*made); });
    connect(&work_, &WindowWork::progressed, progress_, [this](int permille) {
        progress_->setVisible(permille < 1000);
        progress_->setValue(permille);
    });
    connect(&work_, &WindowWork::saved, this, [this](QString const& file, QString const& failure) {
        failure.isEmpty() ? statusBar()->showMessage(tr("%1 is saved.").arg(file)) : fail(failure);
    });
    document_.on_change([this](State const& before, State const& after) { follow(before, after); });
    show_title();
}

MainWindow::~MainWindow() = default;

void MainWindow::make_status_bar()
{
    pointed_ = new QLabel;
    description_ = new QLabel;
    progress_ = new QProgressBar;
    progress_->setRange(0, 1000);
    progress_->setMaximumWidth(120);
    progress_->setAccessibleName(tr("Progress"));
    progress_->hide();
    statusBar()->addPermanentWidget(pointed_);
    statusBar()->addPermanentWidget(description_);
    statusBar()->addPermanentWidget(progress_);
}

void MainWindow::open(QString const& file)
{
    if (Projects::is_project(file)) {
        return open_project(file);
    }
    std::string const source = QFile::encodeName(QFileInfo(file).absoluteFilePath()).toStdString();
    failure_.clear();
    if (document_.is_changed() || !document_.state().source.empty()) {
        document_.edit(tr("Open %1").arg(QFileInfo(file).fileName()).toStdString(),
                       [&](State& state) { state.source = source; });
    } else {
        // Nothing but this picture is in the document yet, so there is nothing to save.
        State state = document_.state();
        state.source = source;
        document_.replace(std::move(state), document_.project_file());
    }
    menus_->remember(file);
}

void MainWindow::open_project(QString const& file)
{
    failure_.clear();
    if (projects_->may_go()) {
        projects_->open(file);
    }
}

void MainWindow::save_map(QString const& file)
{
    if (work_.is_saving()) {
        return fail(tr("Another map is being saved; try again when it is there."));
    }
    statusBar()->showMessage(tr("Saving %1").arg(file));
    work_.save(
        {document_.state().source, QFile::encodeName(file).toStdString(), true, document_.state().settings});
}

void MainWindow::ask_for_picture()
{
    QString const file = QFileDialog::getOpenFileName(this, tr("Open a picture"));
    if (!file.isEmpty()) {
        open(file);
    }
}

void MainWindow::ask_for_albedo()
{
    QString const file = QFileDialog::getOpenFileName(this, tr("Colours of the surface"));
    if (!file.isEmpty()) {
        document_.edit(tr("Colours").toStdString(),
                       [&](State& state) { state.lighting.albedo = QFile::encodeName(file).toStdString(); });
    }
}

void MainWindow::ask_for_map_file()
{
    if (document_.state().source.empty()) {
        return fail(tr("There is no map yet: open a picture first."));
    }
    std::string const proposed = toolkit::default_output(document_.state().source, "_Umbrix").string();
    // The dialog asks before it returns the name of a file that is there.
    QString const file =
        QFileDialog::getSaveFileName(this, tr("Save the Umbrix map"), QString::fromStdString(proposed));
    if (!file.isEmpty()) {
        save_map(file);
    }
}

void MainWindow::follow(State const& before, State const& after)
{
    view_->set_view(after.view);
    view_->set_light(after.lighting.light);
    show_title();
    std::array<bool, kShows> const shows = shows_of(after.view, docks_->need_the_map());
    bool const other_source = before.source != after.source;
    bool const other_settings = before.settings != after.settings;
    bool const other_light = before.lighting != after.lighting;
    if (other_source) {
        shown_.clear();
        description_->clear();
        watch_.watch(QFile::decodeName(after.source.c_str()));
    }
    for (std::size_t i = 0; i < kShows; ++i) {
        // What is not wanted now would be out of date when it is.
        auto const show = static_cast<Show>(i);
        if (!shows[i] && (other_settings || (other_light && show == Show::kRelit))) {
            shown_.drop(show);
        }
    }
    if (other_source || other_settings || other_light ||
        shows != shows_of(before.view, docks_->need_the_map())) {
        want();
    }
}

void MainWindow::want()
{
    State const& state = document_.state();
    if (state.source.empty()) {
        view_->set_message(tr("Open a height map or a normal map, or drop it here."));
        view_->renew();
        return;
    }
    if (shown_.size().isEmpty()) {
        view_->set_message(
            tr("Reading %1").arg(QFileInfo(QFile::decodeName(state.source.c_str())).fileName()));
        view_->renew();
    }
    work_.want({state.source, state.settings, state.lighting, shows_of(state.view, docks_->need_the_map()),
                view_->visible()});
}

void MainWindow::take(Made const& made)
{
    shown_.take(made);
    if (!made.description.empty()) {
        description_->setText(QString("%1 x %2, %3")
                                  .arg(made.width)
                                  .arg(made.height)
                                  .arg(QString::fromStdString(made.description)));
    }
    view_->renew();
    docks_->renew();
    if (!made.failure.empty()) {
        fail(QString::fromStdString(made.failure));
    } else if (!made.notes.empty()) {
        statusBar()->showMessage(QString::fromStdString(made.notes.back()));
    } else if (made.whole && !failure_.isEmpty()) {
        failure_.clear();
        statusBar()->clearMessage();
    }
    if (made.whole) {
        progress_->hide();
        Q_EMIT settled();
    }
}

void MainWindow::reload()
{
    work_.forget_source();
    statusBar()->showMessage(tr("The file has changed and is read again."));
    want();
}

void MainWindow::fail(QString const& sentence)
{
    failure_ = sentence;
    statusBar()->showMessage(sentence);
    if (shown_.size().isEmpty()) {
        view_->set_message(sentence);
    }
}

void MainWindow::show_title()
{
    std::string const& project = document_.project_file();
    std::string const& shown = project.empty() ? document_.state().source : project;
    QString const file = QFile::decodeName(shown.c_str());
    QString const name = file.isEmpty() ? tr("untitled") : QFileInfo(file).fileName();
    setWindowTitle(tr("%1[*] - Umbrix").arg(name));
    setWindowModified(document_.is_changed());
}

void MainWindow::take_its_place()
{
    resize(kUsualSize);
    restoreGeometry(QSettings().value(kPlaceKey).toByteArray());
    restoreState(QSettings().value(kDocksKey).toByteArray());
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    event->setAccepted(projects_->may_go());
    if (event->isAccepted()) {
        QSettings().setValue(kPlaceKey, saveGeometry());
        QSettings().setValue(kDocksKey, saveState());
    }
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event)
{
    if (!dropped_file(*event->mimeData()).isEmpty()) {
        event->acceptProposedAction();
    }
}

void MainWindow::dropEvent(QDropEvent* event)
{
    event->acceptProposedAction();
    open(dropped_file(*event->mimeData()));
}

} // namespace umbrix_desktop
