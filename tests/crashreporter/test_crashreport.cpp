#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "crashreport.h"
#include "reportfiles.h"

TEST(CrashReportAnnotations, ExtraLinesBecomeKeyValuePairsInFileOrder)
{
    const auto annotations = CrashReport::parseAnnotations("B=2\nA=x=y\nEmpty=\n");
    ASSERT_EQ(annotations.size(), 3);
    EXPECT_EQ(annotations[0], qMakePair(QString("B"), QString("2")));
    EXPECT_EQ(annotations[1], qMakePair(QString("A"), QString("x=y")));
    EXPECT_EQ(annotations[2], qMakePair(QString("Empty"), QString()));
}

TEST(CrashReportAnnotations, ReadsTheExtraBesideTheDump)
{
    QTemporaryDir tmp;
    CrashReport report(ReportFiles::make(tmp.path(), "abc"));
    report.readAnnotations();
    EXPECT_EQ(report.minidumpId(), "abc");
    EXPECT_EQ(report.extraPath(), tmp.path() + "/abc.extra");
    EXPECT_EQ(report.annotation("ServerURL"), "https://crash-reports.korvane.com/submit");
    EXPECT_EQ(report.annotation("Version"), "0.1.0.2834");
    EXPECT_EQ(report.annotations().size(), 6);
}

TEST(CrashReportAnnotations, DoubleSlashOfTheCrashedProgramIsHarmless)
{
    QTemporaryDir tmp;
    ReportFiles::make(tmp.path(), "abc");
    CrashReport report(tmp.path() + "//abc.dmp");
    report.readAnnotations();
    EXPECT_EQ(report.dumpPath(), tmp.path() + "/abc.dmp");
    EXPECT_EQ(report.annotation("Vendor"), "Korvane");
}

TEST(CrashReportPending, BothFilesMoveIntoPending)
{
    QTemporaryDir tmp;
    QTemporaryDir data;
    CrashReport report(ReportFiles::make(tmp.path(), "abc"));
    QString error;
    ASSERT_TRUE(report.moveToPending(data.path(), &error)) << error.toStdString();
    EXPECT_EQ(report.dumpPath(), data.path() + "/pending/abc.dmp");
    EXPECT_EQ(ReportFiles::read(data.path() + "/pending/abc.dmp"), ReportFiles::DumpBytes);
    EXPECT_EQ(ReportFiles::read(data.path() + "/pending/abc.extra"), ReportFiles::ExtraText);
    EXPECT_FALSE(QFileInfo::exists(tmp.path() + "/abc.dmp"));
    EXPECT_FALSE(QFileInfo::exists(tmp.path() + "/abc.extra"));
}

TEST(CrashReportPending, DumpWithoutExtraMovesAlone)
{
    QTemporaryDir tmp;
    QTemporaryDir data;
    CrashReport report(ReportFiles::make(tmp.path(), "bare", QByteArray()));
    report.readAnnotations();
    EXPECT_TRUE(report.annotations().isEmpty());
    QString error;
    ASSERT_TRUE(report.moveToPending(data.path(), &error));
    EXPECT_TRUE(QFileInfo::exists(data.path() + "/pending/bare.dmp"));
    EXPECT_FALSE(QFileInfo::exists(data.path() + "/pending/bare.extra"));
}

TEST(CrashReportPending, ReportAlreadyPendingStaysWhereItIs)
{
    QTemporaryDir data;
    QDir().mkpath(data.path() + "/pending");
    CrashReport report(ReportFiles::make(data.path() + "/pending", "again"));
    QString error;
    ASSERT_TRUE(report.moveToPending(data.path(), &error));
    EXPECT_EQ(report.dumpPath(), data.path() + "/pending/again.dmp");
    EXPECT_EQ(ReportFiles::read(report.dumpPath()), ReportFiles::DumpBytes);
}

TEST(CrashReportPending, DataDirectoryComesFromTheEnvironmentFirst)
{
    QTemporaryDir tmp;
    CrashReport report(ReportFiles::make(tmp.path(), "abc"));
    report.readAnnotations();
    qputenv("MOZ_CRASHREPORTER_DATA_DIRECTORY", "/somewhere/Crash Reports");
    EXPECT_EQ(report.dataDirectory(), "/somewhere/Crash Reports");
    qunsetenv("MOZ_CRASHREPORTER_DATA_DIRECTORY");
    EXPECT_EQ(report.dataDirectory(), QDir::homePath() + "/.korvane/monitor/Crash Reports");
}
