#include <QDateTime>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMetaMethod>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTextCursor>
#include <QTranslator>
#include <QVBoxLayout>

#include <gtest/gtest.h>

#include "batchdetailsdialog.h"
#include "taskdisplaynames.h"
#include "taskstatuswidget.h"
#include "testenvironment.h"

namespace {

std::uint32_t localTime(const QDate& date, const QTime& time)
{
    return std::uint32_t(QDateTime(date, time).toSecsSinceEpoch());
}

ControlClient::TaskInfo task(const char* name, ControlClient::Status status, int done = 0)
{
    ControlClient::TaskInfo info;
    info.name = name;
    info.status = status;
    info.itemsTotal = 10;
    info.itemsDone = done;
    info.nodesActive = status == ControlClient::InProgress ? 2 : 0;
    info.progress = done * 10.0;
    info.timeElapsed = 65;
    return info;
}

ControlClient::BatchStatus threeTasks()
{
    ControlClient::BatchStatus status;
    status.path = "/projects/harbour/survey.kproj";
    status.status = ControlClient::InProgress;
    status.tasks = {task("AlignCameras", ControlClient::Completed, 10),
        task("BuildModel", ControlClient::InProgress, 4), task("ExportModel", ControlClient::Pending)};
    return status;
}

ControlClient::BatchError errorAt(std::uint32_t time, const char* message)
{
    ControlClient::BatchError error;
    error.time = time;
    error.nodeId = 17;
    error.message = message;
    return error;
}

QString headerOf(const TaskStatusWidget* widget)
{
    if (!widget || !widget->layout() || widget->layout()->count() != 3)
        return QStringLiteral("<no task widget>");
    auto* label = qobject_cast<QLabel*>(widget->layout()->itemAt(0)->widget());
    return label ? label->text() : QStringLiteral("<no header>");
}

QString footerOf(const TaskStatusWidget* widget)
{
    if (!widget || !widget->layout() || widget->layout()->count() != 3)
        return QStringLiteral("<no task widget>");
    auto* label = qobject_cast<QLabel*>(widget->layout()->itemAt(2)->widget());
    return label ? label->text() : QStringLiteral("<no footer>");
}

class BatchDetailsDialogTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        initTaskDisplayNames();
        path = dialog.findChild<QLineEdit*>(QStringLiteral("editPath"));
        list = dialog.findChild<QListWidget*>(QStringLiteral("listJobs"));
        widgetError = dialog.findChild<QWidget*>(QStringLiteral("widgetError"));
        editError = dialog.findChild<QPlainTextEdit*>(QStringLiteral("editError"));
        ASSERT_NE(path, nullptr);
        ASSERT_NE(list, nullptr);
        ASSERT_NE(widgetError, nullptr);
        ASSERT_NE(editError, nullptr);
    }

    TaskStatusWidget* rowWidget(int row) const
    {
        return qobject_cast<TaskStatusWidget*>(list->itemWidget(list->item(row)));
    }

    QString rowHeader(int row) const { return headerOf(rowWidget(row)); }

    BatchDetailsDialog dialog {nullptr};
    QLineEdit* path = nullptr;
    QListWidget* list = nullptr;
    QWidget* widgetError = nullptr;
    QPlainTextEdit* editError = nullptr;
};

} // namespace

