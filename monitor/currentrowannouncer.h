#pragma once

#include <QObject>
#include <QString>

class QTreeWidget;
class QTreeWidgetItem;

// Lets a screen reader read a tree's current row with its column headers:
// the cells of the current row carry "Header: value, ..." as their
// accessible name, and the row is announced when the tree takes the focus
// and whenever the current row changes. Other rows read their bare values.
// A child of the tree.
class CurrentRowAnnouncer final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(CurrentRowAnnouncer)

public:
    explicit CurrentRowAnnouncer(QTreeWidget* tree);
    ~CurrentRowAnnouncer() override;

    // "#: 7, Project: seven.kproj, ..."; empty cells are left out.
    static QString rowText(const QTreeWidget* tree, const QTreeWidgetItem* item);

    // After the rows were rewritten: the current row's name follows its cells,
    // without being announced again.
    void refresh();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void follow(QTreeWidgetItem* current);
    void name(int row, const QString& text, bool announce);
    void announceFocus();

    QTreeWidget* m_tree;
    // the row whose cells carry the long name, -1 for none
    int m_row = -1;
    QString m_text;
};
