// SPDX-License-Identifier: MIT
#include "panels/number_edit.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QSignalBlocker>
#include <algorithm>
#include <cmath>

namespace umbrix_desktop {

namespace {

/// A field that shows no more digits than the number has, and leaves the wheel to the panel that it is in.
class NumberField : public QDoubleSpinBox {
public:
    using QDoubleSpinBox::QDoubleSpinBox;

    QString textFromValue(double number) const override
    {
        QString text = locale().toString(number, 'f', decimals());
        while (decimals() > 0 && text.endsWith(locale().zeroDigit())) {
            text.chop(1);
        }
        return text.endsWith(locale().decimalPoint()) ? text.chopped(1) : text;
    }

    void stepBy(int steps) override
    {
        double const digit = value() == 0 ? -2 : std::floor(std::log10(std::abs(value()))) - 1;
        setSingleStep(decimals() == 0 ? 1 : std::max(std::pow(10, digit), std::pow(10, -decimals())));
        QDoubleSpinBox::stepBy(steps);
    }

protected:
    void wheelEvent(QWheelEvent* event) override { QWidget::wheelEvent(event); }
};

/// A slider that leaves the wheel to the panel that it is in.
class PlainSlider : public QSlider {
public:
    using QSlider::QSlider;

protected:
    void wheelEvent(QWheelEvent* event) override { QWidget::wheelEvent(event); }
};

} // namespace

NumberEdit::NumberEdit(NumberForm const& form, QWidget* parent)
    : QWidget(parent), scale_(form.scale), slider_(new PlainSlider(Qt::Horizontal)), field_(new NumberField)
{
    slider_->setRange(0, SliderScale::kPlaces);
    slider_->setPageStep(SliderScale::kPlaces / 20);
    slider_->setMinimumWidth(60);
    slider_->setAccessibleName(form.name);
    field_->setDecimals(form.decimals);
    field_->setRange(form.minimum, form.maximum);
    field_->setKeyboardTracking(false);
    field_->setFixedWidth(88);
    field_->setAccessibleName(form.name);
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(slider_, 1);
    row->addWidget(field_);
    if (form.may_be_auto) {
        auto_ = new QCheckBox(tr("auto"));
        auto_->setAccessibleName(tr("%1: automatic").arg(form.name));
        row->addWidget(auto_);
        connect(auto_, &QCheckBox::toggled, this, [this, usual = form.usual](bool on) {
            if (on) {
                Q_EMIT auto_wanted();
            } else {
                Q_EMIT number_edited(usual);
            }
        });
    }
    setFocusProxy(field_);
    connect(slider_, &QSlider::sliderPressed, this, &NumberEdit::gesture_began);
    connect(slider_, &QSlider::sliderReleased, this, &NumberEdit::gesture_ended);
    connect(slider_, &QSlider::valueChanged, this,
            [this](int place) { Q_EMIT number_edited(scale_.number_at(place)); });
    connect(field_, &QDoubleSpinBox::valueChanged, this, &NumberEdit::number_edited);
}

void NumberEdit::set_number(std::optional<double> number)
{
    QSignalBlocker const slider(slider_);
    QSignalBlocker const field(field_);
    slider_->setEnabled(number.has_value());
    field_->setEnabled(number.has_value());
    if (auto_ != nullptr) {
        QSignalBlocker const box(auto_);
        auto_->setChecked(!number);
    }
    if (number) {
        // While a hand holds the slider it is where the hand is.
        if (!slider_->isSliderDown()) {
            slider_->setValue(scale_.place_of(*number));
        }
        field_->setValue(*number);
    }
}

} // namespace umbrix_desktop