TEST_F(BatchDetailsDialogTest, FormHasTheNamedPartsInOrder)
{
    EXPECT_EQ(dialog.objectName(), QStringLiteral("BatchDetailsDialog"));

    auto* verticalLayout = qobject_cast<QVBoxLayout*>(dialog.layout());
    ASSERT_NE(verticalLayout, nullptr);
    EXPECT_EQ(verticalLayout->objectName(), QStringLiteral("verticalLayout"));
    ASSERT_EQ(verticalLayout->count(), 4);

    auto* horizontalLayout = qobject_cast<QHBoxLayout*>(verticalLayout->itemAt(0)->layout());
    ASSERT_NE(horizontalLayout, nullptr);
    EXPECT_EQ(horizontalLayout->objectName(), QStringLiteral("horizontalLayout"));
    ASSERT_EQ(horizontalLayout->count(), 2);
    auto* label = qobject_cast<QLabel*>(horizontalLayout->itemAt(0)->widget());
    ASSERT_NE(label, nullptr);
    EXPECT_EQ(label->objectName(), QStringLiteral("label"));
    EXPECT_EQ(horizontalLayout->itemAt(1)->widget(), path);

    EXPECT_EQ(verticalLayout->itemAt(1)->widget(), list);
    EXPECT_EQ(verticalLayout->itemAt(2)->widget(), widgetError);
    auto* buttonBox = qobject_cast<QDialogButtonBox*>(verticalLayout->itemAt(3)->widget());
    ASSERT_NE(buttonBox, nullptr);
    EXPECT_EQ(buttonBox->objectName(), QStringLiteral("buttonBox"));

    auto* verticalLayout2 = qobject_cast<QVBoxLayout*>(widgetError->layout());
    ASSERT_NE(verticalLayout2, nullptr);
    EXPECT_EQ(verticalLayout2->objectName(), QStringLiteral("verticalLayout_2"));
    EXPECT_EQ(verticalLayout2->contentsMargins(), QMargins(0, 0, 0, 0));
    ASSERT_EQ(verticalLayout2->count(), 2);
    auto* label2 = qobject_cast<QLabel*>(verticalLayout2->itemAt(0)->widget());
    ASSERT_NE(label2, nullptr);
    EXPECT_EQ(label2->objectName(), QStringLiteral("label_2"));
    EXPECT_EQ(verticalLayout2->itemAt(1)->widget(), editError);
}

TEST_F(BatchDetailsDialogTest, TextsAreTheWindowTitleAndBothLabels)
{
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Batch Details"));
    EXPECT_EQ(dialog.findChild<QLabel*>(QStringLiteral("label"))->text(), QStringLiteral("Project:"));
    EXPECT_EQ(dialog.findChild<QLabel*>(QStringLiteral("label_2"))->text(), QStringLiteral("Last error:"));
}

TEST_F(BatchDetailsDialogTest, PathIsReadOnlyAndTheErrorIsLeftEditable)
{
    EXPECT_TRUE(path->isReadOnly());
    EXPECT_FALSE(editError->isReadOnly());
}

TEST_F(BatchDetailsDialogTest, ButtonBoxHasOnlyACentredCloseButton)
{
    auto* buttonBox = dialog.findChild<QDialogButtonBox*>(QStringLiteral("buttonBox"));
    ASSERT_NE(buttonBox, nullptr);
    EXPECT_EQ(buttonBox->orientation(), Qt::Horizontal);
    EXPECT_EQ(buttonBox->standardButtons(), QDialogButtonBox::StandardButtons(QDialogButtonBox::Close));
    EXPECT_TRUE(buttonBox->centerButtons());
}

TEST_F(BatchDetailsDialogTest, StretchWeighsThePathRowTwoAndTheErrorAreaOne)
{
    auto* verticalLayout = qobject_cast<QVBoxLayout*>(dialog.layout());
    ASSERT_NE(verticalLayout, nullptr);
    EXPECT_EQ(verticalLayout->stretch(0), 2);
    EXPECT_EQ(verticalLayout->stretch(1), 0);
    EXPECT_EQ(verticalLayout->stretch(2), 1);
    EXPECT_EQ(verticalLayout->stretch(3), 0);
}

TEST_F(BatchDetailsDialogTest, OpensAt400By334Pixels)
{
    EXPECT_EQ(dialog.size(), QSize(400, 334));
    dialog.show();
    EXPECT_EQ(dialog.size(), QSize(400, 334));
    dialog.hide();
}

TEST_F(BatchDetailsDialogTest, WindowFlagsAreADialogWithOnlyTheCloseButtonHint)
{
    EXPECT_EQ(dialog.windowType(), Qt::Dialog);
    const Qt::WindowFlags flags = dialog.windowFlags();
    EXPECT_TRUE(flags.testFlag(Qt::WindowCloseButtonHint));
    EXPECT_FALSE(flags.testFlag(Qt::WindowMinimizeButtonHint));
    EXPECT_FALSE(flags.testFlag(Qt::WindowMaximizeButtonHint));
    EXPECT_FALSE(flags.testFlag(Qt::WindowContextHelpButtonHint));
    EXPECT_FALSE(flags.testFlag(Qt::CustomizeWindowHint));
    // Qt adds the title and system menu hints it implies; nothing else
    const QDialog reference(nullptr, Qt::WindowCloseButtonHint);
    EXPECT_EQ(flags, reference.windowFlags());
}

