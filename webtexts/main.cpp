#include <cstdio>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QJsonDocument>
#include <QSaveFile>
#include <QTranslator>

#include "sharedtexts.h"
#include "webcatalogue.h"
#include "weblanguages.h"

// Writes the browser monitor's catalogues, OUT/<code>.json, from the
// program's compiled catalogues, DIR/monitor_<code>.qm.

namespace {

void fail(const QString& message)
{
    std::fprintf(stderr, "korvane-webtexts: %s\n", message.toLocal8Bit().constData());
}

bool writeCatalogue(const QString& path, const QJsonObject& catalogue)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write(QJsonDocument(catalogue).toJson(QJsonDocument::Compact));
    return file.commit();
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Writes OUT/<code>.json for the browser from DIR/monitor_<code>.qm."));
    parser.addHelpOption();
    const QCommandLineOption langDir(
        QStringLiteral("lang-dir"), QStringLiteral("The compiled catalogues."), QStringLiteral("DIR"));
    const QCommandLineOption outDir(
        QStringLiteral("out"), QStringLiteral("Where the JSON catalogues go."), QStringLiteral("OUT"));
    parser.addOption(langDir);
    parser.addOption(outDir);
    parser.process(app);
    if (!parser.isSet(langDir) || !parser.isSet(outDir) || !parser.positionalArguments().isEmpty()) {
        fail(QStringLiteral("usage: korvane-webtexts --lang-dir DIR --out OUT"));
        return 1;
    }
    const QString out = parser.value(outDir);
    if (!QDir().mkpath(out)) {
        fail(QStringLiteral("cannot make %1").arg(out));
        return 1;
    }

    const std::vector<SharedText> shared = sharedTexts();
    for (const WebLanguage& language : webLanguages()) {
        const QString code = QString::fromLatin1(language.code);
        const QString catalogue
            = parser.value(langDir) + QStringLiteral("/monitor_") + code + QStringLiteral(".qm");
        QTranslator translator;
        if (!translator.load(catalogue)) {
            fail(QStringLiteral("cannot read %1").arg(catalogue));
            return 1;
        }
        QCoreApplication::installTranslator(&translator);
        const QJsonObject json = webCatalogue(language, translator, shared);
        QCoreApplication::removeTranslator(&translator);
        const QString path = out + QLatin1Char('/') + code + QStringLiteral(".json");
        if (!writeCatalogue(path, json)) {
            fail(QStringLiteral("cannot write %1").arg(path));
            return 1;
        }
    }
    return 0;
}
