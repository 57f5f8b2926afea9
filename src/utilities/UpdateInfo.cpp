#include "UpdateInfo.h"

#include <algorithm>

#include <QStringList>

namespace ravelcue::utilities {

namespace {
const QString kSeparator = QStringLiteral("&&&");
}

std::optional<AppText> parseAppText(const QString& text) {
    QString body = text;
    // A file saved by a Windows editor may start with a byte order mark.
    if (body.startsWith(QChar(0xFEFF))) {
        body.remove(0, 1);
    }
    if (body.isEmpty() || !body.contains(kSeparator)) {
        return std::nullopt;
    }
    const QStringList fields = body.split(kSeparator);
    AppText app;
    app.version = fields.at(0).trimmed();
    app.information = fields.at(1);
    app.information.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    return app;
}

std::optional<QList<int>> parseVersion(const QString& dotted) {
    const QString trimmed = dotted.trimmed();
    if (trimmed.isEmpty()) {
        return std::nullopt;
    }
    QList<int> numbers;
    for (const QString& part : trimmed.split(QLatin1Char('.'))) {
        bool ok = part.size() > 0;
        for (const QChar c : part) {
            ok = ok && c.isDigit() && c.unicode() < 128;
        }
        const int number = ok ? part.toInt(&ok) : 0;
        if (!ok) {
            return std::nullopt;
        }
        numbers.append(number);
    }
    return numbers;
}

bool isNewerVersion(const QString& available, const QString& current) {
    const std::optional<QList<int>> offered = parseVersion(available);
    const std::optional<QList<int>> own = parseVersion(current);
    if (!offered || !own) {
        return false;
    }
    const qsizetype length = std::max(offered->size(), own->size());
    for (qsizetype i = 0; i < length; ++i) {
        const int a = offered->value(i, 0);
        const int b = own->value(i, 0);
        if (a != b) {
            return a > b;
        }
    }
    return false;
}

} // namespace ravelcue::utilities
