#include "testenvironment.h"

#include <QSettings>

TestEnvironment::TestEnvironment()
{
    qputenv("XDG_CONFIG_HOME", m_configHome.path().toUtf8());
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
}

TestEnvironment::~TestEnvironment() = default;

void TestEnvironment::clearSettings()
{
    QSettings settings;
    settings.clear();
    settings.sync();
}
