// A test probe that the tests load into the installed program as a Qt generic
// plugin (QT_QPA_GENERIC_PLUGINS=windowprobe). Once the main window is on the
// screen it prints what a user would read there and where the program runs
// from. KORVANE_PROBE=quit then ends the program; KORVANE_PROBE=crash makes it
// crash with a real invalid write.
#include <cstdio>

#include <QApplication>
#include <QGenericPlugin>
#include <QMainWindow>
#include <QMenuBar>
#include <QTimer>
#include <QWindow>

namespace {

class WindowProbe : public QObject
{
public:
    WindowProbe()
    {
        connect(&timer, &QTimer::timeout, this, &WindowProbe::look);
        timer.start(50);
    }

private:
    void look()
    {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            auto* window = qobject_cast<QMainWindow*>(widget);
            if (window && window->windowHandle() && window->windowHandle()->isExposed()) {
                timer.stop();
                report(window);
                return;
            }
        }
    }

    static void report(QMainWindow* window)
    {
        std::printf("directory: %s\n", qPrintable(QCoreApplication::applicationDirPath()));
        std::printf("window: %s\n", qPrintable(window->windowTitle()));
        for (QAction* menu : window->menuBar()->actions())
            std::printf("menu: %s\n", qPrintable(menu->text()));
        // A text of Qt's own catalogues, reached through lang/qt_<code>.qm
        std::printf("qt: %s\n", qPrintable(QCoreApplication::translate("QPlatformTheme", "Cancel")));
        std::fflush(stdout);

        const QByteArray action = qgetenv("KORVANE_PROBE");
        if (action == "quit") {
            QCoreApplication::quit();
        } else if (action == "crash") {
            volatile int* volatile nowhere = nullptr;
            // cppcheck-suppress nullPointer ; the crash is what the test asks for
            *nowhere = 1;
        }
    }

    QTimer timer;
};

} // namespace

class WindowProbePlugin : public QGenericPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "windowprobe.json")

public:
    QObject* create(const QString& key, const QString&) override
    {
        return key == QLatin1String("windowprobe") ? new WindowProbe : nullptr;
    }
};

#include "windowprobe.moc"
