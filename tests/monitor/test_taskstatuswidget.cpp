#include <QLabel>
#include <QProgressBar>
#include <QVBoxLayout>

#include <gtest/gtest.h>

#include "taskstatuswidget.h"
#include "testenvironment.h"

namespace {

// The widget's three parts, found through its layout: header, bar, footer.
struct Parts
{
    QLabel* header = nullptr;
    QProgressBar* bar = nullptr;
    QLabel* footer = nullptr;
};

Parts partsOf(const TaskStatusWidget& widget)
{
    Parts parts;
    QLayout* layout = widget.layout();
    if (!layout || layout->count() != 3)
        return parts;
    parts.header = qobject_cast<QLabel*>(layout->itemAt(0)->widget());
    parts.bar = qobject_cast<QProgressBar*>(layout->itemAt(1)->widget());
    parts.footer = qobject_cast<QLabel*>(layout->itemAt(2)->widget());
    return parts;
}

ControlClient::TaskInfo alignTask()
{
    ControlClient::TaskInfo task;
    task.name = "AlignPhotos";
    task.status = ControlClient::InProgress;
    task.progress = 30.0;
    task.timeElapsed = 12 * 60 + 5;
    task.timeLeft = 90 * 60;
    task.itemsTotal = 40;
    task.itemsDone = 12;
    task.nodesActive = 3;
    task.nodesWaiting = 1;
    task.nodesFailed = 2;
    return task;
}

class TaskStatusWidgetTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        parts = partsOf(widget);
        ASSERT_NE(parts.header, nullptr);
        ASSERT_NE(parts.bar, nullptr);
        ASSERT_NE(parts.footer, nullptr);
    }

    QString header() const { return parts.header->text(); }
    QString footer() const { return parts.footer->text(); }
    bool barShown() const { return !parts.bar->isHidden(); }

    TaskStatusWidget widget;
    Parts parts;
};

} // namespace

TEST_F(TaskStatusWidgetTest, StartsWithPlaceholderTextsAndAnEmptyBar)
{
    EXPECT_EQ(header(), QStringLiteral("Header"));
    EXPECT_EQ(footer(), QStringLiteral("Footer"));
    EXPECT_TRUE(barShown());
    EXPECT_EQ(parts.bar->minimum(), 0);
    EXPECT_EQ(parts.bar->maximum(), 100);
}

TEST_F(TaskStatusWidgetTest, HeaderBarAndFooterAreStackedWithSixPixelMarginsAndSpacing)
{
    auto* layout = qobject_cast<QVBoxLayout*>(widget.layout());
    ASSERT_NE(layout, nullptr);
    EXPECT_EQ(layout->contentsMargins(), QMargins(6, 6, 6, 6));
    EXPECT_EQ(layout->spacing(), 6);
    EXPECT_EQ(parts.header->parentWidget(), &widget);
    EXPECT_EQ(parts.bar->parentWidget(), &widget);
    EXPECT_EQ(parts.footer->parentWidget(), &widget);
}

TEST_F(TaskStatusWidgetTest, BarIsTwelvePixelsHigh)
{
    EXPECT_EQ(parts.bar->minimumHeight(), 12);
    EXPECT_EQ(parts.bar->maximumHeight(), 12);
    widget.resize(300, 200);
    widget.show();
    EXPECT_EQ(parts.bar->height(), 12);
}

TEST_F(TaskStatusWidgetTest, SizeHintComesFromTheLayout)
{
    EXPECT_EQ(widget.sizeHint(), widget.layout()->totalSizeHint());
}

TEST_F(TaskStatusWidgetTest, HeaderCarriesTitleCountsAndFailures)
{
    widget.setTask(QStringLiteral("Align Photos"), alignTask());
    EXPECT_EQ(header(), QStringLiteral("Align Photos (12/40 completed, 3/4 nodes active, 2 failures)"));
}

TEST_F(TaskStatusWidgetTest, EmptyTitleFallsBackToTheRawTaskName)
{
    widget.setTask(QString(), alignTask());
    EXPECT_EQ(header(), QStringLiteral("AlignPhotos (12/40 completed, 3/4 nodes active, 2 failures)"));
}

TEST_F(TaskStatusWidgetTest, NonEmptyTitleIsUsedUnchanged)
{
    widget.setTask(QStringLiteral("  my title (x) "), alignTask());
    EXPECT_EQ(header(), QStringLiteral("  my title (x)  (12/40 completed, 3/4 nodes active, 2 failures)"));
}

TEST_F(TaskStatusWidgetTest, RawTaskNameIsDecodedAsUtf8)
{
    ControlClient::TaskInfo task = alignTask();
    task.name = "Ausrichtung\xc3\xbc";
    widget.setTask(QString(), task);
    EXPECT_TRUE(header().startsWith(QStringLiteral("Ausrichtung\u00fc (")));
}

TEST_F(TaskStatusWidgetTest, NoFailuresLeavesTheFailuresPieceOut)
{
    ControlClient::TaskInfo task = alignTask();
    task.nodesFailed = 0;
    widget.setTask(QStringLiteral("Align Photos"), task);
    EXPECT_EQ(header(), QStringLiteral("Align Photos (12/40 completed, 3/4 nodes active)"));
    EXPECT_FALSE(header().contains(QStringLiteral("failures")));
}

