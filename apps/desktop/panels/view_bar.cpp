// SPDX-License-Identifier: MIT
#include "panels/view_bar.h"

#include "views/shown.h"

#include <QLabel>
#include <QSignalBlocker>

namespace umbrix_desktop {

namespace {

constexpr int kMostTiles = 8;

QStringList names_of_shows()
{
    QStringList names;
    for (std::size_t i = 0; i < kShows; ++i) {
        names.push_back(name_of(static_cast<Show>(i)));
    }
    return names;
}

} // namespace

ViewBar::ViewBar(Document& document, QWidget* parent) : QToolBar(tr("Views"), parent), document_(document)
{
    setObjectName("views");
    left_ = add_combo(tr("Picture"), tr("What is shown, on the left if there are two"), names_of_shows(),
                      [](View& view, int choice) { view.left = static_cast<Show>(choice); });
    // In the order of Arrangement.
    arrangement_ =
        add_combo(tr("Arrangement"), tr("How two pictures are compared"),
                  {tr("alone"), tr("with a split"), tr("side by side"), tr("difference")},
                  [](View& view, int choice) { view.arrangement = static_cast<Arrangement>(choice); });
    right_ = add_combo(tr("Other picture"), tr("What is shown on the right"), names_of_shows(),
                       [](View& view, int choice) { view.right = static_cast<Show>(choice); });
    addSeparator();
    // In the order of Channel.
    channel_ = add_combo(tr("Channel"), tr("Which channel is shown"),
                         {tr("colours"), tr("red"), tr("green"), tr("blue"), tr("alpha")},
                         [](View& view, int choice) { view.channel = static_cast<Channel>(choice); });
    tiles_ = new QSpinBox;
    tiles_->setRange(1, kMostTiles);
    tiles_->setPrefix(tr("tiles: "));
    tiles_->setAccessibleName(tr("Tiles"));
    tiles_->setObjectName("tiles");
    tiles_->setToolTip(tr("Times that the picture is repeated each way"));
    connect(tiles_, &QSpinBox::valueChanged, this, [this](int tiles) {
        document_.edit(tr("Tiles").toStdString(), [=](State& state) { state.view.tiles = tiles; });
    });
    addWidget(tiles_);
    document_.on_change([this](State const& before, State const& after) {
        if (before.view != after.view) {
            show_view();
        }
    });
    show_view();
}

QComboBox* ViewBar::add_combo(QString const& name, QString const& help, QStringList const& choices,
                              std::function<void(View&, int)> const& choose)
{
    auto* const combo = new QComboBox;
    combo->addItems(choices);
    combo->setAccessibleName(name);
    combo->setToolTip(help);
    connect(combo, &QComboBox::activated, this, [this, name, choose](int choice) {
        document_.edit(name.toStdString(), [&](State& state) { choose(state.view, choice); });
    });
    addWidget(combo);
    return combo;
}

void ViewBar::show_view()
{
    View const& view = document_.state().view;
    left_->setCurrentIndex(static_cast<int>(view.left));
    arrangement_->setCurrentIndex(static_cast<int>(view.arrangement));
    right_->setCurrentIndex(static_cast<int>(view.right));
    right_->setEnabled(view.arrangement != Arrangement::kOne);
    channel_->setCurrentIndex(static_cast<int>(view.channel));
    QSignalBlocker const quiet(tiles_);
    tiles_->setValue(view.tiles);
}

} // namespace umbrix_desktop
