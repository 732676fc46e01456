#include "contextmenukey.h"

#include <QAbstractItemView>
#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QShortcut>

ContextMenuKey::ContextMenuKey(QAbstractItemView* view)
    : QObject(view)
    , m_view(view)
{
    auto* shortcut = new QShortcut(sequence(), view, this, &ContextMenuKey::open, Qt::WidgetShortcut);
    shortcut->setAutoRepeat(false);
}

ContextMenuKey::~ContextMenuKey() = default;

void ContextMenuKey::open()
{
    // where the window system puts a context-menu key's event: the middle of
    // the current row
    const QPoint pos = m_view->inputMethodQuery(Qt::ImCursorRectangle).toRect().center();
    QContextMenuEvent event(QContextMenuEvent::Keyboard, pos, m_view->mapToGlobal(pos));
    QCoreApplication::sendEvent(m_view, &event);
}
