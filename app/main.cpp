#include <cstdio>

#include <QCommandLineParser>
#include <QFileInfo>
#include <QTimer>

#include "application.h"
#include "crashreporter.h"
#include "mainwindow.h"
#include "monitor.h"
#include "qtutf8codec.h"
#include "serveraddress.h"
#include "utf8.h"
#include "version.h"

namespace {

struct CommandLine
{
    explicit CommandLine(QCommandLineParser& parser)
    {
        parser.setApplicationDescription(
            QStringLiteral("Operator's monitor for a distributed processing server."));
        parser.addHelpOption();
        parser.addOption(version);
        parser.addOption(connect);
    }

    const QCommandLineOption version {
        {QStringLiteral("v"), QStringLiteral("version")}, QStringLiteral("Displays version information.")};
    const QCommandLineOption connect {QStringLiteral("connect"),
        QStringLiteral("Connects to the server at <host[:port]> once the window shows, as if Connect "
                       "had been pressed. Without a port the stored one (default 5840) is used."),
        QStringLiteral("host[:port]")};
};

int printVersion()
{
    std::printf("Korvane Monitor %s build %d\n", Version::Text, Version::Build);
    return 0;
}

bool asksForHelpOrVersion(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i) {
        const QByteArray argument(argv[i]);
        if (argument == "-h" || argument == "--help" || argument == "-v" || argument == "--version")
            return true;
    }
    return false;
}

} // namespace

int main(int argc, char** argv)
{
    // Help and version are answered on a terminal with no display, too (and
    // help2man reads them at build time): a plain core application will do.
    if (asksForHelpOrVersion(argc, argv)) {
        QCoreApplication core(argc, argv);
        QCommandLineParser parser;
        const CommandLine options(parser);
        parser.process(core);
        return printVersion();
    }

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
    const CommandLine options(parser);
    parser.process(app);
    if (parser.isSet(options.version))
        return printVersion();

    QString connectHost;
    int connectPort = -1;
    if (parser.isSet(options.connect)) {
        connectHost = parser.value(options.connect);
        const qsizetype colon = connectHost.indexOf(QLatin1Char(':'));
        if (colon >= 0) {
            if (!parsePort(connectHost.mid(colon + 1).toStdString(), connectPort)) {
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