TEST(BatchDetailsDialog, MetaObjectHasOneSlotAndNoSignals)
{
    const QMetaObject& meta = BatchDetailsDialog::staticMetaObject;
    ASSERT_EQ(meta.methodCount() - meta.methodOffset(), 1);
    const QMetaMethod slot = meta.method(meta.methodOffset());
    EXPECT_EQ(slot.methodType(), QMetaMethod::Slot);
    EXPECT_EQ(slot.methodSignature(), QByteArray("setBatchStatus(ControlClient::BatchStatus)"));
    EXPECT_EQ(slot.parameterNames(), QList<QByteArray> {QByteArray("status")});
}

TEST_F(BatchDetailsDialogTest, FreshDialogShowsNoPathNoRowsAndNoErrorArea)
{
    EXPECT_TRUE(path->text().isEmpty());
    EXPECT_EQ(list->count(), 0);
    EXPECT_TRUE(widgetError->isHidden());
    EXPECT_TRUE(editError->toPlainText().isEmpty());
}

TEST_F(BatchDetailsDialogTest, StatusFillsPathAndOneRowPerTaskWithDisplayNames)
{
    dialog.setBatchStatus(threeTasks());

    EXPECT_EQ(path->text(), QStringLiteral("/projects/harbour/survey.kproj"));
    ASSERT_EQ(list->count(), 3);
    for (int row = 0; row < 3; ++row) {
        EXPECT_EQ(list->item(row)->type(), int(QListWidgetItem::Type));
        EXPECT_NE(rowWidget(row), nullptr) << row;
    }
    EXPECT_EQ(rowHeader(0), QStringLiteral("Align Photos (10/10 completed, 0/0 nodes active)"));
    EXPECT_EQ(rowHeader(1), QStringLiteral("Build Mesh (4/10 completed, 2/2 nodes active)"));
    EXPECT_EQ(rowHeader(2), QStringLiteral("Export Model (0/10 completed, 0/0 nodes active)"));
}

TEST_F(BatchDetailsDialogTest, PathIsDecodedAsUtf8)
{
    ControlClient::BatchStatus status = threeTasks();
    status.path = "/projekte/m\xc3\xbchle.kproj";
    dialog.setBatchStatus(status);
    EXPECT_EQ(path->text(), QStringLiteral("/projekte/m\u00fchle.kproj"));
}

TEST_F(BatchDetailsDialogTest, TaskUnknownToTheDisplayNameTableShowsItsRawName)
{
    ControlClient::BatchStatus status;
    status.tasks
        = {task("buildmodel", ControlClient::Pending), task("FutureOperation", ControlClient::Pending)};
    dialog.setBatchStatus(status);
    ASSERT_EQ(list->count(), 2);
    EXPECT_EQ(rowHeader(0), QStringLiteral("buildmodel (0/10 completed, 0/0 nodes active)"));
    EXPECT_EQ(rowHeader(1), QStringLiteral("FutureOperation (0/10 completed, 0/0 nodes active)"));
}

TEST_F(BatchDetailsDialogTest, RowSizeHintIsTheTaskWidgetsSizeHint)
{
    dialog.setBatchStatus(threeTasks());
    ASSERT_EQ(list->count(), 3);
    const QSize expected = TaskStatusWidget().sizeHint();
    ASSERT_TRUE(expected.isValid());
    for (int row = 0; row < 3; ++row) {
        const QVariant hint = list->item(row)->data(Qt::SizeHintRole);
        ASSERT_TRUE(hint.isValid()) << row;
        EXPECT_EQ(hint.toSize(), expected) << row;
    }
}

