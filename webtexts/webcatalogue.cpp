#include "webcatalogue.h"

#include <QJsonArray>
#include <QString>
#include <QTranslator>

#include "taskdisplaynames.h"
#include "webtextlist.h"

namespace {

// QTranslator, unlike QCoreApplication::translate, leaves %n in the form.
QString lookUp(
    const QTranslator& translator, const char* context, const char* source, const char* comment, int n = -1)
{
    const QString text = translator.translate(context, source, comment, n);
    return text.isEmpty() ? QString::fromUtf8(source) : text;
}

QString key(const char* context, const char* source)
{
    return QString::fromUtf8(context) + QLatin1Char('/') + QString::fromUtf8(source);
}

} // namespace

QJsonObject webCatalogue(
    const WebLanguage& language, const QTranslator& translator, const std::vector<SharedText>& shared)
{
    QJsonArray plurals;
    for (const char* category : language.plurals)
        plurals.append(QString::fromLatin1(category));

    QJsonObject texts;
    for (const SharedText& text : shared) {
        const char* comment = text.comment.isEmpty() ? nullptr : text.comment.constData();
        texts.insert(key(text.context, text.source), lookUp(translator, text.context, text.source, comment));
    }
    for (const WebText& text : webTexts()) {
        if (!text.numerus) {
            texts.insert(
                key(webTextContext, text.source), lookUp(translator, webTextContext, text.source, nullptr));
            continue;
        }
        QJsonObject forms;
        for (const char* category : language.plurals)
            forms.insert(QString::fromLatin1(category),
                lookUp(translator, webTextContext, text.source, nullptr, pluralSample(category)));
        texts.insert(key(webTextContext, text.source), forms);
    }

    initTaskDisplayNames();
    QJsonObject tasks;
    for (const auto& [method, name] : taskDisplayNameTable()) {
        if (!name.isEmpty())
            tasks.insert(QString::fromStdString(method), name);
    }

    QJsonObject catalogue;
    catalogue.insert(QStringLiteral("language"), QString::fromLatin1(language.code));
    catalogue.insert(QStringLiteral("plurals"), plurals);
    catalogue.insert(QStringLiteral("texts"), texts);
    catalogue.insert(QStringLiteral("tasks"), tasks);
    return catalogue;
}
