#include "webbench.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <fstream>
#include <future>
#include <set>
#include <sys/resource.h>
#include <unistd.h>

#include "figuretable.h"
#include "gzipsize.h"
#include "httpcall.h"
#include "sseevent.h"
#include "summary.h"

namespace {

constexpr std::int64_t Millisecond = 1000000;
constexpr std::int64_t Second = 1000 * Millisecond;
// Every request to the web monitor is given this long.
constexpr int CallTimeoutMs = 10000;

std::int64_t now()
{
    return SseEvent::monotonicNanoseconds();
}

double milliseconds(std::int64_t nanoseconds)
{
    return static_cast<double>(nanoseconds) / 1e6;
}

// Busy and total jiffies of the whole machine.
std::pair<unsigned long long, unsigned long long> machineTicks()
{
    std::ifstream stat("/proc/stat");
    std::string cpu;
    stat >> cpu;
    unsigned long long value = 0;
    unsigned long long busy = 0;
    unsigned long long total = 0;
    for (int field = 0; field < 8 && stat >> value; ++field) {
        total += value;
        if (field != 3 && field != 4) // idle, iowait
            busy += value;
    }
    return {busy, total};
}

std::string loadAverage()
{
    std::ifstream file("/proc/loadavg");
    std::string one, five, fifteen;
    file >> one >> five >> fifteen;
    return one + " " + five + " " + fifteen;
}

double ownCpuSeconds()
{
    rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec)
        + static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

std::string percentiles(const Summary& summary, const char* unit = "ms")
{
    return FigureTable::format("p50 %.1f, p99 %.1f, max %.1f %s (n=%zu)", summary.percentile(0.5),
        summary.percentile(0.99), summary.max(), unit, summary.count());
}

std::vector<std::uint32_t> batchIds(const std::string& snapshot, std::size_t wanted)
{
    std::vector<std::uint32_t> ids;
    const std::string key = "\"batch_id\":";
    for (std::size_t at = snapshot.find(key); at != std::string::npos && ids.size() < wanted;
         at = snapshot.find(key, at + 1))
        ids.push_back(
            static_cast<std::uint32_t>(std::strtoul(snapshot.c_str() + at + key.size(), nullptr, 10)));
    return ids;
}

double megabytes(long kibibytes)
{
    return static_cast<double>(kibibytes) * 1024.0 / 1e6;
}

} // namespace

WebBench::WebBench(const Settings& settings, LineProxy& proxy, FigureTable& table)
    : m_settings(settings)
    , m_proxy(proxy)
    , m_table(table)
    , m_fleet(settings.webPort)
    , m_web(settings.webPid)
{
}

