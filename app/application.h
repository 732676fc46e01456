#pragma once

#include <QApplication>
#include <QStringList>
#include <QTranslator>

// The program's application object. It names the organisation and the
// application (which fixes where QSettings keeps the user's settings), owns
// the two translators, sets the window icon and reports exceptions that
// escape an event handler before letting them go on.
class Application final : public QApplication
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(Application)

public:
    Application(int& argc, char** argv);
    ~Application() override;

    // Loads lang/monitor_<language>.qm and lang/qt_<language>.qm beside the
    // executable into the running application's translators. A missing file
    // leaves its translator empty, so texts stay in English.
    static void loadTranslation(const QString& language);

    // Reads "main/language" (default "en") from the settings and, unless it
    // is empty, loads that language. Returns the stored value.
    static QString loadUserLanguage();

    // Language codes of the program translations installed beside the executable.
    static QStringList availableLanguages();
    // The same for the monitor_*.qm files of another directory.
    static QStringList availableLanguages(const QString& directory);

    // Path of the program translation loaded last, empty when none is loaded.
    QString programTranslationFile() const;

    // Makes the C locale the default for Qt and for the C library's numbers.
    static void useCNumericLocale();

    bool notify(QObject* receiver, QEvent* event) override;

private:
    QTranslator appTranslator;
    QTranslator qtTranslator;
};