TEST_F(BatchDetailsDialogTest, RowsAreReusedByPosition)
{
    dialog.setBatchStatus(threeTasks());
    ASSERT_EQ(list->count(), 3);
    QListWidgetItem* items[3] = {list->item(0), list->item(1), list->item(2)};
    TaskStatusWidget* widgets[3] = {rowWidget(0), rowWidget(1), rowWidget(2)};

    ControlClient::BatchStatus next = threeTasks();
    next.tasks[1].itemsDone = 7;
    next.tasks[2] = task("BuildTexture", ControlClient::InProgress, 1);
    dialog.setBatchStatus(next);

    ASSERT_EQ(list->count(), 3);
    for (int row = 0; row < 3; ++row) {
        EXPECT_EQ(list->item(row), items[row]) << row;
        EXPECT_EQ(rowWidget(row), widgets[row]) << row;
    }
    EXPECT_EQ(rowHeader(1), QStringLiteral("Build Mesh (7/10 completed, 2/2 nodes active)"));
    EXPECT_EQ(rowHeader(2), QStringLiteral("Build Texture (1/10 completed, 2/2 nodes active)"));
}

TEST_F(BatchDetailsDialogTest, FewerTasksLeaveTheSurplusRowsUnchanged)
{
    dialog.setBatchStatus(threeTasks());
    const QString thirdBefore = rowHeader(2);
    TaskStatusWidget* third = rowWidget(2);

    ControlClient::BatchStatus next = threeTasks();
    next.tasks.pop_back();
    next.tasks[0] = task("BuildDenseCloud", ControlClient::InProgress, 5);
    dialog.setBatchStatus(next);

    ASSERT_EQ(list->count(), 3);
    EXPECT_EQ(rowHeader(0), QStringLiteral("Build Dense Cloud (5/10 completed, 2/2 nodes active)"));
    EXPECT_EQ(rowWidget(2), third);
    EXPECT_EQ(rowHeader(2), thirdBefore);
}

TEST_F(BatchDetailsDialogTest, MoreTasksAppendRowsAfterTheExistingOnes)
{
    ControlClient::BatchStatus first = threeTasks();
    first.tasks.resize(1);
    dialog.setBatchStatus(first);
    ASSERT_EQ(list->count(), 1);
    QListWidgetItem* firstItem = list->item(0);

    dialog.setBatchStatus(threeTasks());
    ASSERT_EQ(list->count(), 3);
    EXPECT_EQ(list->item(0), firstItem);
    EXPECT_EQ(rowHeader(2), QStringLiteral("Export Model (0/10 completed, 0/0 nodes active)"));
}

TEST_F(BatchDetailsDialogTest, BatchWithoutTasksLeavesTheListAsItWas)
{
    dialog.setBatchStatus(threeTasks());
    const QString second = rowHeader(1);

    ControlClient::BatchStatus empty;
    empty.path = "/projects/other.kproj";
    dialog.setBatchStatus(empty);

    EXPECT_EQ(path->text(), QStringLiteral("/projects/other.kproj"));
    ASSERT_EQ(list->count(), 3);
    EXPECT_EQ(rowHeader(1), second);
}

TEST_F(BatchDetailsDialogTest, NoErrorLeavesTheErrorAreaHiddenOnAFreshDialog)
{
    ControlClient::BatchStatus status = threeTasks();
    status.lastError.message = "a message without a time is not an error";
    dialog.setBatchStatus(status);
    EXPECT_TRUE(widgetError->isHidden());
    EXPECT_TRUE(editError->toPlainText().isEmpty());
}

TEST_F(BatchDetailsDialogTest, NoErrorLeavesAnEarlierErrorLineInPlace)
{
    ControlClient::BatchStatus status = threeTasks();
    status.lastError = errorAt(localTime(QDate(2024, 2, 1), QTime(14, 3, 9)), "disk full");
    dialog.setBatchStatus(status);
    ASSERT_FALSE(widgetError->isHidden());

    status.lastError = ControlClient::BatchError();
    dialog.setBatchStatus(status);
    EXPECT_FALSE(widgetError->isHidden());
    EXPECT_EQ(editError->toPlainText(), QStringLiteral("[01.02.2024 14:03:09] disk full"));
}

TEST_F(BatchDetailsDialogTest, ErrorAreaIsNeverHiddenAgainOnceShown)
{
    dialog.show();
    ControlClient::BatchStatus status = threeTasks();
    status.lastError = errorAt(localTime(QDate(2024, 2, 1), QTime(14, 3, 9)), "disk full");
    dialog.setBatchStatus(status);
    EXPECT_TRUE(widgetError->isVisible());

    ControlClient::BatchStatus quiet = threeTasks();
    for (int i = 0; i < 3; ++i) {
        dialog.setBatchStatus(quiet);
        EXPECT_TRUE(widgetError->isVisible());
    }
    dialog.hide();
}

