#include <QCursor>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QScopeGuard>
#include <QTest>

#include <gtest/gtest.h>

#include "batchdetailsdialog.h"
#include "consolecapture.h"
#include "monitor.h"
#include "paneltestsupport.h"
#include "scriptedserver.h"
#include "taskstatuswidget.h"
#include "testenvironment.h"

namespace {

const std::map<std::string, std::string> FarmReplies = {
    {"listBatches",
        R"({"result":[{"batch_id":7,"path":"/projects/seven.kproj","status":"inprogress"},)"
        R"({"batch_id":8,"path":"/projects/eight.kproj","status":"paused"}]})"},
    {"listNodes",
        R"({"result":[{"node_id":3,"hostname":"render-03:5841"},{"node_id":4,"hostname":"render-04:5841"}]})"},
    {"getBatchStatus",
        R"({"result":{"path":"/projects/seven.kproj","status":"inprogress","tasks":[)"
        R"({"name":"AlignCameras","status":"completed","items_total":4,"items_done":4},)"
        R"({"name":"BuildModel","status":"inprogress","progress":40,"items_total":10,"items_done":4}]}})"},
};

std::vector<std::string> commandLines(const std::string& received)
{
    std::vector<std::string> lines;
    std::size_t start = 0;
    while (start < received.size()) {
        const std::size_t end = received.find('\n', start);
        const std::string line = received.substr(start, end - start);
        if (line.find("\"params\"") != std::string::npos && line.find("getBatchStatus") == std::string::npos)
            lines.push_back(line.substr(line.find("\"method\"")));
        start = end + 1;
    }
    return lines;
}

std::size_t occurrences(const std::string& text, const std::string& what)
{
    std::size_t n = 0;
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1))
        ++n;
    return n;
}

// A panel connected to a scripted farm of batches 7 and 8 and nodes 3 and 4.
class ContextMenus : public ::testing::Test
{
protected:
    void SetUp() override
    {
        TestEnvironment::clearSettings();
        server.acceptConnection().answerByMethod(FarmReplies, R"({"result":true})");
        server.start();
        panel.show();
        panel.connectTo(QStringLiteral("127.0.0.1"), server.port());
        ASSERT_TRUE(QTest::qWaitFor(
            [&] { return ui.batches->topLevelItemCount() == 2 && ui.nodes->topLevelItemCount() == 2; },
            10000));
    }
    void TearDown() override
    {
        panel.shutdown(5000);
        server.finish();
    }

    ScriptedServer server;
    ConsoleCapture console;
    Monitor panel {nullptr};
    PanelWidgets ui {panel};
};

} // namespace

TEST_F(ContextMenus, BatchMenuOffersItsEntriesAllEnabled)
{
    const MenuVisit visit = chooseFromMenu(ui.batches, 0, {});
    EXPECT_TRUE(visit.opened);
    EXPECT_EQ(visit.entries, QStringList({"Pause", "Resume", "Abort", "Set Priority", "-", "Details..."}));
    EXPECT_EQ(visit.submenu, QStringList({"Highest", "High", "Normal", "Low", "Lowest"}));
    EXPECT_TRUE(visit.allEnabledPlain);
}

TEST_F(ContextMenus, NodeMenuOffersItsEntriesAllEnabled)
{
    const MenuVisit visit = chooseFromMenu(ui.nodes, 1, {});
    EXPECT_TRUE(visit.opened);
    EXPECT_EQ(visit.entries, QStringList({"Pause", "Resume", "Stop", "Set Priority"}));
    EXPECT_EQ(visit.submenu, QStringList({"Highest", "High", "Normal", "Low", "Lowest"}));
    EXPECT_TRUE(visit.allEnabledPlain);
}