TEST_F(TaskStatusWidgetTest, NodesPieceIsAlwaysPresentAndCountsActivePlusWaiting)
{
    ControlClient::TaskInfo task;
    task.name = "BuildModel";
    widget.setTask(QStringLiteral("Build Mesh"), task);
    EXPECT_EQ(header(), QStringLiteral("Build Mesh (0/0 completed, 0/0 nodes active)"));

    task.nodesActive = 0;
    task.nodesWaiting = 5;
    task.nodesFailed = 7;
    widget.setTask(QStringLiteral("Build Mesh"), task);
    EXPECT_EQ(header(), QStringLiteral("Build Mesh (0/0 completed, 0/5 nodes active, 7 failures)"));
}

TEST_F(TaskStatusWidgetTest, PendingShowsWaitingAndNoBar)
{
    ControlClient::TaskInfo task = alignTask();
    task.status = ControlClient::Pending;
    widget.setTask(QString(), task);
    EXPECT_EQ(footer(), QStringLiteral("Waiting..."));
    EXPECT_FALSE(barShown());
}

TEST_F(TaskStatusWidgetTest, CompletedShowsOnlyTheElapsedTimeAndNoBar)
{
    ControlClient::TaskInfo task = alignTask();
    task.status = ControlClient::Completed;
    widget.setTask(QString(), task);
    EXPECT_EQ(footer(), QStringLiteral("00:12:05 elapsed"));
    EXPECT_FALSE(barShown());
}

TEST_F(TaskStatusWidgetTest, PausedAbortedAndReadyShowOnlyTheElapsedTimeAndNoBar)
{
    for (ControlClient::Status status :
        {ControlClient::Paused, ControlClient::Aborted, ControlClient::Ready}) {
        ControlClient::TaskInfo task = alignTask();
        task.status = status;
        widget.setTask(QString(), task);
        EXPECT_EQ(footer(), QStringLiteral("00:12:05 elapsed")) << status;
        EXPECT_FALSE(barShown()) << status;
    }
}

TEST_F(TaskStatusWidgetTest, WorkingShowsElapsedAndLeftWithTheBar)
{
    widget.setTask(QString(), alignTask());
    EXPECT_EQ(footer(), QStringLiteral("00:12:05 elapsed, 01:30:00 left"));
    EXPECT_TRUE(barShown());
    EXPECT_EQ(parts.bar->value(), 30);
}

TEST_F(TaskStatusWidgetTest, WorkingWithZeroOrNegativeTimeLeftShowsOnlyTheElapsedTimeWithTheBar)
{
    for (double left : {0.0, -1.0, -3600.0}) {
        ControlClient::TaskInfo task = alignTask();
        task.timeLeft = left;
        widget.setTask(QString(), task);
        EXPECT_EQ(footer(), QStringLiteral("00:12:05 elapsed")) << left;
        EXPECT_TRUE(barShown()) << left;
    }
}

TEST_F(TaskStatusWidgetTest, ProgressIsTruncatedTowardZero)
{
    ControlClient::TaskInfo task = alignTask();
    task.progress = 99.9;
    widget.setTask(QString(), task);
    EXPECT_EQ(parts.bar->value(), 99);

    task.progress = 0.99;
    widget.setTask(QString(), task);
    EXPECT_EQ(parts.bar->value(), 0);

    task.progress = 100.0;
    widget.setTask(QString(), task);
    EXPECT_EQ(parts.bar->value(), 100);
}

TEST_F(TaskStatusWidgetTest, ElapsedTimesUseTheDurationFormat)
{
    ControlClient::TaskInfo task = alignTask();
    task.status = ControlClient::Completed;
    task.timeElapsed = 3599.99;
    widget.setTask(QString(), task);
    EXPECT_EQ(footer(), QStringLiteral("00:59:59 elapsed"));

    task.timeElapsed = 360000;
    widget.setTask(QString(), task);
    EXPECT_EQ(footer(), QStringLiteral("100:00:00 elapsed"));

    task.timeElapsed = -61;
    widget.setTask(QString(), task);
    EXPECT_EQ(footer(), QStringLiteral("00:-1:-1 elapsed"));
}

TEST(TaskStatusWidgetFormat, DurationsHaveTwoDigitFieldsUnwrappedHoursAndUnclampedSigns)
{
    EXPECT_EQ(TaskStatusWidget::formatDuration(3599.99), QStringLiteral("00:59:59"));
    EXPECT_EQ(TaskStatusWidget::formatDuration(360000), QStringLiteral("100:00:00"));
    EXPECT_EQ(TaskStatusWidget::formatDuration(-61), QStringLiteral("00:-1:-1"));
    EXPECT_EQ(TaskStatusWidget::formatDuration(3725.9), QStringLiteral("01:02:05"));
}

TEST_F(TaskStatusWidgetTest, EachCallRewritesAllThreeParts)
{
    widget.setTask(QStringLiteral("Align Photos"), alignTask());
    ASSERT_TRUE(barShown());

    ControlClient::TaskInfo pending;
    pending.name = "BuildDenseCloud";
    widget.setTask(QString(), pending);
    EXPECT_EQ(header(), QStringLiteral("BuildDenseCloud (0/0 completed, 0/0 nodes active)"));
    EXPECT_EQ(footer(), QStringLiteral("Waiting..."));
    EXPECT_FALSE(barShown());
    EXPECT_EQ(parts.bar->value(), 0);

    widget.setTask(QStringLiteral("Align Photos"), alignTask());
    EXPECT_EQ(header(), QStringLiteral("Align Photos (12/40 completed, 3/4 nodes active, 2 failures)"));
    EXPECT_EQ(footer(), QStringLiteral("00:12:05 elapsed, 01:30:00 left"));
    EXPECT_TRUE(barShown());
    EXPECT_EQ(parts.bar->value(), 30);
}
