// SPDX-License-Identifier: MIT
#pragma once

#include "panels/slider_scale.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QSlider>
#include <QWidget>
#include <optional>

namespace umbrix_desktop {

/// What a number edit needs to know of its number.
struct NumberForm {
    QString name; ///< For those who hear the screen.
    double minimum;
    double maximum;
    int decimals;
    SliderScale scale;
    bool may_be_auto = false; ///< No number may be given, and a box says so.
    double usual = 0;         ///< What an automatic one becomes when the box is cleared.
};

/// A slider and a field for one number. Its user keeps the number: the edit tells what a hand wants.
class NumberEdit : public QWidget {
    Q_OBJECT

public:
    explicit NumberEdit(NumberForm const& form, QWidget* parent = nullptr);

    /// Shows that from now on; empty: automatic.
    void set_number(std::optional<double> number);

Q_SIGNALS:
    void number_edited(double number);
    void auto_wanted();

    /// A hand holds the slider, or lets it go.
    void gesture_began();
    void gesture_ended();

private:
    SliderScale scale_;
    QSlider* slider_;
    QDoubleSpinBox* field_;
    QCheckBox* auto_ = nullptr;
};

} // namespace umbrix_desktop
