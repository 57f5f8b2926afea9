#include "FileListing.h"

#include "SortKeys.h"
#include "core/NumberFormat.h"

#include <QDir>
#include <QFileInfo>

namespace ravelcue::utilities {

QStringList ListFolderFiles(const QString& folder) {
    if (folder.isEmpty()) {
        return {};
    }
    return QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Unsorted);
}

QString FileProperty(const QString& path, const QString& property, const QLocale& locale) {
    if (path.isEmpty()) {
        return {};
    }
    const QFileInfo file(path);
    if (!file.isFile()) {
        return {};
    }
    if (property == QLatin1String("Size")) {
        return QString::number(file.size());
    }
    if (property == QLatin1String("DateLastModified")) {
        return dateTimeText(file.lastModified(), locale);
    }
    return {};
}

QString sizeText(double bytes) {
    return QString::fromStdString(Format(bytes / 1000.0, "#,###")) + QStringLiteral(" KB");
}

std::vector<int> deletionOrder(const std::vector<bool>& ticked) {
    std::vector<int> rows;
    for (int row = static_cast<int>(ticked.size()) - 1; row >= 0; --row) {
        if (ticked[static_cast<size_t>(row)]) {
            rows.push_back(row);
        }
    }
    return rows;
}

} // namespace ravelcue::utilities
