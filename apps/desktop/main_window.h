// SPDX-License-Identifier: MIT
#pragma once

#include "document/document.h"
#include "source_watch.h"
#include "views/shown.h"
#include "window_work.h"

#include <QLabel>
#include <QMainWindow>
#include <QProgressBar>

namespace umbrix_desktop {

class Docks;
class Menus;
class PictureView;
class Projects;

/// The window: a document, the pictures that are made of it, and all that edits it.
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    explicit MainWindow(QWidget* parent = nullptr);
    ~MainWindow() override;

    Document& document() { return document_; }
    PictureView& picture_view() { return *view_; }

    /// Goes where it was when one was closed last, with its panels.
    void take_its_place();

    /// Opens a picture, or a project in place of the document.
    void open(QString const& file);

    /// Saves the map. A file that is there is replaced.
    void save_map(QString const& file);

    /// What the hand does in the menus; each asks for the file.
    void ask_for_picture();
    void ask_for_albedo();
    void ask_for_map_file();

    Projects& projects() { return *projects_; }

    /// The last sentence about something that failed; "" for none since a source was opened.
    QString const& failure() const { return failure_; }

Q_SIGNALS:
    /// All pictures that are wanted are there in full, or failed.
    void settled();

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void make_status_bar();
    void open_project(QString const& file);
    void follow(State const& before, State const& after);
    void want();
    void take(Made const& made);
    void reload();
    void fail(QString const& sentence);
    void show_title();

    Document document_;
    Shown shown_;
    PictureView* view_;
    Docks* docks_ = nullptr;
    Projects* projects_ = nullptr;
    Menus* menus_ = nullptr;
    SourceWatch watch_;
    WindowWork work_;
    QLabel* pointed_;
    QLabel* description_;
    QProgressBar* progress_;
    QString failure_;
};

} // namespace umbrix_desktop
