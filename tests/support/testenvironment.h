#pragma once

#include <QTemporaryDir>

#include "qtprinters.h"

// Keeps a test process away from the user's own files: settings go to a fresh
// XDG_CONFIG_HOME, and widgets to the offscreen platform unless a display
// was asked for explicitly. Create it before any QCoreApplication.
class TestEnvironment final
{
public:
    TestEnvironment();
    ~TestEnvironment();

    QString configHome() const { return m_configHome.path(); }

    // Removes every key of the default QSettings.
    static void clearSettings();

private:
    Q_DISABLE_COPY_MOVE(TestEnvironment)

    QTemporaryDir m_configHome;
};
