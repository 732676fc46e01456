#include "crashreporterdialog.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "reportsubmitter.h"

CrashReporterDialog::CrashReporterDialog(
    const CrashReport& report, const QUrl& url, const QString& dataDirectory, QWidget* parent)
    : QDialog(parent)
    , m_report(report)
    , m_url(url)
    , m_dataDirectory(dataDirectory)
    , m_message(new QLabel(this))
    , m_detailsButton(new QPushButton(tr("Details..."), this))
    , m_details(new QPlainTextEdit(this))
    , m_comment(new QPlainTextEdit(this))
    , m_send(new QCheckBox(tr("Send report"), this))
    , m_status(new QLabel(this))
    , m_quit(new QPushButton(tr("Quit"), this))
    , m_restartButton(new QPushButton(this))
    , m_submitter(new ReportSubmitter(this))
{
    QString product = report.annotation(QStringLiteral("ProductName"));
    if (product.isEmpty())
        product = QStringLiteral("Monitor");
    const QString vendor = report.annotation(QStringLiteral("Vendor"));
    const QString fullName = vendor.isEmpty() ? product : vendor + QLatin1Char(' ') + product;
    setWindowTitle(tr("%1 Crash Reporter").arg(fullName));

    m_message->setObjectName(QStringLiteral("labelMessage"));
    m_message->setWordWrap(true);
    m_message->setText(tr("%1 closed unexpectedly. A report of the crash can be sent so that the problem "
                          "can be found and fixed.")
                           .arg(fullName));
    m_detailsButton->setObjectName(QStringLiteral("buttonDetails"));
    m_details->setObjectName(QStringLiteral("editDetails"));
    m_details->setReadOnly(true);
    QString details;
    for (const auto& [key, value] : report.annotations())
        details += key + QLatin1String(": ") + value + QLatin1Char('\n');
    m_details->setPlainText(details);
    m_details->setVisible(false);
    m_comment->setObjectName(QStringLiteral("editComment"));
    m_comment->setPlaceholderText(tr("Add a comment (what were you doing when it happened?)"));
    m_send->setObjectName(QStringLiteral("checkSend"));
    m_send->setChecked(true);
    m_status->setObjectName(QStringLiteral("labelStatus"));
    m_status->setWordWrap(true);
    m_quit->setObjectName(QStringLiteral("buttonQuit"));
    m_restartButton->setObjectName(QStringLiteral("buttonRestart"));
    m_restartButton->setText(tr("Restart %1").arg(product));
    m_restartButton->setDefault(true);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_send);
    buttons->addStretch();
    buttons->addWidget(m_quit);
    buttons->addWidget(m_restartButton);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_message);
    layout->addWidget(m_detailsButton, 0, Qt::AlignLeft);
    layout->addWidget(m_details);
    layout->addWidget(m_comment);
    layout->addWidget(m_status);
    layout->addLayout(buttons);

    connect(m_detailsButton, &QPushButton::clicked, this, &CrashReporterDialog::toggleDetails);
    connect(m_quit, &QPushButton::clicked, this, [this] { onFinish(false); });
    connect(m_restartButton, &QPushButton::clicked, this, [this] { onFinish(true); });
    connect(m_submitter, &ReportSubmitter::finished, this, &CrashReporterDialog::onSubmitted);
}

CrashReporterDialog::~CrashReporterDialog() = default;

void CrashReporterDialog::toggleDetails()
{
    m_details->setVisible(!m_details->isVisible());
}

void CrashReporterDialog::onFinish(bool restart)
{
    m_restart = restart;
    if (!m_send->isChecked()) {
        accept();
        return;
    }
    m_quit->setEnabled(false);
    m_restartButton->setEnabled(false);
    m_send->setEnabled(false);
    m_status->setText(tr("Sending the report..."));
    m_submitter->submit(m_report, m_comment->toPlainText(), m_url, m_dataDirectory);
}

void CrashReporterDialog::onSubmitted(bool succeeded, const QString& crashIdOrError)
{
    if (succeeded) {
        m_status->setText(tr("The report was sent (%1).").arg(crashIdOrError));
        accept();
        return;
    }
    m_status->setText(tr("The report could not be sent: %1. It is kept in %2/pending and can be sent later.")
                          .arg(crashIdOrError, m_dataDirectory));
    m_send->setChecked(false);
    m_quit->setEnabled(true);
    m_restartButton->setEnabled(true);
}
