#include <clocale>
#include <cstdio>
#include <sstream>
#include <stdexcept>

#include <QDir>
#include <QFile>
#include <QIcon>
#include <QLocale>
#include <QSettings>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "application.h"
#include "testenvironment.h"

// Receivers used by the exception tests; at namespace scope so that their
// run-time type names are short and known.
class Thrower : public QObject
{
public:
    bool event(QEvent*) override { throw std::runtime_error("boom"); }
};

class IntThrower : public QObject
{
public:
    bool event(QEvent*) override { throw 42; }
};

namespace {

Application* application()
{
    return qobject_cast<Application*>(QCoreApplication::instance());
}

void touch(const QString& path)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
}

class StderrCapture
{
public:
    StderrCapture()
        : old(std::cerr.rdbuf(buffer.rdbuf()))
    {
    }
    ~StderrCapture() { std::cerr.rdbuf(old); }
    std::string text() const { return buffer.str(); }

private:
    std::ostringstream buffer;
    std::streambuf* old;
};

} // namespace

TEST(Application, NamesOrganisationAndApplicationForTheSettingsStore)
{
    EXPECT_EQ(QCoreApplication::organizationName(), QStringLiteral("Korvane"));
    EXPECT_EQ(QCoreApplication::applicationName(), QStringLiteral("Monitor"));
    const QString expected
        = QDir(qEnvironmentVariable("XDG_CONFIG_HOME")).filePath(QStringLiteral("Korvane/Monitor.conf"));
    EXPECT_EQ(QSettings().fileName(), expected);
}

TEST(Application, NamesTheDesktopEntry)
{
    EXPECT_EQ(QGuiApplication::desktopFileName(), QStringLiteral("com.korvane.Monitor"));
}

TEST(Application, WindowIconHoldsThe16And32And48PixelIcons)
{
    const QList<QSize> sizes = QApplication::windowIcon().availableSizes();
    EXPECT_TRUE(sizes.contains(QSize(16, 16)));
    EXPECT_TRUE(sizes.contains(QSize(32, 32)));
    EXPECT_TRUE(sizes.contains(QSize(48, 48)));
}

TEST(Application, WithNoLanguageKeyTheEnglishFilesAreLoaded)
{
    TestEnvironment::clearSettings();
    Application::loadTranslation(QStringLiteral("none"));
    ASSERT_TRUE(application()->programTranslationFile().isEmpty());

    EXPECT_EQ(Application::loadUserLanguage(), QStringLiteral("en"));
    EXPECT_EQ(application()->programTranslationFile(),
        QCoreApplication::applicationDirPath() + QStringLiteral("/lang/monitor_en.qm"));
}

TEST(Application, WithAnEmptyLanguageNoTranslationIsLoaded)
{
    Application::loadTranslation(QStringLiteral("none"));
    QSettings().setValue(QStringLiteral("main/language"), QString());

    EXPECT_EQ(Application::loadUserLanguage(), QString());
    EXPECT_TRUE(application()->programTranslationFile().isEmpty());
    EXPECT_EQ(QCoreApplication::translate("MainWindow", "Ready"), QStringLiteral("Ready"));
    TestEnvironment::clearSettings();
}

TEST(Application, StoredLanguageIsLoadedFromTheLangDirectory)
{
    QSettings().setValue(QStringLiteral("main/language"), QStringLiteral("de"));
    EXPECT_EQ(Application::loadUserLanguage(), QStringLiteral("de"));
    EXPECT_EQ(application()->programTranslationFile(),
        QCoreApplication::applicationDirPath() + QStringLiteral("/lang/monitor_de.qm"));
    EXPECT_EQ(QCoreApplication::translate("MainWindow", "Ready"), QStringLiteral("Bereit"));
    // Qt's own catalogue is loaded beside it
    EXPECT_EQ(QCoreApplication::translate("QPlatformTheme", "Cancel"), QStringLiteral("Abbrechen"));

    Application::loadTranslation(QStringLiteral("en"));
    EXPECT_EQ(QCoreApplication::translate("MainWindow", "Ready"), QStringLiteral("Ready"));
    TestEnvironment::clearSettings();
}

TEST(Application, MissingTranslationFilesLeaveTextsInEnglish)
{
    Application::loadTranslation(QStringLiteral("xx"));
    EXPECT_TRUE(application()->programTranslationFile().isEmpty());
    EXPECT_EQ(QCoreApplication::translate("MainWindow", "Ready"), QStringLiteral("Ready"));
}

