#include <QAction>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QStatusBar>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include "aboutdialog.h"
#include "application.h"
#include "mainwindow.h"
#include "mainwindowmenus.h"
#include "monitor.h"
#include "scriptedserver.h"
#include "testenvironment.h"

namespace {

// Loads a language and delivers the LanguageChange events it causes: the
// application posts one to itself, which posts one to every window.
void switchLanguage(const char* language)
{
    Application::loadTranslation(QLatin1String(language));
    for (int i = 0; i < 3; ++i)
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LanguageChange);
}

QAction* exitAction(const MainWindow& window)
{
    return menus(window).at(0)->actions().at(0);
}
QAction* aboutAction(const MainWindow& window)
{
    return menus(window).at(1)->actions().at(0);
}

class MainWindowTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        TestEnvironment::clearSettings();
        switchLanguage("en");
    }
    void TearDown() override
    {
        switchLanguage("en");
        TestEnvironment::clearSettings();
    }

    static bool geometryStored()
    {
        QSettings settings;
        return !settings.value(QStringLiteral("geometry")).toByteArray().isEmpty()
            && !settings.value(QStringLiteral("windowState")).toByteArray().isEmpty();
    }
};

} // namespace

TEST_F(MainWindowTest, FirstStartOpensAtTheDefaultSizeWithReadyInTheStatusBar)
{
    MainWindow window;
    window.show();
    EXPECT_EQ(window.size(), QSize(1000, 680));
    EXPECT_EQ(window.statusBar()->currentMessage(), QStringLiteral("Ready"));
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Korvane Network Monitor"));
    ASSERT_NE(window.centralWidget(), nullptr);
}

TEST_F(MainWindowTest, StyleSheetThinsSeparatorsAndSplitterHandles)
{
    MainWindow window;
    EXPECT_EQ(window.styleSheet(),
        QStringLiteral("QMainWindow::separator\t\t\t{ border: 0px; width: 2px; height: 2px; }"
                       "QSplitter::handle:horizontal\t{ width: 2px; }"
                       "QSplitter::handle:vertical\t\t{ height: 2px; }"
                       "QSplitter::handle\t\t\t\t{ image: none; }"));
}

TEST_F(MainWindowTest, MenusCarryTheirTextsAndStatusTips)
{
    MainWindow window;
    const QList<QMenu*> bar = menus(window);
    ASSERT_EQ(bar.size(), 2);
    EXPECT_EQ(bar[0]->title(), QStringLiteral("&File"));
    EXPECT_EQ(bar[1]->title(), QStringLiteral("&Help"));
    ASSERT_EQ(bar[0]->actions().size(), 1);
    ASSERT_EQ(bar[1]->actions().size(), 1);
    EXPECT_EQ(exitAction(window)->text(), QStringLiteral("E&xit"));
    EXPECT_EQ(exitAction(window)->statusTip(), QStringLiteral("Exit the application"));
    EXPECT_EQ(exitAction(window)->shortcuts(), QKeySequence::keyBindings(QKeySequence::Quit));
    EXPECT_EQ(aboutAction(window)->text(), QStringLiteral("About Monitor..."));
    EXPECT_EQ(aboutAction(window)->statusTip(),
        QStringLiteral("Display program information, version number and copyright"));
    EXPECT_TRUE(aboutAction(window)->shortcuts().isEmpty());
}

TEST_F(MainWindowTest, ClosingTheWindowStoresGeometryAndState)
{
    MainWindow window;
    window.show();
    window.setGeometry(40, 50, 700, 500);
    ASSERT_FALSE(geometryStored());
    EXPECT_TRUE(window.close());
    EXPECT_TRUE(geometryStored());
}

TEST_F(MainWindowTest, FileExitStoresGeometryAndStateAndCloses)
{
    MainWindow window;
    window.show();
    ASSERT_FALSE(geometryStored());
    exitAction(window)->trigger();
    EXPECT_TRUE(geometryStored());
    EXPECT_FALSE(window.isVisible());
}

