// SPDX-License-Identifier: MIT
#include "screenshot.h"

#include "main_window.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QPixmap>
#include <cstdio>

namespace umbrix_desktop {

namespace {

constexpr QSize kScreenshot(1280, 800);

int refuse(QString const& sentence)
{
    std::fprintf(stderr, "umbrix-desktop: %s\n", qUtf8Printable(sentence));
    return 1;
}

} // namespace

int take_screenshot(MainWindow& window, QString const& picture, QString const& file)
{
    window.resize(kScreenshot);
    window.show();
    QEventLoop loop;
    QObject::connect(&window, &MainWindow::settled, &loop, &QEventLoop::quit);
    window.open(picture);
    if (window.failure().isEmpty()) {
        loop.exec();
    }
    if (!window.failure().isEmpty()) {
        return refuse(window.failure());
    }
    QCoreApplication::processEvents(); // what was told last is drawn
    return window.grab().save(file, "PNG") ? 0 : refuse(QString("%1 could not be written.").arg(file));
}

} // namespace umbrix_desktop
