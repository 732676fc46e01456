#include <atomic>
#include <chrono>
#include <iostream>
#include <streambuf>
#include <thread>

#include <QHeaderView>
#include <QMetaMethod>
#include <QScopeGuard>
#include <QSettings>
#include <QSplitter>
#include <QTest>

#include <gtest/gtest.h>

#include "consolecapture.h"
#include "monitor.h"
#include "paneltestsupport.h"
#include "scriptedserver.h"
#include "taskdisplaynames.h"
#include "testenvironment.h"
#include "treerows.h"

namespace {

const std::string EmptyList = R"({"result":[]})";

ControlClient::BatchInfo batch(std::uint32_t id, const char* path)
{
    ControlClient::BatchInfo b;
    b.batchId = id;
    b.path = path;
    b.status = ControlClient::InProgress;
    b.task.name = "AlignCameras";
    b.task.status = ControlClient::InProgress;
    b.task.progress = 10;
    return b;
}

ControlClient::NodeInfo node(std::uint32_t id, const char* host)
{
    ControlClient::NodeInfo n;
    n.nodeId = id;
    n.hostname = host;
    n.status = ControlClient::Ready;
    return n;
}

std::size_t occurrences(const std::string& text, const std::string& what)
{
    std::size_t n = 0;
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1))
        ++n;
    return n;
}

// Stands in for std::cout while it lives, and keeps what is written. The
// first line the worker writes from its own thread hooks that thread's
// finished() signal directly, so that the thread lingers holdMs after saying
// it has finished (once): the moment in which the panel already reads
// "Connect" while its thread has not yet ended, made long enough to press
// the button in.
class ThreadEndHold final : public std::streambuf
{
public:
    explicit ThreadEndHold(int holdMs)
        : m_holdMs(holdMs)
        , m_old(std::cout.rdbuf(this))
    {
    }
    ~ThreadEndHold() override { std::cout.rdbuf(m_old); }
    ThreadEndHold(const ThreadEndHold&) = delete;
    ThreadEndHold& operator=(const ThreadEndHold&) = delete;

    bool released() const { return m_released; }

protected:
    int overflow(int c) override
    {
        hook();
        return traits_type::not_eof(c);
    }
    std::streamsize xsputn(const char*, std::streamsize count) override
    {
        hook();
        return count;
    }

private:
    void hook()
    {
        if (QThread::currentThread() == QCoreApplication::instance()->thread() || m_hooked.exchange(true))
            return;
        QObject::connect(QThread::currentThread(), &QThread::finished, [this] {
            if (m_held.exchange(true))
                return;
            std::this_thread::sleep_for(std::chrono::milliseconds(m_holdMs));
            m_released = true;
        });
    }

    int m_holdMs;
    std::streambuf* m_old;
    std::atomic<bool> m_hooked {false};
    std::atomic<bool> m_held {false};
    std::atomic<bool> m_released {false};
};

QStringList headerTexts(QTreeWidget* tree)
{
    QStringList texts;
    for (int i = 0; i < tree->columnCount(); ++i)
        texts << tree->headerItem()->text(i);
    return texts;
}

class MonitorPanel : public ::testing::Test
{
protected:
    void SetUp() override { TestEnvironment::clearSettings(); }
    void TearDown() override { TestEnvironment::clearSettings(); }
};

} // namespace

TEST_F(MonitorPanel, FirstStartShowsAnEmptyHostAndPort5840)
{
    Monitor panel(nullptr);
    PanelWidgets ui(panel);
    EXPECT_EQ(ui.host->text(), QString());
    EXPECT_EQ(ui.port->value(), 5840);
    EXPECT_EQ(ui.button->text(), QStringLiteral("Connect"));
}

TEST_F(MonitorPanel, StoredServerIsFilledIn)
{
    QSettings().setValue(QStringLiteral("main/network_host"), QStringLiteral("farm.example"));
    QSettings().setValue(QStringLiteral("main/network_port"), 7001);
    Monitor panel(nullptr);
    PanelWidgets ui(panel);
    EXPECT_EQ(ui.host->text(), QStringLiteral("farm.example"));
    EXPECT_EQ(ui.port->value(), 7001);
}

