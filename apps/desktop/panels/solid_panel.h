// SPDX-License-Identifier: MIT
#pragma once

#include "views/shown.h"
#include "views/solid_mesh.h"

#include <QComboBox>
#include <QLabel>
#include <QVBoxLayout>
#include <QWidget>

namespace umbrix_desktop {

class SolidView;

/// The map on a body. OpenGL is not touched before the panel is seen; where it cannot be used, the panel says
/// why, and all else goes on.
class SolidPanel : public QWidget {
    Q_OBJECT

public:
    /// @param shown What there is to be seen; it outlives the panel.
    explicit SolidPanel(Shown const& shown, QWidget* parent = nullptr);

    /// Shows the map as that state has it.
    void set_state(State const& state);

    /// There is another map to be seen.
    void renew();

Q_SIGNALS:
    /// The panel can show nothing. Told once.
    void complained(QString const& sentence);

protected:
    void showEvent(QShowEvent* event) override;

private:
    void give_up(QString const& reason);

    Shown const& shown_;
    State state_;
    QVBoxLayout* column_;
    QComboBox* solid_;
    SolidView* view_ = nullptr; ///< Null: not made yet, or of no use.
    bool is_tried_ = false;
};

} // namespace umbrix_desktop
