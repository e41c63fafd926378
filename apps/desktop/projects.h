// SPDX-License-Identifier: MIT
#pragma once

#include "document/document.h"
#include "document/recovery.h"

#include <QObject>
#include <QTimer>
#include <QWidget>
#include <functional>
#include <memory>

namespace umbrix_desktop {

/// The project file of a window's document, the copy of it for a crash, and its line for the command line.
class Projects : public QObject {
    Q_OBJECT

public:
    /// @param window   Over which questions are asked.
    /// @param document Outlives the projects.
    Projects(QWidget& window, Document& document);

    /// Whether a file is called like a project.
    static bool is_project(QString const& file);

    /// Takes the place of the document. What is unsaved is asked about by may_go().
    void open(QString const& file);

    /// Saves into the document's file; asks for one if it has none yet. Whether it is saved.
    bool save();
    bool save_as();

    /// Whether nothing is lost if the document goes: a user who is asked may save it, or say no.
    bool may_go();

    void ask_for_project();

    /// The document as a line of the command line, to and from the clipboard.
    void copy_command();
    void paste_command();

    /// Keeps a copy for a crash from now on, and asks whether to go on with what one left.
    void begin_recovery();

Q_SIGNALS:
    void complained(QString const& sentence);
    void told(QString const& sentence);
    void opened(QString const& file);

private:
    bool save_to(QString const& file);
    void keep_copy();

    /// Does it; complains about a Failure. Whether there was none.
    bool attempt(std::function<void()> const& act);

    QWidget& window_;
    Document& document_;
    std::unique_ptr<RecoveryCopy> copy_;
    QTimer copy_rest_;
};

} // namespace umbrix_desktop
