// SPDX-License-Identifier: MIT
#include "source_watch.h"

#include <QFileInfo>

namespace umbrix_desktop {

namespace {

/// How long a file is left alone before it counts as written.
constexpr int kFileRestMs = 250;

} // namespace

SourceWatch::SourceWatch(QObject* parent) : QObject(parent)
{
    rest_.setSingleShot(true);
    rest_.setInterval(kFileRestMs);
    auto const wait = [this] { rest_.start(); };
    connect(&watcher_, &QFileSystemWatcher::fileChanged, this, wait);
    connect(&watcher_, &QFileSystemWatcher::directoryChanged, this, wait);
    connect(&rest_, &QTimer::timeout, this, &SourceWatch::look);
}

void SourceWatch::watch(QString const& file)
{
    if (file == file_) {
        return;
    }
    if (!watcher_.files().isEmpty()) {
        watcher_.removePaths(watcher_.files());
    }
    if (!watcher_.directories().isEmpty()) {
        watcher_.removePaths(watcher_.directories());
    }
    rest_.stop();
    file_ = file;
    known_ = seen_ = stamp();
    if (!file.isEmpty()) {
        watcher_.addPath(QFileInfo(file).absolutePath());
        watcher_.addPath(file);
    }
}

SourceWatch::Stamp SourceWatch::stamp() const
{
    QFileInfo const info(file_);
    return info.isFile() ? Stamp{true, info.size(), info.lastModified()} : Stamp{};
}

void SourceWatch::look()
{
    Stamp const now = stamp();
    if (now.exists && !watcher_.files().contains(file_)) {
        watcher_.addPath(file_); // of a file that was replaced nothing is told any more
    }
    if (!(now == seen_)) { // it is still being written
        seen_ = now;
        rest_.start();
        return;
    }
    if (now.exists && !(now == known_)) {
        known_ = now;
        Q_EMIT changed();
    }
}

} // namespace umbrix_desktop
