// SPDX-License-Identifier: MIT
#include "arguments.h"
#include "main_window.h"
#include "projects.h"
#include "screenshot.h"

#include <QApplication>
#include <QFile>
#include <QIcon>
#include <QLoggingCategory>
#include <cstdio>

namespace {

constexpr int kWrongUsage = 2;

/// Pictures of the window can be taken where there is no screen.
void use_no_screen_without_one()
{
    if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") &&
        qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
}

} // namespace

int main(int count, char** words)
{
    using namespace umbrix_desktop;
    Arguments const arguments = parse_arguments({words + 1, words + count});
    if (!arguments.fault.empty()) {
        std::fprintf(stderr, "umbrix-desktop: %s\n%s", arguments.fault.c_str(), help_text().c_str());
        return kWrongUsage;
    }
    if (arguments.help || arguments.version) {
        std::fputs(arguments.help ? help_text().c_str() : "umbrix-desktop " UMBRIX_VERSION "\n", stdout);
        return 0;
    }
    bool const is_screenshot = !arguments.screenshot.empty();
    if (is_screenshot) {
        use_no_screen_without_one();
        QLoggingCategory::setFilterRules("default.warning=false"); // of Qt, about a system without a screen
    }
    int one = 1; // the words are the program's own
    QApplication application(one, words);
    QApplication::setOrganizationName("UmbrixLib");
    QApplication::setApplicationName("umbrix-desktop");
    QApplication::setApplicationVersion(UMBRIX_VERSION);
    QApplication::setApplicationDisplayName("Umbrix");
    QApplication::setDesktopFileName("umbrix-desktop");
    QApplication::setWindowIcon(QIcon(":/umbrix-desktop.svg"));
    MainWindow window;
    QString const file = QFile::decodeName(arguments.file.c_str());
    if (is_screenshot) {
        return take_screenshot(window, file, QFile::decodeName(arguments.screenshot.c_str()));
    }
    window.take_its_place();
    window.show();
    window.projects().begin_recovery();
    if (!file.isEmpty()) {
        window.open(file);
    }
    return QApplication::exec();
}
