#pragma once

#include <optional>
#include <utility>

#include <QDateTime>
#include <QLocale>
#include <QString>

namespace ravelcue::utilities {

// What a list column holds, read from the column's tag (any case). The list control sorts only by
// text, so Date and Number columns are sorted by keys written over the cells for the time of the
// sort; String columns sort by the text as shown, and any other tag sorts nothing.
enum class SortKind { String, Date, Number, None };

SortKind sortKindOfTag(const QString& tag);

// Each digit d becomes 9 - d and "-" a blank; anything else stays. InvertDigits("0.25") is "9.74".
QString InvertDigits(const QString& text);

// "yyyyMMddHHmmss" of a date, or "" when the text is no date.
QString dateSortKey(const QString& text, const QLocale& locale);
// Thirty places before and after the point, so that text order is number order; negative numbers
// start with "&", which sorts before every digit, and have their digits inverted, so that the
// larger magnitude comes first. "" when the text is no number.
QString numberSortKey(const QString& text, const QLocale& locale);
// The key of one cell, or the text itself for a String column.
QString sortKey(SortKind kind, const QString& text, const QLocale& locale);

// A cell's shown text is kept in its tag while its key stands in the cell: text, the character 0,
// then the old tag.
QString parkText(const QString& text, const QString& oldTag);
// The text and the old tag back out of a parked tag.
std::pair<QString, QString> unparkText(const QString& parkedTag);

// Reads a date (with or without a time) written in the locale's own forms, in ISO form, or in the
// common English forms; two-digit years fall in 1930 to 2029.
std::optional<QDateTime> readDate(const QString& text, const QLocale& locale);

// The date and time the way this program shows them: the locale's short date with the full year,
// and the time with seconds.
QString dateTimeText(const QDateTime& when, const QLocale& locale);

} // namespace ravelcue::utilities
