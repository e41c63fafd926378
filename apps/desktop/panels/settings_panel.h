// SPDX-License-Identifier: MIT
#pragma once

#include "document/document.h"
#include "toolkit/settings/setting_table.h"

#include <QScrollArea>
#include <QToolButton>
#include <functional>
#include <vector>

class QGridLayout;

namespace umbrix_desktop {

/// The settings of a document, made of the table of settings alone: one that is added there is here by
/// itself. Those that no picture of the window depends on are left out.
class SettingsPanel : public QScrollArea {
    Q_OBJECT

public:
    /// @param document Outlives the panel.
    explicit SettingsPanel(Document& document, QWidget* parent = nullptr);

    /// All settings as they are at first, in one step.
    void reset_all();

    QSize sizeHint() const override { return {360, 500}; }

Q_SIGNALS:
    /// What a user should know: a text that was typed has not the right form.
    void complained(QString const& sentence);

private:
    /// The edit of one setting.
    struct Line {
        toolkit::SettingRow const* row;
        std::function<void(toolkit::Settings const&)> show;
        QToolButton* reset;
    };

    /// Puts what edits @p row into @p line, and returns it.
    QWidget* edit_for(Line& line);
    QWidget* number_for(Line& line, int decimals);
    QWidget* choice_for(Line& line);
    QWidget* text_for(Line& line);
    void add(QGridLayout& grid, toolkit::SettingRow const& row);
    void change(toolkit::SettingRow const& row, std::function<void(toolkit::Settings&)> const& change);
    void show_settings();

    Document& document_;
    std::vector<Line> lines_;
};

/// The words of a setting's name: "Alpha limit".
QString label_of(toolkit::SettingRow const& row);

/// Its help, unit and range.
QString tooltip_of(toolkit::SettingRow const& row);

} // namespace umbrix_desktop
