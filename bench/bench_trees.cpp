// The panel's tree updates at the scale of a large farm.
//   QT_QPA_PLATFORM=offscreen build/bin/bench_trees
#include <QApplication>
#include <QTreeWidget>

#include <benchmark/benchmark.h>

#include "monitor.h"

namespace {

// Two lists in which every shown cell differs from one to the other.
ControlClient::BatchList makeBatches(int count, int variant)
{
    ControlClient::BatchList list(count);
    for (int i = 0; i < count; ++i) {
        ControlClient::BatchInfo& b = list[i];
        b.batchId = std::uint32_t(i + 1 + variant * count);
        b.path
            = "/srv/projects/site-" + std::to_string(i % 97) + (variant ? "/survey-b.kproj" : "/survey-a.kproj");
        b.timeStarted = std::uint32_t(1700000000 + i * 37 + variant * 5);
        b.status = variant ? ControlClient::InProgress : ControlClient::Paused;
        b.priority = variant ? 1 : -1;
        b.task.name = variant ? "BuildDenseCloud" : "AlignCameras";
        b.task.status = variant ? ControlClient::InProgress : ControlClient::Completed;
        b.task.progress = (i % 1000) / 10.0 + variant * 0.3;
        b.task.timeElapsed = 100 + i + variant * 7;
        b.task.timeLeft = 5000 - i % 4000 + variant;
        b.task.nodesFailed = variant ? 2 : 1;
        b.task.nodesActive = variant ? 4 : 3;
        b.task.nodesWaiting = variant ? 6 : 5;
    }
    return list;
}

ControlClient::NodeList makeNodes(int count, int variant)
{
    ControlClient::NodeList list(count);
    for (int i = 0; i < count; ++i) {
        ControlClient::NodeInfo& n = list[i];
        n.nodeId = std::uint32_t(i + 1 + variant * count);
        n.hostname = "render-" + std::to_string(i) + (variant ? ":5842" : ":5841");
        n.version = variant ? "1.5.0" : "1.4.2";
        n.status = variant ? ControlClient::InProgress : ControlClient::Ready;
        n.priority = variant ? 2 : 0;
        n.batchId = std::uint32_t(i % 300 + variant);
        n.progress = (i % 1000) / 10.0 + variant * 0.3;
        n.errorCount = std::uint32_t(variant + 1);
        n.lastError.time = std::uint32_t(1700000000 + i + variant * 90000);
        n.lastError.batchId = std::uint32_t(i % 300 + variant);
        n.lastError.message = variant ? "out of memory" : "worker process crashed";
    }
    return list;
}

void BM_UpdateBatchesEveryCellChanges(benchmark::State& state)
{
    Monitor panel(nullptr);
    panel.show();
    const int count = int(state.range(0));
    const ControlClient::BatchList lists[2] = {makeBatches(count, 0), makeBatches(count, 1)};
    panel.updateBatches(lists[1]);
    int turn = 0;
    for (auto _ : state) {
        panel.updateBatches(lists[turn]);
        turn ^= 1;
    }
    state.SetItemsProcessed(state.iterations() * count);
}

void BM_UpdateBatchesNothingChanged(benchmark::State& state)
{
    Monitor panel(nullptr);
    panel.show();
    const ControlClient::BatchList list = makeBatches(int(state.range(0)), 0);
    panel.updateBatches(list);
    for (auto _ : state)
        panel.updateBatches(list);
}

void BM_UpdateBatchesAndRepaint(benchmark::State& state)
{
    Monitor panel(nullptr);
    panel.resize(1000, 700);
    panel.show();
    const int count = int(state.range(0));
    const ControlClient::BatchList lists[2] = {makeBatches(count, 0), makeBatches(count, 1)};
    panel.updateBatches(lists[1]);
    QCoreApplication::processEvents();
    int turn = 0;
    for (auto _ : state) {
        panel.updateBatches(lists[turn]);
        panel.repaint();
        QCoreApplication::processEvents();
        turn ^= 1;
    }
}

void BM_UpdateNodesEveryCellChanges(benchmark::State& state)
{
    Monitor panel(nullptr);
    panel.show();
    const int count = int(state.range(0));
    const ControlClient::NodeList lists[2] = {makeNodes(count, 0), makeNodes(count, 1)};
    panel.updateNodes(lists[1]);
    int turn = 0;
    for (auto _ : state) {
        panel.updateNodes(lists[turn]);
        turn ^= 1;
    }
    state.SetItemsProcessed(state.iterations() * count);
}

void BM_UpdateNodesNothingChanged(benchmark::State& state)
{
    Monitor panel(nullptr);
    panel.show();
    const ControlClient::NodeList list = makeNodes(int(state.range(0)), 0);
    panel.updateNodes(list);
    for (auto _ : state)
        panel.updateNodes(list);
}

// The plain way, for comparison: setText on attached items, every cell notified.
void BM_PlainSetTextLoop(benchmark::State& state)
{
    QTreeWidget tree;
    tree.setColumnCount(9);
    tree.show();
    const int count = int(state.range(0));
    for (int i = 0; i < count; ++i)
        tree.addTopLevelItem(new QTreeWidgetItem);
    int turn = 0;
    for (auto _ : state) {
        for (int i = 0; i < count; ++i) {
            QTreeWidgetItem* item = tree.topLevelItem(i);
            for (int column = 0; column < 9; ++column)
                item->setText(column, QString::number(i * 9 + column + turn));
        }
        turn ^= 1;
    }
}

} // namespace

BENCHMARK(BM_UpdateBatchesEveryCellChanges)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_UpdateBatchesNothingChanged)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_UpdateBatchesAndRepaint)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_UpdateNodesEveryCellChanges)->Arg(2000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_UpdateNodesNothingChanged)->Arg(2000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PlainSetTextLoop)->Arg(10000)->Unit(benchmark::kMillisecond)->Iterations(1);

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("Korvane"));
    QCoreApplication::setApplicationName(QStringLiteral("MonitorBenchmark"));
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
