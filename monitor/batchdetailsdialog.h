#pragma once

#include <QDialog>

class QListWidgetItem;

#include "controlclient.h"
#include "metatypes.h"
#include "ui_batchdetailsdialog.h"

// "Batch Details": the project path, one TaskStatusWidget row per task and
// the last error of the batch the monitor follows while this dialog is open.
// Statuses arrive only through setBatchStatus, usually queued from the
// worker thread. Rows are matched to tasks by position and never removed;
// the error area stays hidden until the first error and then stays shown.
class BatchDetailsDialog final : public QDialog
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(BatchDetailsDialog)

public:
    explicit BatchDetailsDialog(QWidget* parent);
    ~BatchDetailsDialog() override;

public slots:
    void setBatchStatus(const ControlClient::BatchStatus& status);

private:
    void nameRow(QListWidgetItem* item, const QString& text);

    Ui::BatchDetailsDialog ui;
};
