// Control client throughput over loopback against jsoncpp parsing the same
// text from memory, measured in the same run. The ratios at the end are
// medians of (receive + parse [+ records]) / (parse alone), once in real time
// (which includes the loopback transfer and the server thread feeding it in
// 4096-byte pieces) and once in CPU time of the client thread alone.

#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include <json/reader.h>
#include <json/value.h>
#include <json/writer.h>

#include <benchmark/benchmark.h>

#include "consolecapture.h"
#include "controlclient.h"
#include "scriptedserver.h"

namespace {

constexpr std::size_t LargeLineBytes = std::size_t {8} * 1024 * 1024;
constexpr std::size_t ServerPiece = 4096;

Json::Value taskParams(int n)
{
    Json::Value params(Json::objectValue);
    params["quality"] = n % 5;
    params["filter_mode"] = "mild";
    params["keep_depth"] = true;
    params["max_neighbors"] = Json::Value(Json::arrayValue);
    params["max_neighbors"].append(16);
    params["max_neighbors"].append(32);
    params["reuse_depth"] = 0.5;
    params["export_path"] = "/projects/site_" + std::to_string(n) + "/export/model.obj";
    return params;
}

Json::Value batchObject(int n)
{
    Json::Value task(Json::objectValue);
    task["name"] = "BuildDenseCloud";
    task["params"] = taskParams(n);
    task["status"] = "inprogress";
    task["progress"] = 45.5 + n % 50;
    task["time_elapsed"] = 123.25 + n;
    task["time_left"] = 77.5;
    task["items_total"] = 40;
    task["items_done"] = n % 40;
    task["nodes_active"] = 3;
    task["nodes_waiting"] = 1;
    task["nodes_failed"] = 0;

    Json::Value batch(Json::objectValue);
    batch["batch_id"] = static_cast<Json::UInt>(n);
    batch["path"] = "/projects/site_" + std::to_string(n) + "/model.kproj";
    batch["status"] = n % 3 ? "inprogress" : "paused";
    batch["priority"] = n % 5 - 2;
    batch["time_started"] = static_cast<Json::UInt>(1700000000 + n);
    batch["task"] = task;
    return batch;
}

Json::Value nodeObject(int n)
{
    Json::Value node(Json::objectValue);
    node["hostname"] = "render-node-" + std::to_string(n) + ".farm.local";
    node["node_id"] = static_cast<Json::UInt>(n);
    node["version"] = "1.8.4.12345";
    node["status"] = "inprogress";
    node["priority"] = 0;
    node["batch_id"] = static_cast<Json::UInt>(n % 100);
    node["progress"] = 33.3 + n % 60;
    node["task"]["name"] = "BuildDepthMaps";
    node["task"]["params"] = taskParams(n);
    node["error_count"] = static_cast<Json::UInt>(n % 3);
    node["last_error"]["time"] = static_cast<Json::UInt>(1700000100 + n);
    node["last_error"]["batch_id"] = static_cast<Json::UInt>(n % 100);
    node["last_error"]["message"] = "not enough memory to process depth maps";
    return node;
}

std::string replyLine(const Json::Value& result)
{
    Json::Value reply(Json::objectValue);
    reply["id"] = 0;
    reply["result"] = result;
    Json::FastWriter writer;
    return writer.write(reply);
}

std::string batchListReply(int count)
{
    Json::Value result(Json::arrayValue);
    for (int n = 0; n < count; ++n)
        result.append(batchObject(n));
    return replyLine(result);
}

std::string nodeListReply(int count)
{
    Json::Value result(Json::arrayValue);
    for (int n = 0; n < count; ++n)
        result.append(nodeObject(n));
    return replyLine(result);
}

// A batch list of about 8 MB.
std::string largeObjectsReply()
{
    Json::Value sample(Json::arrayValue);
    sample.append(batchObject(100000));
    const std::size_t one = replyLine(sample).size();
    return batchListReply(static_cast<int>(LargeLineBytes / one));
}

// One string of 8 MB: almost nothing to build, so framing cost shows most.
std::string largeStringReply()
{
    return replyLine(Json::Value(std::string(LargeLineBytes, 'x')));
}

// A connected client with a server that answers every request line with reply.
class Loopback final
{
public:
    explicit Loopback(const std::string& reply)
    {
        m_server.acceptConnection().answerEveryLine(reply, ServerPiece);
        m_server.start();
        const ConsoleCapture quiet;
        m_client = std::make_unique<ControlClient>();
        m_client->connect("127.0.0.1", m_server.port());
    }
    ~Loopback()
    {
        const ConsoleCapture quiet;
        m_client.reset();
    }
    Loopback(const Loopback&) = delete;
    Loopback& operator=(const Loopback&) = delete;
    ControlClient& client() { return *m_client; }

private:
    ScriptedServer m_server;
    std::unique_ptr<ControlClient> m_client;
};

void receiveLine(benchmark::State& state, const std::string& reply)
{
    Loopback loopback(reply);
    const Json::Value request("next");
    for (auto _ : state) {
        loopback.client().send(request);
        Json::Value message = loopback.client().receive(-1);
        if (message.isNull())
            state.SkipWithError("no reply");
        benchmark::DoNotOptimize(message);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * reply.size()));
}