TEST_F(MonitorPanel, FormHasItsNamesSizeAndTitle)
{
    Monitor panel(nullptr);
    PanelWidgets ui(panel);
    EXPECT_EQ(panel.objectName(), QStringLiteral("Monitor"));
    EXPECT_EQ(panel.size(), QSize(646, 566));
    EXPECT_EQ(panel.windowTitle(), QStringLiteral("Korvane Network Monitor"));
    EXPECT_EQ(panel.findChild<QLabel*>(QStringLiteral("label"))->text(), QStringLiteral("Host name:"));
    EXPECT_EQ(panel.findChild<QLabel*>(QStringLiteral("label_2"))->text(), QStringLiteral("Port:"));
    EXPECT_EQ(ui.port->minimum(), 0);
    EXPECT_EQ(ui.port->maximum(), 100000);
    auto* splitter = panel.findChild<QSplitter*>(QStringLiteral("splitter"));
    ASSERT_NE(splitter, nullptr);
    EXPECT_EQ(splitter->orientation(), Qt::Vertical);
    EXPECT_EQ(splitter->widget(0), ui.batches);
    EXPECT_EQ(splitter->widget(1), ui.nodes);
    for (QTreeWidget* tree : {ui.batches, ui.nodes}) {
        EXPECT_FALSE(tree->rootIsDecorated());
        EXPECT_EQ(tree->contextMenuPolicy(), Qt::CustomContextMenu);
        EXPECT_FALSE(tree->isSortingEnabled());
    }
}

TEST_F(MonitorPanel, HeadersAndWidthsFollowTheDefaultSectionSize)
{
    Monitor panel(nullptr);
    PanelWidgets ui(panel);
    const int d = ui.batches->header()->defaultSectionSize();
    EXPECT_EQ(headerTexts(ui.batches),
        QStringList({"#", "Project", "Started", "Status", "Priority", "Current Task", "Elapsed / Left",
            "Failures", "Nodes"}));
    const int batchWidths[]
        = {d / 2, d * 5 / 4, d * 5 / 4, d * 3 / 4, d * 3 / 4, d * 2, d * 5 / 4, d * 3 / 4, d * 3 / 4};
    for (int i = 0; i < 9; ++i)
        EXPECT_EQ(ui.batches->columnWidth(i), batchWidths[i]) << i;
    EXPECT_EQ(headerTexts(ui.nodes),
        QStringList({"#", "Host", "Status", "Priority", "Batch #", "Progress", "Failures", "Last Error"}));
    const int nodeWidths[]
        = {d / 2, d * 5 / 4, d * 3 / 4, d * 3 / 4, d * 3 / 4, d * 3 / 4, d * 3 / 4, d * 3 / 4};
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(ui.nodes->columnWidth(i), nodeWidths[i]) << i;
}

TEST_F(MonitorPanel, MetaObjectListsTheSignalAndSlotsInOrder)
{
    const QMetaObject& meta = Monitor::staticMetaObject;
    QStringList methods;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        methods << QString::fromLatin1(meta.method(i).methodSignature());
    EXPECT_EQ(methods,
        QStringList({"disconnected()", "updateBatches(ControlClient::BatchList)",
            "updateNodes(ControlClient::NodeList)", "error(QString)", "finish()",
            "onContextMenuNodes(QPoint)", "onContextMenuBatches(QPoint)", "onConnectClicked()",
            "onContextPauseNode()", "onContextResumeNode()", "onContextStopNode()", "onContextPauseBatch()",
            "onContextResumeBatch()", "onContextAbortBatch()", "onContextBatchDetails()",
            "onContextBatchPriorityHighest()", "onContextBatchPriorityHigh()",
            "onContextBatchPriorityNormal()", "onContextBatchPriorityLow()", "onContextBatchPriorityLowest()",
            "onContextNodePriorityHighest()", "onContextNodePriorityHigh()", "onContextNodePriorityNormal()",
            "onContextNodePriorityLow()", "onContextNodePriorityLowest()"}));
}

TEST_F(MonitorPanel, RowsAreReusedByPositionAndCarryTheirIds)
{
    Monitor panel(nullptr);
    PanelWidgets ui(panel);
    panel.updateBatches({batch(4, "/p/a.kproj"), batch(9, "/p/b.kproj"), batch(12, "/p/c.kproj")});
    ASSERT_EQ(ui.batches->topLevelItemCount(), 3);
    QTreeWidgetItem* first = ui.batches->topLevelItem(0);
    ui.batches->setCurrentItem(ui.batches->topLevelItem(1));
    EXPECT_EQ(first->data(0, Qt::UserRole).toUInt(), 4u);
    EXPECT_EQ(first->data(0, Qt::UserRole).typeId(), QMetaType::UInt);

    // another batch moves into row 0; the row object and the selection stay
    panel.updateBatches({batch(77, "/p/z.kproj"), batch(9, "/p/b.kproj")});
    ASSERT_EQ(ui.batches->topLevelItemCount(), 2);
    EXPECT_EQ(ui.batches->topLevelItem(0), first);
    EXPECT_EQ(first->text(0), QStringLiteral("77"));
    EXPECT_EQ(first->text(1), QStringLiteral("z.kproj"));
    EXPECT_EQ(first->data(0, Qt::UserRole).toUInt(), 77u);
    EXPECT_EQ(ui.batches->currentItem(), ui.batches->topLevelItem(1));
    EXPECT_EQ(ui.batches->topLevelItem(1)->text(0), QStringLiteral("9"));
}

