// SPDX-License-Identifier: MIT
#include "projects.h"

#include "document/command_text.h"
#include "document/project_file.h"
#include "work/sentence.h"

#include <QClipboard>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMessageBox>
#include <QStandardPaths>

namespace umbrix_desktop {

namespace {

constexpr char const* kProjectExtension = ".umbrix";

/// How long the document rests before its copy is written.
constexpr int kCopyRestMs = 2000;

std::filesystem::path file_path(QString const& file)
{
    return QFile::encodeName(file).toStdString();
}

QString project_filter()
{
    return Projects::tr("Projects (*%1)").arg(kProjectExtension);
}

} // namespace

Projects::Projects(QWidget& window, Document& document)
    : QObject(&window), window_(window), document_(document)
{
    copy_rest_.setSingleShot(true);
    copy_rest_.setInterval(kCopyRestMs);
    connect(&copy_rest_, &QTimer::timeout, this, &Projects::keep_copy);
}

bool Projects::is_project(QString const& file)
{
    return file.endsWith(kProjectExtension, Qt::CaseInsensitive);
}

bool Projects::attempt(std::function<void()> const& act)
{
    try {
        act();
        return true;
    } catch (toolkit::Failure const& failure) {
        Q_EMIT complained(QString::fromStdString(sentence_of(failure)));
    } catch (std::exception const& error) {
        Q_EMIT complained(QString::fromLocal8Bit(error.what()));
    }
    return false;
}

void Projects::open(QString const& file)
{
    std::filesystem::path const path = file_path(QFileInfo(file).absoluteFilePath());
    if (attempt([&] { document_.replace(read_project(path).state, path.string()); })) {
        Q_EMIT opened(file);
    }
}

bool Projects::save_to(QString const& file)
{
    std::filesystem::path const path = file_path(QFileInfo(file).absoluteFilePath());
    bool const saved = attempt([&] {
        save_project(document_.state(), path);
        document_.set_saved(path.string());
    });
    if (saved) {
        Q_EMIT told(tr("%1 is saved.").arg(file));
        Q_EMIT opened(file);
    }
    return saved;
}

bool Projects::save()
{
    std::string const& file = document_.project_file();
    return file.empty() ? save_as() : save_to(QFile::decodeName(file.c_str()));
}

bool Projects::save_as()
{
    // The dialog asks before it returns the name of a file that is there.
    QFileDialog dialog(&window_, tr("Save the project"), {}, project_filter());
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(QString(kProjectExtension).mid(1));
    return dialog.exec() == QDialog::Accepted && save_to(dialog.selectedFiles().first());
}

bool Projects::may_go()
{
    if (!document_.is_changed()) {
        return true;
    }
    auto const answer = QMessageBox::question(
        &window_, tr("Umbrix"), tr("Save what has changed in a project?"),
        QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Save);
    return answer == QMessageBox::Discard || (answer == QMessageBox::Save && save());
}

void Projects::ask_for_project()
{
    if (!may_go()) {
        return;
    }
    QString const file = QFileDialog::getOpenFileName(&window_, tr("Open a project"), {}, project_filter());
    if (!file.isEmpty()) {
        open(file);
    }
}

void Projects::copy_command()
{
    if (document_.state().source.empty()) {
        Q_EMIT complained(tr("There is no map yet: open a picture first."));
        return;
    }
    QString const line = QString::fromStdString(command_of(document_.state()));
    QGuiApplication::clipboard()->setText(line);
    Q_EMIT told(tr("Copied: %1").arg(line));
}

void Projects::paste_command()
{
    std::string const line = QGuiApplication::clipboard()->text().trimmed().toStdString();
    attempt([&] {
        State const pasted = state_of_command(line, document_.state());
        document_.edit(tr("Paste command").toStdString(), [&](State& state) { state = pasted; });
    });
}

void Projects::begin_recovery()
{
    std::filesystem::path const folder =
        file_path(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)) / "recovery";
    for (LeftDocument const& left : left_documents(folder)) {
        if (!left.project) {
            Q_EMIT complained(QString::fromStdString(left.failure));
            continue;
        }
        auto const answer =
            QMessageBox::question(&window_, tr("Umbrix"),
                                  tr("The program ended before this was saved: %1\nGo on with it?")
                                      .arg(QString::fromStdString(left.project->state.source)));
        if (answer == QMessageBox::Yes) {
            State const state = left.project->state;
            document_.replace({}, left.project->saved_as);
            document_.edit(tr("Recover").toStdString(), [&](State& changed) { changed = state; });
        }
        attempt([&] { remove_left(left.file); });
        if (answer == QMessageBox::Yes) {
            break;
        }
    }
    attempt([&] { copy_ = std::make_unique<RecoveryCopy>(folder); });
    document_.on_change([this](State const&, State const&) { copy_rest_.start(); });
    copy_rest_.start();
}

void Projects::keep_copy()
{
    if (!copy_) {
        return;
    }
    attempt([&] {
        if (document_.is_changed()) {
            copy_->write({document_.state(), document_.project_file()});
        } else {
            copy_->remove();
        }
    });
}

} // namespace umbrix_desktop
