#include <iostream>
#include <sstream>

#include <benchmark/benchmark.h>

#include "controlclient.h"
#include "farm.h"
#include "rpchandler.h"
#include "runningsim.h"

// Reply time of the simulator's lists at 10,000 batches and 2,000 nodes: the
// reply text built from scratch (the farm changed since the last poll), and
// the whole round trip of the protocol client over loopback, parse included.
namespace {

FarmConfig largeFarm()
{
    FarmConfig config;
    config.batches = 10000;
    config.nodes = 2000;
    return config;
}

void replyText(benchmark::State& state, const char* request)
{
    Farm farm(largeFarm());
    farm.tick(5.0);
    RpcHandler handler(farm);
    std::size_t bytes = 0;
    for (auto _ : state) {
        farm.setBatchPriority(1, 0); // a change, so that nothing is reused
        const std::string reply = handler.handleLine(request);
        bytes = reply.size();
        benchmark::DoNotOptimize(reply.data());
    }
    state.counters["reply_bytes"] = static_cast<double>(bytes);
}

void BM_ListBatchesReply(benchmark::State& state)
{
    replyText(state, "{\"id\":1,\"method\":\"listBatches\"}");
}
BENCHMARK(BM_ListBatchesReply)->Unit(benchmark::kMillisecond);

void BM_ListNodesReply(benchmark::State& state)
{
    replyText(state, "{\"id\":1,\"method\":\"listNodes\"}");
}
BENCHMARK(BM_ListNodesReply)->Unit(benchmark::kMillisecond);

void BM_FarmTick(benchmark::State& state)
{
    Farm farm(largeFarm());
    for (auto _ : state)
        farm.tick(0.1);
}
BENCHMARK(BM_FarmTick)->Unit(benchmark::kMillisecond);

void roundTrip(benchmark::State& state, bool batches)
{
    ServerConfig server;
    server.tickMs = 100; // the farm moves, so every poll is built anew
    RunningSim sim(largeFarm(), server);
    std::ostringstream quiet;
    std::streambuf* console = std::cout.rdbuf(quiet.rdbuf());
    {
        ControlClient client;
        client.connect("127.0.0.1", sim.port());
        for (auto _ : state) {
            bool ok = false;
            if (batches) {
                ControlClient::BatchList list;
                ok = client.listBatches(list) && list.size() == 10000;
            } else {
                ControlClient::NodeList list;
                ok = client.listNodes(list) && list.size() == 2000;
            }
            if (!ok)
                state.SkipWithError("request failed");
        }
    }
    std::cout.rdbuf(console);
}

void BM_ClientListBatches(benchmark::State& state)
{
    roundTrip(state, true);
}
BENCHMARK(BM_ClientListBatches)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_ClientListNodes(benchmark::State& state)
{
    roundTrip(state, false);
}
BENCHMARK(BM_ClientListNodes)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
