#include "tables.h"

#include <QCoreApplication>

#include "celltext.h"
#include "taskdisplaynames.h"

namespace {

template <typename Cells>
std::vector<QString> toVector(const Cells& cells)
{
    return std::vector<QString>(cells.begin(), cells.end());
}

} // namespace

std::string formatTable(const std::vector<QString>& headers, const std::vector<std::vector<QString>>& rows)
{
    std::vector<int> widths(headers.size(), 0);
    auto measure = [&widths](const std::vector<QString>& row) {
        for (std::size_t c = 0; c < row.size() && c < widths.size(); ++c)
            widths[c] = std::max(widths[c], static_cast<int>(row[c].size()));
    };
    measure(headers);
    for (const auto& row : rows)
        measure(row);

    auto line = [&widths](const std::vector<QString>& row) {
        QString text;
        for (std::size_t c = 0; c < row.size() && c < widths.size(); ++c) {
            if (c > 0)
                text += QStringLiteral("  ");
            text += row[c].leftJustified(widths[c]);
        }
        while (text.endsWith(QLatin1Char(' ')))
            text.chop(1);
        return text.toStdString() + "\n";
    };
    std::string out = line(headers);
    for (const auto& row : rows)
        out += line(row);
    return out;
}

std::string batchTable(const ControlClient::BatchList& batches)
{
    std::vector<std::vector<QString>> rows;
    rows.reserve(batches.size());
    for (const ControlClient::BatchInfo& batch : batches)
        rows.push_back(toVector(batchCells(batch)));
    return formatTable(toVector(batchHeaders()), rows);
}

std::string nodeTable(const ControlClient::NodeList& nodes, const QDate& today)
{
    std::vector<std::vector<QString>> rows;
    rows.reserve(nodes.size());
    for (const ControlClient::NodeInfo& node : nodes)
        rows.push_back(toVector(nodeCells(node, today)));
    return formatTable(toVector(nodeHeaders()), rows);
}

std::string statusText(const ControlClient::BatchStatus& status, const QDate& today)
{
    QString text = QCoreApplication::translate("BatchDetailsDialog", "Project:") + QLatin1Char(' ')
        + QString::fromStdString(status.path) + QLatin1Char('\n');
    for (const ControlClient::TaskInfo& task : status.tasks) {
        text += taskHeader(taskDisplayName(task.name), task) + QLatin1Char('\n');
        text += QStringLiteral("    ") + taskFooter(task) + QLatin1Char('\n');
    }
    if (status.lastError.time != 0) {
        text += QCoreApplication::translate("BatchDetailsDialog", "Last error:") + QLatin1Char(' ')
            + batchErrorLine(status.lastError, today) + QLatin1Char('\n');
    }
    return text.toStdString();
}
