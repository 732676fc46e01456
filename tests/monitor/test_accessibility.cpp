#include <QAccessible>
#include <QCursor>
#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSplitter>
#include <QTest>
#include <QTranslator>

#include <gtest/gtest.h>

#include "batchdetailsdialog.h"
#include "contextmenukey.h"
#include "paneltestsupport.h"
#include "taskdisplaynames.h"
#include "testenvironment.h"

namespace {

QString accessibleName(QObject* object)
{
    QAccessibleInterface* iface = QAccessible::queryAccessibleInterface(object);
    return iface ? iface->text(QAccessible::Name) : QStringLiteral("<none>");
}

ControlClient::BatchInfo batch(std::uint32_t id, const char* path, ControlClient::Status status)
{
    ControlClient::BatchInfo info;
    info.batchId = id;
    info.path = path;
    info.status = status;
    info.task.name = "BuildModel";
    info.task.status = ControlClient::InProgress;
    info.task.progress = 42.5;
    info.task.timeElapsed = 760;
    info.task.timeLeft = 3780;
    info.task.nodesActive = 3;
    info.task.nodesWaiting = 2;
    return info;
}

QString rowName(QTreeWidget* tree, int row)
{
    return tree->topLevelItem(row)->data(0, Qt::AccessibleTextRole).toString();
}

// Presses Shift+F10 on the tree and notes where a menu opened, choosing entry.
MenuVisit pressShiftF10(QTreeWidget* tree, const QString& entry)
{
    return chooseFromMenu([tree] { QTest::keyClick(tree, Qt::Key_F10, Qt::ShiftModifier); },
        entry.isEmpty() ? QStringList() : QStringList {entry});
}

class Accessibility : public ::testing::Test
{
protected:
    void SetUp() override { TestEnvironment::clearSettings(); }

    Monitor panel {nullptr};
    PanelWidgets ui {panel};
};

} // namespace

TEST_F(Accessibility, HostAndPortTakeTheirNamesFromTheirLabels)
{
    auto* hostLabel = panel.findChild<QLabel*>(QStringLiteral("label"));
    auto* portLabel = panel.findChild<QLabel*>(QStringLiteral("label_2"));
    EXPECT_EQ(hostLabel->buddy(), ui.host);
    EXPECT_EQ(portLabel->buddy(), ui.port);
    EXPECT_EQ(hostLabel->text(), QStringLiteral("Host name:"));
    EXPECT_EQ(portLabel->text(), QStringLiteral("Port:"));
    EXPECT_EQ(accessibleName(ui.host), QStringLiteral("Host name:"));
    EXPECT_EQ(accessibleName(ui.port), QStringLiteral("Port:"));

    const auto labels = QAccessible::queryAccessibleInterface(ui.host)->relations(QAccessible::Label);
    ASSERT_EQ(labels.size(), 1);
    EXPECT_EQ(labels[0].first->object(), hostLabel);
}

TEST_F(Accessibility, TreesAreNamedBatchesAndNodesInTheOrderOfTheScreen)
{
    EXPECT_EQ(accessibleName(ui.batches), QStringLiteral("Batches"));
    EXPECT_EQ(accessibleName(ui.nodes), QStringLiteral("Nodes"));
    QAccessibleInterface* splitter
        = QAccessible::queryAccessibleInterface(panel.findChild<QSplitter*>(QStringLiteral("splitter")));
    ASSERT_NE(splitter, nullptr);
    ASSERT_GE(splitter->childCount(), 2);
    EXPECT_EQ(splitter->child(0)->object(), ui.batches);
    EXPECT_EQ(splitter->child(1)->object(), ui.nodes);
}

TEST_F(Accessibility, FocusOrderStaysHostPortConnectBatchesNodes)
{
    panel.show();
    panel.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&panel));
    ui.host->setFocus();
    std::vector<QWidget*> order;
    for (int i = 0; i < 4; ++i) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        order.push_back(QApplication::focusWidget());
    }
    EXPECT_EQ(order, (std::vector<QWidget*> {ui.port, ui.button, ui.batches, ui.nodes}));
}

