#pragma once

#include <vector>

#include <QByteArray>

// The desktop's texts that the browser shows as well, each in the context the
// desktop translates it in.
struct SharedText final
{
    QByteArray context;
    QByteArray source;
    QByteArray comment;
};

// The column headers and priority words are read from the functions that
// show them, so call this before any translator is installed.
std::vector<SharedText> sharedTexts();