bool WebBench::run(std::string& error)
{
    const std::int64_t runStart = now();
    const double webCpuStart = m_web.cpuSeconds();
    const std::string loadBefore = loadAverage();

    m_table.section("requests the server sees per interval (between listBatches requests)");
    Window quiet;
    if (!runReadings(quiet, error))
        return false;
    addRequestCounts("0 streams", quiet);

    if (!m_fleet.open(1, now() + 60 * Second, error))
        return false;
    keepSizes();
    Window one;
    if (!runReadings(one, error))
        return false;
    addRequestCounts("1 stream", one);
    keepSizes();

    const std::size_t more = m_settings.streams > 1 ? m_settings.streams - 1 : 0;
    const std::int64_t openStart = now();
    if (!m_fleet.open(more, now() + 180 * Second, error))
        return false;
    const double openSeconds = static_cast<double>(now() - openStart) / 1e9;
    keepSizes();

    const double ownBefore = ownCpuSeconds();
    const auto machineBefore = machineTicks();
    Window many;
    if (!runReadings(many, error))
        return false;
    const double ownCpu = (ownCpuSeconds() - ownBefore) / many.seconds * 100.0;
    const auto machineAfter = machineTicks();
    const std::string streamsLabel = std::to_string(m_fleet.size()) + " streams";
    addRequestCounts(streamsLabel, many);
    const Fanouts plain = fanouts(many);
    keepSizes();

    m_table.section(
        "fan-out with " + streamsLabel + " (opened in " + FigureTable::format("%.1f s)", openSeconds));
    addFanouts("", plain, true);
    addReadingTimes(many);

    m_table.section("korvane-web's memory and CPU");
    addMemory("0 streams", quiet);
    addMemory("1 stream", one);
    addMemory(streamsLabel, many);

    m_table.section("one more stream reading 1 byte/s (SO_RCVBUF 2048)");
    if (!m_fleet.openSlow(error))
        return false;
    Window slow;
    if (!runReadings(slow, error))
        return false;
    const Fanouts withSlow = fanouts(slow);
    keepSizes();
    addFanouts("with the slow reader: ", withSlow, false);
    m_table.add("spread p99 without / with the slow reader",
        FigureTable::format("%.1f / %.1f ms", Summary(plain.spreadMs).percentile(0.99),
            Summary(withSlow.spreadMs).percentile(0.99)),
        "<= 100 ms", FigureTable::verdict(Summary(withSlow.spreadMs).percentile(0.99) <= 100.0));
    m_table.add(
        "slow reader: bytes read, state", std::to_string(m_fleet.slowBytes()) + ", " + m_fleet.slowEnd());

    m_table.section(
        FigureTable::format("actions: %zu POSTs of pause/resume, with the streams open", m_settings.actions));
    if (!runActions(error))
        return false;
    m_table.add("korvane_web_stream_resyncs_total at the end", metric("korvane_web_stream_resyncs_total"));

    addSizes();

    m_table.section("the run");
    m_table.add("VmHWM of korvane-web at the end",
        FigureTable::format("%.1f MiB = %.1f MB", static_cast<double>(m_web.peakResidentKiB()) / 1024.0,
            megabytes(m_web.peakResidentKiB())),
        "<= 150 MB", FigureTable::verdict(megabytes(m_web.peakResidentKiB()) <= 150.0));
    const double runWall = static_cast<double>(now() - runStart) / 1e9;
    m_table.add("korvane-web CPU over the whole run",
        FigureTable::format(
            "%.1f %% of one core over %.0f s", (m_web.cpuSeconds() - webCpuStart) / runWall * 100.0, runWall),
        "<= 50 %", FigureTable::verdict((m_web.cpuSeconds() - webCpuStart) / runWall * 100.0 <= 50.0));
    const double busy = static_cast<double>(machineAfter.first - machineBefore.first);
    const double total = static_cast<double>(machineAfter.second - machineBefore.second);
    m_table.add("machine busy during the many-stream phase",
        FigureTable::format("%.1f %% of %ld cores (web %.1f %%, this load %.1f %% of one core)",
            total > 0 ? busy / total * 100.0 : NAN, sysconf(_SC_NPROCESSORS_ONLN), many.webCpuPercent,
            ownCpu));
    m_table.add("load average before / after", loadBefore + " / " + loadAverage());
    m_table.add("korvane-web threads", std::to_string(m_web.threads()));
    return true;
}

bool WebBench::runReadings(Window& window, std::string& error)
{
    const std::size_t wanted = m_settings.readings + 1;
    const std::int64_t start = now();
    const double cpuStart = m_web.cpuSeconds();
    const std::int64_t deadline = start
        + static_cast<std::int64_t>(static_cast<double>(m_settings.readings) * 3 * m_settings.intervalMs)
            * Millisecond
        + 30 * Second;
    std::int64_t nextSample = start;
    for (;;) {
        const std::int64_t time = now();
        if (time >= nextSample) {
            window.peakResidentKiB = std::max(window.peakResidentKiB, m_web.residentKiB());
            nextSample += Second;
        }
        if (!m_fleet.pump(time + 100 * Millisecond, error))
            return false;
        window.exchanges = m_proxy.exchanges();
        window.bounds.clear();
        for (const LineProxy::Exchange& exchange : window.exchanges)
            if (exchange.method == "listBatches" && exchange.requested >= start
                && window.bounds.size() < wanted)
                window.bounds.push_back(exchange.requested);
        if (window.bounds.size() >= wanted)
            break;
        if (time > deadline) {
            error = "only " + std::to_string(window.bounds.size()) + " readings in "
                + std::to_string((time - start) / Second) + " s";
            return false;
        }
    }
    // The last reading's delta may still be on its way to some streams.
    if (!m_fleet.pump(now() + 500 * Millisecond, error))
        return false;
    window.exchanges = m_proxy.exchanges();
    window.seconds = static_cast<double>(now() - start) / 1e9;
    window.webCpuPercent = (m_web.cpuSeconds() - cpuStart) / window.seconds * 100.0;
    window.residentKiB = m_web.residentKiB();
    window.peakResidentKiB = std::max(window.peakResidentKiB, window.residentKiB);
    return true;
}