TEST_F(MainWindowTest, QuitShortcutStoresGeometryAndStateAndCloses)
{
    if (QGuiApplication::platformName() == QLatin1String("offscreen"))
        GTEST_SKIP()
            << "the offscreen platform binds no key to Quit; test_mainwindow_x11 runs this under Xvfb";
    ASSERT_FALSE(QKeySequence::keyBindings(QKeySequence::Quit).isEmpty());
    MainWindow window;
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    ASSERT_FALSE(geometryStored());
    QTest::keySequence(&window, QKeySequence::keyBindings(QKeySequence::Quit).first());
    EXPECT_TRUE(geometryStored());
    EXPECT_FALSE(window.isVisible());
}

TEST_F(MainWindowTest, GeometryIsRestoredAtTheNextStart)
{
    QRect stored;
    {
        MainWindow window;
        window.show();
        window.resize(720, 480);
        QCoreApplication::processEvents();
        stored = window.geometry();
        window.close();
    }
    MainWindow again;
    EXPECT_EQ(again.size(), stored.size());
    EXPECT_EQ(again.size(), QSize(720, 480));
}

TEST_F(MainWindowTest, LanguageChangeRelabelsMenusAndPutsReadyBack)
{
    MainWindow window;
    window.show();
    window.statusBar()->showMessage(QStringLiteral("something else"));

    switchLanguage("de");

    const QList<QMenu*> bar = menus(window);
    EXPECT_EQ(bar[0]->title(), QStringLiteral("&Datei"));
    EXPECT_EQ(bar[1]->title(), QStringLiteral("&Hilfe"));
    EXPECT_EQ(exitAction(window)->text(), QStringLiteral("&Beenden"));
    EXPECT_EQ(aboutAction(window)->text(), QStringLiteral("Über Monitor..."));
    EXPECT_EQ(exitAction(window)->statusTip(), QStringLiteral("Die Anwendung beenden"));
    EXPECT_EQ(aboutAction(window)->statusTip(),
        QStringLiteral("Programminformationen, Versionsnummer und Copyright anzeigen"));
    EXPECT_EQ(window.statusBar()->currentMessage(), QStringLiteral("Bereit"));
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Korvane Network Monitor"));

    switchLanguage("en");
    EXPECT_EQ(bar[0]->title(), QStringLiteral("&File"));
    EXPECT_EQ(window.statusBar()->currentMessage(), QStringLiteral("Ready"));
}

TEST_F(MainWindowTest, HelpAboutOpensTheAboutDialogModally)
{
    MainWindow window;
    window.show();
    QString seenTitle;
    bool seenModal = false;
    QWidget* seenParent = nullptr;
    QTimer::singleShot(0, [&] {
        auto* dialog = qobject_cast<AboutDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        seenTitle = dialog->windowTitle();
        seenModal = dialog->isModal();
        seenParent = dialog->parentWidget();
        dialog->accept();
    });
    aboutAction(window)->trigger();
    EXPECT_EQ(seenTitle, QStringLiteral("About Monitor"));
    EXPECT_TRUE(seenModal);
    EXPECT_EQ(seenParent, &window);
    EXPECT_TRUE(window.findChildren<AboutDialog*>().isEmpty());
}

TEST_F(MainWindowTest, CentralWidgetIsTheMonitorPanel)
{
    MainWindow window;
    EXPECT_NE(qobject_cast<Monitor*>(window.centralWidget()), nullptr);
    EXPECT_EQ(window.centralWidget(), window.monitorPanel());
}

TEST_F(MainWindowTest, ClosingWhileConnectedToAServerThatNeverAnswersEndsQuickly)
{
    ScriptedServer server;
    server.acceptConnection().waitForClose();
    server.start();
    MainWindow window;
    window.show();
    window.monitorPanel()->connectTo(QStringLiteral("127.0.0.1"), server.port());
    QElapsedTimer clock;
    clock.start();
    while (server.received().empty() && clock.elapsed() < 5000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    ASSERT_FALSE(server.received().empty());

    clock.restart();
    EXPECT_TRUE(window.close());
    EXPECT_LT(clock.elapsed(), 2000);
    EXPECT_TRUE(geometryStored());
    server.finish();
}
