// SPDX-License-Identifier: MIT
#include "docks.h"

#include "panels/light_panel.h"
#include "panels/settings_panel.h"
#include "panels/solid_panel.h"
#include "panels/view_bar.h"

namespace umbrix_desktop {

Docks::Docks(QMainWindow& window, Document& document, Shown const& shown)
    : QObject(&window), solid_(new SolidPanel(shown))
{
    window.addToolBar(new ViewBar(document));
    auto* const settings = new SettingsPanel(document);
    auto* const light = new LightPanel(document);
    add(window, tr("Light"), "light", light);
    solid_dock_ = add(window, tr("On a body"), "body", solid_);
    solid_dock_->hide();
    add(window, tr("Settings"), "settings", settings);
    connect(settings, &SettingsPanel::complained, this, &Docks::complained);
    connect(light, &LightPanel::albedo_wanted, this, &Docks::albedo_wanted);
    connect(solid_, &SolidPanel::complained, this, &Docks::complained);
    connect(solid_dock_, &QDockWidget::visibilityChanged, this, [this](bool visible) {
        if (visible) {
            Q_EMIT map_wanted();
        }
    });
    solid_->set_state(document.state());
    document.on_change([this](State const& before, State const& after) {
        if (before != after) {
            solid_->set_state(after);
        }
    });
}

QDockWidget* Docks::add(QMainWindow& window, QString const& title, char const* name, QWidget* panel)
{
    auto* const dock = new QDockWidget(title);
    dock->setObjectName(name);
    dock->setWidget(panel);
    window.addDockWidget(Qt::RightDockWidgetArea, dock);
    return dock;
}

void Docks::renew()
{
    solid_->renew();
}

} // namespace umbrix_desktop
