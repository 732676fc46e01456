#pragma once

#include <QMainWindow>

class Monitor;
class QAction;
class QMenu;

// The program's single top-level window: the monitor panel in the middle,
// File and Help menus, a status bar, and a style sheet that thins the
// separators and splitter handles. Geometry and dock state are kept in the
// settings from one run to the next. Closing it ends a running connection
// before the panel goes away.
class MainWindow final : public QMainWindow
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(MainWindow)

public:
    MainWindow();
    ~MainWindow() override;

    static const char* styleSheetText();

    Monitor* monitorPanel() const { return monitor; }

protected:
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private slots:
    void onHelpAbout();

private:
    void retranslateUi();
    void readSettings();
    void writeSettings();
    void applyStyleSheet();

    Monitor* monitor = nullptr;
    QMenu* fileMenu = nullptr;
    QMenu* helpMenu = nullptr;
    QAction* exitAction = nullptr;
    QAction* aboutAction = nullptr;
};
