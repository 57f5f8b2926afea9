#pragma once

#include <ostream>

#include <QString>
#include <QStringList>

// Readable failure messages for Qt's strings in GoogleTest.
inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}

inline void PrintTo(const QStringList& list, std::ostream* out) {
    *out << '{';
    for (qsizetype i = 0; i < list.size(); ++i) {
        *out << (i == 0 ? "" : ", ") << '"' << list[i].toStdString() << '"';
    }
    *out << '}';
}
