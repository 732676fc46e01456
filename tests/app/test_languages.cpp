// The program in each of its languages: the stored "main/language" is loaded
// as at start-up, and the real main window, About dialog and details dialog
// show the program's texts from its catalogue and Qt's own button texts from
// Qt's catalogue beside it.

#include <QAction>
#include <QDialogButtonBox>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QSettings>
#include <QStatusBar>
#include <QTimer>
#include <QTreeWidget>

#include <gtest/gtest.h>

#include "aboutdialog.h"
#include "application.h"
#include "batchdetailsdialog.h"
#include "mainwindow.h"
#include "mainwindowmenus.h"
#include "monitor.h"
#include "taskdisplaynames.h"
#include "testenvironment.h"

namespace {

struct Language
{
    const char* code;
    const char* file;
    const char* help;
    const char* exit;
    const char* ready;
    const char* about;
    const char* ok; // Qt's catalogue
    const char* close; // Qt's catalogue
    const char* denseCloud; // display name of "BuildDenseCloud"
    const char* high;
    const char* currentTask;
};

const Language languages[] = {
    {"en", "&File", "&Help", "E&xit", "Ready", "About Monitor", "OK", "Close", "Build Dense Cloud", "High",
        "Current Task"},
    {"de", "&Datei", "&Hilfe", "&Beenden", "Bereit", "Über Monitor", "OK", "Schließen",
        "Dichte Punktwolke erstellen", "Hoch", "Aktuelle Aufgabe"},
    {"ru", "&Файл", "&Справка", "&Выход", "Готово", "О программе Monitor", "OK", "Закрыть",
        "Построить плотное облако", "Высокий", "Текущая задача"},
    {"fr", "&Fichier", "&Aide", "&Quitter", "Prêt", "À propos de Monitor", "OK", "Fermer",
        "Générer le nuage dense", "Haute", "Tâche en cours"},
    {"es", "&Archivo", "Ay&uda", "&Salir", "Listo", "Acerca de Monitor", "Aceptar", "Cerrar", "Generar nube densa",
        "Alta", "Tarea actual"},
    {"ja", "ファイル(&F)", "ヘルプ(&H)", "終了(&X)", "準備完了", "Monitor について", "OK", "閉じる",
        "高密度点群の生成", "高", "現在のタスク"},
    {"zh_CN", "文件(&F)", "帮助(&H)", "退出(&X)", "就绪", "关于 Monitor", "确定", "关闭", "生成密集点云", "高",
        "当前任务"},
};

void PrintTo(const Language& language, std::ostream* out)
{
    *out << language.code;
}

QString text(const char* utf8)
{
    return QString::fromUtf8(utf8);
}

// Loads the stored language as the program does at start-up and delivers the
// LanguageChange events that loading posts.
void loadStoredLanguage(const char* code)
{
    QSettings().setValue(QStringLiteral("main/language"), QString::fromLatin1(code));
    ASSERT_EQ(Application::loadUserLanguage(), QString::fromLatin1(code));
    for (int i = 0; i < 3; ++i)
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LanguageChange);
}

class LanguageTest : public ::testing::TestWithParam<Language>
{
protected:
    void SetUp() override
    {
        TestEnvironment::clearSettings();
        loadStoredLanguage(GetParam().code);
    }
    void TearDown() override
    {
        Application::loadTranslation(QStringLiteral("en"));
        TestEnvironment::clearSettings();
    }
};

} // namespace

TEST_P(LanguageTest, WindowShowsTheTranslatedMenusAndReady)
{
    const Language& language = GetParam();
    MainWindow window;
    window.show();

    const QList<QMenu*> bar = menus(window);
    ASSERT_EQ(bar.size(), 2);
    EXPECT_EQ(bar[0]->title(), text(language.file));
    EXPECT_EQ(bar[1]->title(), text(language.help));
    EXPECT_EQ(bar[0]->actions().at(0)->text(), text(language.exit));
    EXPECT_EQ(window.statusBar()->currentMessage(), text(language.ready));
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Korvane Network Monitor"));

    // the two menu titles are reached by different keys
    const QKeySequence fileKey = QKeySequence::mnemonic(bar[0]->title());
    const QKeySequence helpKey = QKeySequence::mnemonic(bar[1]->title());
    EXPECT_FALSE(fileKey.isEmpty());
    EXPECT_FALSE(helpKey.isEmpty());
    EXPECT_NE(fileKey, helpKey);
}

TEST_P(LanguageTest, AboutDialogHasTheTranslatedTitleAndQtsOwnOkButton)
{
    const Language& language = GetParam();
    MainWindow window;
    window.show();
    QString title;
    QString ok;
    QTimer::singleShot(0, [&] {
        auto* dialog = qobject_cast<AboutDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        title = dialog->windowTitle();
        auto* box = dialog->findChild<QDialogButtonBox*>(QStringLiteral("buttonBox"));
        ASSERT_NE(box, nullptr);
        ok = box->button(QDialogButtonBox::Ok)->text();
        dialog->accept();
    });
    menus(window).at(1)->actions().at(0)->trigger();

    EXPECT_EQ(title, text(language.about));
    EXPECT_EQ(ok, text(language.ok));
}

TEST_P(LanguageTest, DetailsDialogCloseButtonComesFromQtsCatalogue)
{
    BatchDetailsDialog dialog(nullptr);
    auto* box = dialog.findChild<QDialogButtonBox*>(QStringLiteral("buttonBox"));
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->button(QDialogButtonBox::Close)->text(), text(GetParam().close));
}

TEST_P(LanguageTest, TreesShowTranslatedTextsAndTheStatusWordsUntranslated)
{
    const Language& language = GetParam();
    MainWindow window;
    Monitor* panel = window.monitorPanel();

    ControlClient::BatchInfo batch;
    batch.batchId = 7;
    batch.path = "/surveys/bridge-north";
    batch.status = ControlClient::InProgress;
    batch.priority = 1;
    batch.task.name = "BuildDenseCloud";
    batch.task.status = ControlClient::InProgress;
    batch.task.progress = 42.5;
    panel->updateBatches({batch});
    ControlClient::NodeInfo node;
    node.nodeId = 3;
    node.hostname = "render-3:5841";
    node.status = ControlClient::Ready;
    panel->updateNodes({node});

    EXPECT_EQ(taskDisplayName("BuildDenseCloud"), text(language.denseCloud));
    auto* batches = window.findChild<QTreeWidget*>(QStringLiteral("treeBatches"));
    auto* nodes = window.findChild<QTreeWidget*>(QStringLiteral("treeNodes"));
    ASSERT_NE(batches, nullptr);
    ASSERT_NE(nodes, nullptr);
    EXPECT_EQ(batches->headerItem()->text(5), text(language.currentTask));
    const QTreeWidgetItem* row = batches->topLevelItem(0);
    EXPECT_EQ(row->text(3), QStringLiteral("Working"));
    EXPECT_EQ(row->text(4), text(language.high));
    EXPECT_EQ(row->text(5), text(language.denseCloud) + QStringLiteral(" (42.5%)"));
    EXPECT_EQ(nodes->topLevelItem(0)->text(2), QStringLiteral("Ready"));
}

INSTANTIATE_TEST_SUITE_P(Languages, LanguageTest, ::testing::ValuesIn(languages),
    [](const ::testing::TestParamInfo<Language>& info) { return std::string(info.param.code); });
