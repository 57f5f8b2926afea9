#include "TempFolder.h"

#include <QDir>

namespace ravelcue::test {

TempFolder::TempFolder() {
    dir_.setAutoRemove(true);
}

QString TempFolder::file(const QString& relative) const {
    return QDir(dir_.path()).filePath(relative);
}

QString TempFolder::folder(const QString& relative) const {
    const QString full = file(relative);
    QDir().mkpath(full);
    return full;
}

} // namespace ravelcue::test