void WebBench::addRequestCounts(const std::string& label, const Window& window)
{
    std::map<std::string, std::size_t> byMethod;
    std::size_t fewest = ~std::size_t {0};
    std::size_t most = 0;
    bool eachTwo = true;
    for (std::size_t i = 0; i + 1 < window.bounds.size(); ++i) {
        std::map<std::string, std::size_t> here;
        std::size_t count = 0;
        for (const LineProxy::Exchange& exchange : window.exchanges) {
            if (exchange.requested >= window.bounds[i] && exchange.requested < window.bounds[i + 1]) {
                ++here[exchange.method];
                ++byMethod[exchange.method];
                ++count;
            }
        }
        fewest = std::min(fewest, count);
        most = std::max(most, count);
        eachTwo = eachTwo && count == 2 && here["listBatches"] == 1 && here["listNodes"] == 1;
    }
    std::string methods;
    for (const auto& [method, count] : byMethod)
        methods += (methods.empty() ? "" : ", ") + method + " " + std::to_string(count);
    const std::size_t intervals = window.bounds.size() - 1;
    m_table.add(label,
        FigureTable::format(
            "min %zu, max %zu over %zu intervals (%s)", fewest, most, intervals, methods.c_str()),
        "exactly 2: listBatches + listNodes", FigureTable::verdict(eachTwo));
}

WebBench::Fanouts WebBench::fanouts(const Window& window) const
{
    Fanouts result;
    std::vector<std::int64_t> readingEnds;
    for (const LineProxy::Exchange& exchange : window.exchanges)
        if (exchange.method == "listNodes" && exchange.answered > 0)
            readingEnds.push_back(exchange.answered);
    std::sort(readingEnds.begin(), readingEnds.end());
    const std::int64_t from = window.bounds.front();
    const std::int64_t to = window.bounds.back();
    std::int64_t previous = 0;
    for (const auto& [id, fanout] : m_fleet.deltas()) {
        const auto after = std::upper_bound(readingEnds.begin(), readingEnds.end(), fanout.firstByte);
        if (after == readingEnds.begin())
            continue;
        const std::int64_t readingEnd = *std::prev(after);
        if (readingEnd < from || readingEnd >= to)
            continue;
        if (fanout.streams < m_fleet.size()) {
            ++result.incomplete;
            continue;
        }
        result.spreadMs.push_back(milliseconds(fanout.lastByte - fanout.firstByte));
        result.fromReadingMs.push_back(milliseconds(fanout.lastByte - readingEnd));
        if (previous > 0)
            result.betweenMs.push_back(milliseconds(fanout.firstByte - previous));
        previous = fanout.firstByte;
    }
    return result;
}

void WebBench::addFanouts(const std::string& label, const Fanouts& fanouts, bool full)
{
    const Summary spread(fanouts.spreadMs);
    m_table.add(label + "delta spread: first byte on first stream to last byte on last", percentiles(spread),
        "p99 <= 100 ms", FigureTable::verdict(spread.percentile(0.99) <= 100.0));
    const Summary fromReading(fanouts.fromReadingMs);
    m_table.add(label + "listNodes reply passed to delta's last byte on every stream",
        percentiles(fromReading), "p99 <= 100 ms",
        FigureTable::verdict(fromReading.percentile(0.99) <= 100.0));
    if (!full)
        return;
    const Summary between(fanouts.betweenMs);
    m_table.add(label + "time between readings' deltas",
        FigureTable::format(
            "min %.1f, p50 %.1f, max %.1f ms", between.min(), between.percentile(0.5), between.max()),
        FigureTable::format("~%.0f ms", m_settings.intervalMs));
    m_table.add(label + "deltas not on every stream", std::to_string(fanouts.incomplete), "0",
        FigureTable::verdict(fanouts.incomplete == 0));
}

