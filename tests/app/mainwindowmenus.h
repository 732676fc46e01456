#pragma once

#include <QAction>
#include <QList>
#include <QMenu>
#include <QMenuBar>

#include "mainwindow.h"

// The menus of a main window's menu bar, left to right.
inline QList<QMenu*> menus(const MainWindow& window)
{
    QList<QMenu*> result;
    for (QAction* action : window.menuBar()->actions())
        result.append(action->menu());
    return result;
}
