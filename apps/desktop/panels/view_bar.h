// SPDX-License-Identifier: MIT
#pragma once

#include "document/document.h"

#include <QComboBox>
#include <QSpinBox>
#include <QToolBar>
#include <functional>

namespace umbrix_desktop {

/// What is looked at, and how.
class ViewBar : public QToolBar {
    Q_OBJECT

public:
    /// @param document Outlives the bar.
    explicit ViewBar(Document& document, QWidget* parent = nullptr);

private:
    QComboBox* add_combo(QString const& name, QString const& help, QStringList const& choices,
                         std::function<void(View&, int)> const& choose);
    void show_view();

    Document& document_;
    QComboBox* left_;
    QComboBox* arrangement_;
    QComboBox* right_;
    QComboBox* channel_;
    QSpinBox* tiles_;
};

} // namespace umbrix_desktop
