#include "QSettingsStore.h"

#include <QSettings>
#include <QStandardPaths>

namespace ravelcue {

namespace {

QString keyOf(std::string_view name) {
    return QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
}

} // namespace

QSettingsStore::QSettingsStore()
#ifdef Q_OS_WIN
    : settings_(std::make_unique<QSettings>(QStringLiteral("HKEY_CURRENT_USER\\Software\\Ravelcue"),
                                            QSettings::NativeFormat))
#else
    : settings_(std::make_unique<QSettings>(
          QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
              QStringLiteral("/Ravelcue/Ravelcue.conf"),
          QSettings::IniFormat))
#endif
{
}

QSettingsStore::QSettingsStore(const QString& iniPath)
    : settings_(std::make_unique<QSettings>(iniPath, QSettings::IniFormat)) {}

QSettingsStore::~QSettingsStore() = default;

std::optional<std::string> QSettingsStore::readText(std::string_view name) const {
    const QString key = keyOf(name);
    if (!settings_->contains(key)) {
        return std::nullopt;
    }
    const QVariant value = settings_->value(key);
    // A hand-edited INI value with commas reads back as a list; keep it as the text it was.
    if (value.typeId() == QMetaType::QStringList) {
        return value.toStringList().join(QLatin1Char(',')).toStdString();
    }
    return value.toString().toStdString();
}

bool QSettingsStore::writeText(std::string_view name, std::string_view value) {
    settings_->setValue(keyOf(name),
                        QString::fromUtf8(value.data(), static_cast<qsizetype>(value.size())));
    settings_->sync();
    return settings_->status() == QSettings::NoError;
}

QString QSettingsStore::location() const {
    return settings_->fileName();
}

} // namespace ravelcue