TEST_F(ContextMenus, EveryEntrySendsItsRequestsAtTheNextTurn)
{
    const QStringList priorities = {"Highest", "High", "Normal", "Low", "Lowest"};
    chooseFromMenu(ui.batches, 0, {"Pause"});
    chooseFromMenu(ui.batches, 1, {"Resume"});
    chooseFromMenu(ui.batches, 0, {"Abort"});
    for (const QString& level : priorities)
        chooseFromMenu(ui.batches, 0, {"Set Priority", level});
    chooseFromMenu(ui.nodes, 0, {"Pause"});
    chooseFromMenu(ui.nodes, 1, {"Resume"});
    chooseFromMenu(ui.nodes, 0, {"Stop"});
    for (const QString& level : priorities)
        chooseFromMenu(ui.nodes, 1, {"Set Priority", level});

    const std::vector<std::string> expected = {
        R"("method":"pauseBatch","params":{"batch_id":7}})",
        R"("method":"resumeBatch","params":{"batch_id":8}})",
        R"("method":"abortBatch","params":{"batch_id":7}})",
        R"("method":"setBatchPriority","params":{"batch_id":7,"priority":2}})",
        R"("method":"setBatchPriority","params":{"batch_id":7,"priority":1}})",
        R"("method":"setBatchPriority","params":{"batch_id":7,"priority":0}})",
        R"("method":"setBatchPriority","params":{"batch_id":7,"priority":-1}})",
        R"("method":"setBatchPriority","params":{"batch_id":7,"priority":-2}})",
        R"("method":"pauseNode","params":{"node_id":3}})",
        R"("method":"resumeNode","params":{"node_id":4}})",
        R"("method":"pauseNode","params":{"node_id":3}})",
        R"("method":"abortNode","params":{"node_id":3}})",
        R"("method":"setNodePriority","params":{"node_id":4,"priority":2}})",
        R"("method":"setNodePriority","params":{"node_id":4,"priority":1}})",
        R"("method":"setNodePriority","params":{"node_id":4,"priority":0}})",
        R"("method":"setNodePriority","params":{"node_id":4,"priority":-1}})",
        R"("method":"setNodePriority","params":{"node_id":4,"priority":-2}})",
    };
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return commandLines(server.received()).size() >= expected.size(); }, 10000));
    EXPECT_EQ(commandLines(server.received()), expected);
}

TEST_F(ContextMenus, MenusOpenWhereTheMouseCursorIsNotWhereTheRowWasClicked)
{
    for (QTreeWidget* tree : {ui.batches, ui.nodes}) {
        const QPoint click = tree->visualItemRect(tree->topLevelItem(0)).center();
        QCursor::setPos(QPoint(37, 41));
        ASSERT_EQ(QCursor::pos(), QPoint(37, 41));
        ASSERT_NE(tree->viewport()->mapToGlobal(click), QPoint(37, 41));
        const MenuVisit visit = chooseFromMenu(tree, click, {});
        EXPECT_TRUE(visit.opened);
        EXPECT_EQ(visit.at, QPoint(37, 41)) << tree->objectName().toStdString();
    }
}

TEST_F(ContextMenus, RightClickBelowTheLastRowOpensNothingAndKeepsTheSelection)
{
    chooseFromMenu(ui.batches, 1, {"Pause"});
    const QRect last = ui.batches->visualItemRect(ui.batches->topLevelItem(1));
    const MenuVisit below = chooseFromMenu(ui.batches, QPoint(last.center().x(), last.bottom() + 40), {});
    EXPECT_FALSE(below.opened);
    // the next command still goes to the batch chosen before
    panel.onContextAbortBatch();
    ASSERT_TRUE(QTest::qWaitFor([&] { return commandLines(server.received()).size() >= 2; }, 10000));
    EXPECT_EQ(commandLines(server.received()),
        (std::vector<std::string> {R"("method":"pauseBatch","params":{"batch_id":8}})",
            R"("method":"abortBatch","params":{"batch_id":8}})"}));
}

