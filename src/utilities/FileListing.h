#pragma once

#include <vector>

#include <QLocale>
#include <QString>
#include <QStringList>

namespace ravelcue::utilities {

// The names of the files in a folder, in the order the file system gives them. Every file is
// listed whatever its extension, hidden ones included; subfolders are not looked at. A missing
// folder lists nothing.
QStringList ListFolderFiles(const QString& folder);

// One property of a file as text: "Size" in bytes, or "DateLastModified" as this program shows
// dates. An empty path, a missing file or another property name gives "".
QString FileProperty(const QString& path, const QString& property,
                     const QLocale& locale = QLocale());

// The size column: bytes / 1000 through "#,###", then " KB". Under 500 bytes the number rounds to
// nothing and the text is " KB" alone; 1500000 bytes are "1,500 KB".
QString sizeText(double bytes);

// The rows the delete walk visits: the ticked ones, from the last to the first, so that removing
// a row never moves a row still to come.
std::vector<int> deletionOrder(const std::vector<bool>& ticked);

} // namespace ravelcue::utilities
