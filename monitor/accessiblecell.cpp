#include "accessiblecell.h"

#include <QAbstractItemView>
#include <QAccessible>

QAccessibleInterface* accessibleCell(QAbstractItemView* view, int row, int column)
{
    if (!QAccessible::isActive())
        return nullptr;
    QAccessibleInterface* table = QAccessible::queryAccessibleInterface(view);
    if (!table || !table->tableInterface())
        return nullptr;
    return table->tableInterface()->cellAt(row, column);
}
