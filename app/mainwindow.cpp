#include "mainwindow.h"

#include <cstdio>
#include <cstdlib>

#include <QAction>
#include <QCloseEvent>
#include <QMenu>
#include <QMenuBar>
#include <QSettings>
#include <QStatusBar>

#include "aboutdialog.h"
#include "monitor.h"

MainWindow::MainWindow()
    : QMainWindow(nullptr)
{
    setWindowTitle(QStringLiteral("Korvane Network Monitor"));
    applyStyleSheet();

    monitor = new Monitor(this);
    setCentralWidget(monitor);
    resize(1000, 680);

    exitAction = new QAction(this);
    exitAction->setShortcuts(QKeySequence::Quit);
    connect(exitAction, &QAction::triggered, this, &QWidget::close);

    aboutAction = new QAction(this);
    connect(aboutAction, &QAction::triggered, this, &MainWindow::onHelpAbout);

    fileMenu = new QMenu(this);
    fileMenu->addAction(exitAction);
    menuBar()->addMenu(fileMenu);

    helpMenu = new QMenu(this);
    helpMenu->addAction(aboutAction);
    menuBar()->addMenu(helpMenu);

    readSettings();
    retranslateUi();
}

MainWindow::~MainWindow() = default;

const char* MainWindow::styleSheetText()
{
    return "QMainWindow::separator\t\t\t{ border: 0px; width: 2px; height: 2px; }"
           "QSplitter::handle:horizontal\t{ width: 2px; }"
           "QSplitter::handle:vertical\t\t{ height: 2px; }"
           "QSplitter::handle\t\t\t\t{ image: none; }";
}

void MainWindow::onHelpAbout()
{
    AboutDialog dialog(this);
    dialog.exec();
}

void MainWindow::retranslateUi()
{
    fileMenu->setTitle(tr("&File"));
    helpMenu->setTitle(tr("&Help"));
    exitAction->setText(tr("E&xit"));
    aboutAction->setText(tr("About Monitor..."));
    exitAction->setStatusTip(tr("Exit the application"));
    aboutAction->setStatusTip(tr("Display program information, version number and copyright"));
    statusBar()->showMessage(tr("Ready"), 0);
}

void MainWindow::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslateUi();
    QWidget::changeEvent(event);
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    writeSettings();
    // The worker's thread must not outlive the panel. Only a connect() that
    // the system keeps waiting for can hold it up; then leave without it.
    if (!monitor->shutdown(1500)) {
        std::fputs("korvane-monitor: the connection did not end in time; leaving without it\n", stderr);
        std::fflush(nullptr);
        std::_Exit(EXIT_FAILURE);
    }
    QWidget::closeEvent(event);
}

void MainWindow::readSettings()
{
    QSettings settings;
    restoreGeometry(settings.value(QStringLiteral("geometry"), QVariant()).toByteArray());
    restoreState(settings.value(QStringLiteral("windowState"), QVariant()).toByteArray(), 0);
}

void MainWindow::writeSettings()
{
    QSettings settings;
    settings.setValue(QStringLiteral("geometry"), saveGeometry());
    settings.setValue(QStringLiteral("windowState"), saveState(0));
}

void MainWindow::applyStyleSheet()
{
    setStyleSheet(QString::fromLatin1(styleSheetText()));
}
