#include "treerows.h"

#include <QSignalBlocker>
#include <QTreeWidget>

#include "celltext.h"

// The fields a batch row shows; equal fields give equal cells.
struct TreeRows::BatchFields
{
    std::uint32_t batchId;
    std::string path;
    std::uint32_t timeStarted;
    int status;
    int priority;
    std::string taskName;
    int taskStatus;
    double progress;
    double timeElapsed;
    double timeLeft;
    int nodesFailed;
    int nodesActive;
    int nodesWaiting;

    explicit BatchFields(const ControlClient::BatchInfo& b)
        : batchId(b.batchId)
        , path(b.path)
        , timeStarted(b.timeStarted)
        , status(b.status)
        , priority(b.priority)
        , taskName(b.task.name)
        , taskStatus(b.task.status)
        , progress(b.task.progress)
        , timeElapsed(b.task.timeElapsed)
        , timeLeft(b.task.timeLeft)
        , nodesFailed(b.task.nodesFailed)
        , nodesActive(b.task.nodesActive)
        , nodesWaiting(b.task.nodesWaiting)
    {
    }

    bool operator==(const ControlClient::BatchInfo& b) const
    {
        return batchId == b.batchId && timeStarted == b.timeStarted && status == b.status
            && priority == b.priority && taskStatus == b.task.status && progress == b.task.progress
            && timeElapsed == b.task.timeElapsed && timeLeft == b.task.timeLeft
            && nodesFailed == b.task.nodesFailed && nodesActive == b.task.nodesActive
            && nodesWaiting == b.task.nodesWaiting && path == b.path && taskName == b.task.name;
    }
};

// The fields a node row shows.
struct TreeRows::NodeFields
{
    std::uint32_t nodeId;
    std::string hostname;
    std::string version;
    int status;
    int priority;
    std::uint32_t batchId;
    double progress;
    std::uint32_t errorCount;
    std::uint32_t errorTime;
    std::uint32_t errorBatchId;
    std::string errorMessage;

    explicit NodeFields(const ControlClient::NodeInfo& n)
        : nodeId(n.nodeId)
        , hostname(n.hostname)
        , version(n.version)
        , status(n.status)
        , priority(n.priority)
        , batchId(n.batchId)
        , progress(n.progress)
        , errorCount(n.errorCount)
        , errorTime(n.lastError.time)
        , errorBatchId(n.lastError.batchId)
        , errorMessage(n.lastError.message)
    {
    }

    bool operator==(const ControlClient::NodeInfo& n) const
    {
        return nodeId == n.nodeId && status == n.status && priority == n.priority && batchId == n.batchId
            && progress == n.progress && errorCount == n.errorCount && errorTime == n.lastError.time
            && errorBatchId == n.lastError.batchId && hostname == n.hostname && version == n.version
            && errorMessage == n.lastError.message;
    }
};

namespace {

template <typename Cells>
void writeRow(QTreeWidgetItem* item, const Cells& cells, std::uint32_t id)
{
    for (int column = 0; column < int(cells.size()); ++column)
        item->setText(column, cells[column]);
    item->setData(0, Qt::UserRole, id);
}

} // namespace

TreeRows::TreeRows(QTreeWidget* tree)
    : m_tree(tree)
{
}

TreeRows::~TreeRows() = default;

void TreeRows::resizeTopLevelItems(QTreeWidget* tree, int count)
{
    while (tree->topLevelItemCount() > count)
        delete tree->takeTopLevelItem(count);
    const int missing = count - tree->topLevelItemCount();
    if (missing > 0) {
        // appended in one go, so the views lay out once
        QList<QTreeWidgetItem*> items;
        items.reserve(missing);
        for (int i = 0; i < missing; ++i)
            items.append(new QTreeWidgetItem);
        tree->addTopLevelItems(items);
    }
}

template <typename Fields, typename Record, typename WriteRow>
void TreeRows::show(const std::vector<Record>& records, std::vector<Fields>& shown, WriteRow writeRow)
{
    resizeTopLevelItems(m_tree, int(records.size()));
    if (shown.size() > records.size())
        shown.erase(shown.begin() + records.size(), shown.end());

    int first = -1;
    int last = -1;
    {
        const QSignalBlocker quiet(m_tree->model());
        for (std::size_t i = 0; i < records.size(); ++i) {
            const Record& record = records[i];
            if (i < shown.size() && shown[i] == record)
                continue;
            writeRow(m_tree->topLevelItem(int(i)), record);
            if (i < shown.size())
                shown[i] = Fields(record);
            else
                shown.emplace_back(record);
            if (first < 0)
                first = int(i);
            last = int(i);
        }
    }
    announce(first, last);
}

void TreeRows::showBatches(const ControlClient::BatchList& batches)
{
    show(batches, m_batches, [](QTreeWidgetItem* item, const ControlClient::BatchInfo& batch) {
        writeRow(item, batchCells(batch), batch.batchId);
    });
}

void TreeRows::showNodes(const ControlClient::NodeList& nodes, const QDate& today)
{
    if (today != m_nodesDay) {
        // the error stamps change form at midnight
        m_nodes.clear();
        m_nodesDay = today;
    }
    show(nodes, m_nodes, [&today](QTreeWidgetItem* item, const ControlClient::NodeInfo& node) {
        writeRow(item, nodeCells(node, today), node.nodeId);
    });
}

void TreeRows::announce(int firstRow, int lastRow)
{
    if (firstRow < 0)
        return;
    QAbstractItemModel* model = m_tree->model();
    emit model->dataChanged(model->index(firstRow, 0), model->index(lastRow, model->columnCount() - 1));
}
