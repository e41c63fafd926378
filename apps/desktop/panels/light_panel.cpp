// SPDX-License-Identifier: MIT
#include "panels/light_panel.h"

#include "panels/number_edit.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QPushButton>
#include <QSignalBlocker>

namespace umbrix_desktop {

namespace {

/// A number of the lighting.
struct LightRow {
    char const* name;
    char const* help;
    double minimum;
    double maximum;
    int decimals;
    bool is_fine; ///< As a scale is.
    double& (*number)(Lighting&);
};

constexpr char const* kContext = "umbrix_desktop::LightPanel";

constexpr LightRow kRows[] = {
    {QT_TRANSLATE_NOOP("umbrix_desktop::LightPanel", "Azimuth"),
     QT_TRANSLATE_NOOP("umbrix_desktop::LightPanel",
                       "Where the light comes from: 0 is the right edge of the picture, 90 its top. [-360 to "
                       "360 degrees]"),
     -360, 360, 1, false, [](Lighting& lighting) -> double& { return lighting.light.azimuth_degrees; }},
    {QT_TRANSLATE_NOOP("umbrix_desktop::LightPanel", "Elevation"),
     QT_TRANSLATE_NOOP("umbrix_desktop::LightPanel",
                       "How high the light stands: 0 is level with the picture. [0 to 90 degrees]"),
     0, 90, 1, false, [](Lighting& lighting) -> double& { return lighting.light.elevation_degrees; }},
    {QT_TRANSLATE_NOOP("umbrix_desktop::LightPanel", "Exposure"),
     QT_TRANSLATE_NOOP("umbrix_desktop::LightPanel",
                       "Brightness of flat ground that nothing hides. [0.01 to 10]"),
     0.01, 10, 3, true, [](Lighting& lighting) -> double& { return lighting.exposure; }},
    {QT_TRANSLATE_NOOP("umbrix_desktop::LightPanel", "Ambient"),
     QT_TRANSLATE_NOOP("umbrix_desktop::LightPanel",
                       "What light from all around adds to the brightness of such ground. [0 to 10]"),
     0, 10, 3, true, [](Lighting& lighting) -> double& { return lighting.ambient; }},
};

QString translated(char const* text)
{
    return QCoreApplication::translate(kContext, text);
}

} // namespace

LightPanel::LightPanel(Document& document, QWidget* parent)
    : QWidget(parent), document_(document), weights_(new QComboBox), albedo_(new QPushButton),
      no_albedo_(new QToolButton)
{
    auto* const form = new QFormLayout(this);
    for (LightRow const& row : kRows) {
        QString const name = translated(row.name);
        auto* const number =
            new NumberEdit({name, row.minimum, row.maximum, row.decimals,
                            SliderScale(row.minimum, row.maximum, row.decimals == 1, row.is_fine)});
        number->setObjectName(QString::fromUtf8(row.name).toLower());
        number->setToolTip(translated(row.help));
        connect(number, &NumberEdit::number_edited, this, [this, &row](double value) {
            edit(translated(row.name), [&](Lighting& lighting) { row.number(lighting) = value; });
        });
        connect(number, &NumberEdit::gesture_began, this, [this] { document_.begin_gesture(); });
        connect(number, &NumberEdit::gesture_ended, this, [this] { document_.end_gesture(); });
        numbers_.push_back(number);
        form->addRow(name, number);
    }

    // In the order of toolkit::WeightRule.
    weights_->addItems({tr("fitted to shadows"), tr("exact on open ground"), tr("clamped")});
    weights_->setAccessibleName(tr("Weights"));
    weights_->setToolTip(tr("How much each channel of the map counts in a light."));
    connect(weights_, &QComboBox::activated, this, [this](int rule) {
        edit(tr("Weights"), [=](Lighting& l) { l.weights = static_cast<toolkit::WeightRule>(rule); });
    });
    form->addRow(tr("Weights"), weights_);

    auto* const colours = new QHBoxLayout;
    albedo_->setAccessibleName(tr("Colours of the surface"));
    albedo_->setToolTip(tr("A picture of the surface's colours, as large as the map."));
    connect(albedo_, &QPushButton::clicked, this, &LightPanel::albedo_wanted);
    no_albedo_->setText(QString(QChar(0x2715))); // a cross
    no_albedo_->setAutoRaise(true);
    no_albedo_->setToolTip(tr("No colours"));
    no_albedo_->setAccessibleName(tr("No colours"));
    connect(no_albedo_, &QToolButton::clicked, this,
            [this] { edit(tr("No colours"), [](Lighting& lighting) { lighting.albedo.clear(); }); });
    colours->addWidget(albedo_, 1);
    colours->addWidget(no_albedo_);
    form->addRow(tr("Colours"), colours);

    setAccessibleName(tr("Light"));
    document_.on_change([this](State const& before, State const& after) {
        if (before.lighting != after.lighting) {
            show_lighting();
        }
    });
    show_lighting();
}

void LightPanel::edit(QString const& name, std::function<void(Lighting&)> const& change)
{
    document_.edit(name.toStdString(), [&](State& state) { change(state.lighting); });
}

void LightPanel::show_lighting()
{
    Lighting lighting = document_.state().lighting;
    for (std::size_t i = 0; i < numbers_.size(); ++i) {
        numbers_[i]->set_number(kRows[i].number(lighting));
    }
    QSignalBlocker const quiet(weights_);
    weights_->setCurrentIndex(static_cast<int>(lighting.weights));
    QString const file = QFileInfo(QString::fromStdString(lighting.albedo)).fileName();
    albedo_->setText(file.isEmpty() ? tr("none") : file);
    no_albedo_->setEnabled(!file.isEmpty());
}

} // namespace umbrix_desktop
