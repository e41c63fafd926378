// SPDX-License-Identifier: MIT
#include "views/picture_view.h"

#include "views/light_handle.h"
#include "views/texel_image.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

namespace umbrix_desktop {

namespace {

constexpr int kGap = 4;      ///< Between pictures side by side.
constexpr double kReach = 8; ///< How far from a handle a hand may be that takes it.
constexpr int kNotch = 120;  ///< Eighths of a degree a step of a wheel.
constexpr int kRestMs = 400; ///< After which a turn of the wheel is another one.
constexpr QRgb kBackground = qRgb(40, 40, 40);

} // namespace

PictureView::PictureView(Shown const& shown, QWidget* parent) : QWidget(parent), shown_(shown)
{
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setMinimumSize(160, 120);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAccessibleName(tr("Picture"));
    setAccessibleDescription(tr("Plus and minus zoom, 0 fits, 1 is full size, the arrows move the picture"));
    wheel_rest_.setSingleShot(true);
    wheel_rest_.setInterval(kRestMs);
    connect(&wheel_rest_, &QTimer::timeout, this, [this] {
        wheeling_ = false;
        Q_EMIT gesture_ended();
    });
}

void PictureView::set_view(View const& view)
{
    if (view == view_) {
        return;
    }
    View same = view;
    same.split = view_.split;
    bool const only_the_split = same == view_;
    view_ = view;
    if (only_the_split) {
        images_.clear();
        update();
    } else {
        renew();
    }
}

void PictureView::set_light(toolkit::Light light)
{
    light_ = light;
    update();
}

void PictureView::renew()
{
    images_.clear();
    drawn_.clear();
    update();
}

void PictureView::set_message(QString const& message)
{
    message_ = message;
    setAccessibleDescription(message);
    update();
}

std::optional<Area> PictureView::visible() const
{
    return shown_.size().isEmpty() ? std::nullopt : visible_area(viewport(panes()[0]));
}

std::vector<PictureView::Pane> PictureView::panes() const
{
    if (view_.arrangement != Arrangement::kSide) {
        return {{rect(), view_.left}};
    }
    int const half = std::max((width() - kGap) / 2, 1);
    return {{QRect(0, 0, half, height()), view_.left},
            {QRect(width() - half, 0, half, height()), view_.right}};
}

PictureView::Pane PictureView::pane_at(QPointF place) const
{
    std::vector<Pane> const all = panes();
    Pane pane = all.size() > 1 && place.x() >= all[1].rect.left() ? all[1] : all[0];
    std::optional<int> const split = split_column();
    if (split && place.x() >= *split) {
        pane.show = view_.right;
    }
    return pane;
}

std::optional<PictureView::Pane> PictureView::lit_pane() const
{
    if (view_.arrangement == Arrangement::kDifference) {
        return std::nullopt;
    }
    for (Pane pane : panes()) {
        bool const right_too = view_.arrangement == Arrangement::kSplit && view_.right == Show::kRelit;
        if ((pane.show == Show::kRelit || right_too) && shown_.has(Show::kRelit)) {
            return pane;
        }
    }
    return std::nullopt;
}

Viewport PictureView::viewport(Pane const& pane) const
{
    return viewport_of(view_, pane.rect.size() * devicePixelRatioF(), shown_.size());
}

QPointF PictureView::pixels_in(Pane const& pane, QPointF place) const
{
    return (place - pane.rect.topLeft()) * devicePixelRatioF();
}

QImage PictureView::image_of(Show show, Viewport const& viewport) const
{
    QImage image(viewport.area, QImage::Format_RGB32);
    image.fill(kBackground);
    for (Piece const* const piece : {&shown_.whole(show), &shown_.preview(show)}) {
        if (piece->picture) {
            draw_texels(image, *piece->picture, piece->area, viewport, view_.channel);
        }
    }
    return image;
}

void PictureView::make_images()
{
    std::vector<Pane> const all = panes();
    bool const over_one_another =
        view_.arrangement == Arrangement::kSplit || view_.arrangement == Arrangement::kDifference;
    if (drawn_.empty()) {
        for (Pane const& pane : all) {
            drawn_.push_back(image_of(pane.show, viewport(pane)));
        }
        if (over_one_another) {
            drawn_.push_back(image_of(view_.right, viewport(all[0])));
        }
    }
    images_ = drawn_;
    if (over_one_another) {
        auto const column = static_cast<int>(std::lround(split_column().value_or(0) * devicePixelRatioF()));
        images_ = {view_.arrangement == Arrangement::kSplit ? split_at(drawn_[0], drawn_[1], column)
                                                            : difference_of(drawn_[0], drawn_[1])};
    }
    for (QImage& image : images_) {
        image.setDevicePixelRatio(devicePixelRatioF());
    }
}

void PictureView::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.fillRect(rect(), QColor(kBackground));
    if (shown_.size().isEmpty()) {
        painter.setPen(Qt::lightGray);
        painter.drawText(rect().adjusted(20, 20, -20, -20), Qt::AlignCenter | Qt::TextWordWrap, message_);
        return;
    }
    if (images_.empty()) {
        make_images();
    }
    auto const label = [&](QRect const& where, int side, QString const& text) {
        QRect const box = painter.fontMetrics().boundingRect(text).adjusted(-6, -3, 6, 3);
        QRect const place(side == Qt::AlignRight ? where.right() - box.width() - 5 : where.left() + 6,
                          where.top() + 6, box.width(), box.height());
        painter.fillRect(place, QColor(0, 0, 0, 170));
        painter.setPen(Qt::white);
        painter.drawText(place, Qt::AlignCenter, text);
    };
    std::vector<Pane> const all = panes();
    for (std::size_t i = 0; i < all.size(); ++i) {
        painter.drawImage(all[i].rect.topLeft(), images_[i]);
        draw_seams(painter, all[i]);
        if (view_.arrangement == Arrangement::kDifference) {
            label(all[i].rect, Qt::AlignLeft,
                  tr("%1 against %2").arg(name_of(view_.right), name_of(view_.left)));
        } else {
            label(all[i].rect, Qt::AlignLeft, name_of(all[i].show));
        }
    }
    if (std::optional<int> const split = split_column()) {
        painter.fillRect(*split - 1, 0, 2, height(), Qt::white);
        label(rect(), Qt::AlignRight, name_of(view_.right));
    }
    if (hasFocus()) {
        painter.setPen(palette().color(QPalette::Highlight));
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
    }
    draw_light(painter);
}

