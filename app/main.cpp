#include <cstdio>

#include <QCommandLineParser>

#include "application.h"
#include "crashreporter.h"
#include "mainwindow.h"
#include "qtutf8codec.h"
#include "utf8.h"
#include "version.h"

int main(int argc, char** argv)
{
    CrashReporter crashReporter;
    QtUtf8Codec codec;
    utf8::setCodec(&codec);

    Application app(argc, argv);

    const QStringList arguments = QCoreApplication::arguments();
    const QByteArray programPath = arguments.isEmpty() ? QByteArray() : arguments.first().toUtf8();
    CrashReporter::setVendor("Korvane");
    CrashReporter::setProductName("Monitor");
    CrashReporter::setVersion(Version::Major, Version::Minor, Version::Release, Version::Build);
    CrashReporter::setServerUrl("https://crash-reports.korvane.com/submit");
    CrashReporter::setApplicationPath(programPath.constData());
    CrashReporter::install();

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Operator's monitor for a distributed processing server."));
    parser.addHelpOption();
    const QCommandLineOption versionOption(
        {QStringLiteral("v"), QStringLiteral("version")}, QStringLiteral("Displays version information."));
    parser.addOption(versionOption);
    parser.process(app);
    if (parser.isSet(versionOption)) {
        std::printf("Korvane Monitor %s build %d\n", Version::Text, Version::Build);
        return 0;
    }

    Application::useCNumericLocale();

    Application::loadUserLanguage();

    MainWindow window;
    window.show();
    return app.exec();
}
