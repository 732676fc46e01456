#include <QCheckBox>
#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "crashreport.h"
#include "crashreporterdialog.h"
#include "reportfiles.h"
#include "testcollector.h"

namespace {

class CrashReporterDialogTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_collector.listen());
        QDir().mkpath(m_data.path() + "/pending");
        m_report = std::make_unique<CrashReport>(ReportFiles::make(m_data.path() + "/pending", "d1a2"));
        m_report->readAnnotations();
        m_dialog = std::make_unique<CrashReporterDialog>(*m_report, m_collector.url(), m_data.path());
        m_dialog->show();
    }

    template <typename T>
    T* child(const char* name) const
    {
        T* widget = m_dialog->findChild<T*>(name);
        EXPECT_NE(widget, nullptr) << name;
        return widget;
    }

    QTemporaryDir m_data;
    TestCollector m_collector;
    std::unique_ptr<CrashReport> m_report;
    std::unique_ptr<CrashReporterDialog> m_dialog;
};

} // namespace

TEST_F(CrashReporterDialogTest, SaysWhatHappenedAndOffersToSendByDefault)
{
    EXPECT_EQ(child<QLabel>("labelMessage")->text(),
        "Korvane Monitor closed unexpectedly. A report of the crash can be sent so that the problem can be "
        "found and fixed.");
    EXPECT_TRUE(child<QCheckBox>("checkSend")->isChecked());
    EXPECT_EQ(child<QCheckBox>("checkSend")->text(), "Send report");
    EXPECT_EQ(child<QPushButton>("buttonQuit")->text(), "Quit");
    EXPECT_EQ(child<QPushButton>("buttonRestart")->text(), "Restart Monitor");
    EXPECT_TRUE(child<QPlainTextEdit>("editComment")->isVisible());
}

TEST_F(CrashReporterDialogTest, DetailsShowTheAnnotationsOnRequest)
{
    auto* details = child<QPlainTextEdit>("editDetails");
    EXPECT_FALSE(details->isVisible());
    child<QPushButton>("buttonDetails")->click();
    EXPECT_TRUE(details->isVisible());
    EXPECT_TRUE(details->toPlainText().contains("ProductName: Monitor\n"));
    EXPECT_TRUE(details->toPlainText().contains("Version: 0.1.0.2834\n"));
    child<QPushButton>("buttonDetails")->click();
    EXPECT_FALSE(details->isVisible());
}

TEST_F(CrashReporterDialogTest, QuitSendsTheReportWithTheComment)
{
    m_collector.setReply(200, "CrashID=bp-90\n");
    child<QPlainTextEdit>("editComment")->setPlainText("Clicked Connect twice.");
    QSignalSpy finished(m_dialog.get(), &QDialog::finished);
    child<QPushButton>("buttonQuit")->click();
    ASSERT_TRUE(finished.wait(20000));
    EXPECT_EQ(m_dialog->result(), QDialog::Accepted);
    EXPECT_FALSE(m_dialog->restartRequested());
    ASSERT_EQ(m_collector.requests().size(), 1);
    EXPECT_EQ(m_collector.requests().first().fields.value("Comments"), "Clicked Connect twice.");
    EXPECT_TRUE(QFileInfo::exists(m_data.path() + "/submitted/bp-90.txt"));
}

TEST_F(CrashReporterDialogTest, RestartIsRemembered)
{
    child<QCheckBox>("checkSend")->setChecked(false);
    child<QPushButton>("buttonRestart")->click();
    EXPECT_EQ(m_dialog->result(), QDialog::Accepted);
    EXPECT_TRUE(m_dialog->restartRequested());
    EXPECT_TRUE(m_collector.requests().isEmpty());
    EXPECT_TRUE(QFileInfo::exists(m_data.path() + "/pending/d1a2.dmp"));
}

TEST_F(CrashReporterDialogTest, FailureIsShownAndTheReportStaysPending)
{
    m_collector.setReply(500, "no");
    auto* status = child<QLabel>("labelStatus");
    child<QPushButton>("buttonQuit")->click();
    ASSERT_TRUE(m_collector.waitForRequests(1));
    QDeadlineTimer deadline(20000);
    while (!status->text().contains("could not be sent") && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 50);
    EXPECT_TRUE(status->text().startsWith("The report could not be sent: ")) << status->text().toStdString();
    EXPECT_TRUE(
        status->text().endsWith("It is kept in " + m_data.path() + "/pending and can be sent later."));
    EXPECT_TRUE(m_dialog->isVisible());
    EXPECT_FALSE(child<QCheckBox>("checkSend")->isChecked());
    EXPECT_TRUE(QFileInfo::exists(m_data.path() + "/pending/d1a2.dmp"));

    // The next press just closes.
    child<QPushButton>("buttonQuit")->click();
    EXPECT_FALSE(m_dialog->isVisible());
    EXPECT_EQ(m_collector.requests().size(), 1);
}
