#include <QDateTime>
#include <QListWidget>
#include <QScopeGuard>
#include <QTest>

#include <gtest/gtest.h>

#include "batchdetailsdialog.h"
#include "consolecapture.h"
#include "monitor.h"
#include "paneltestsupport.h"
#include "runningsim.h"
#include "taskstatuswidget.h"
#include "testenvironment.h"

namespace {

int rowOfBatch(QTreeWidget* tree, std::uint32_t id)
{
    for (int row = 0; row < tree->topLevelItemCount(); ++row)
        if (tree->topLevelItem(row)->data(0, Qt::UserRole).toUInt() == id)
            return row;
    return -1;
}

int rowWithStatus(QTreeWidget* tree, const QString& status)
{
    for (int row = 0; row < tree->topLevelItemCount(); ++row)
        if (tree->topLevelItem(row)->text(3) == status)
            return row;
    return -1;
}

// The panel connected to the simulator, served from a thread of this process
// with its clock running 20 times faster than real time.
class MonitorOnSimulator : public ::testing::Test
{
protected:
    void SetUp() override
    {
        TestEnvironment::clearSettings();
        ASSERT_TRUE(sim.listening());
        panel.show();
        panel.connectTo(QStringLiteral("127.0.0.1"), sim.port());
        ASSERT_TRUE(QTest::qWaitFor(
            [&] { return ui.batches->topLevelItemCount() == 20 && ui.nodes->topLevelItemCount() == 8; },
            10000));
        // the farm hands out work at its first ticks
        ASSERT_TRUE(QTest::qWaitFor(
            [&] { return rowWithStatus(ui.batches, QStringLiteral("Working")) >= 0; }, 10000));
    }
    void TearDown() override { panel.shutdown(5000); }

    static FarmConfig farm()
    {
        FarmConfig config;
        config.seed = 1;
        config.batches = 20;
        config.nodes = 8;
        config.startTime = std::uint32_t(QDateTime::currentSecsSinceEpoch());
        return config;
    }
    static ServerConfig running()
    {
        ServerConfig config;
        config.tickMs = 100;
        config.speed = 20;
        return config;
    }

    RunningSim sim {farm(), running()};
    ConsoleCapture console;
    Monitor panel {nullptr};
    PanelWidgets ui {panel};
};

} // namespace

TEST_F(MonitorOnSimulator, TreesShowTheFarm)
{
    EXPECT_EQ(ui.batches->topLevelItem(0)->text(0).toUInt(),
        ui.batches->topLevelItem(0)->data(0, Qt::UserRole).toUInt());
    EXPECT_GE(rowWithStatus(ui.batches, QStringLiteral("Working")), 0);
    for (int row = 0; row < ui.nodes->topLevelItemCount(); ++row)
        EXPECT_TRUE(ui.nodes->topLevelItem(row)->text(1).startsWith(QStringLiteral("render-")));
}

TEST_F(MonitorOnSimulator, PausingAWorkingBatchShowsPausedAtTheNextPoll)
{
    const int row = rowWithStatus(ui.batches, QStringLiteral("Working"));
    ASSERT_GE(row, 0);
    const std::uint32_t id = ui.batches->topLevelItem(row)->data(0, Qt::UserRole).toUInt();
    chooseFromMenu(ui.batches, row, {"Pause"});
    ASSERT_TRUE(QTest::qWaitFor(
        [&] {
            const int now = rowOfBatch(ui.batches, id);
            return now >= 0 && ui.batches->topLevelItem(now)->text(3) == QStringLiteral("Paused");
        },
        5000));
    chooseFromMenu(ui.batches, rowOfBatch(ui.batches, id), {"Set Priority", "Lowest"});
    ASSERT_TRUE(QTest::qWaitFor(
        [&] {
            const int now = rowOfBatch(ui.batches, id);
            return now >= 0 && ui.batches->topLevelItem(now)->text(4) == QStringLiteral("Lowest");
        },
        5000));
}

TEST_F(MonitorOnSimulator, DetailsFillFromTheFollowedBatchAndRefreshWhileTheTreesUpdate)
{
    const int row = rowWithStatus(ui.batches, QStringLiteral("Working"));
    ASSERT_GE(row, 0);
    const QString project = ui.batches->topLevelItem(row)->text(1);

    QStringList footers;
    QString path;
    int treeUpdates = 0;
    const QString firstTimes = ui.batches->topLevelItem(row)->text(6);
    QTimer watcher;
    QObject::connect(&watcher, &QTimer::timeout, [&] {
        auto* dialog = qobject_cast<BatchDetailsDialog*>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        auto* list = dialog->findChild<QListWidget*>(QStringLiteral("listJobs"));
        path = dialog->findChild<QLineEdit*>(QStringLiteral("editPath"))->text();
        QString all;
        for (int i = 0; i < list->count(); ++i) {
            auto* task = qobject_cast<TaskStatusWidget*>(list->itemWidget(list->item(i)));
            const QList<QLabel*> labels = task->findChildren<QLabel*>();
            all += labels.value(0)->text() + QLatin1Char('|') + labels.value(1)->text() + QLatin1Char('\n');
        }
        if (!all.isEmpty() && (footers.isEmpty() || footers.last() != all))
            footers << all;
        if (ui.batches->topLevelItem(row)->text(6) != firstTimes)
            treeUpdates = 1;
        if (footers.size() >= 3 && treeUpdates) {
            watcher.stop();
            dialog->reject();
        }
    });
    watcher.start(20);
    QTimer::singleShot(15000, &watcher, [&] {
        watcher.stop();
        if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget()))
            dialog->reject();
    });
    chooseFromMenu(ui.batches, row, {"Details..."});
    ASSERT_TRUE(QTest::qWaitFor([&] { return !watcher.isActive(); }, 20000));
    EXPECT_TRUE(path.endsWith(QLatin1Char('/') + project)) << path.toStdString();
    EXPECT_GE(footers.size(), 3) << "the dialog refreshed " << footers.size() << " times";
    EXPECT_EQ(treeUpdates, 1);
}