TEST(Application, ALanguageWithARegionLoadsOnlyItsOwnFiles)
{
    // monitor_de.qm and qt_de.qm are there; monitor_de_AT.qm and qt_de_AT.qm are not
    Application::loadTranslation(QStringLiteral("de_AT"));
    EXPECT_TRUE(application()->programTranslationFile().isEmpty());
    EXPECT_EQ(QCoreApplication::translate("MainWindow", "Ready"), QStringLiteral("Ready"));
    EXPECT_EQ(QCoreApplication::translate("QPlatformTheme", "Cancel"), QStringLiteral("Cancel"));
    // nor a name with the suffix left off
    Application::loadTranslation(QStringLiteral("de.qm"));
    EXPECT_TRUE(application()->programTranslationFile().isEmpty());
}

TEST(Application, InstalledLanguagesAreTheSevenOfTheBuild)
{
    EXPECT_EQ(Application::availableLanguages(),
        QStringList({QStringLiteral("de"), QStringLiteral("en"), QStringLiteral("es"), QStringLiteral("fr"),
            QStringLiteral("ja"), QStringLiteral("ru"), QStringLiteral("zh_CN")}));
}

TEST(Application, LangDirectoryWithGermanAndEnglishFilesYieldsDeAndEn)
{
    QTemporaryDir dir;
    touch(dir.filePath(QStringLiteral("monitor_de.qm")));
    touch(dir.filePath(QStringLiteral("monitor_en.qm")));
    touch(dir.filePath(QStringLiteral("qt_fr.qm")));
    touch(dir.filePath(QStringLiteral("monitor_it.ts")));

    EXPECT_EQ(Application::availableLanguages(dir.path()),
        QStringList({QStringLiteral("de"), QStringLiteral("en")}));
}

TEST(Application, OnlyTheFirstUnderscoreAndTheLastDotAreCut)
{
    QTemporaryDir dir;
    touch(dir.filePath(QStringLiteral("monitor_pt_BR.qm")));
    touch(dir.filePath(QStringLiteral("monitor_x.y.qm")));

    EXPECT_EQ(Application::availableLanguages(dir.path()),
        QStringList({QStringLiteral("pt_BR"), QStringLiteral("x.y")}));
}

TEST(Application, MissingLangDirectoryYieldsNoLanguages)
{
    QTemporaryDir dir;
    EXPECT_TRUE(Application::availableLanguages(dir.filePath(QStringLiteral("nowhere"))).isEmpty());
}

TEST(Application, NumbersUseADotWhateverTheUsersRegion)
{
    const char* german = std::setlocale(LC_ALL, "de_DE.UTF-8");
    ASSERT_NE(german, nullptr) << "the de_DE.UTF-8 locale is missing; scripts/setup.sh generates it";
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    char text[32];
    std::snprintf(text, sizeof text, "%.1f", 1.5);
    ASSERT_STREQ(text, "1,5");
    ASSERT_EQ(QLocale().toString(1.5), QStringLiteral("1,5"));

    Application::useCNumericLocale();

    std::snprintf(text, sizeof text, "%.1f", 1.5);
    EXPECT_STREQ(text, "1.5");
    EXPECT_EQ(std::strtod("2.25", nullptr), 2.25);
    EXPECT_EQ(QLocale().toString(1234.5, 'f', 1), QStringLiteral("1234.5"));
    EXPECT_EQ(QLocale().toDouble(QStringLiteral("2.25")), 2.25);
    EXPECT_EQ(QLocale().language(), QLocale::C);
    std::setlocale(LC_ALL, "C");
}

TEST(Application, ExceptionFromAnEventHandlerIsLoggedAndRethrown)
{
    Thrower receiver;
    QEvent event(QEvent::User);
    StderrCapture capture;
    EXPECT_THROW(QCoreApplication::sendEvent(&receiver, &event), std::runtime_error);
    EXPECT_EQ(capture.text(), "Error sending 6QEvent to 7Thrower: boom\n");
}

TEST(Application, ExceptionsNotDerivedFromStdExceptionPassUntouched)
{
    IntThrower receiver;
    QEvent event(QEvent::User);
    StderrCapture capture;
    EXPECT_THROW(QCoreApplication::sendEvent(&receiver, &event), int);
    EXPECT_EQ(capture.text(), "");
}
