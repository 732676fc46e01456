#include "batchdetailsdialog.h"

#include <QAccessible>
#include <QDate>
#include <QListWidgetItem>

#include "accessiblecell.h"
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

void BatchDetailsDialog::nameRow(QListWidgetItem* item, const QString& text)
{
    // the row widget is not seen by screen readers; the row's name says what it shows
    if (item->data(Qt::AccessibleTextRole).toString() == text)
        return;
    item->setData(Qt::AccessibleTextRole, text);
    if (QAccessibleInterface* cell = accessibleCell(ui.listJobs, ui.listJobs->row(item), 0)) {
        QAccessibleEvent changed(cell, QAccessible::NameChanged);
        QAccessible::updateAccessibility(&changed);
    }
}

void BatchDetailsDialog::setBatchStatus(const ControlClient::BatchStatus& status)
{
    takeHandOver();
    // set again only when it changes: a selection in it survives the refresh,
    // and screen readers do not read it out every second
    const QString path = QString::fromStdString(status.path);
    if (ui.editPath->text() != path)
        ui.editPath->setText(path);

    for (std::size_t i = 0; i < status.tasks.size(); ++i) {
        const ControlClient::TaskInfo& task = status.tasks[i];
        const int row = int(i);
        TaskStatusWidget* widget = nullptr;
        QListWidgetItem* item = nullptr;
        if (ui.listJobs->count() > row) {
            item = ui.listJobs->item(row);
            widget = qobject_cast<TaskStatusWidget*>(ui.listJobs->itemWidget(item));
        } else {
            widget = new TaskStatusWidget;
            item = new QListWidgetItem;
            item->setData(Qt::SizeHintRole, widget->sizeHint());
            ui.listJobs->insertItem(ui.listJobs->count(), item);
            ui.listJobs->setItemWidget(item, widget);
        }
        const QString title = taskDisplayName(task.name);
        if (widget)
            widget->setTask(title, task);
        nameRow(item, taskRowText(title, task));
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
