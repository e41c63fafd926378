// SPDX-License-Identifier: MIT
#pragma once

#include "document/document.h"
#include "views/shown.h"

#include <QDockWidget>
#include <QMainWindow>
#include <QObject>

namespace umbrix_desktop {

class SolidPanel;

/// The panels around the picture of a window.
class Docks : public QObject {
    Q_OBJECT

public:
    /// @param document Outlives the docks, as @p shown does.
    Docks(QMainWindow& window, Document& document, Shown const& shown);

    /// There are other pictures to be seen.
    void renew();

    /// Whether the map is shown beside the picture.
    bool need_the_map() const { return solid_dock_->isVisible(); }

Q_SIGNALS:
    void complained(QString const& sentence);
    void albedo_wanted();

    /// The map is shown beside the picture from now on.
    void map_wanted();

private:
    QDockWidget* add(QMainWindow& window, QString const& title, char const* name, QWidget* panel);

    SolidPanel* solid_;
    QDockWidget* solid_dock_;
};

} // namespace umbrix_desktop
