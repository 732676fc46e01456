// Timed harness for korvane-exporter against korvane-sim at 10,000 batches
// and 2,000 nodes, both as real processes on loopback.
//   build/bin/bench_exporter              scrape times, the exporter's own part, body sizes
//   build/bin/bench_exporter --soak 600   a scrape every second; the exporter's resident memory
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <httplib.h>
#include <iostream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "childprocess.h"
#include "farmreader.h"
#include "gzip.h"
#include "metricstext.h"
#include "simprocess.h"
#include "testpaths.h"

namespace {

using Clock = std::chrono::steady_clock;

double millisecondsSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

double maximum(const std::vector<double>& values)
{
    return *std::max_element(values.begin(), values.end());
}

long residentKiB(pid_t pid)
{
    std::ifstream status("/proc/" + std::to_string(pid) + "/status");
    std::string line;
    while (std::getline(status, line))
        if (line.rfind("VmRSS:", 0) == 0)
            return std::stol(line.substr(6));
    return -1;
}

struct Scrape
{
    double ms = 0;
    std::size_t bytes = 0;
    bool up = false;
    // The exporter's own korvane_scrape_duration_seconds (plain scrapes only).
    double readingMs = 0;
};

Scrape scrape(httplib::Client& client, bool gzip)
{
    httplib::Headers headers;
    if (gzip)
        headers.emplace("Accept-Encoding", "gzip");
    const auto start = Clock::now();
    const httplib::Result result = client.Get("/metrics", headers);
    Scrape scrape;
    scrape.ms = millisecondsSince(start);
    if (result && result->status == 200) {
        scrape.bytes = result->body.size();
        scrape.up = gzip || result->body.find("\nkorvane_up 1\n") != std::string::npos;
        const std::string name = "\nkorvane_scrape_duration_seconds ";
        const std::size_t at = result->body.rfind(name);
        if (!gzip && at != std::string::npos)
            scrape.readingMs = 1000 * std::strtod(result->body.c_str() + at + name.size(), nullptr);
    }
    return scrape;
}

void ownPart(int simPort)
{
    std::ostringstream log;
    FarmReader reader("127.0.0.1:" + std::to_string(simPort), log, "korvane-exporter");
    FarmSnapshot farm;
    // The client library's console lines (a line per skipped parameter object) off the figures.
    std::streambuf* console = std::cout.rdbuf(nullptr);
    const auto readStart = Clock::now();
    reader.read(farm, readStart + std::chrono::seconds(30));
    const double readMs = millisecondsSince(readStart);
    std::cout.rdbuf(console);
    if (!farm.up) {
        std::fprintf(stderr, "bench_exporter: no reading: %s", log.str().c_str());
        return;
    }
    std::vector<double> active;
    std::vector<double> all;
    std::string text;
    std::size_t activeBytes = 0;
    std::size_t allBytes = 0;
    for (int round = 0; round < 15; ++round) {
        for (const bool everyBatch : {false, true}) {
            text.clear();
            const auto start = Clock::now();
            writeFarmMetrics(farm, everyBatch ? CollectMode::All : CollectMode::Unfinished, text);
            (everyBatch ? all : active).push_back(millisecondsSince(start));
            (everyBatch ? allBytes : activeBytes) = text.size();
        }
    }
    text.clear();
    writeFarmMetrics(farm, CollectMode::Unfinished, text);
    const auto gzipStart = Clock::now();
    const std::string zipped = gzipCompress(text);
    const double gzipMs = millisecondsSince(gzipStart);
    const long series
        = std::count(text.begin(), text.end(), '\n') - 2 * std::count(text.begin(), text.end(), '#') / 2;

    std::printf("reading of %zu batches and %zu nodes (listBatches + listNodes): %.1f ms\n",
        farm.batches.size(), farm.nodes.size(), readMs);
    std::printf("records to text, active batches: median %.1f ms, max %.1f ms; %zu bytes, %ld lines\n",
        median(active), maximum(active), activeBytes, series);
    std::printf("records to text, --all-batches:  median %.1f ms, max %.1f ms; %zu bytes\n", median(all),
        maximum(all), allBytes);
    std::printf("gzip of the active text: %.1f ms, %zu bytes\n", gzipMs, zipped.size());
    for (const CollectMode mode : {CollectMode::Working, CollectMode::None}) {
        text.clear();
        writeFarmMetrics(farm, mode, text);
        const long lines
            = std::count(text.begin(), text.end(), '\n') - std::count(text.begin(), text.end(), '#');
        std::printf(
            "--collect.batches=%s: %zu bytes, %ld lines\n", collectModeName(mode), text.size(), lines);
    }
}

void scrapes(int exporterPort)
{
    httplib::Client client("127.0.0.1", exporterPort);
    client.set_read_timeout(60, 0);
    client.set_decompress(false);
    client.set_keep_alive(true);
    scrape(client, false); // connects and warms up
    std::vector<double> fresh[2];
    std::vector<double> reused[2];
    std::size_t bytes[2] = {0, 0};
    std::vector<double> readings;
    for (int round = 0; round < 16; ++round) {
        const bool gzip = round % 2 == 1;
        std::this_thread::sleep_for(std::chrono::milliseconds(1100)); // the last reading has gone stale
        const Scrape first = scrape(client, gzip);
        const Scrape second = scrape(client, gzip);
        if (!first.up || !second.up) {
            std::fprintf(stderr, "bench_exporter: a scrape failed\n");
            return;
        }
        fresh[gzip].push_back(first.ms);
        if (!gzip)
            readings.push_back(first.readingMs);
        reused[gzip].push_back(second.ms);
        bytes[gzip] = first.bytes;
    }
    std::printf(
        "korvane_scrape_duration_seconds of those readings (requests, text and gzip): median %.0f ms, "
        "max %.0f ms\n",
        median(readings), maximum(readings));
    for (const bool gzip : {false, true}) {
        std::printf(
            "scrape %s: fresh reading median %.0f ms, max %.0f ms; reused median %.1f ms, max %.1f ms; "
            "%zu bytes\n",
            gzip ? "with gzip" : "plain    ", median(fresh[gzip]), maximum(fresh[gzip]), median(reused[gzip]),
            maximum(reused[gzip]), bytes[gzip]);
    }
}

void soak(pid_t exporterPid, int exporterPort, int seconds)
{
    httplib::Client client("127.0.0.1", exporterPort);
    client.set_read_timeout(60, 0);
    client.set_decompress(false);
    client.set_keep_alive(true);
    std::printf("time_s rss_kib scrape_ms\n");
    const auto start = Clock::now();
    int failures = 0;
    for (int second = 1; second <= seconds; ++second) {
        const Scrape result = scrape(client, second % 2 == 0);
        if (!result.up)
            ++failures;
        if (second <= 3 || second % 60 == 0 || second == 10 || second == seconds)
            std::printf("%6d %7ld %9.0f\n", second, residentKiB(exporterPid), result.ms);
        std::fflush(stdout);
        std::this_thread::sleep_until(start + std::chrono::seconds(second));
    }
    std::printf("failed scrapes: %d of %d\n", failures, seconds);
}

} // namespace

int main(int argc, char** argv)
{
    const bool soakMode = argc == 3 && std::string(argv[1]) == "--soak";
    if (argc != 1 && !soakMode) {
        std::fprintf(stderr, "usage: bench_exporter [--soak SECONDS]\n");
        return 2;
    }
    SimProcess sim({"--batches", "10000", "--nodes", "2000", "--seed", "1"});
    const int simPort = sim.port();
    ChildProcess exporter(KORVANE_EXPORTER_PROGRAM,
        {"--listen", "127.0.0.1:0", "--server", "127.0.0.1:" + std::to_string(simPort)});
    const int exporterPort = exporter.listeningPort();
    if (simPort <= 0 || exporterPort <= 0) {
        std::fprintf(stderr, "bench_exporter: the simulator or the exporter did not start\n");
        return 1;
    }

    if (soakMode) {
        soak(exporter.pid(), exporterPort, std::stoi(argv[2]));
    } else {
        ownPart(simPort);
        scrapes(exporterPort);
        std::printf("exporter resident memory after the scrapes: %ld KiB\n", residentKiB(exporter.pid()));
    }
    exporter.signal(SIGTERM);
    const int exporterExit = exporter.wait();
    sim.stop();
    return exporterExit;
}
