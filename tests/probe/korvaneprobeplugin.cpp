#include "korvaneprobeplugin.h"

#include <cstdio>

#include <QApplication>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QMainWindow>
#include <QMenuBar>
#include <QPushButton>
#include <QTimer>
#include <QWindow>

namespace {

void print(const QString& text)
{
    std::fputs(text.toUtf8().constData(), stdout);
    std::fflush(stdout);
}

// Translation files are mapped, not read, so the process map names them.
QString mappedCatalogues()
{
    QFile maps(QStringLiteral("/proc/self/maps"));
    if (!maps.open(QIODevice::ReadOnly))
        return QStringLiteral("?");
    QStringList names;
    for (const QByteArray& line : maps.readAll().split('\n')) {
        const QString path = QString::fromLocal8Bit(line.mid(line.indexOf('/')));
        if (line.contains('/') && path.endsWith(QLatin1String(".qm")))
            names << QFileInfo(path).fileName();
    }
    names.removeDuplicates();
    names.sort();
    return names.join(QLatin1Char(' '));
}

QString connectButtonText()
{
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (auto* button = window->findChild<QPushButton*>(QStringLiteral("buttonConnect")))
            return button->text();
    }
    return QStringLiteral("?");
}

void reportStartUp()
{
    char printed[32];
    std::snprintf(printed, sizeof printed, "%.1f", 2.5);
    print(QStringLiteral("decimal: %1\nprintf: %2\ncatalogues: %3\nbutton: %4\n")
              .arg(QLocale().toString(1234.5, 'f', 1), QString::fromLatin1(printed), mappedCatalogues(),
                  connectButtonText()));
    QCoreApplication::exit(0);
}

void reportWindow(QMainWindow* window)
{
    QString text = QStringLiteral("directory: %1\nwindow: %2\n")
                       .arg(QCoreApplication::applicationDirPath(), window->windowTitle());
    for (QAction* menu : window->menuBar()->actions())
        text += QStringLiteral("menu: %1\n").arg(menu->text());
    // A text of Qt's own catalogues, reached through lang/qt_<code>.qm
    text += QStringLiteral("qt: %1\n").arg(QCoreApplication::translate("QPlatformTheme", "Cancel"));
    print(text);

    const QByteArray action = qgetenv("KORVANE_PROBE");
    if (action == "quit") {
        QCoreApplication::quit();
    } else if (action == "crash") {
        volatile int* volatile nowhere = nullptr;
        // cppcheck-suppress nullPointer ; the crash is what the test asks for
        *nowhere = 1;
    }
}

// Looks for the main window until it is exposed, then reports it once.
class WindowWatch final : public QObject
{
public:
    WindowWatch()
    {
        connect(&m_timer, &QTimer::timeout, this, &WindowWatch::look);
        m_timer.start(50);
    }

private:
    void look()
    {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            auto* window = qobject_cast<QMainWindow*>(widget);
            if (window && window->windowHandle() && window->windowHandle()->isExposed()) {
                m_timer.stop();
                reportWindow(window);
                return;
            }
        }
    }

    QTimer m_timer;
};

} // namespace

KorvaneProbePlugin::KorvaneProbePlugin() = default;

KorvaneProbePlugin::~KorvaneProbePlugin() = default;

QObject* KorvaneProbePlugin::create(const QString& key, const QString& /*parameters*/)
{
    if (key.compare(QLatin1String("korvaneprobe"), Qt::CaseInsensitive) != 0)
        return nullptr;
    if (qgetenv("KORVANE_PROBE") == "startup") {
        // Made while the application object is being built; the report waits
        // for the event loop, that is for the end of start-up.
        QMetaObject::invokeMethod(QCoreApplication::instance(), &reportStartUp, Qt::QueuedConnection);
        return new QObject; // Qt warns about a plugin that makes nothing
    }
    return new WindowWatch;
}