void PictureView::draw_seams(QPainter& painter, Pane const& pane) const
{
    if (view_.tiles == 1) {
        return;
    }
    Viewport const seen = viewport(pane);
    double const ratio = devicePixelRatioF();
    painter.save();
    painter.setClipRect(pane.rect);
    painter.setPen(QPen(QColor(255, 200, 0, 200), 1, Qt::DashLine));
    QRectF const tiles(seen.left() / ratio, seen.top() / ratio,
                       seen.picture.width() * seen.zoom * seen.tiles / ratio,
                       seen.picture.height() * seen.zoom * seen.tiles / ratio);
    for (int i = 1; i < seen.tiles; ++i) {
        double const x = std::round(pane.rect.left() + tiles.left() + tiles.width() * i / seen.tiles);
        double const y = std::round(pane.rect.top() + tiles.top() + tiles.height() * i / seen.tiles);
        painter.drawLine(QPointF(x, pane.rect.top() + tiles.top()),
                         QPointF(x, pane.rect.top() + tiles.bottom()));
        painter.drawLine(QPointF(pane.rect.left() + tiles.left(), y),
                         QPointF(pane.rect.left() + tiles.right(), y));
    }
    painter.restore();
}

void PictureView::draw_light(QPainter& painter) const
{
    std::optional<QPointF> const place = light_place();
    if (!place) {
        return;
    }
    QRectF const pane = lit_pane()->rect;
    double const radius = horizon_radius(pane);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    // Dark below light, so that they are seen on any ground.
    for (QPen const& pen : {QPen(QColor(0, 0, 0, 130), 3), QPen(QColor(255, 220, 90), 1)}) {
        painter.setPen(pen);
        painter.drawEllipse(pane.center(), radius, radius);
        painter.drawLine(pane.center(), *place);
    }
    painter.setPen(QPen(Qt::black, 1));
    painter.setBrush(QColor(255, 220, 90));
    painter.drawEllipse(*place, 7, 7);
}

std::optional<QPointF> PictureView::light_place() const
{
    std::optional<Pane> const pane = lit_pane();
    return pane ? std::optional(place_of_light(light_, QRectF(pane->rect))) : std::nullopt;
}

std::optional<int> PictureView::split_column() const
{
    if (view_.arrangement != Arrangement::kSplit) {
        return std::nullopt;
    }
    return static_cast<int>(std::lround(view_.split * width()));
}

PictureView::Drag PictureView::drag_at(QPointF place) const
{
    if (shown_.size().isEmpty()) {
        return Drag::kNone;
    }
    std::optional<QPointF> const light = light_place();
    if (light && std::hypot(place.x() - light->x(), place.y() - light->y()) <= kReach) {
        return Drag::kLight;
    }
    std::optional<int> const split = split_column();
    if (split && std::abs(place.x() - *split) <= kReach) {
        return Drag::kSplit;
    }
    return Drag::kPan;
}

void PictureView::show_cursor(QPointF place)
{
    switch (drag_ == Drag::kNone ? drag_at(place) : drag_) {
    case Drag::kLight:
        setCursor(Qt::PointingHandCursor);
        break;
    case Drag::kSplit:
        setCursor(Qt::SplitHCursor);
        break;
    default:
        setCursor(drag_ == Drag::kPan ? Qt::ClosedHandCursor : Qt::CrossCursor);
    }
}

