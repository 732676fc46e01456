#pragma once

#include <vector>

#include <QJsonObject>

#include "sharedtexts.h"
#include "weblanguages.h"

class QTranslator;

// One language's catalogue for the browser: its code, its plural categories,
// the texts keyed "<context>/<source>" (a numerus text as an object from
// category to form, %n kept) and the task display names by method. A text
// the catalogue leaves untranslated reads as its source.
// The translator must be installed: the task names are filled in through it.
QJsonObject webCatalogue(
    const WebLanguage& language, const QTranslator& translator, const std::vector<SharedText>& shared);