TEST_F(BatchDetailsDialogTest, ErrorStampedTodayShowsTheShortPattern)
{
    ControlClient::BatchStatus status = threeTasks();
    status.lastError = errorAt(localTime(QDate::currentDate(), QTime(14, 3, 9)), "node lost");
    dialog.setBatchStatus(status);
    EXPECT_EQ(editError->toPlainText(), QStringLiteral("[14:03:09] node lost"));
    EXPECT_FALSE(widgetError->isHidden());
}

TEST_F(BatchDetailsDialogTest, ErrorFromAnotherDayShowsTheLongPattern)
{
    ControlClient::BatchStatus status = threeTasks();
    status.lastError = errorAt(localTime(QDate(2024, 2, 1), QTime(14, 3, 9)), "node lost");
    dialog.setBatchStatus(status);
    EXPECT_EQ(editError->toPlainText(), QStringLiteral("[01.02.2024 14:03:09] node lost"));

    const QDate yesterday = QDate::currentDate().addDays(-1);
    status.lastError = errorAt(localTime(yesterday, QTime(14, 3, 9)), "node lost");
    dialog.setBatchStatus(status);
    EXPECT_EQ(editError->toPlainText(),
        QStringLiteral("[%1 14:03:09] node lost").arg(yesterday.toString(QStringLiteral("dd.MM.yyyy"))));

    const QDate tomorrow = QDate::currentDate().addDays(1);
    status.lastError = errorAt(localTime(tomorrow, QTime(14, 3, 9)), "node lost");
    dialog.setBatchStatus(status);
    EXPECT_EQ(editError->toPlainText(),
        QStringLiteral("[%1 14:03:09] node lost").arg(tomorrow.toString(QStringLiteral("dd.MM.yyyy"))));
}

TEST_F(BatchDetailsDialogTest, ErrorLineOmitsTheNodeAndDecodesUtf8)
{
    ControlClient::BatchStatus status = threeTasks();
    status.lastError
        = errorAt(localTime(QDate(2024, 2, 1), QTime(9, 0, 0)), "Speicher f\xc3\xbcr Knoten voll");
    status.lastError.nodeId = 4242;
    dialog.setBatchStatus(status);
    EXPECT_EQ(
        editError->toPlainText(), QStringLiteral("[01.02.2024 09:00:00] Speicher f\u00fcr Knoten voll"));
    EXPECT_FALSE(editError->toPlainText().contains(QStringLiteral("4242")));
}

TEST_F(BatchDetailsDialogTest, SameErrorTwiceLeavesTheErrorTextUntouched)
{
    ControlClient::BatchStatus status = threeTasks();
    status.lastError = errorAt(localTime(QDate(2024, 2, 1), QTime(14, 3, 9)), "disk full on node 3");
    dialog.setBatchStatus(status);

    QSignalSpy changes(editError, &QPlainTextEdit::textChanged);
    QTextCursor cursor = editError->textCursor();
    cursor.setPosition(3);
    cursor.setPosition(9, QTextCursor::KeepAnchor);
    editError->setTextCursor(cursor);
    ASSERT_EQ(editError->textCursor().selectedText(), QStringLiteral(".02.20"));

    dialog.setBatchStatus(status);
    dialog.setBatchStatus(status);

    EXPECT_EQ(changes.count(), 0);
    EXPECT_EQ(editError->textCursor().selectedText(), QStringLiteral(".02.20"));
    EXPECT_EQ(editError->textCursor().anchor(), 3);
    EXPECT_EQ(editError->textCursor().position(), 9);
}

TEST_F(BatchDetailsDialogTest, ChangedErrorReplacesTheText)
{
    ControlClient::BatchStatus status = threeTasks();
    status.lastError = errorAt(localTime(QDate(2024, 2, 1), QTime(14, 3, 9)), "disk full");
    dialog.setBatchStatus(status);

    QSignalSpy changes(editError, &QPlainTextEdit::textChanged);
    status.lastError = errorAt(localTime(QDate(2024, 2, 1), QTime(14, 3, 10)), "disk full");
    dialog.setBatchStatus(status);
    EXPECT_GE(changes.count(), 1);
    EXPECT_EQ(editError->toPlainText(), QStringLiteral("[01.02.2024 14:03:10] disk full"));
}

