#include <cstdio>

#include <QCommandLineParser>
#include <QFileInfo>
#include <QTimer>

#include "application.h"
#include "crashreporter.h"
#include "mainwindow.h"
#include "monitor.h"
#include "qtutf8codec.h"
#include "utf8.h"
#include "version.h"

int main(int argc, char** argv)
{
    CrashReporter crashReporter;
    QtUtf8Codec codec;
    utf8::setCodec(&codec);

    Application app(argc, argv);

    // argv[0] need not hold a directory (a start through PATH or a desktop
    // entry), and the reporter lies beside the real executable, not beside
    // a link to it: take the running executable's own path, links resolved.
    const QByteArray programPath
        = QFileInfo(QCoreApplication::applicationFilePath()).canonicalFilePath().toUtf8();
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
    const QCommandLineOption connectOption(QStringLiteral("connect"),
        QStringLiteral("Connects to the server at <host[:port]> once the window shows, as if Connect "
                       "had been pressed. Without a port the stored one (default 5840) is used."),
        QStringLiteral("host[:port]"));
    parser.addOption(connectOption);
    parser.process(app);
    if (parser.isSet(versionOption)) {
        std::printf("Korvane Monitor %s build %d\n", Version::Text, Version::Build);
        return 0;
    }

    QString connectHost;
    int connectPort = -1;
    if (parser.isSet(connectOption)) {
        connectHost = parser.value(connectOption);
        const qsizetype colon = connectHost.indexOf(QLatin1Char(':'));
        if (colon >= 0) {
            bool ok = false;
            connectPort = connectHost.mid(colon + 1).toInt(&ok);
            if (!ok || connectPort < 0 || connectPort > 65535) {
                std::fprintf(stderr, "korvane-monitor: --connect: \"%s\" is not a port number (0 to 65535)\n",
                    qPrintable(connectHost.mid(colon + 1)));
                return 2;
            }
            connectHost.truncate(colon);
        }
        if (connectHost.isEmpty()) {
            std::fputs("korvane-monitor: --connect: the host name is missing\n", stderr);
            return 2;
        }
    }

    Application::useCNumericLocale();

    Application::loadUserLanguage();

    MainWindow window;
    window.show();
    if (!connectHost.isEmpty()) {
        Monitor* monitor = window.monitorPanel();
        QTimer::singleShot(0, monitor,
            [monitor, connectHost, connectPort] { monitor->connectTo(connectHost, connectPort); });
    }
    return app.exec();
}
