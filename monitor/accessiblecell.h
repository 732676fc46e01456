#pragma once

class QAbstractItemView;
class QAccessibleInterface;

// A view's cell as screen readers see it, for telling them of a change;
// null while no screen reader listens, or when the view has no such cell.
QAccessibleInterface* accessibleCell(QAbstractItemView* view, int row, int column);
