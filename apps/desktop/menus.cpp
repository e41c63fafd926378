// SPDX-License-Identifier: MIT
#include "menus.h"

#include "main_window.h"
#include "projects.h"
#include "toolkit/settings/preset.h"
#include "views/picture_view.h"

#include <QFileInfo>
#include <QKeySequence>
#include <QMenuBar>
#include <QSettings>
#include <QToolBar>
#include <algorithm>
#include <string_view>

namespace umbrix_desktop {

namespace {

constexpr qsizetype kMostRecent = 10;
constexpr char const* kRecentKey = "recent";

} // namespace

Menus::Menus(MainWindow& window) : QObject(&window), window_(window)
{
    add_file_menu();
    add_edit_menu();
    add_settings_menu();
    add_view_menu();
}

QAction* Menus::add(QMenu& menu, QString const& text, QKeySequence const& keys,
                    std::function<void()> const& act)
{
    QAction* const action = menu.addAction(text);
    action->setShortcut(keys);
    connect(action, &QAction::triggered, this, act);
    return action;
}

void Menus::add_file_menu()
{
    QMenu& menu = *window_.menuBar()->addMenu(tr("&File"));
    add(menu, tr("&Open a picture..."), QKeySequence::Open, [this] { window_.ask_for_picture(); });
    recent_ = menu.addMenu(tr("Open &recent"));
    connect(recent_, &QMenu::aboutToShow, this, &Menus::show_recent);
    menu.addSeparator();
    Projects& projects = window_.projects();
    add(menu, tr("Open a pro&ject..."), QKeySequence("Ctrl+Shift+O"),
        [&projects] { projects.ask_for_project(); });
    add(menu, tr("&Save the project"), QKeySequence::Save, [&projects] { projects.save(); });
    add(menu, tr("Save the project &as..."), QKeySequence("Ctrl+Shift+S"),
        [&projects] { projects.save_as(); });
    menu.addSeparator();
    add(menu, tr("Save the &map as..."), QKeySequence("Ctrl+E"), [this] { window_.ask_for_map_file(); });
    menu.addSeparator();
    add(menu, tr("&Quit"), QKeySequence::Quit, [this] { window_.close(); });
}

void Menus::add_edit_menu()
{
    QMenu& menu = *window_.menuBar()->addMenu(tr("&Edit"));
    undo_ = add(menu, tr("&Undo"), QKeySequence::Undo, [this] { window_.document().undo(); });
    redo_ = add(menu, tr("&Redo"), QKeySequence::Redo, [this] { window_.document().redo(); });
    redo_->setShortcuts({QKeySequence("Ctrl+Shift+Z"), QKeySequence("Ctrl+Y")}); // systems differ
    menu.addSeparator();
    Projects& projects = window_.projects();
    add(menu, tr("&Copy as command"), QKeySequence("Ctrl+Shift+C"), [&projects] { projects.copy_command(); });
    add(menu, tr("&Paste command"), QKeySequence("Ctrl+Shift+V"), [&projects] { projects.paste_command(); });
    window_.document().on_change([this](State const&, State const&) { show_steps(); });
    show_steps();
}

void Menus::add_settings_menu()
{
    QMenu& menu = *window_.menuBar()->addMenu(tr("&Settings"));
    auto const take = [this](QString const& step, toolkit::Settings const& settings) {
        window_.document().edit(step.toStdString(), [&](State& state) { state.settings = settings; });
    };
    for (std::string_view const name : toolkit::shipped_presets()) {
        toolkit::Preset const preset = toolkit::read_preset(std::string(name));
        QString const called = QString::fromStdString(std::string(name));
        QAction* const action = add(menu, tr("As for %1").arg(called), {},
                                    [=] { take(tr("Preset %1").arg(called), preset.settings); });
        action->setStatusTip(QString::fromStdString(preset.description));
    }
    menu.addSeparator();
    add(menu, tr("&Reset all"), QKeySequence("Ctrl+R"),
        [=] { take(tr("Reset all settings"), toolkit::kDefaults); });
}

void Menus::add_view_menu()
{
    QMenu& menu = *window_.menuBar()->addMenu(tr("&View"));
    PictureView& view = window_.picture_view();
    add(menu, tr("Zoom &in"), QKeySequence::ZoomIn, [&view] { view.zoom_by(1); });
    add(menu, tr("Zoom &out"), QKeySequence::ZoomOut, [&view] { view.zoom_by(-1); });
    add(menu, tr("&Fit"), QKeySequence("Ctrl+0"), [&view] { view.zoom_to_fit(); });
    add(menu, tr("Full &size"), QKeySequence("Ctrl+1"), [&view] { view.zoom_to_full_size(); });
    menu.addSeparator();
    auto const arrange = [&](QString const& text, char const* keys, Arrangement arrangement) {
        add(menu, text, QKeySequence(keys), [this, arrangement] {
            window_.document().edit(tr("Arrangement").toStdString(),
                                    [=](State& state) { state.view.arrangement = arrangement; });
        });
    };
    arrange(tr("One picture &alone"), "F5", Arrangement::kOne);
    arrange(tr("Two with a s&plit"), "F6", Arrangement::kSplit);
    arrange(tr("Two si&de by side"), "F7", Arrangement::kSide);
    arrange(tr("Their diff&erence"), "F8", Arrangement::kDifference);
    menu.addSeparator();
    auto const show = [&](QMenu& shows, char const* keys, Show View::*place) {
        for (int i = 0; i < static_cast<int>(kShows); ++i) {
            auto const which = static_cast<Show>(i);
            add(shows, name_of(which), QKeySequence(QString(keys).arg(i + 1)), [this, which, place] {
                window_.document().edit(tr("Picture").toStdString(),
                                        [=](State& state) { state.view.*place = which; });
            });
        }
    };
    show(*menu.addMenu(tr("&Left picture")), "Alt+%1", &View::left);
    show(*menu.addMenu(tr("&Right picture")), "Alt+Shift+%1", &View::right);
    menu.addSeparator();
    QMenu* const panels = window_.createPopupMenu();
    panels->setTitle(tr("Pa&nels"));
    menu.addMenu(panels);
}

void Menus::show_steps()
{
    History const& history = window_.document().history();
    undo_->setEnabled(history.can_undo());
    undo_->setText(tr("&Undo %1").arg(QString::fromStdString(history.undo_name())).trimmed());
    redo_->setEnabled(history.can_redo());
    redo_->setText(tr("&Redo %1").arg(QString::fromStdString(history.redo_name())).trimmed());
}

void Menus::remember(QString const& file)
{
    QString const path = QFileInfo(file).absoluteFilePath();
    QStringList files = QSettings().value(kRecentKey).toStringList();
    files.removeAll(path);
    files.push_front(path);
    QSettings().setValue(kRecentKey, files.first(std::min(kMostRecent, files.size())));
}

void Menus::show_recent()
{
    recent_->clear();
    QStringList const files = QSettings().value(kRecentKey).toStringList();
    for (QString const& file : files) {
        QAction* const action = recent_->addAction(file);
        connect(action, &QAction::triggered, this, [this, file] { window_.open(file); });
    }
    if (files.isEmpty()) {
        recent_->addAction(tr("none yet"))->setEnabled(false);
    }
}

} // namespace umbrix_desktop
