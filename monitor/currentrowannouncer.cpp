#include "currentrowannouncer.h"

#include <QAccessible>
#include <QEvent>
#include <QTimer>
#include <QTreeWidget>

#include "accessiblecell.h"

CurrentRowAnnouncer::CurrentRowAnnouncer(QTreeWidget* tree)
    : QObject(tree)
    , m_tree(tree)
{
    connect(tree, &QTreeWidget::currentItemChanged, this,
        [this](QTreeWidgetItem* current, QTreeWidgetItem*) { follow(current); });
    tree->installEventFilter(this);
}

CurrentRowAnnouncer::~CurrentRowAnnouncer() = default;

QString CurrentRowAnnouncer::rowText(const QTreeWidget* tree, const QTreeWidgetItem* item)
{
    QStringList parts;
    const QTreeWidgetItem* header = tree->headerItem();
    for (int column = 0; column < tree->columnCount(); ++column) {
        const QString value = item->text(column);
        if (value.isEmpty())
            continue;
        parts << tr("%1: %2", "a column header and the cell below it").arg(header->text(column), value);
    }
    return parts.join(QStringLiteral(", "));
}

void CurrentRowAnnouncer::refresh()
{
    QTreeWidgetItem* current = m_tree->currentItem();
    const int row = current ? m_tree->indexOfTopLevelItem(current) : -1;
    if (row < 0 || row != m_row) {
        follow(current);
        return;
    }
    // a row that changes every second is not read out every second
    const QString text = rowText(m_tree, current);
    if (text != m_text)
        name(row, text, false);
}

bool CurrentRowAnnouncer::eventFilter(QObject* watched, QEvent* event)
{
    // the view makes a row current in its own focus handling, after this
    if (watched == m_tree && event->type() == QEvent::FocusIn)
        QTimer::singleShot(0, this, &CurrentRowAnnouncer::announceFocus);
    return QObject::eventFilter(watched, event);
}

void CurrentRowAnnouncer::follow(QTreeWidgetItem* current)
{
    if (m_row >= 0 && m_row < m_tree->topLevelItemCount())
        name(m_row, QString(), false);
    m_row = -1;
    m_text.clear();
    const int row = current ? m_tree->indexOfTopLevelItem(current) : -1;
    if (row < 0)
        return;
    m_row = row;
    name(row, rowText(m_tree, current), true);
}

void CurrentRowAnnouncer::name(int row, const QString& text, bool announce)
{
    QTreeWidgetItem* item = m_tree->topLevelItem(row);
    for (int column = 0; column < m_tree->columnCount(); ++column)
        item->setData(column, Qt::AccessibleTextRole, text.isEmpty() ? QVariant() : QVariant(text));
    if (row == m_row)
        m_text = text;
    if (!announce)
        return;
    if (QAccessibleInterface* cell = accessibleCell(m_tree, row, qMax(0, m_tree->currentColumn()))) {
        QAccessibleEvent changed(cell, QAccessible::NameChanged);
        QAccessible::updateAccessibility(&changed);
        if (m_tree->hasFocus()) {
            QAccessibleEvent focus(cell, QAccessible::Focus);
            QAccessible::updateAccessibility(&focus);
        }
    }
}

void CurrentRowAnnouncer::announceFocus()
{
    if (!m_tree->hasFocus())
        return;
    if (m_row < 0 || m_tree->currentItem() != m_tree->topLevelItem(m_row)) {
        follow(m_tree->currentItem());
        return;
    }
    name(m_row, m_text, true);
}
