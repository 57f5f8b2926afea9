#include "SortKeys.h"

#include "core/NumberFormat.h"

#include <cmath>
#include <string>

#include <QRegularExpression>
#include <QStringList>

namespace ravelcue::utilities {

namespace {

const QChar kParkSeparator(u'\0');

// Thirty places on either side of the point: every key is as long as every other.
const std::string& numberKeyPattern() {
    static const std::string pattern = std::string(30, '0') + '.' + std::string(30, '0');
    return pattern;
}

bool hasTwoDigitYear(const QString& format) {
    return format.contains(QLatin1String("yy")) && !format.contains(QLatin1String("yyyy"));
}

QString withFullYear(QString format) {
    if (hasTwoDigitYear(format)) {
        format.replace(QLatin1String("yy"), QLatin1String("yyyy"));
    }
    return format;
}

// The locale's long time without its time zone: "h:mm:ss AP t" -> "h:mm:ss AP".
QString timeWithSeconds(const QLocale& locale) {
    static const QRegularExpression zone(QStringLiteral(R"(\s*\(?\bt{1,4}\b\)?)"));
    QString format = locale.timeFormat(QLocale::LongFormat);
    format.remove(zone);
    return format.trimmed();
}

QString listDateTimeFormat(const QLocale& locale) {
    return withFullYear(locale.dateFormat(QLocale::ShortFormat)) + QLatin1Char(' ') +
           timeWithSeconds(locale);
}

std::optional<QDateTime> readWith(const QString& text, const QString& format,
                                  const QLocale& locale) {
    QDateTime when = locale.toDateTime(text, format);
    if (!when.isValid()) {
        return std::nullopt;
    }
    // Qt reads "yy" as 1900-1999; a list of recordings wants the nearer century.
    if (hasTwoDigitYear(format) && when.date().year() < 1930) {
        when = when.addYears(100);
    }
    return when;
}

// Forms tried after the locale's own: ISO-like, then US and European numeric dates, then written
// months, each with and without a time.
const QStringList& commonFormats() {
    static const QStringList formats{
        QStringLiteral("yyyy-MM-dd HH:mm:ss"),
        QStringLiteral("yyyy-MM-dd HH:mm"),
        QStringLiteral("yyyy-MM-dd"),
        QStringLiteral("yyyy/MM/dd HH:mm:ss"),
        QStringLiteral("yyyy/MM/dd"),
        QStringLiteral("M/d/yyyy h:mm:ss AP"),
        QStringLiteral("M/d/yyyy h:mm AP"),
        QStringLiteral("M/d/yyyy H:mm:ss"),
        QStringLiteral("M/d/yyyy H:mm"),
        QStringLiteral("M/d/yyyy"),
        QStringLiteral("M/d/yy"),
        QStringLiteral("d.M.yyyy H:mm:ss"),
        QStringLiteral("d.M.yyyy H:mm"),
        QStringLiteral("d.M.yyyy"),
        QStringLiteral("d MMMM yyyy"),
        QStringLiteral("d MMM yyyy"),
        QStringLiteral("d MMM yyyy HH:mm:ss"),
        QStringLiteral("MMMM d, yyyy"),
        QStringLiteral("MMM d, yyyy"),
    };
    return formats;
}

} // namespace

SortKind sortKindOfTag(const QString& tag) {
    const QString kind = tag.toUpper();
    if (kind == QLatin1String("STRING")) {
        return SortKind::String;
    }
    if (kind == QLatin1String("DATE")) {
        return SortKind::Date;
    }
    if (kind == QLatin1String("NUMBER")) {
        return SortKind::Number;
    }
    return SortKind::None;
}

QString InvertDigits(const QString& text) {
    QString inverted = text;
    for (QChar& c : inverted) {
        if (c >= QLatin1Char('0') && c <= QLatin1Char('9')) {
            c = QChar(u'9' - (c.unicode() - u'0'));
        } else if (c == QLatin1Char('-')) {
            c = QLatin1Char(' ');
        }
    }
    return inverted;
}

std::optional<QDateTime> readDate(const QString& text, const QLocale& locale) {
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty()) {
        return std::nullopt;
    }
    const QStringList own{listDateTimeFormat(locale), locale.dateTimeFormat(QLocale::ShortFormat),
                          locale.dateTimeFormat(QLocale::LongFormat),
                          locale.dateFormat(QLocale::ShortFormat),
                          locale.dateFormat(QLocale::LongFormat)};
    for (const QString& format : own) {
        if (auto when = readWith(trimmed, format, locale)) {
            return when;
        }
    }
    for (const Qt::DateFormat form : {Qt::ISODate, Qt::RFC2822Date, Qt::TextDate}) {
        const QDateTime when = QDateTime::fromString(trimmed, form);
        if (when.isValid()) {
            return when;
        }
    }
    const QLocale english = QLocale::c();
    for (const QString& format : commonFormats()) {
        if (auto when = readWith(trimmed, format, english)) {
            return when;
        }
    }
    return std::nullopt;
}

QString dateTimeText(const QDateTime& when, const QLocale& locale) {
    return locale.toString(when, listDateTimeFormat(locale));
}

QString dateSortKey(const QString& text, const QLocale& locale) {
    const std::optional<QDateTime> when = readDate(text, locale);
    if (!when) {
        return {};
    }
    return when->toString(QStringLiteral("yyyyMMddHHmmss"));
}

QString numberSortKey(const QString& text, const QLocale& locale) {
    const QString trimmed = text.trimmed();
    bool ok = false;
    double value = locale.toDouble(trimmed, &ok);
    if (!ok) {
        value = QLocale::c().toDouble(trimmed, &ok);
    }
    if (!ok || !std::isfinite(value)) {
        return {};
    }
    if (value >= 0) {
        return QString::fromStdString(Format(value, numberKeyPattern()));
    }
    return QLatin1Char('&') +
           InvertDigits(QString::fromStdString(Format(-value, numberKeyPattern())));
}

QString sortKey(SortKind kind, const QString& text, const QLocale& locale) {
    switch (kind) {
    case SortKind::Date:
        return dateSortKey(text, locale);
    case SortKind::Number:
        return numberSortKey(text, locale);
    case SortKind::String:
    case SortKind::None:
        break;
    }
    return text;
}

QString parkText(const QString& text, const QString& oldTag) {
    return text + kParkSeparator + oldTag;
}

std::pair<QString, QString> unparkText(const QString& parkedTag) {
    const qsizetype at = parkedTag.indexOf(kParkSeparator);
    if (at < 0) {
        return {parkedTag, QString()};
    }
    return {parkedTag.left(at), parkedTag.mid(at + 1)};
}

} // namespace ravelcue::utilities
