// SPDX-License-Identifier: MIT
#pragma once

#include "views/shown.h"
#include "views/viewport.h"

#include <QImage>
#include <QTimer>
#include <QWidget>
#include <optional>
#include <vector>

namespace umbrix_desktop {

/// The area in which pictures are looked at. It keeps no state of the document's: it is told what to show,
/// and tells what a hand wants otherwise. Only what is visible is ever made fit for the screen.
class PictureView : public QWidget {
    Q_OBJECT

public:
    /// @param shown What there is to be seen; it outlives the view.
    explicit PictureView(Shown const& shown, QWidget* parent = nullptr);

    /// Shows that from now on.
    void set_view(View const& view);
    void set_light(toolkit::Light light);

    /// There are other pictures to be seen.
    void renew();

    /// What the middle of the area says as long as there is no picture.
    void set_message(QString const& message);

    /// What is seen of the picture; empty if that is all of it.
    std::optional<Area> visible() const;

    /// Nearer or further off, about the middle.
    void zoom_by(int steps);
    void zoom_to_fit();
    void zoom_to_full_size();

    /// The place of the handle of the light; empty if no picture in a light is shown.
    std::optional<QPointF> light_place() const;

    /// The column of the split; empty without one.
    std::optional<int> split_column() const;

    QSize sizeHint() const override { return {640, 480}; }

Q_SIGNALS:
    /// A hand wants it so.
    void view_edited(QString const& name, umbrix_desktop::View const& view);
    void light_edited(umbrixlib::toolkit::Light light);

    /// A drag begins, of which all edits are one, or ends.
    void gesture_began();
    void gesture_ended();

    /// What is under the cursor, in words; "" for nothing.
    void pointed(QString const& words);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    /// A part of the area with a picture, or with two over one another.
    struct Pane {
        QRect rect; ///< Of the widget.
        Show show;
    };
    enum class Drag { kNone, kPan, kSplit, kLight };

    std::vector<Pane> panes() const;
    Pane pane_at(QPointF place) const;
    std::optional<Pane> lit_pane() const;
    Viewport viewport(Pane const& pane) const;
    QPointF pixels_in(Pane const& pane, QPointF place) const;
    QImage image_of(Show show, Viewport const& viewport) const;
    void make_images();
    void draw_seams(QPainter& painter, Pane const& pane) const;
    void draw_light(QPainter& painter) const;
    Drag drag_at(QPointF place) const;
    void show_cursor(QPointF place);
    void tell(QPointF place);
    void zoom_about(QPointF place, int steps);

    Shown const& shown_;
    View view_;
    toolkit::Light light_{};
    QString message_;
    std::vector<QImage> drawn_;  ///< One a picture that is shown; empty: to be made.
    std::vector<QImage> images_; ///< One a pane, made of these; empty: to be made.
    Drag drag_ = Drag::kNone;
    QPointF last_;
    int wheel_ = 0;         ///< Eighths of a degree that have not made a step yet.
    QTimer wheel_rest_;     ///< Turns of the wheel in short order are one edit.
    bool wheeling_ = false; ///< Such an edit is under way.
};

} // namespace umbrix_desktop
