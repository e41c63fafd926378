// SPDX-License-Identifier: MIT
#include "panels/settings_panel.h"

#include "panels/number_edit.h"
#include "toolkit/base/overloaded.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <cmath>

namespace umbrix_desktop {

namespace {

/// Users of settings that the pictures of the window depend on, or the files that it saves.
constexpr unsigned kUsers = toolkit::kForMap | toolkit::kForNormal | toolkit::kForHeights;

constexpr int kDecimals = 5;

/// A combo box that leaves the wheel to the panel that it is in.
class PlainCombo : public QComboBox {
public:
    using QComboBox::QComboBox;

protected:
    void wheelEvent(QWheelEvent* event) override { QWidget::wheelEvent(event); }
};

/// The number of a row; empty: automatic.
std::optional<double> number_of(toolkit::SettingRow const& row, toolkit::Settings const& settings)
{
    using toolkit::Settings;
    return std::visit(toolkit::Overloaded{
                          [](auto) { return std::optional<double>(); },
                          [&](int Settings::*field) { return std::optional<double>(settings.*field); },
                          [&](float Settings::*field) { return std::optional<double>(settings.*field); },
                          [&](std::optional<float> Settings::*field) {
                              auto const number = settings.*field;
                              return number ? std::optional<double>(*number) : std::nullopt;
                          },
                      },
                      row.field);
}

/// Nothing makes the setting automatic.
void set_number(toolkit::SettingRow const& row, toolkit::Settings& settings, std::optional<double> number)
{
    using toolkit::Settings;
    std::visit(toolkit::Overloaded{
                   [](auto) {},
                   [&](int Settings::*field) { settings.*field = static_cast<int>(std::lround(*number)); },
                   [&](float Settings::*field) { settings.*field = static_cast<float>(*number); },
                   [&](std::optional<float> Settings::*field) {
                       settings.*field = number ? std::optional(static_cast<float>(*number)) : std::nullopt;
                   },
               },
               row.field);
}

/// What an automatic number is in fact, where a hand goes on from.
double automatic_number(toolkit::SettingRow const& row, toolkit::Settings const& settings)
{
    using toolkit::Settings;
    auto const is = [&](std::optional<float> Settings::*field) {
        auto const* const own = std::get_if<std::optional<float> Settings::*>(&row.field);
        return own != nullptr && *own == field;
    };
    return is(&Settings::h_scale) ? static_cast<double>(settings.relief) : std::max(row.minimum, 1.0);
}

} // namespace

QString label_of(toolkit::SettingRow const& row)
{
    QString label = QString::fromUtf8(row.name).replace('-', ' ');
    label[0] = label[0].toUpper();
    return label;
}

QString tooltip_of(toolkit::SettingRow const& row)
{
    QString tip = QString::fromUtf8(row.help) + ".";
    if (row.minimum < row.maximum) {
        tip += QString(" [%1 to %2%3]").arg(row.minimum).arg(row.maximum).arg(QString::fromUtf8(row.unit));
    } else if (*toolkit::form_of(row) != '\0') {
        tip += QString(" [%1]").arg(QString::fromUtf8(toolkit::form_of(row)));
    }
    return tip;
}

SettingsPanel::SettingsPanel(Document& document, QWidget* parent) : QScrollArea(parent), document_(document)
{
    auto* const content = new QWidget;
    auto* const column = new QVBoxLayout(content);
    QGridLayout* grid = nullptr;
    char const* group = "";
    for (toolkit::SettingRow const& row : toolkit::setting_table()) {
        if (row.users != toolkit::kForPresets && (row.users & kUsers) == 0) {
            continue;
        }
        if (QLatin1String(group) != QLatin1String(row.group)) {
            group = row.group;
            auto* const box = new QGroupBox(QString::fromUtf8(group));
            grid = new QGridLayout(box);
            grid->setColumnStretch(1, 1);
            column->addWidget(box);
        }
        add(*grid, row);
    }
    auto* const reset = new QPushButton(tr("Reset all settings"));
    connect(reset, &QPushButton::clicked, this, &SettingsPanel::reset_all);
    column->addWidget(reset);
    column->addStretch(1);
    setWidget(content);
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setAccessibleName(tr("Settings"));
    document_.on_change([this](State const& before, State const& after) {
        if (before.settings != after.settings) {
            show_settings();
        }
    });
    show_settings();
}

void SettingsPanel::add(QGridLayout& grid, toolkit::SettingRow const& row)
{
    Line line{&row, {}, new QToolButton};
    QWidget* const edit = edit_for(line);
    edit->setObjectName(QString::fromUtf8(row.name));
    int const at = grid.rowCount();
    if (!std::holds_alternative<bool toolkit::Settings::*>(row.field)) {
        auto* const label = new QLabel(label_of(row));
        label->setBuddy(edit);
        label->setToolTip(tooltip_of(row));
        grid.addWidget(label, at, 0);
    }
    grid.addWidget(edit, at, 1);
    edit->setToolTip(tooltip_of(row));
    line.reset->setText(QString(QChar(0x21BA))); // a circle with an arrow
    line.reset->setAutoRaise(true);
    line.reset->setToolTip(
        tr("As at first: %1").arg(QString::fromStdString(value_text(row, toolkit::kDefaults))));
    line.reset->setAccessibleName(tr("Reset %1").arg(label_of(row)));
    connect(line.reset, &QToolButton::clicked, this, [this, &row] {
        change(row, [&row](toolkit::Settings& settings) {
            std::visit([&](auto field) { settings.*field = toolkit::kDefaults.*field; }, row.field);
        });
    });
    grid.addWidget(line.reset, at, 2);
    lines_.push_back(std::move(line));
}

QWidget* SettingsPanel::edit_for(Line& line)
{
    using toolkit::Settings;
    toolkit::SettingRow const& row = *line.row;
    return std::visit(toolkit::Overloaded{
                          [&](auto) { return choice_for(line); },
                          [&](toolkit::HeightRange Settings::*) { return text_for(line); },
                          [&](toolkit::InvalidTexels Settings::*) { return text_for(line); },
                          [&](int Settings::*) { return number_for(line, 0); },
                          [&](float Settings::*) { return number_for(line, kDecimals); },
                          [&](std::optional<float> Settings::*) { return number_for(line, kDecimals); },
                          [&](bool Settings::*field) -> QWidget* {
                              auto* const box = new QCheckBox(label_of(row));
                              connect(box, &QCheckBox::toggled, this, [this, &row, field](bool on) {
                                  change(row, [=](Settings& settings) { settings.*field = on; });
                              });
                              line.show = [box, field](Settings const& settings) {
                                  QSignalBlocker const quiet(box);
                                  box->setChecked(settings.*field);
                              };
                              return box;
                          },
                      },
                      row.field);
}

QWidget* SettingsPanel::number_for(Line& line, int decimals)
{
    toolkit::SettingRow const& row = *line.row;
    bool const may_be_auto = std::holds_alternative<std::optional<float> toolkit::Settings::*>(row.field);
    auto* const edit =
        new NumberEdit({label_of(row), row.minimum, row.maximum, decimals, SliderScale::of(row), may_be_auto,
                        automatic_number(row, document_.state().settings)});
    connect(edit, &NumberEdit::number_edited, this, [this, &row](double number) {
        change(row, [&](toolkit::Settings& settings) { set_number(row, settings, number); });
    });
    connect(edit, &NumberEdit::auto_wanted, this, [this, &row] {
        change(row, [&](toolkit::Settings& settings) { set_number(row, settings, std::nullopt); });
    });
    connect(edit, &NumberEdit::gesture_began, this, [this] { document_.begin_gesture(); });
    connect(edit, &NumberEdit::gesture_ended, this, [this] { document_.end_gesture(); });
    line.show = [edit, &row](toolkit::Settings const& settings) {
        edit->set_number(number_of(row, settings));
    };
    return edit;
}

QWidget* SettingsPanel::choice_for(Line& line)
{
    toolkit::SettingRow const& row = *line.row;
    auto* const combo = new PlainCombo;
    combo->setAccessibleName(label_of(row));
    for (char const* const choice : toolkit::choices(row)) {
        combo->addItem(QString::fromUtf8(choice));
    }
    connect(combo, &QComboBox::activated, this, [this, &row](int choice) {
        change(row, [&](toolkit::Settings& settings) { toolkit::choose(row, settings, choice); });
    });
    line.show = [combo, &row](toolkit::Settings const& settings) {
        QSignalBlocker const quiet(combo);
        combo->setCurrentText(QString::fromStdString(toolkit::value_text(row, settings)));
    };
    return combo;
}

QWidget* SettingsPanel::text_for(Line& line)
{
    toolkit::SettingRow const& row = *line.row;
    auto* const field = new QLineEdit;
    field->setAccessibleName(label_of(row));
    connect(field, &QLineEdit::editingFinished, this, [this, field, &row] {
        toolkit::Settings settings = document_.state().settings;
        if (toolkit::take_text(row, settings, field->text().toStdString())) {
            change(row, [&](toolkit::Settings& changed) { changed = settings; });
            return;
        }
        Q_EMIT complained(tr("%1 is %2, not \"%3\".")
                              .arg(label_of(row), QString::fromUtf8(toolkit::form_of(row)), field->text()));
        field->setText(QString::fromStdString(toolkit::value_text(row, document_.state().settings)));
    });
    line.show = [field, &row](toolkit::Settings const& settings) {
        field->setText(QString::fromStdString(toolkit::value_text(row, settings)));
    };
    return field;
}

void SettingsPanel::change(toolkit::SettingRow const& row,
                           std::function<void(toolkit::Settings&)> const& change)
{
    document_.edit(label_of(row).toStdString(), [&](State& state) { change(state.settings); });
}

void SettingsPanel::show_settings()
{
    toolkit::Settings const& settings = document_.state().settings;
    for (Line const& line : lines_) {
        line.show(settings);
        line.reset->setEnabled(toolkit::value_text(*line.row, settings) !=
                               toolkit::value_text(*line.row, toolkit::kDefaults));
    }
}

void SettingsPanel::reset_all()
{
    document_.edit(tr("Reset all settings").toStdString(),
                   [](State& state) { state.settings = toolkit::kDefaults; });
}

} // namespace umbrix_desktop