TEST_F(MonitorPanel, EmptyListsRemoveAllRowsAndKeepTheHeaders)
{
    Monitor panel(nullptr);
    PanelWidgets ui(panel);
    panel.updateBatches({batch(1, "a"), batch(2, "b")});
    panel.updateNodes({node(1, "h1:1"), node(2, "h2:2")});
    panel.updateBatches({});
    panel.updateNodes({});
    EXPECT_EQ(ui.batches->topLevelItemCount(), 0);
    EXPECT_EQ(ui.nodes->topLevelItemCount(), 0);
    EXPECT_EQ(ui.batches->columnCount(), 9);
    EXPECT_EQ(ui.nodes->headerItem()->text(7), QStringLiteral("Last Error"));
}

TEST_F(MonitorPanel, NodeRowsShowTheNodeTexts)
{
    Monitor panel(nullptr);
    PanelWidgets ui(panel);
    ControlClient::NodeInfo n = node(3, "10.0.0.5:5841");
    n.version = "1.4.2";
    panel.updateNodes({n});
    QTreeWidgetItem* row = ui.nodes->topLevelItem(0);
    EXPECT_EQ(row->text(0), QStringLiteral("3"));
    EXPECT_EQ(row->text(1), QStringLiteral("10.0.0.5 (1.4.2)"));
    EXPECT_EQ(row->text(2), QStringLiteral("Ready"));
    EXPECT_EQ(row->text(3), QStringLiteral("Normal"));
    EXPECT_EQ(row->text(4), QString());
    EXPECT_EQ(row->text(5), QString());
    EXPECT_EQ(row->data(0, Qt::UserRole).toUInt(), 3u);
}

TEST(TreeRows, ErrorStampChangesFormWhenTheDayChangesWithoutOtherChange)
{
    QTreeWidget tree;
    tree.setColumnCount(8);
    TreeRows rows(&tree);
    ControlClient::NodeInfo n = node(1, "h:1");
    n.lastError.time = std::uint32_t(QDateTime(QDate(2024, 2, 1), QTime(23, 59, 59)).toSecsSinceEpoch());
    n.lastError.batchId = 5;
    n.lastError.message = "disk full";
    rows.showNodes({n}, QDate(2024, 2, 1));
    EXPECT_EQ(tree.topLevelItem(0)->text(7), QStringLiteral("[23:59:59] #5: disk full"));
    rows.showNodes({n}, QDate(2024, 2, 2));
    EXPECT_EQ(tree.topLevelItem(0)->text(7), QStringLiteral("[01.02.2024 23:59:59] #5: disk full"));
}

TEST(TreeRows, UnchangedRowsAreLeftAloneAndChangedRowsRewritten)
{
    initTaskDisplayNames();
    QTreeWidget tree;
    tree.setColumnCount(9);
    TreeRows rows(&tree);
    ControlClient::BatchList list = {batch(1, "/a"), batch(2, "/b")};
    rows.showBatches(list);
    tree.topLevelItem(0)->setText(1, QStringLiteral("touched by hand"));
    list[1].task.progress = 55.5;
    rows.showBatches(list);
    EXPECT_EQ(tree.topLevelItem(0)->text(1), QStringLiteral("touched by hand"));
    EXPECT_EQ(tree.topLevelItem(1)->text(5), QStringLiteral("Align Photos (55.5%)"));
}

TEST(TreeRows, OneDataChangedSignalCoversAllChangedRows)
{
    QTreeWidget tree;
    tree.setColumnCount(9);
    TreeRows rows(&tree);
    ControlClient::BatchList list;
    for (std::uint32_t i = 0; i < 50; ++i)
        list.push_back(batch(i, "/p"));
    rows.showBatches(list);
    int notifications = 0;
    QModelIndex topLeft;
    QModelIndex bottomRight;
    QObject::connect(
        tree.model(), &QAbstractItemModel::dataChanged, [&](const QModelIndex& a, const QModelIndex& b) {
            ++notifications;
            topLeft = a;
            bottomRight = b;
        });
    list[3].priority = 2;
    list[40].priority = -2;
    rows.showBatches(list);
    EXPECT_EQ(notifications, 1);
    EXPECT_EQ(topLeft.row(), 3);
    EXPECT_EQ(bottomRight.row(), 40);
    EXPECT_EQ(bottomRight.column(), 8);
    rows.showBatches(list);
    EXPECT_EQ(notifications, 1);
}

