#include "celltext.h"

#include <cstdio>
#include <ctime>

#include <QCoreApplication>

#include "taskdisplaynames.h"

namespace {

QString statusWord(int status, bool withReady)
{
    switch (status) {
    case ControlClient::Pending:
        return QStringLiteral("Pending");
    case ControlClient::InProgress:
        return QStringLiteral("Working");
    case ControlClient::Completed:
        return QStringLiteral("Completed");
    case ControlClient::Paused:
        return QStringLiteral("Paused");
    case ControlClient::Aborted:
        return QStringLiteral("Aborted");
    case ControlClient::Ready:
        return withReady ? QStringLiteral("Ready") : QString();
    default:
        return QString();
    }
}

QString oneDecimal(double value)
{
    return QString::number(value, 'f', 1);
}

} // namespace

QString formatDuration(double seconds)
{
    // truncation toward zero; values beyond 32 bits (or NaN) are pinned to the
    // nearest end instead of being undefined
    std::int32_t total = 0;
    if (seconds >= 2147483647.0)
        total = 2147483647;
    else if (seconds <= -2147483648.0)
        total = -2147483647 - 1;
    else if (seconds == seconds)
        total = static_cast<std::int32_t>(seconds);
    const std::int32_t hours = total / 3600;
    const std::int32_t minutes = (total % 3600) / 60;
    const std::int32_t rest = total - hours * 3600 - minutes * 60;
    // snprintf's %02d pads like a stream with width 2 and fill '0': a negative
    // field of two characters or more is left as it is
    char text[48];
    std::snprintf(text, sizeof text, "%02d:%02d:%02d", hours, minutes, rest);
    return QString::fromUtf8(text);
}

QString batchStatusWord(int status)
{
    return statusWord(status, false);
}

QString nodeStatusWord(int status)
{
    return statusWord(status, true);
}

QString priorityWord(int priority)
{
    switch (priority) {
    case 2:
        return QCoreApplication::translate("Monitor", "Highest");
    case 1:
        return QCoreApplication::translate("Monitor", "High");
    case 0:
        return QCoreApplication::translate("Monitor", "Normal");
    case -1:
        return QCoreApplication::translate("Monitor", "Low");
    case -2:
        return QCoreApplication::translate("Monitor", "Lowest");
    default:
        return QString::number(priority);
    }
}

namespace {

// Local calendar fields of a time stamp. The trees format ten thousand of
// these a second; localtime_r and a fixed pattern cost a fraction of a
// QDateTime with a parsed format string, and give the same text.
struct LocalTime
{
    int year, month, day, hour, minute, second;
};

LocalTime localTime(std::uint32_t time)
{
    const std::time_t t = time;
    std::tm fields {};
    localtime_r(&t, &fields);
    return {fields.tm_year + 1900, fields.tm_mon + 1, fields.tm_mday, fields.tm_hour, fields.tm_min,
        fields.tm_sec};
}

} // namespace

QString errorStamp(std::uint32_t time, const QDate& today)
{
    const LocalTime local = localTime(time);
    char text[48];
    if (local.year == today.year() && local.month == today.month() && local.day == today.day())
        std::snprintf(text, sizeof text, "[%02d:%02d:%02d]", local.hour, local.minute, local.second);
    else
        std::snprintf(text, sizeof text, "[%02d.%02d.%04d %02d:%02d:%02d]", local.day, local.month,
            local.year, local.hour, local.minute, local.second);
    return QString::fromLatin1(text);
}

QString startedText(std::uint32_t time)
{
    const LocalTime local = localTime(time);
    char text[48];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", local.year, local.month, local.day,
        local.hour, local.minute, local.second);
    return QString::fromLatin1(text);
}

QString projectName(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos)
        return QString::fromStdString(path);
    return QString::fromUtf8(path.data() + slash + 1, int(path.size() - slash - 1));
}

BatchCells batchHeaders()
{
    return {QCoreApplication::translate("Monitor", "#"), QCoreApplication::translate("Monitor", "Project"),
        QCoreApplication::translate("Monitor", "Started"), QCoreApplication::translate("Monitor", "Status"),
        QCoreApplication::translate("Monitor", "Priority"),
        QCoreApplication::translate("Monitor", "Current Task"),
        QCoreApplication::translate("Monitor", "Elapsed / Left"),
        QCoreApplication::translate("Monitor", "Failures"), QCoreApplication::translate("Monitor", "Nodes")};
}

NodeCells nodeHeaders()
{
    return {QCoreApplication::translate("Monitor", "#"), QCoreApplication::translate("Monitor", "Host"),
        QCoreApplication::translate("Monitor", "Status"), QCoreApplication::translate("Monitor", "Priority"),
        QCoreApplication::translate("Monitor", "Batch #"), QCoreApplication::translate("Monitor", "Progress"),
        QCoreApplication::translate("Monitor", "Failures"),
        QCoreApplication::translate("Monitor", "Last Error")};
}