TEST(AccessibilityGerman, NamesFollowTheInstalledTranslation)
{
    QTranslator german;
    ASSERT_TRUE(german.load(QCoreApplication::applicationDirPath() + QStringLiteral("/lang/monitor_de.qm")));
    QCoreApplication::installTranslator(&german);
    QString batches;
    QString nodes;
    QString host;
    QString tasks;
    {
        Monitor panel(nullptr);
        PanelWidgets ui(panel);
        batches = accessibleName(ui.batches);
        nodes = accessibleName(ui.nodes);
        host = accessibleName(ui.host);
        BatchDetailsDialog dialog(nullptr);
        tasks = accessibleName(dialog.findChild<QListWidget*>(QStringLiteral("listJobs")));
    }
    QCoreApplication::removeTranslator(&german);
    EXPECT_EQ(batches, QStringLiteral("Stapel"));
    EXPECT_EQ(nodes, QStringLiteral("Knoten"));
    EXPECT_EQ(host, QStringLiteral("Hostname:"));
    EXPECT_EQ(tasks, QStringLiteral("Aufgaben"));
}

TEST_F(Accessibility, TheCurrentRowReadsWithItsHeadersAndOnlyIt)
{
    panel.updateBatches({batch(7, "/projects/seven.kproj", ControlClient::InProgress),
        batch(8, "/projects/eight.kproj", ControlClient::Paused)});
    ui.batches->setCurrentItem(ui.batches->topLevelItem(0));
    const QString seven = rowName(ui.batches, 0);
    EXPECT_TRUE(seven.startsWith(QStringLiteral("#: 7, Project: seven.kproj, Started: ")))
        << seven.toStdString();
    EXPECT_TRUE(seven.endsWith(
        QStringLiteral(", Status: Working, Priority: Normal, Current Task: Build Mesh (42.5%), "
                       "Elapsed / Left: 00:12:40 / 01:03:00, Failures: 0, Nodes: 3/5")))
        << seven.toStdString();
    EXPECT_EQ(ui.batches->topLevelItem(0)->data(8, Qt::AccessibleTextRole).toString(), seven);
    EXPECT_FALSE(ui.batches->topLevelItem(1)->data(0, Qt::AccessibleTextRole).isValid());
    // the cells still show their bare values
    EXPECT_EQ(ui.batches->topLevelItem(0)->text(0), QStringLiteral("7"));

    ui.batches->setCurrentItem(ui.batches->topLevelItem(1));
    EXPECT_FALSE(ui.batches->topLevelItem(0)->data(0, Qt::AccessibleTextRole).isValid());
    EXPECT_TRUE(rowName(ui.batches, 1).contains(QStringLiteral(", Status: Paused, ")))
        << rowName(ui.batches, 1).toStdString();

    // the next poll rewrites the current row's name with it
    panel.updateBatches({batch(7, "/projects/seven.kproj", ControlClient::InProgress),
        batch(8, "/projects/eight.kproj", ControlClient::Aborted)});
    EXPECT_TRUE(rowName(ui.batches, 1).contains(QStringLiteral(", Status: Aborted, ")))
        << rowName(ui.batches, 1).toStdString();
}

TEST_F(Accessibility, ANodeRowLeavesOutItsEmptyCells)
{
    ControlClient::NodeInfo node;
    node.nodeId = 3;
    node.hostname = "render-03:5841";
    node.version = "1.4.2";
    node.status = ControlClient::Ready;
    panel.updateNodes({node});
    ui.nodes->setCurrentItem(ui.nodes->topLevelItem(0));
    EXPECT_EQ(rowName(ui.nodes, 0),
        QStringLiteral("#: 3, Host: render-03 (1.4.2), Status: Ready, Priority: Normal, Failures: 0"));
}

TEST_F(Accessibility, ShiftF10OpensTheCurrentRowsMenuAtTheMouseCursor)
{
    EXPECT_EQ(ContextMenuKey::sequence(), QKeySequence(QStringLiteral("Shift+F10")));
    panel.updateBatches({batch(7, "/projects/seven.kproj", ControlClient::InProgress),
        batch(8, "/projects/eight.kproj", ControlClient::Paused)});
    ControlClient::NodeInfo three;
    three.nodeId = 3;
    ControlClient::NodeInfo four;
    four.nodeId = 4;
    panel.updateNodes({three, four});
    panel.show();
    panel.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&panel));

    QCursor::setPos(QPoint(37, 41));
    ui.batches->setFocus();
    ui.batches->setCurrentItem(ui.batches->topLevelItem(1));
    const MenuVisit batchMenu = pressShiftF10(ui.batches, QStringLiteral("Pause"));
    EXPECT_TRUE(batchMenu.opened);
    EXPECT_EQ(batchMenu.at, QPoint(37, 41));

    ui.nodes->setFocus();
    ui.nodes->setCurrentItem(ui.nodes->topLevelItem(0));
    const MenuVisit nodeMenu = pressShiftF10(ui.nodes, QStringLiteral("Stop"));
    EXPECT_TRUE(nodeMenu.opened);

    EXPECT_EQ(queued(panel), (std::vector<std::string> {"4 8 0", "2 3 0"}));
}