TEST_F(MonitorPanel, ConnectSavesTheServerAndPollsUntilDisconnect)
{
    ScriptedServer server;
    server.acceptConnection().answerByMethod(
        {{"listBatches", R"({"result":[{"batch_id":4,"path":"/p/a.kproj"}]})"},
            {"listNodes", R"({"result":[{"node_id":2,"hostname":"render-02:5841"}]})"}},
        R"({"result":true})");
    server.start();
    ConsoleCapture console;
    {
        Monitor panel(nullptr);
        const auto stop = qScopeGuard([&] { panel.shutdown(5000); });
        PanelWidgets ui(panel);
        ui.host->setText(QStringLiteral("127.0.0.1"));
        ui.port->setValue(server.port());
        ui.button->click();
        EXPECT_EQ(ui.button->text(), QStringLiteral("Disconnect"));
        EXPECT_EQ(
            QSettings().value(QStringLiteral("main/network_host")).toString(), QStringLiteral("127.0.0.1"));
        EXPECT_EQ(QSettings().value(QStringLiteral("main/network_port")).toInt(), server.port());
        ASSERT_TRUE(QTest::qWaitFor(
            [&] { return ui.batches->topLevelItemCount() == 1 && ui.nodes->topLevelItemCount() == 1; },
            10000));
        EXPECT_EQ(ui.batches->topLevelItem(0)->text(1), QStringLiteral("a.kproj"));

        ui.button->click();
        EXPECT_EQ(ui.button->text(), QStringLiteral("Disconnect")); // until the thread has ended
        ASSERT_TRUE(QTest::qWaitFor([&] { return ui.button->text() == QStringLiteral("Connect"); }, 10000));
        // the trees keep the last lists
        EXPECT_EQ(ui.batches->topLevelItemCount(), 1);
        EXPECT_EQ(ui.nodes->topLevelItemCount(), 1);
    }
    server.finish();
}

TEST_F(MonitorPanel, EmptyHostReportsCantConnectAndReturnsToConnect)
{
    ConsoleCapture console;
    MessageBoxCatcher boxes;
    Monitor panel(nullptr);
    const auto stop = qScopeGuard([&] { panel.shutdown(5000); });
    PanelWidgets ui(panel);
    ui.host->clear();
    ui.port->setValue(5840);
    ui.button->click();
    EXPECT_TRUE(QSettings().contains(QStringLiteral("main/network_host")));
    EXPECT_EQ(QSettings().value(QStringLiteral("main/network_port")).toInt(), 5840);
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.button->text() == QStringLiteral("Connect"); }, 10000));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !boxes.boxes.empty(); }, 10000));
    EXPECT_EQ(
        boxes.boxes, std::vector<QString>({QStringLiteral("Korvane Monitor | Can't connect to server")}));
}

TEST_F(MonitorPanel, PortUpTo100000IsSavedAndPassedOnUnchanged)
{
    ConsoleCapture console;
    MessageBoxCatcher boxes;
    Monitor panel(nullptr);
    const auto stop = qScopeGuard([&] { panel.shutdown(5000); });
    PanelWidgets ui(panel);
    ui.host->setText(QStringLiteral("127.0.0.1"));
    ui.port->setValue(100000);
    EXPECT_EQ(ui.port->value(), 100000);
    ui.button->click();
    EXPECT_EQ(QSettings().value(QStringLiteral("main/network_port")).toInt(), 100000);
    ASSERT_TRUE(QTest::qWaitFor(
        [&] { return ui.button->text() == QStringLiteral("Connect") && !boxes.boxes.empty(); }, 10000));
    // the client was handed the number as typed (the system then wraps it)
    EXPECT_EQ(console.text(), "can't connect to 127.0.0.1:100000\ncan't connect to server\n");
}

