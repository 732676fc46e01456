#include "application.h"

#include <clocale>
#include <exception>
#include <iostream>
#include <typeinfo>

#include <QDir>
#include <QIcon>
#include <QLocale>
#include <QSettings>

namespace {

QString translationDirectory()
{
    return QCoreApplication::applicationDirPath() + QStringLiteral("/lang/");
}

// Run-time type names as the compiler reports them; some ABIs mark local
// types with a leading '*', which is of no use in a log line.
template <typename T>
const char* runtimeTypeName(const T* object)
{
    if (!object)
        return "null";
    const char* name = typeid(*object).name();
    return name[0] == '*' ? name + 1 : name;
}

} // namespace

Application::Application(int& argc, char** argv)
    : QApplication(argc, argv)
{
    setOrganizationName(QStringLiteral("Korvane"));
    setApplicationName(QStringLiteral("Monitor"));
    // The desktop entry's name: Wayland compositors take it as the window's
    // app id and show the entry's name and icon for the window.
    setDesktopFileName(QStringLiteral("com.korvane.Monitor"));

    installTranslator(&appTranslator);
    installTranslator(&qtTranslator);

    QIcon icon;
    icon.addFile(QStringLiteral(":/images/app_icon16.png"));
    icon.addFile(QStringLiteral(":/images/app_icon32.png"));
    icon.addFile(QStringLiteral(":/images/app_icon48.png"));
    setWindowIcon(icon);
}

Application::~Application()
{
    removeTranslator(&appTranslator);
    removeTranslator(&qtTranslator);
}

void Application::loadTranslation(const QString& language)
{
    auto* app = qobject_cast<Application*>(QCoreApplication::instance());
    if (!app)
        return;

    const QString base = translationDirectory();
    const QString programFile = base + QStringLiteral("monitor_%1.qm").arg(language);
    const QString qtFile = base + QStringLiteral("qt_%1.qm").arg(language);

    // The full path and no search: given null strings QTranslator would go
    // on to shorter names ("de_AT" finding the German catalogue), so the
    // directory, the delimiters and the suffix are empty, not null.
    const QString none = QStringLiteral("");
    // A file that fails to load leaves its translator empty; that is fine.
    (void)app->qtTranslator.load(qtFile, none, none, none);
    (void)app->appTranslator.load(programFile, none, none, none);
}

QString Application::loadUserLanguage()
{
    QSettings settings;
    QString language = settings.value(QStringLiteral("main/language"), QStringLiteral("en")).toString();
    if (!language.isEmpty())
        loadTranslation(language);
    return language;
}

QStringList Application::availableLanguages()
{
    return availableLanguages(translationDirectory());
}

QStringList Application::availableLanguages(const QString& directory)
{
    QStringList languages;
    const QStringList files = QDir(directory).entryList({QStringLiteral("monitor_*.qm")});
    for (QString name : files) {
        name.truncate(name.lastIndexOf(QLatin1Char('.')));
        name.remove(0, name.indexOf(QLatin1Char('_')) + 1);
        languages.append(name);
    }
    return languages;
}

QString Application::programTranslationFile() const
{
    return appTranslator.filePath();
}

void Application::useCNumericLocale()
{
    QLocale::setDefault(QLocale(QLocale::C, QLocale::AnyTerritory));
    std::setlocale(LC_NUMERIC, "C"); // NOLINT(concurrency-mt-unsafe): at start-up, before any thread
}

bool Application::notify(QObject* receiver, QEvent* event)
{
    try {
        return QApplication::notify(receiver, event);
    } catch (const std::exception& e) {
        std::cerr << "Error sending " << runtimeTypeName(event) << " to " << runtimeTypeName(receiver) << ": "
                  << e.what() << std::endl;
        throw;
    }
}