void parseFromMemory(benchmark::State& state, const std::string& reply)
{
    const char* begin = reply.data();
    const char* end = begin + reply.size() - 1; // without the line feed
    for (auto _ : state) {
        Json::Reader reader;
        Json::Value message;
        if (!reader.parse(begin, end, message, true))
            state.SkipWithError("parse failed");
        benchmark::DoNotOptimize(message);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * reply.size()));
}

void listBatches(benchmark::State& state, const std::string& reply)
{
    Loopback loopback(reply);
    for (auto _ : state) {
        ControlClient::BatchList batches;
        if (!loopback.client().listBatches(batches))
            state.SkipWithError("listBatches failed");
        benchmark::DoNotOptimize(batches);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * reply.size()));
}

void listNodes(benchmark::State& state, const std::string& reply)
{
    Loopback loopback(reply);
    for (auto _ : state) {
        ControlClient::NodeList nodes;
        if (!loopback.client().listNodes(nodes))
            state.SkipWithError("listNodes failed");
        benchmark::DoNotOptimize(nodes);
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * reply.size()));
}

// Whether a run ended by SkipWithError. Google Benchmark 1.8 replaced the
// run's error_occurred flag with skipped; the overload for the member this
// version has is the one chosen.
template <typename Run>
auto skipped(const Run& run, int) -> decltype(run.skipped, bool())
{
    return run.skipped != 0;
}

template <typename Run>
bool skipped(const Run& run, long)
{
    return run.error_occurred;
}

// Console output as usual, plus the ratios of each client figure to its
// jsoncpp-only twin once every benchmark has run.
class RatioReporter final : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run>& runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            if (skipped(run, 0))
                continue;
            if (run.run_type == Run::RT_Aggregate && run.aggregate_name != "median")
                continue;
            m_seconds[run.run_name.function_name] = {run.GetAdjustedRealTime(), run.GetAdjustedCPUTime()};
        }
    }

    void Finalize() override
    {
        ConsoleReporter::Finalize();
        std::printf("\nratio to jsoncpp parsing the same text from memory (medians):\n");
        std::printf("  %-32s %10s %12s\n", "", "real time", "client CPU");
        for (const auto& [name, times] : m_seconds) {
            if (name.rfind("jsoncpp_parse/", 0) == 0)
                continue;
            const auto twin = m_seconds.find("jsoncpp_parse/" + name);
            if (twin != m_seconds.end() && twin->second.first > 0 && twin->second.second > 0)
                std::printf("  %-32s %10.3f %12.3f\n", name.c_str(), times.first / twin->second.first,
                    times.second / twin->second.second);
        }
    }

private:
    // real time, CPU time of the benchmark thread
    std::map<std::string, std::pair<double, double>> m_seconds;
};

template <typename F>
void add(const std::string& name, F function, const std::string& reply)
{
    benchmark::RegisterBenchmark(name.c_str(), function, reply)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->Repetitions(5)
        ->ReportAggregatesOnly(true);
}

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;

    const std::string objects = largeObjectsReply();
    const std::string text = largeStringReply();
    const std::string batches = batchListReply(10000);
    const std::string nodes = nodeListReply(2000);
    std::printf("line sizes: 8MB objects %zu, 8MB string %zu, 10000 batches %zu, 2000 nodes %zu bytes\n",
        objects.size(), text.size(), batches.size(), nodes.size());

    add("receive_8MB_line_objects", receiveLine, objects);
    add("jsoncpp_parse/receive_8MB_line_objects", parseFromMemory, objects);
    add("receive_8MB_line_string", receiveLine, text);
    add("jsoncpp_parse/receive_8MB_line_string", parseFromMemory, text);
    // Linear cost: bytes per second stays flat as the line grows.
    for (const std::size_t megabytes : {1, 4, 16}) {
        const std::string line = replyLine(Json::Value(std::string(megabytes * 1024 * 1024, 'x')));
        add("receive_line_string_scaling/" + std::to_string(megabytes) + "MB", receiveLine, line);
    }
    add("listBatches_10000", listBatches, batches);
    add("jsoncpp_parse/listBatches_10000", parseFromMemory, batches);
    add("listNodes_2000", listNodes, nodes);
    add("jsoncpp_parse/listNodes_2000", parseFromMemory, nodes);

    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
