#pragma once

#include <QString>
#include <QTemporaryDir>

namespace ravelcue::test {

// A folder that lives as long as the test; its path never ends in a separator.
class TempFolder {
public:
    TempFolder();
    QString path() const { return dir_.path(); }
    // path() / relative
    QString file(const QString& relative) const;
    // Creates the subfolder if needed and returns its path.
    QString folder(const QString& relative) const;

private:
    QTemporaryDir dir_;
};

} // namespace ravelcue::test
