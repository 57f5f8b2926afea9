#include "ProgramFiles.h"

#include <QDir>
#include <QFileInfo>
#include <QLoggingCategory>

namespace ravelcue::app {

namespace {

Q_LOGGING_CATEGORY(lcFiles, "ravelcue.files", QtWarningMsg)

} // namespace

QString installedDataFolder() {
    return QStringLiteral(RAVELCUE_INSTALLED_DATA_FOLDER);
}

QString programFolder(const QString& executableFolder) {
    const QFileInfo installed(QDir(executableFolder).filePath(installedDataFolder()));
    return installed.isDir() ? installed.canonicalFilePath() : executableFolder;
}

void reportProgramFiles(const QString& programFolder) {
    const QStringList sounds = QDir(programFolder + QStringLiteral("/Sounds"))
                                   .entryList({QStringLiteral("*.wav")}, QDir::Files, QDir::Name);
    const QStringList topics = QDir(QStringLiteral(":/help"))
                                   .entryList({QStringLiteral("*.html")}, QDir::Files, QDir::Name);
    qCInfo(lcFiles).noquote() << "program folder:" << programFolder;
    qCInfo(lcFiles).noquote() << "spoken commands:" << sounds.join(QLatin1Char(' '));
    qCInfo(lcFiles).noquote() << "help topics:" << topics.join(QLatin1Char(' '));
}

} // namespace ravelcue::app
