// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace umbrix_desktop {

class MainWindow;

/// Shows @p picture, or a project, in @p window, waits until all is made, and writes the window to @p file as
/// PNG. Returns the program's exit code; what fails is told on standard error.
int take_screenshot(MainWindow& window, QString const& picture, QString const& file);

} // namespace umbrix_desktop
