// SPDX-License-Identifier: MIT
#pragma once

#include "document/document.h"

#include <QComboBox>
#include <QPushButton>
#include <QToolButton>
#include <QWidget>
#include <functional>
#include <vector>

namespace umbrix_desktop {

class NumberEdit;

/// The light that the map is shown in.
class LightPanel : public QWidget {
    Q_OBJECT

public:
    /// @param document Outlives the panel.
    explicit LightPanel(Document& document, QWidget* parent = nullptr);

Q_SIGNALS:
    /// A file of the colours of the surface is to be chosen.
    void albedo_wanted();

private:
    void show_lighting();
    void edit(QString const& name, std::function<void(Lighting&)> const& change);

    Document& document_;
    std::vector<NumberEdit*> numbers_;
    QComboBox* weights_;
    QPushButton* albedo_;
    QToolButton* no_albedo_;
};

} // namespace umbrix_desktop
