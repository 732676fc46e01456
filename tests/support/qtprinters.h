#pragma once

#include <ostream>

#include <QByteArray>
#include <QString>

// Readable Qt strings in GoogleTest's failure messages.
inline void PrintTo(const QString& text, std::ostream* os)
{
    *os << '"' << text.toStdString() << '"';
}

inline void PrintTo(const QByteArray& bytes, std::ostream* os)
{
    *os << '"' << bytes.toStdString() << '"';
}
