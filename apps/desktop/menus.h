// SPDX-License-Identifier: MIT
#pragma once

#include <QAction>
#include <QMenu>
#include <QObject>
#include <functional>

namespace umbrix_desktop {

class MainWindow;

/// The menus of a window.
class Menus : public QObject {
    Q_OBJECT

public:
    explicit Menus(MainWindow& window);

    /// Puts a file at the head of those that were opened recently, which all windows of a user share.
    void remember(QString const& file);

private:
    QAction* add(QMenu& menu, QString const& text, QKeySequence const& keys,
                 std::function<void()> const& act);
    void add_file_menu();
    void add_edit_menu();
    void add_settings_menu();
    void add_view_menu();
    void show_steps();
    void show_recent();

    MainWindow& window_;
    QMenu* recent_ = nullptr;
    QAction* undo_ = nullptr;
    QAction* redo_ = nullptr;
};

} // namespace umbrix_desktop