TEST_F(MonitorPanel, LostConnectionShowsTheBoxReturnsToConnectAndLeavesEmptyLists)
{
    ScriptedServer server;
    server.acceptConnection()
        .reply(R"({"result":[{"batch_id":4,"path":"/p/a.kproj"}]})")
        .reply(R"({"result":[{"node_id":2}]})")
        .waitForLine()
        .closeConnection();
    server.start();
    ConsoleCapture console;
    MessageBoxCatcher boxes;
    Monitor panel(nullptr);
    const auto stop = qScopeGuard([&] { panel.shutdown(5000); });
    PanelWidgets ui(panel);
    panel.connectTo(QStringLiteral("127.0.0.1"), server.port());
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.batches->topLevelItemCount() == 1; }, 10000));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.button->text() == QStringLiteral("Connect"); }, 10000));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !boxes.boxes.empty(); }, 10000));
    server.finish();
    EXPECT_EQ(
        boxes.boxes, std::vector<QString>({QStringLiteral("Korvane Monitor | Disconnected from server")}));
    EXPECT_EQ(ui.batches->topLevelItemCount(), 0);
    EXPECT_EQ(ui.nodes->topLevelItemCount(), 0);
}

TEST_F(MonitorPanel, ConnectingAgainAfterADisconnectStartsANewConnection)
{
    ScriptedServer server;
    server.acceptConnection().reply(EmptyList).reply(EmptyList).waitForClose();
    server.acceptConnection().reply(EmptyList).reply(EmptyList).waitForClose();
    server.start();
    ConsoleCapture console;
    Monitor panel(nullptr);
    const auto stop = qScopeGuard([&] { panel.shutdown(5000); });
    PanelWidgets ui(panel);
    panel.connectTo(QStringLiteral("127.0.0.1"), server.port());
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return server.received().find("listNodes") != std::string::npos; }, 10000));
    ui.button->click();
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.button->text() == QStringLiteral("Connect"); }, 10000));
    ui.button->click();
    EXPECT_EQ(ui.button->text(), QStringLiteral("Disconnect"));
    ASSERT_TRUE(QTest::qWaitFor(
        [&] {
            return server.received().find(R"({"id":1,"method":"listNodes"})"
                                          "\n"
                                          R"({"id":0,"method":"listBatches"})")
                != std::string::npos;
        },
        10000));
    ui.button->click();
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.button->text() == QStringLiteral("Connect"); }, 10000));
    server.finish();
}

TEST_F(MonitorPanel, ConnectRightAfterADisconnectWaitsUntilTheLastThreadHasEnded)
{
    ScriptedServer server;
    server.acceptConnection().answerEveryLine(EmptyList + "\n");
    server.acceptConnection().answerEveryLine(EmptyList + "\n");
    server.start();
    ThreadEndHold hold(500);
    Monitor panel(nullptr);
    const auto stop = qScopeGuard([&] { panel.shutdown(5000); });
    PanelWidgets ui(panel);
    ui.host->setText(QStringLiteral("127.0.0.1"));
    ui.port->setValue(server.port());
    ui.button->click();
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return server.received().find("listNodes") != std::string::npos; }, 10000));

    ui.button->click();
    // "Connect" shows once the thread has said it finished, before it has ended
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.button->text() == QStringLiteral("Connect"); }, 10000));
    ASSERT_FALSE(hold.released()) << "the thread ended before Connect could be pressed";
    const std::size_t polled = occurrences(server.received(), "listNodes");
    ui.button->click();
    // the press returned only after the last thread had ended
    EXPECT_TRUE(hold.released());
    EXPECT_EQ(ui.button->text(), QStringLiteral("Disconnect"));

    // the new connection polls, and the button says "Disconnect" all the while
    bool disconnectShown = true;
    ASSERT_TRUE(QTest::qWaitFor(
        [&] {
            disconnectShown = disconnectShown && ui.button->text() == QStringLiteral("Disconnect");
            return occurrences(server.received(), "listNodes") >= polled + 2;
        },
        10000));
    EXPECT_TRUE(disconnectShown);
    EXPECT_NE(server.received().find(R"({"id":1,"method":"listNodes"})"
                                     "\n"
                                     R"({"id":0,"method":"listBatches"})"),
        std::string::npos);
    panel.shutdown(5000);
    server.finish();
}

TEST_F(MonitorPanel, ShutdownEndsAConnectionToAServerThatNeverAnswers)
{
    ScriptedServer server;
    server.acceptConnection().waitForClose();
    server.start();
    ConsoleCapture console;
    MessageBoxCatcher boxes;
    Monitor panel(nullptr);
    panel.connectTo(QStringLiteral("127.0.0.1"), server.port());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !server.received().empty(); }, 10000));
    QElapsedTimer clock;
    clock.start();
    EXPECT_TRUE(panel.shutdown(1500));
    EXPECT_LT(clock.elapsed(), 1500);
    server.finish();
    QCoreApplication::processEvents();
    EXPECT_TRUE(boxes.boxes.empty());
}
