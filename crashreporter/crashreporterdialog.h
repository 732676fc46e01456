#pragma once

#include <QDialog>
#include <QUrl>

#include "crashreport.h"

class QCheckBox;
class QLabel;
class QPlainTextEdit;
class QPushButton;
class ReportSubmitter;

// The window the user sees after a crash: what happened, the details on
// request, a comment, "Send report", and "Quit" or "Restart <product>".
// With "Send report" checked either button sends first; a failed send
// says so and keeps the report pending, and the next press just closes.
class CrashReporterDialog final : public QDialog
{
    Q_OBJECT

public:
    CrashReporterDialog(
        const CrashReport& report, const QUrl& url, const QString& dataDirectory, QWidget* parent = nullptr);
    ~CrashReporterDialog() override;

    // True when the user asked for the program to be started again.
    bool restartRequested() const { return m_restart; }

private:
    Q_DISABLE_COPY_MOVE(CrashReporterDialog)

    void onFinish(bool restart);
    void onSubmitted(bool succeeded, const QString& crashIdOrError);
    void toggleDetails();

    CrashReport m_report;
    QUrl m_url;
    QString m_dataDirectory;
    QLabel* m_message;
    QPushButton* m_detailsButton;
    QPlainTextEdit* m_details;
    QPlainTextEdit* m_comment;
    QCheckBox* m_send;
    QLabel* m_status;
    QPushButton* m_quit;
    QPushButton* m_restartButton;
    ReportSubmitter* m_submitter;
    bool m_restart = false;
};