TEST_F(ContextMenus, DetailsFollowTheChosenBatchOnlyWhileOpen)
{
    EXPECT_EQ(server.received().find("getBatchStatus"), std::string::npos);

    QString path;
    int rows = 0;
    QString secondHeader;
    bool errorShown = true;
    QTimer watcher;
    QObject::connect(&watcher, &QTimer::timeout, [&] {
        auto* dialog = qobject_cast<BatchDetailsDialog*>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        auto* edit = dialog->findChild<QLineEdit*>(QStringLiteral("editPath"));
        auto* list = dialog->findChild<QListWidget*>(QStringLiteral("listJobs"));
        if (edit->text().isEmpty() || list->count() < 2)
            return;
        watcher.stop();
        path = edit->text();
        rows = list->count();
        auto* second = qobject_cast<TaskStatusWidget*>(list->itemWidget(list->item(1)));
        secondHeader = second ? second->findChildren<QLabel*>().value(0)->text() : QString();
        errorShown = dialog->findChild<QWidget*>(QStringLiteral("widgetError"))->isVisible();
        dialog->reject();
    });
    watcher.start(10);
    chooseFromMenu(ui.batches, 0, {"Details..."});
    ASSERT_TRUE(QTest::qWaitFor([&] { return !watcher.isActive(); }, 10000));

    EXPECT_EQ(path, QStringLiteral("/projects/seven.kproj"));
    EXPECT_EQ(rows, 2);
    EXPECT_EQ(secondHeader, QStringLiteral("Build Mesh (4/10 completed, 0/0 nodes active)"));
    EXPECT_FALSE(errorShown);
    EXPECT_NE(
        server.received().find(R"("method":"getBatchStatus","params":{"batch_id":7}})"), std::string::npos);

    // closed: the worker follows no batch any more
    const std::size_t polled = occurrences(server.received(), "getBatchStatus");
    const std::size_t lists = occurrences(server.received(), "listNodes");
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return occurrences(server.received(), "listNodes") >= lists + 2; }, 10000));
    EXPECT_LE(occurrences(server.received(), "getBatchStatus"), polled + 1);
    const std::size_t settled = occurrences(server.received(), "getBatchStatus");
    ASSERT_TRUE(
        QTest::qWaitFor([&] { return occurrences(server.received(), "listNodes") >= lists + 3; }, 10000));
    EXPECT_EQ(occurrences(server.received(), "getBatchStatus"), settled);
}

TEST(ContextMenusDisconnected, CommandsChosenWhileDisconnectedAreQueuedAndDroppedAtTheNextConnect)
{
    TestEnvironment::clearSettings();
    ConsoleCapture console;
    ScriptedServer server;
    server.acceptConnection().answerByMethod(FarmReplies, R"({"result":true})");
    server.start();
    Monitor panel(nullptr);
    const auto stop = qScopeGuard([&] { panel.shutdown(5000); });
    PanelWidgets ui(panel);
    panel.show();
    ControlClient::BatchInfo seven;
    seven.batchId = 7;
    panel.updateBatches({seven});
    ControlClient::NodeInfo three;
    three.nodeId = 3;
    panel.updateNodes({three});
    EXPECT_TRUE(chooseFromMenu(ui.batches, 0, {"Pause"}).opened);
    EXPECT_TRUE(chooseFromMenu(ui.nodes, 0, {"Set Priority", "Low"}).opened);
    EXPECT_EQ(queued(panel), (std::vector<std::string> {"4 7 0", "8 3 -1"}));

    panel.connectTo(QStringLiteral("127.0.0.1"), server.port());
    ASSERT_TRUE(QTest::qWaitFor([&] { return occurrences(server.received(), "listNodes") >= 2; }, 10000));
    EXPECT_TRUE(commandLines(server.received()).empty());
    EXPECT_TRUE(queued(panel).empty());
    panel.shutdown(5000);
    server.finish();
}

TEST(ContextMenusDisconnected, DetailsWhileDisconnectedShowAnEmptyDialog)
{
    TestEnvironment::clearSettings();
    Monitor panel(nullptr);
    PanelWidgets ui(panel);
    panel.show();
    ControlClient::BatchInfo seven;
    seven.batchId = 7;
    panel.updateBatches({seven});
    QString path = QStringLiteral("unset");
    int rows = -1;
    QTimer::singleShot(200, [&] {
        auto* dialog = qobject_cast<BatchDetailsDialog*>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        path = dialog->findChild<QLineEdit*>(QStringLiteral("editPath"))->text();
        rows = dialog->findChild<QListWidget*>(QStringLiteral("listJobs"))->count();
        dialog->reject();
    });
    chooseFromMenu(ui.batches, 0, {"Details..."});
    EXPECT_EQ(path, QString());
    EXPECT_EQ(rows, 0);
}
