// crashreporter: started by the crashed program with the path of its dump.
// Moves the dump and its ".extra" annotations into the data directory's
// pending/ folder and offers to send them; --submit sends without asking.

#include <cstdio>
#include <memory>

#include <QApplication>
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>
#include <QProcess>

#include "crashreport.h"
#include "crashreporterdialog.h"
#include "reportsubmitter.h"
#include "version.h"

namespace {

constexpr const char* UrlVariable = "KORVANE_CRASHREPORTER_URL";
constexpr const char* SubmitVariable = "KORVANE_CRASHREPORTER_SUBMIT";

const char* const Description = "Sends the report of a crash of Korvane Monitor.\n"
                                "\n"
                                "The dump and its .extra file (annotations, key=value lines) are moved into\n"
                                "$MOZ_CRASHREPORTER_DATA_DIRECTORY/pending/ (by default\n"
                                "~/.korvane/monitor/Crash Reports/pending/) and sent as an HTTP POST\n"
                                "(multipart/form-data: the annotations as fields, the comment as\n"
                                "Comments, the dump as the file upload_file_minidump) to the report's\n"
                                "ServerURL, through the proxy of http_proxy or https_proxy when set.\n"
                                "The collector's reply, a line \"CrashID=<id>\" or a JSON object with an\n"
                                "\"id\", is kept in submitted/<id>.txt and the pending files are removed;\n"
                                "a report that could not be sent stays in pending/ and can be sent again\n"
                                "with --submit.\n"
                                "\n"
                                "Environment:\n"
                                "  MOZ_CRASHREPORTER_DATA_DIRECTORY  where pending/ and submitted/ are\n"
                                "  KORVANE_CRASHREPORTER_URL         send here instead of the ServerURL\n"
                                "  KORVANE_CRASHREPORTER_SUBMIT=1    the same as --submit";

bool wantsNoWindow(int argc, char** argv)
{
    if (qEnvironmentVariable(SubmitVariable) == QLatin1String("1"))
        return true;
    for (int i = 1; i < argc; ++i) {
        const QByteArray argument(argv[i]);
        if (argument == "--submit" || argument == "--help" || argument == "-h" || argument == "--help-all"
            || argument == "--version" || argument == "-v")
            return true;
    }
    return false;
}

} // namespace

int main(int argc, char** argv)
{
    const bool noWindow = wantsNoWindow(argc, argv);
    std::unique_ptr<QCoreApplication> application;
    if (noWindow)
        application = std::make_unique<QCoreApplication>(argc, argv);
    else
        application = std::make_unique<QApplication>(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("crashreporter"));
    QCoreApplication::setApplicationVersion(QString::fromLatin1(Version::Text));

    QCommandLineParser parser;
    parser.setApplicationDescription(QString::fromLatin1(Description));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption submitOption(
        QStringLiteral("submit"), QStringLiteral("Send the report without showing a window."));
    parser.addOption(submitOption);
    parser.addPositionalArgument(QStringLiteral("dump"), QStringLiteral("The minidump (.dmp) of the crash."));
    parser.process(*application);

    const QStringList arguments = parser.positionalArguments();
    if (arguments.size() != 1) {
        std::fprintf(stderr, "crashreporter: expected the path of one dump (see --help)\n");
        return 2;
    }
    CrashReport report(arguments.first());
    if (!QFileInfo::exists(report.dumpPath())) {
        std::fprintf(stderr, "crashreporter: no dump at %s\n", qPrintable(report.dumpPath()));
        return 1;
    }
    report.readAnnotations();
    const QString dataDirectory = report.dataDirectory();
    if (dataDirectory.isEmpty()) {
        std::fprintf(stderr, "crashreporter: MOZ_CRASHREPORTER_DATA_DIRECTORY is not set\n");
        return 1;
    }
    QString error;
    if (!report.moveToPending(dataDirectory, &error))
        std::fprintf(stderr, "crashreporter: %s\n", qPrintable(error));

    QString address = qEnvironmentVariable(UrlVariable);
    if (address.isEmpty())
        address = report.annotation(QStringLiteral("ServerURL"));
    const QUrl url(address);

    if (noWindow) {
        ReportSubmitter submitter;
        int result = 1;
        QObject::connect(&submitter, &ReportSubmitter::finished, application.get(),
            [&](bool succeeded, const QString& crashIdOrError) {
                if (succeeded) {
                    std::printf("crashreporter: sent, CrashID=%s, receipt in %s/submitted/%s.txt\n",
                        qPrintable(crashIdOrError), qPrintable(dataDirectory), qPrintable(crashIdOrError));
                    result = 0;
                } else {
                    std::fprintf(stderr, "crashreporter: not sent: %s; the report stays in %s\n",
                        qPrintable(crashIdOrError), qPrintable(QFileInfo(report.dumpPath()).absolutePath()));
                }
                QCoreApplication::quit();
            });
        submitter.submit(report, QString(), url, dataDirectory);
        QCoreApplication::exec();
        return result;
    }

    CrashReporterDialog dialog(report, url, dataDirectory);
    dialog.exec();
    if (dialog.restartRequested())
        QProcess::startDetached(
            QCoreApplication::applicationDirPath() + QLatin1String("/korvane-monitor"), {});
    return 0;
}
