#pragma once

#include <QKeySequence>
#include <QObject>

class QAbstractItemView;

// Shift+F10 on a view opens its context menu for the current row, exactly as
// the Menu key does: a keyboard context-menu event at the current row. A
// child of the view.
class ContextMenuKey final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ContextMenuKey)

public:
    explicit ContextMenuKey(QAbstractItemView* view);
    ~ContextMenuKey() override;

    static QKeySequence sequence() { return QKeySequence(Qt::SHIFT | Qt::Key_F10); }

private:
    void open();

    QAbstractItemView* m_view;
};
