// SPDX-License-Identifier: MIT
#include "panels/solid_panel.h"

#include "views/solid_view.h"

#include <QOffscreenSurface>
#include <QOpenGLContext>

namespace umbrix_desktop {

namespace {

/// Why no widget can be drawn by OpenGL here; "" if one can.
QString what_is_missing()
{
    QOpenGLContext context;
    context.setFormat(SolidView::needed_format());
    if (!context.create()) {
        return SolidPanel::tr("there is no OpenGL");
    }
    QOffscreenSurface surface;
    surface.setFormat(context.format());
    surface.create();
    if (!context.makeCurrent(&surface)) {
        return SolidPanel::tr("OpenGL cannot be used");
    }
    QSurfaceFormat const format = context.format();
    bool const enough = format.version() >= qMakePair(3, 3) && !context.isOpenGLES();
    return enough ? QString() : SolidPanel::tr("OpenGL is older than 3.3");
}

} // namespace

SolidPanel::SolidPanel(Shown const& shown, QWidget* parent)
    : QWidget(parent), shown_(shown), column_(new QVBoxLayout(this)), solid_(new QComboBox)
{
    // In the order of Solid.
    solid_->addItems({tr("plane"), tr("sphere"), tr("cylinder")});
    solid_->setCurrentIndex(static_cast<int>(Solid::kSphere));
    solid_->setAccessibleName(tr("Body"));
    solid_->setToolTip(tr("What the map is put on"));
    column_->addWidget(solid_);
    column_->addStretch(1);
    connect(solid_, &QComboBox::currentIndexChanged, this, [this](int solid) {
        if (view_ != nullptr) {
            view_->set_solid(static_cast<Solid>(solid));
        }
    });
}

void SolidPanel::set_state(State const& state)
{
    state_ = state;
    if (view_ != nullptr) {
        view_->set_lighting(state.lighting, state.settings.mode);
        view_->set_tiles(state.view.tiles);
    }
}

void SolidPanel::renew()
{
    if (view_ != nullptr) {
        view_->renew();
    }
}

void SolidPanel::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    if (is_tried_) {
        return;
    }
    is_tried_ = true;
    QString const missing = what_is_missing();
    if (!missing.isEmpty()) {
        return give_up(missing);
    }
    view_ = new SolidView(shown_);
    connect(view_, &SolidView::unusable, this, &SolidPanel::give_up, Qt::QueuedConnection);
    view_->set_solid(static_cast<Solid>(solid_->currentIndex()));
    set_state(State(state_));
    column_->addWidget(view_, 100);
}

void SolidPanel::give_up(QString const& reason)
{
    QString const sentence = tr("The map cannot be shown on a body: %1. All else goes on.").arg(reason);
    if (view_ != nullptr) {
        view_->deleteLater();
        view_ = nullptr;
    }
    solid_->setEnabled(false);
    auto* const label = new QLabel(sentence);
    label->setWordWrap(true);
    column_->insertWidget(1, label);
    Q_EMIT complained(sentence);
}

} // namespace umbrix_desktop