void WebBench::addReadingTimes(const Window& window)
{
    // Sent and answered times of listBatches, then of listNodes, per reading.
    std::vector<double> whole, batches, between, nodes;
    for (std::size_t i = 0; i + 1 < window.bounds.size(); ++i) {
        const LineProxy::Exchange* list[2] = {nullptr, nullptr};
        for (const LineProxy::Exchange& exchange : window.exchanges) {
            if (exchange.requested < window.bounds[i] || exchange.requested >= window.bounds[i + 1]
                || exchange.answered == 0)
                continue;
            if (exchange.method == "listBatches" && !list[0])
                list[0] = &exchange;
            else if (exchange.method == "listNodes" && !list[1])
                list[1] = &exchange;
        }
        if (!list[0] || !list[1])
            continue;
        whole.push_back(milliseconds(list[1]->answered - list[0]->requested));
        batches.push_back(milliseconds(list[0]->answered - list[0]->requested));
        between.push_back(milliseconds(list[1]->requested - list[0]->answered));
        nodes.push_back(milliseconds(list[1]->answered - list[1]->requested));
    }
    m_table.add("reading: listBatches sent to listNodes reply passed", percentiles(Summary(whole)));
    m_table.add("  listBatches sent to its reply passed", percentiles(Summary(batches)));
    m_table.add("  listBatches reply passed to listNodes sent", percentiles(Summary(between)));
    m_table.add("  listNodes sent to its reply passed", percentiles(Summary(nodes)));
}

void WebBench::addMemory(const std::string& label, const Window& window)
{
    const double resident = megabytes(window.residentKiB);
    const double peak = megabytes(window.peakResidentKiB);
    m_table.add(label + ": VmRSS at the end, highest 1 s sample",
        FigureTable::format("%.1f MB, %.1f MB (%.1f / %.1f MiB)", resident, peak,
            static_cast<double>(window.residentKiB) / 1024.0,
            static_cast<double>(window.peakResidentKiB) / 1024.0),
        "<= 150 MB", FigureTable::verdict(peak <= 150.0));
    m_table.add(label + ": CPU, % of one core",
        FigureTable::format("%.1f %% over %.0f s", window.webCpuPercent, window.seconds), "<= 50 %",
        FigureTable::verdict(window.webCpuPercent <= 50.0));
}

void WebBench::keepSizes()
{
    for (const EventStreamParser::Event& event : m_fleet.keptEvents()) {
        if (event.type == "snapshot" && m_snapshotBytes == 0) {
            m_snapshotBytes = event.dataBytes;
            m_snapshotGzip = GzipSize::of(event.data);
            m_batchIds = batchIds(event.data, std::max<std::size_t>(1, (m_settings.actions + 1) / 2));
        } else if (event.type == "delta") {
            m_deltaBytes.push_back(event.dataBytes);
            m_deltaGzip.push_back(GzipSize::of(event.data));
        }
    }
    m_fleet.clear();
}

void WebBench::addSizes()
{
    m_table.section("delta size against the snapshot's, on the simulator's moving farm");
    m_table.add("snapshot event data, plain / gzip",
        FigureTable::format("%zu / %zu bytes", m_snapshotBytes, m_snapshotGzip));
    std::vector<double> plain;
    std::vector<double> packed;
    std::vector<double> plainShare;
    std::vector<double> packedShare;
    for (std::size_t i = 0; i < m_deltaBytes.size(); ++i) {
        plain.push_back(static_cast<double>(m_deltaBytes[i]));
        packed.push_back(static_cast<double>(m_deltaGzip[i]));
        plainShare.push_back(
            100.0 * static_cast<double>(m_deltaBytes[i]) / static_cast<double>(m_snapshotBytes));
        packedShare.push_back(
            100.0 * static_cast<double>(m_deltaGzip[i]) / static_cast<double>(m_snapshotGzip));
    }
    const Summary plainBytes(plain);
    const Summary packedBytes(packed);
    m_table.add("delta event data, plain",
        FigureTable::format(
            "mean %.0f, max %.0f bytes (n=%zu)", plainBytes.mean(), plainBytes.max(), plainBytes.count()));
    m_table.add("delta event data, gzip",
        FigureTable::format("mean %.0f, max %.0f bytes", packedBytes.mean(), packedBytes.max()));
    const Summary plainPart(plainShare);
    const Summary packedPart(packedShare);
    m_table.add("delta / snapshot, plain",
        FigureTable::format("mean %.2f %%, max %.2f %%", plainPart.mean(), plainPart.max()), "<= 5 %",
        FigureTable::verdict(plainPart.max() <= 5.0));
    m_table.add("delta / snapshot, gzip (each compressed alone)",
        FigureTable::format("mean %.2f %%, max %.2f %%", packedPart.mean(), packedPart.max()), "<= 5 %",
        FigureTable::verdict(packedPart.max() <= 5.0));
    const HttpCall::Reply document
        = HttpCall::run(m_settings.webPort, "GET", "/api/v1/snapshot", {}, CallTimeoutMs);
    m_table.add("GET /api/v1/snapshot at the end, plain / gzip",
        document.error.empty()
            ? FigureTable::format("%zu / %zu bytes", document.body.size(), GzipSize::of(document.body))
            : document.error);
}

