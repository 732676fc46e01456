// Timed harness: the monitor panel connected to a simulated farm for a while.
// Prints resident memory over time, the longest stall of the event loop and
// the process's CPU use on standard error; the client's own console lines
// stay on standard output.
//   build/bin/live_monitor SECONDS [korvane-sim options...] >/dev/null
//   build/bin/live_monitor 600 --batches 10000 --nodes 2000
//   build/bin/live_monitor 60 --batches 20 --nodes 8
#include <cstdio>
#include <fstream>
#include <string>
#include <sys/resource.h>
#include <vector>

#include <QApplication>
#include <QElapsedTimer>
#include <QTimer>
#include <QTreeWidget>

#include "monitor.h"
#include "simprocess.h"

namespace {

long residentKiB()
{
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line))
        if (line.rfind("VmRSS:", 0) == 0)
            return std::stol(line.substr(6));
    return -1;
}

double cpuSeconds()
{
    rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec)
        + static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("Korvane"));
    QCoreApplication::setApplicationName(QStringLiteral("MonitorBenchmark"));
    QStringList arguments = QCoreApplication::arguments().mid(1);
    const int seconds = arguments.isEmpty() ? 60 : arguments.takeFirst().toInt();

    std::vector<std::string> options {"--seed", "1"};
    for (const QString& argument : arguments)
        options.push_back(argument.toStdString());
    SimProcess sim(options);
    if (sim.port() == 0) {
        std::fprintf(stderr, "live_monitor: the simulator did not start\n");
        return 1;
    }
    const int port = sim.port();

    Monitor panel(nullptr);
    panel.resize(1000, 700);
    panel.show();
    panel.connectTo(QStringLiteral("127.0.0.1"), port);

    QElapsedTimer clock;
    clock.start();
    qint64 lastTick = 0;
    qint64 longestStall = 0;
    QTimer ticker;
    QObject::connect(&ticker, &QTimer::timeout, [&] {
        const qint64 now = clock.elapsed();
        longestStall = std::max(longestStall, now - lastTick);
        lastTick = now;
    });
    ticker.start(10);

    const double cpuStart = cpuSeconds();
    std::fprintf(stderr, "time_s rss_kib batches nodes longest_stall_ms\n");
    QTimer sampler;
    int sample = 0;
    QObject::connect(&sampler, &QTimer::timeout, [&] {
        ++sample;
        if (sample % 10 == 0 || sample <= 3) {
            std::fprintf(stderr, "%6d %7ld %7d %5d %6lld\n", sample, residentKiB(),
                panel.findChild<QTreeWidget*>(QStringLiteral("treeBatches"))->topLevelItemCount(),
                panel.findChild<QTreeWidget*>(QStringLiteral("treeNodes"))->topLevelItemCount(),
                static_cast<long long>(longestStall));
            std::fflush(stderr);
        }
        if (sample >= seconds)
            QCoreApplication::quit();
    });
    sampler.start(1000);
    // the first seconds fill the trees; stalls are counted from then on
    QTimer::singleShot(5000, [&] { longestStall = 0; });
    app.exec();

    const double cpu = cpuSeconds() - cpuStart;
    std::fprintf(
        stderr, "cpu: %.2f s over %d s = %.2f %% of one core\n", cpu, seconds, 100.0 * cpu / seconds);
    std::fprintf(stderr, "longest event-loop stall after the first 5 s: %lld ms\n",
        static_cast<long long>(longestStall));
    std::fprintf(stderr, "resident memory at the end: %ld KiB\n", residentKiB());
    panel.shutdown(5000);
    sim.stop();
    return 0;
}
