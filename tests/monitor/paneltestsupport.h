#pragma once

#include <functional>
#include <string>
#include <vector>

#include <QApplication>
#include <QDeadlineTimer>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>
#include <QThread>
#include <QTimer>
#include <QTreeWidget>

#include <gtest/gtest.h>

#include "monitor.h"

// Widgets of a panel, found by their object names as a user's tools would.
struct PanelWidgets
{
    explicit PanelWidgets(Monitor& panel)
        : host(panel.findChild<QLineEdit*>(QStringLiteral("editHost")))
        , port(panel.findChild<QSpinBox*>(QStringLiteral("spinPort")))
        , button(panel.findChild<QPushButton*>(QStringLiteral("buttonConnect")))
        , batches(panel.findChild<QTreeWidget*>(QStringLiteral("treeBatches")))
        , nodes(panel.findChild<QTreeWidget*>(QStringLiteral("treeNodes")))
    {
    }

    QLineEdit* host;
    QSpinBox* port;
    QPushButton* button;
    QTreeWidget* batches;
    QTreeWidget* nodes;
};

// The worker's queue as "type id priority", oldest first.
inline std::vector<std::string> queued(const Monitor& panel)
{
    std::vector<std::string> texts;
    for (const MonitorCommand& command : panel.connectionWorker().queuedCommands())
        texts.push_back(std::to_string(command.type) + " " + std::to_string(command.id) + " "
            + std::to_string(command.priority));
    return texts;
}

// Answers every warning box the panel opens, remembering title and text.
class MessageBoxCatcher final : public QObject
{
public:
    MessageBoxCatcher()
    {
        connect(&m_timer, &QTimer::timeout, this, [this] {
            if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
                boxes.push_back(box->windowTitle() + QStringLiteral(" | ") + box->text());
                box->accept();
            }
        });
        m_timer.start(10);
    }

    std::vector<QString> boxes;

private:
    QTimer m_timer;
};

// Opens a row's context menu as a right click would, notes the entries and
// chooses the one at path ("Set Priority", "Lowest"). An empty path only
// looks and closes the menu.
struct MenuVisit
{
    bool opened = false;
    // where the menu opened, in global coordinates
    QPoint at;
    QStringList entries;
    QStringList submenu;
    bool allEnabledPlain = true;
};

// The same for a menu that open() brings up: a key, a signal.
inline MenuVisit chooseFromMenu(const std::function<void()>& open, const QStringList& path)
{
    MenuVisit visit;
    QTimer guard;
    QObject::connect(&guard, &QTimer::timeout, [&] {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (!menu)
            return;
        guard.stop();
        visit.opened = true;
        visit.at = menu->pos();
        QAction* chosen = nullptr;
        QMenu* level = menu;
        for (QAction* action : menu->actions()) {
            visit.entries << (action->isSeparator() ? QStringLiteral("-") : action->text());
            if (action->menu()) {
                for (QAction* sub : action->menu()->actions()) {
                    visit.submenu << sub->text();
                    visit.allEnabledPlain
                        &= sub->isEnabled() && sub->shortcut().isEmpty() && !sub->isCheckable();
                }
            }
            if (!action->isSeparator())
                visit.allEnabledPlain
                    &= action->isEnabled() && action->shortcut().isEmpty() && !action->isCheckable();
        }
        for (int i = 0; i < path.size() && level; ++i) {
            chosen = nullptr;
            for (QAction* action : level->actions())
                if (action->text() == path[i])
                    chosen = action;
            level = chosen ? chosen->menu() : nullptr;
        }
        menu->close();
        if (chosen)
            chosen->trigger();
    });
    guard.start(5);
    // give a menu that would open time to show itself
    QTimer::singleShot(300, &guard, &QTimer::stop);
    QWidget* window = QApplication::activeWindow();
    open();
    // the single shot above stops the guard after 300 ms at the latest
    [[maybe_unused]] const bool ended = QTest::qWaitFor([&] { return !guard.isActive(); }, 2000);
    // The offscreen platform activates a menu through a queued event, which on
    // a busy machine comes after the menu has closed and leaves no window
    // active; a window system gives the activation back. Shortcuts answer only
    // in the active window, so the next key would go nowhere without this.
    if (visit.opened && window) {
        window->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window));
    }
    return visit;
}

inline MenuVisit chooseFromMenu(QTreeWidget* tree, const QPoint& pos, const QStringList& path)
{
    return chooseFromMenu([&] { emit tree->customContextMenuRequested(pos); }, path);
}

inline MenuVisit chooseFromMenu(QTreeWidget* tree, int row, const QStringList& path)
{
    return chooseFromMenu(tree, tree->visualItemRect(tree->topLevelItem(row)).center(), path);
}
