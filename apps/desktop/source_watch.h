// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QFileSystemWatcher>
#include <QObject>
#include <QTimer>

namespace umbrix_desktop {

/// Tells when a file has changed on the disk: when it was written to, and when another one took its name, as
/// programs do that write a new file first. A file that is gone is waited for.
class SourceWatch : public QObject {
    Q_OBJECT

public:
    explicit SourceWatch(QObject* parent = nullptr);

    /// Watches @p file and no other; "": none.
    void watch(QString const& file);

Q_SIGNALS:
    /// Once the file has rested for a moment.
    void changed();

private:
    /// What tells one state of a file from another.
    struct Stamp {
        bool exists = false;
        qint64 size = 0;
        QDateTime time;

        bool operator==(Stamp const&) const = default;
    };

    Stamp stamp() const;
    void look();

    QString file_;
    Stamp known_;
    Stamp seen_; ///< When it was looked at last.
    QFileSystemWatcher watcher_;
    QTimer rest_;
};

} // namespace umbrix_desktop
