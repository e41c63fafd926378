// SPDX-License-Identifier: MIT
#pragma once

#include <QApplication>
#include <QFont>
#include <QSettings>
#include <QStyle>
#include <QStyleFactory>
#include <QTemporaryDir>

namespace umbrix_desktop::test {

/// Makes pictures of widgets the same everywhere: one style with its own colours, and the font of the Debian
/// package fonts-dejavu-core. What the program keeps of its user goes into a folder of the test's own.
inline void fix_look(QTemporaryDir const& settings)
{
    QApplication::setStyle(QStyleFactory::create("Fusion"));
    QApplication::setPalette(QApplication::style()->standardPalette());
    QFont font("DejaVu Sans");
    font.setPixelSize(12);
    font.setHintingPreference(QFont::PreferNoHinting);
    font.setStyleStrategy(QFont::StyleStrategy(QFont::NoSubpixelAntialias | QFont::NoFontMerging));
    QApplication::setFont(font);
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings.path());
    QApplication::setOrganizationName("UmbrixLib");
    QApplication::setApplicationName("umbrix-desktop-test");
    QApplication::setEffectEnabled(Qt::UI_AnimateMenu, false);
}

} // namespace umbrix_desktop::test

/// main() of a test of widgets.
#define UMBRIX_WIDGET_TEST_MAIN(TestClass)                                                                   \
    int main(int count, char** words)                                                                        \
    {                                                                                                        \
        QApplication const application(count, words);                                                        \
        QTemporaryDir const settings;                                                                        \
        umbrix_desktop::test::fix_look(settings);                                                            \
        TestClass test;                                                                                      \
        return QTest::qExec(&test, count, words);                                                            \
    }
