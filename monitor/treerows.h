#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <QDate>

#include "controlclient.h"

class QTreeWidget;
class QTreeWidgetItem;

// Keeps a tree's top-level rows in step with a list of records, by position:
// row i always shows record i of the latest list. Rows are reused, so the
// selection and the scroll position stay where they were; surplus rows are
// removed from the end and missing ones appended.
//
// Writing a cell of an attached QTreeWidgetItem notifies the views on every
// call; for ten thousand rows a second that alone would freeze the window. So
// the cells are written with the model quiet, rows whose shown fields did not
// change are skipped, and the views hear once of the rows that did.
class TreeRows final
{
public:
    explicit TreeRows(QTreeWidget* tree);
    ~TreeRows();

    TreeRows(const TreeRows&) = delete;
    TreeRows& operator=(const TreeRows&) = delete;

    void showBatches(const ControlClient::BatchList& batches);
    // today decides between the short and the long error stamp.
    void showNodes(const ControlClient::NodeList& nodes, const QDate& today);

    // Makes the tree hold exactly count top-level rows.
    static void resizeTopLevelItems(QTreeWidget* tree, int count);

private:
    struct BatchFields;
    struct NodeFields;

    // Rewrites the rows whose shown fields differ from the record now there.
    template <typename Fields, typename Record, typename WriteRow>
    void show(const std::vector<Record>& records, std::vector<Fields>& shown, WriteRow writeRow);
    void announce(int firstRow, int lastRow);

    QTreeWidget* m_tree;
    std::vector<BatchFields> m_batches;
    std::vector<NodeFields> m_nodes;
    QDate m_nodesDay;
};
