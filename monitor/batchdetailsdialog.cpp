#include "batchdetailsdialog.h"

#include <QDate>
#include <QListWidgetItem>

#include "celltext.h"
#include "taskdisplaynames.h"
#include "taskstatuswidget.h"
#include "threadhandover.h"

BatchDetailsDialog::BatchDetailsDialog(QWidget* parent)
    : QDialog(parent, Qt::WindowCloseButtonHint)
{
    ui.setupUi(this);
    ui.widgetError->setVisible(false);
}

BatchDetailsDialog::~BatchDetailsDialog() = default;

void BatchDetailsDialog::setBatchStatus(const ControlClient::BatchStatus& status)
{
    takeHandOver();
    ui.editPath->setText(QString::fromStdString(status.path));

    for (std::size_t i = 0; i < status.tasks.size(); ++i) {
        const ControlClient::TaskInfo& task = status.tasks[i];
        const int row = int(i);
        TaskStatusWidget* widget = nullptr;
        if (ui.listJobs->count() > row) {
            widget = qobject_cast<TaskStatusWidget*>(ui.listJobs->itemWidget(ui.listJobs->item(row)));
        } else {
            widget = new TaskStatusWidget;
            auto* item = new QListWidgetItem;
            item->setData(Qt::SizeHintRole, widget->sizeHint());
            ui.listJobs->insertItem(ui.listJobs->count(), item);
            ui.listJobs->setItemWidget(item, widget);
        }
        if (widget)
            widget->setTask(taskDisplayName(task.name), task);
    }

    // no error in this status: keep whatever is shown
    if (status.lastError.time == 0)
        return;

    const QString line = batchErrorLine(status.lastError, QDate::currentDate());
    // an unchanged line keeps the user's selection and scroll position
    if (ui.editError->document()->toPlainText() != line)
        ui.editError->setPlainText(line);
    ui.widgetError->setVisible(true);
}
