#pragma once

#include <optional>

#include <QList>
#include <QString>

namespace ravelcue::utilities {

// What app.txt at the download location says: fields separated by "&&&", the available version
// first (blanks around it trimmed), then the text for the user. Later fields are not read.
struct AppText {
    QString version;
    QString information; // lines ended by "\n"
};

// Nothing when the text is empty or holds no "&&&": the read failed or found something else.
std::optional<AppText> parseAppText(const QString& text);

// The numbers of a dotted version, "1.10.0" -> {1, 10, 0}; nothing when a part is no whole number.
std::optional<QList<int>> parseVersion(const QString& dotted);

// Whether available is newer than current, compared number by number with missing numbers as 0,
// so that 1.10.0 is newer than 1.9.0 and 1.2 equals 1.2.0. A version that cannot be read is never
// newer.
bool isNewerVersion(const QString& available, const QString& current);

} // namespace ravelcue::utilities
