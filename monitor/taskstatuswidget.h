#pragma once

#include <QWidget>

#include "controlclient.h"

class QLabel;
class QProgressBar;

// The progress of one task in the details dialog's job list: a header line
// with the title and counts, a thin bar while the task works, and a footer
// with elapsed and remaining time. Each setTask rewrites all three parts.
class TaskStatusWidget final : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(TaskStatusWidget)

public:
    explicit TaskStatusWidget(QWidget* parent = nullptr);
    ~TaskStatusWidget() override;

    // title is the task's display name; empty shows the method name itself
    void setTask(const QString& title, const ControlClient::TaskInfo& task);

    static QString formatDuration(double seconds);

private:
    // placeholders "Header" and "Footer" until the first setTask; owned
    // through the widget's children
    QLabel* header;
    QLabel* footer;
    QProgressBar* progress;
};