bool WebBench::runActions(std::string& error)
{
    if (m_batchIds.empty()) {
        error = "no batch in the snapshot to act on";
        return false;
    }
    std::vector<double> latencies;
    std::map<int, std::size_t> statuses;
    std::size_t failed = 0;
    const std::int64_t start = now();
    for (std::size_t i = 0; i < m_settings.actions; ++i) {
        // Spread over the reading cycle, so that some wait for a reading.
        if (!m_fleet.pump(now() + static_cast<std::int64_t>(150 + (263 * i) % 700) * Millisecond, error))
            return false;
        const std::uint32_t id = m_batchIds[(i / 2) % m_batchIds.size()];
        const std::string path
            = "/api/v1/batches/" + std::to_string(id) + (i % 2 == 0 ? "/pause" : "/resume");
        std::future<HttpCall::Reply> call = std::async(std::launch::async, [port = m_settings.webPort, path] {
            return HttpCall::run(port, "POST", path, "{}", CallTimeoutMs);
        });
        while (call.wait_for(std::chrono::milliseconds(0)) != std::future_status::ready)
            if (!m_fleet.pump(now() + 5 * Millisecond, error))
                return false;
        const HttpCall::Reply reply = call.get();
        if (!reply.error.empty()) {
            ++failed;
            continue;
        }
        ++statuses[reply.status];
        latencies.push_back(milliseconds(reply.done - reply.sent));
    }
    std::vector<double> answers;
    for (const LineProxy::Exchange& exchange : m_proxy.exchanges())
        if ((exchange.method == "pauseBatch" || exchange.method == "resumeBatch")
            && exchange.requested >= start && exchange.answered > 0)
            answers.push_back(milliseconds(exchange.answered - exchange.requested));
    const Summary answer(answers);
    const Summary latency(latencies);
    const double limit = m_settings.intervalMs + answer.percentile(0.99);
    m_table.add("POST sent to the full reply",
        FigureTable::format("p50 %.1f, p99 %.1f, max %.1f ms (n=%zu)", latency.percentile(0.5),
            latency.percentile(0.99), latency.max(), latency.count()),
        FigureTable::format("p99 <= %.0f + %.1f ms", m_settings.intervalMs, answer.percentile(0.99)),
        FigureTable::verdict(latency.percentile(0.99) <= limit && failed == 0));
    m_table.add("server's answer to pauseBatch/resumeBatch (proxy)", percentiles(answer));
    std::string codes;
    for (const auto& [status, count] : statuses)
        codes += (codes.empty() ? "" : ", ") + std::to_string(count) + " x " + std::to_string(status);
    if (failed > 0)
        codes += (codes.empty() ? "" : ", ") + std::to_string(failed) + " without a reply";
    m_table.add("replies", codes);
    return true;
}

std::string WebBench::metric(const std::string& name)
{
    const HttpCall::Reply page = HttpCall::run(m_settings.webPort, "GET", "/metrics", {}, CallTimeoutMs);
    if (!page.error.empty())
        return page.error;
    const std::size_t at = page.body.find("\n" + name + " ");
    if (at == std::string::npos)
        return "absent";
    const std::size_t end = page.body.find('\n', at + 1);
    return page.body.substr(at + name.size() + 2, end - at - name.size() - 2);
}