TEST_F(Accessibility, ShiftF10WithoutRowsOpensNothing)
{
    panel.show();
    panel.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&panel));
    ui.batches->setFocus();
    EXPECT_FALSE(pressShiftF10(ui.batches, QString()).opened);
}

namespace {

ControlClient::TaskInfo task(const char* name, ControlClient::Status status)
{
    ControlClient::TaskInfo info;
    info.name = name;
    info.status = status;
    info.itemsTotal = 40;
    info.itemsDone = 12;
    info.nodesActive = 3;
    info.nodesWaiting = 1;
    info.nodesFailed = 2;
    info.progress = 30.7;
    info.timeElapsed = 725;
    info.timeLeft = 5400;
    return info;
}

ControlClient::BatchStatus twoTasks()
{
    ControlClient::BatchStatus status;
    status.path = "/projects/harbour/survey.kproj";
    status.tasks
        = {task("AlignCameras", ControlClient::Completed), task("BuildModel", ControlClient::InProgress)};
    return status;
}

} // namespace

TEST(AccessibilityDetails, TaskRowsAreNamedByTheirTaskAndFollowIt)
{
    initTaskDisplayNames();
    BatchDetailsDialog dialog(nullptr);
    auto* list = dialog.findChild<QListWidget*>(QStringLiteral("listJobs"));
    EXPECT_EQ(accessibleName(list), QStringLiteral("Tasks"));
    ControlClient::BatchStatus status = twoTasks();
    dialog.setBatchStatus(status);
    ASSERT_EQ(list->count(), 2);
    EXPECT_EQ(list->item(0)->data(Qt::AccessibleTextRole).toString(),
        QStringLiteral("Align Photos (12/40 completed, 3/4 nodes active, 2 failures), 00:12:05 elapsed"));
    EXPECT_EQ(list->item(1)->data(Qt::AccessibleTextRole).toString(),
        QStringLiteral("Build Mesh (12/40 completed, 3/4 nodes active, 2 failures), 30%, 00:12:05 elapsed, "
                       "01:30:00 left"));

    status.tasks[1].status = ControlClient::Pending;
    dialog.setBatchStatus(status);
    EXPECT_EQ(list->item(1)->data(Qt::AccessibleTextRole).toString(),
        QStringLiteral("Build Mesh (12/40 completed, 3/4 nodes active, 2 failures), Waiting..."));
}

TEST(AccessibilityDetails, ASelectionInThePathSurvivesTheRefresh)
{
    BatchDetailsDialog dialog(nullptr);
    auto* path = dialog.findChild<QLineEdit*>(QStringLiteral("editPath"));
    EXPECT_EQ(accessibleName(path), QStringLiteral("Project:"));
    dialog.setBatchStatus(twoTasks());
    path->selectAll();
    ASSERT_TRUE(path->hasSelectedText());
    dialog.setBatchStatus(twoTasks());
    EXPECT_TRUE(path->hasSelectedText());
    EXPECT_EQ(path->selectedText(), QStringLiteral("/projects/harbour/survey.kproj"));

    ControlClient::BatchStatus moved = twoTasks();
    moved.path = "/projects/quarry.kproj";
    dialog.setBatchStatus(moved);
    EXPECT_EQ(path->text(), QStringLiteral("/projects/quarry.kproj"));
    EXPECT_FALSE(path->hasSelectedText());
}

TEST(AccessibilityDetails, TabAndShiftTabLeaveTheErrorBoxUnchanged)
{
    BatchDetailsDialog dialog(nullptr);
    ControlClient::BatchStatus status = twoTasks();
    status.lastError.time = 1700000000;
    status.lastError.message = "out of memory";
    dialog.setBatchStatus(status);
    dialog.show();
    dialog.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    auto* error = dialog.findChild<QPlainTextEdit*>(QStringLiteral("editError"));
    auto* close
        = dialog.findChild<QDialogButtonBox*>(QStringLiteral("buttonBox"))->button(QDialogButtonBox::Close);
    EXPECT_TRUE(error->tabChangesFocus());
    EXPECT_EQ(accessibleName(error), QStringLiteral("Last error:"));
    const QString text = error->toPlainText();

    error->setFocus();
    QTest::keyClick(error, Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), close);
    QTest::keyClick(close, Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(QApplication::focusWidget(), error);
    QTest::keyClick(error, Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_NE(QApplication::focusWidget(), error);
    EXPECT_EQ(error->toPlainText(), text);
}
