#include "taskstatuswidget.h"

#include <QLabel>
#include <QProgressBar>
#include <QVBoxLayout>

#include "celltext.h"

TaskStatusWidget::TaskStatusWidget(QWidget* parent)
    : QWidget(parent)
    , header(new QLabel(QStringLiteral("Header")))
    , footer(new QLabel(QStringLiteral("Footer")))
    , progress(new QProgressBar)
{
    progress->setRange(0, 100);
    progress->setFixedHeight(12);

    auto* layout = new QVBoxLayout;
    layout->addWidget(header);
    layout->addWidget(progress);
    layout->addWidget(footer);
    layout->setContentsMargins(6, 6, 6, 6);
    layout->setSpacing(6);
    setLayout(layout);
}

TaskStatusWidget::~TaskStatusWidget() = default;

void TaskStatusWidget::setTask(const QString& title, const ControlClient::TaskInfo& task)
{
    header->setText(taskHeader(title, task));
    progress->setValue(taskProgressValue(task));
    progress->setVisible(taskShowsBar(task));
    footer->setText(taskFooter(task));
}

QString TaskStatusWidget::formatDuration(double seconds)
{
    return ::formatDuration(seconds);
}
