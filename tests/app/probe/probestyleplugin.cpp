#include "probestyleplugin.h"

#include <cstdio>

#include <QApplication>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QPushButton>
#include <QStyleFactory>

namespace {

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

void report()
{
    char printed[32];
    std::snprintf(printed, sizeof printed, "%.1f", 2.5);
    const QString text = QStringLiteral("decimal: %1\nprintf: %2\ncatalogues: %3\nbutton: %4\n")
                             .arg(QLocale().toString(1234.5, 'f', 1), QString::fromLatin1(printed),
                                 mappedCatalogues(), connectButtonText());
    std::fputs(text.toUtf8().constData(), stdout);
    std::fflush(stdout);
    QCoreApplication::exit(0);
}

} // namespace

ProbeStylePlugin::ProbeStylePlugin() = default;

ProbeStylePlugin::~ProbeStylePlugin() = default;

QStyle* ProbeStylePlugin::create(const QString& key)
{
    if (key.compare(QLatin1String("korvaneprobe"), Qt::CaseInsensitive) != 0)
        return nullptr;
    // Made while the application object is being built; the report waits
    // for the event loop, that is for the end of start-up.
    QMetaObject::invokeMethod(QCoreApplication::instance(), &report, Qt::QueuedConnection);
    return QStyleFactory::create(QStringLiteral("Fusion"));
}