void PictureView::tell(QPointF place)
{
    if (shown_.size().isEmpty()) {
        return;
    }
    Pane const pane = pane_at(place);
    std::optional<QPoint> const texel = viewport(pane).texel_under(pixels_in(pane, place));
    if (!texel) {
        Q_EMIT pointed({});
        return;
    }
    QString words = tr("%1, %2").arg(texel->x()).arg(texel->y());
    std::vector<Show> shows{pane.show};
    if (view_.arrangement == Arrangement::kDifference) {
        shows.push_back(view_.right);
    }
    for (Show const show : shows) {
        QString const samples = shown_.words_at(show, *texel);
        words += samples.isEmpty() ? QString() : QString("   %1: %2").arg(name_of(show), samples);
    }
    Q_EMIT pointed(words);
}

void PictureView::resizeEvent(QResizeEvent* /*event*/)
{
    renew();
}

void PictureView::zoom_about(QPointF place, int steps)
{
    Pane const pane = pane_at(place);
    Q_EMIT view_edited(tr("Zoom"), zoomed(view_, viewport(pane), pixels_in(pane, place), steps));
}

void PictureView::zoom_by(int steps)
{
    if (!shown_.size().isEmpty()) {
        zoom_about(QRectF(panes()[0].rect).center(), steps);
    }
}

void PictureView::zoom_to_fit()
{
    View view = view_;
    view.zoom = 0;
    view.centre_x = view.centre_y = 0.5;
    Q_EMIT view_edited(tr("Fit"), view);
}

void PictureView::zoom_to_full_size()
{
    if (!shown_.size().isEmpty()) {
        Q_EMIT view_edited(tr("Full size"), at_full_size(view_, viewport(panes()[0])));
    }
}

void PictureView::wheelEvent(QWheelEvent* event)
{
    event->accept();
    wheel_ += event->angleDelta().y();
    int const steps = wheel_ / kNotch;
    wheel_ -= steps * kNotch;
    if (steps == 0 || shown_.size().isEmpty()) {
        return;
    }
    if (!wheeling_) {
        wheeling_ = true;
        Q_EMIT gesture_began();
    }
    wheel_rest_.start();
    zoom_about(event->position(), steps);
    tell(event->position());
}

void PictureView::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton && event->button() != Qt::MiddleButton) {
        return QWidget::mousePressEvent(event);
    }
    if (wheeling_) { // its gesture ends before another begins
        wheel_rest_.stop();
        wheeling_ = false;
        Q_EMIT gesture_ended();
    }
    drag_ = event->button() == Qt::MiddleButton && !shown_.size().isEmpty() ? Drag::kPan
                                                                            : drag_at(event->position());
    last_ = event->position();
    if (drag_ != Drag::kNone) {
        Q_EMIT gesture_began();
    }
    show_cursor(event->position());
}

void PictureView::mouseMoveEvent(QMouseEvent* event)
{
    QPointF const place = event->position();
    QPointF const by = place - last_;
    last_ = place;
    if (drag_ == Drag::kLight) {
        Q_EMIT light_edited(light_at(place, QRectF(lit_pane().value_or(pane_at(place)).rect)));
    } else if (drag_ == Drag::kSplit) {
        View view = view_;
        view.split = std::clamp(place.x() / width(), 0.0, 1.0);
        Q_EMIT view_edited(tr("Split"), view);
    } else if (drag_ == Drag::kPan && view_.zoom > 0) {
        Q_EMIT view_edited(tr("Move"), panned(view_, viewport(panes()[0]), by * devicePixelRatioF()));
    }
    show_cursor(place);
    tell(place);
}

void PictureView::mouseReleaseEvent(QMouseEvent* event)
{
    if (drag_ != Drag::kNone) {
        drag_ = Drag::kNone;
        Q_EMIT gesture_ended();
    }
    show_cursor(event->position());
}

void PictureView::keyPressEvent(QKeyEvent* event)
{
    auto const move = [this](int x, int y) {
        if (!shown_.size().isEmpty() && view_.zoom > 0) {
            Q_EMIT view_edited(tr("Move"), panned(view_, viewport(panes()[0]), QPointF(x, y) * 32));
        }
    };
    switch (event->key()) {
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        return zoom_by(1);
    case Qt::Key_Minus:
        return zoom_by(-1);
    case Qt::Key_0:
        return zoom_to_fit();
    case Qt::Key_1:
        return zoom_to_full_size();
    case Qt::Key_Left:
        return move(1, 0);
    case Qt::Key_Right:
        return move(-1, 0);
    case Qt::Key_Up:
        return move(0, 1);
    case Qt::Key_Down:
        return move(0, -1);
    default:
        QWidget::keyPressEvent(event);
    }
}

void PictureView::leaveEvent(QEvent* /*event*/)
{
    Q_EMIT pointed({});
}

} // namespace umbrix_desktop