TEST_F(BatchDetailsDialogTest, UserEditedErrorTextIsReplacedByTheNextError)
{
    ControlClient::BatchStatus status = threeTasks();
    status.lastError = errorAt(localTime(QDate(2024, 2, 1), QTime(14, 3, 9)), "disk full");
    dialog.setBatchStatus(status);
    editError->appendPlainText(QStringLiteral("note"));

    dialog.setBatchStatus(status);
    EXPECT_EQ(editError->toPlainText(), QStringLiteral("[01.02.2024 14:03:09] disk full"));
}

TEST_F(BatchDetailsDialogTest, StatusArrivesByQueuedCall)
{
    qRegisterMetaType<ControlClient::BatchStatus>("ControlClient::BatchStatus");
    ASSERT_TRUE(QMetaObject::invokeMethod(
        &dialog, "setBatchStatus", Qt::QueuedConnection, Q_ARG(ControlClient::BatchStatus, threeTasks())));
    EXPECT_EQ(list->count(), 0);
    QCoreApplication::sendPostedEvents(&dialog, QEvent::MetaCall);
    EXPECT_EQ(list->count(), 3);
}

TEST_F(BatchDetailsDialogTest, CloseButtonRejects)
{
    QSignalSpy rejected(&dialog, &QDialog::rejected);
    dialog.show();
    auto* buttonBox = dialog.findChild<QDialogButtonBox*>(QStringLiteral("buttonBox"));
    ASSERT_NE(buttonBox, nullptr);
    QPushButton* close = buttonBox->button(QDialogButtonBox::Close);
    ASSERT_NE(close, nullptr);
    close->click();
    EXPECT_EQ(rejected.count(), 1);
    EXPECT_EQ(dialog.result(), int(QDialog::Rejected));
    EXPECT_FALSE(dialog.isVisible());
}

TEST_F(BatchDetailsDialogTest, EscapeRejects)
{
    QSignalSpy rejected(&dialog, &QDialog::rejected);
    dialog.show();
    QTest::keyClick(&dialog, Qt::Key_Escape);
    EXPECT_EQ(rejected.count(), 1);
    EXPECT_FALSE(dialog.isVisible());
}

TEST(BatchDetailsDialogGerman, TextsFollowTheInstalledTranslation)
{
    QTranslator german;
    ASSERT_TRUE(german.load(QCoreApplication::applicationDirPath() + QStringLiteral("/lang/monitor_de.qm")));
    QCoreApplication::installTranslator(&german);
    initTaskDisplayNames();

    BatchDetailsDialog dialog(nullptr);
    ControlClient::BatchStatus status;
    status.tasks
        = {task("BuildModel", ControlClient::Pending), task("AlignCameras", ControlClient::Completed)};
    status.tasks[1].nodesFailed = 2;
    dialog.setBatchStatus(status);
    const QString title = dialog.windowTitle();
    const QString project = dialog.findChild<QLabel*>(QStringLiteral("label"))->text();
    const QString lastError = dialog.findChild<QLabel*>(QStringLiteral("label_2"))->text();
    auto* list = dialog.findChild<QListWidget*>(QStringLiteral("listJobs"));
    const QString pendingFooter = footerOf(qobject_cast<TaskStatusWidget*>(list->itemWidget(list->item(0))));
    const QString completedHeader
        = headerOf(qobject_cast<TaskStatusWidget*>(list->itemWidget(list->item(1))));
    const QString completedFooter
        = footerOf(qobject_cast<TaskStatusWidget*>(list->itemWidget(list->item(1))));

    QCoreApplication::removeTranslator(&german);
    initTaskDisplayNames();

    EXPECT_EQ(title, QStringLiteral("Stapeldetails"));
    EXPECT_EQ(project, QStringLiteral("Projekt:"));
    EXPECT_EQ(lastError, QStringLiteral("Letzter Fehler:"));
    EXPECT_EQ(pendingFooter, QStringLiteral("Wartet..."));
    EXPECT_TRUE(completedHeader.endsWith(QStringLiteral(" (0/10 abgeschlossen, 0/0 Knoten aktiv, 2 Fehler)")))
        << completedHeader.toStdString();
    EXPECT_EQ(completedFooter, QStringLiteral("00:01:05 vergangen"));
}