BatchCells batchCells(const ControlClient::BatchInfo& batch)
{
    const ControlClient::TaskInfo& task = batch.task;
    BatchCells cells;
    cells[BatchColumnId] = QString::number(batch.batchId);
    cells[BatchColumnProject] = projectName(batch.path);
    cells[BatchColumnStarted] = startedText(batch.timeStarted);
    cells[BatchColumnStatus] = batchStatusWord(batch.status);
    cells[BatchColumnPriority] = priorityWord(batch.priority);

    if (!task.name.empty()) {
        QString name = taskDisplayName(task.name);
        if (name.isEmpty())
            name = QString::fromStdString(task.name);
        cells[BatchColumnTask]
            = name + QStringLiteral(" (") + oneDecimal(task.progress) + QStringLiteral("%)");
    }

    if (task.status == ControlClient::Pending) {
        cells[BatchColumnTimes] = QCoreApplication::translate("Monitor", "Waiting...");
    } else {
        cells[BatchColumnTimes] = formatDuration(task.timeElapsed);
        if (task.status == ControlClient::InProgress && task.timeLeft > 0.0)
            cells[BatchColumnTimes] += QStringLiteral(" / ") + formatDuration(task.timeLeft);
    }

    cells[BatchColumnFailures] = QString::number(task.nodesFailed);
    cells[BatchColumnNodes]
        = QStringLiteral("%1/%2").arg(task.nodesActive).arg(task.nodesActive + task.nodesWaiting);
    return cells;
}

NodeCells nodeCells(const ControlClient::NodeInfo& node, const QDate& today)
{
    NodeCells cells;
    cells[NodeColumnId] = QString::number(node.nodeId);

    std::string host = node.hostname;
    const std::size_t colon = host.rfind(':');
    if (colon != std::string::npos)
        host.resize(colon);
    if (!node.version.empty())
        host += " (" + node.version + ")";
    cells[NodeColumnHost] = QString::fromStdString(host);

    cells[NodeColumnStatus] = nodeStatusWord(node.status);
    cells[NodeColumnPriority] = priorityWord(node.priority);
    if (node.batchId != ControlClient::NoId) {
        cells[NodeColumnBatch] = QString::number(node.batchId);
        cells[NodeColumnProgress] = oneDecimal(node.progress) + QLatin1Char('%');
    }
    cells[NodeColumnFailures] = QString::number(node.errorCount);
    if (node.lastError.time != 0) {
        cells[NodeColumnLastError] = errorStamp(node.lastError.time, today) + QStringLiteral(" #")
            + QString::number(node.lastError.batchId) + QStringLiteral(": ")
            + QString::fromStdString(node.lastError.message);
    }
    return cells;
}

QString taskHeader(const QString& title, const ControlClient::TaskInfo& task)
{
    const QString name = title.isEmpty() ? QString::fromStdString(task.name) : title;
    QString summary = QCoreApplication::translate("TaskStatusWidget", "%1/%2 completed")
                          .arg(task.itemsDone)
                          .arg(task.itemsTotal);
    summary += QStringLiteral(", ")
        + QCoreApplication::translate("TaskStatusWidget", "%1/%2 nodes active")
              .arg(task.nodesActive)
              .arg(task.nodesActive + task.nodesWaiting);
    if (task.nodesFailed != 0)
        summary += QStringLiteral(", ")
            + QCoreApplication::translate("TaskStatusWidget", "%1 failures").arg(task.nodesFailed);
    return name + QStringLiteral(" (") + summary + QLatin1Char(')');
}

QString taskFooter(const ControlClient::TaskInfo& task)
{
    if (task.status == ControlClient::Pending)
        return QCoreApplication::translate("TaskStatusWidget", "Waiting...");
    QString text = formatDuration(task.timeElapsed) + QLatin1Char(' ')
        + QCoreApplication::translate("TaskStatusWidget", "elapsed");
    if (task.status == ControlClient::InProgress && task.timeLeft > 0.0)
        text += QStringLiteral(", ") + formatDuration(task.timeLeft) + QLatin1Char(' ')
            + QCoreApplication::translate("TaskStatusWidget", "left");
    return text;
}

QString taskRowText(const QString& title, const ControlClient::TaskInfo& task)
{
    QString text = taskHeader(title, task) + QStringLiteral(", ");
    if (taskShowsBar(task))
        text += QCoreApplication::translate("TaskStatusWidget", "%1%", "progress in percent")
                    .arg(taskProgressValue(task))
            + QStringLiteral(", ");
    return text + taskFooter(task);
}

int taskProgressValue(const ControlClient::TaskInfo& task)
{
    return static_cast<int>(task.progress);
}

bool taskShowsBar(const ControlClient::TaskInfo& task)
{
    return task.status == ControlClient::InProgress;
}

QString batchErrorLine(const ControlClient::BatchError& error, const QDate& today)
{
    return errorStamp(error.time, today) + QLatin1Char(' ') + QString::fromStdString(error.message);
}
