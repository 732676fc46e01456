#include <QApplication>

#include <gtest/gtest.h>

#include "testenvironment.h"

int main(int argc, char** argv)
{
    TestEnvironment environment;
    ::testing::InitGoogleTest(&argc, argv);
    QApplication app(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("Korvane"));
    QCoreApplication::setApplicationName(QStringLiteral("Monitor"));
    return RUN_ALL_TESTS();
}
