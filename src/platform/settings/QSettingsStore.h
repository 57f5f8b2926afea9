#pragma once

#include "core/SettingsStore.h"

#include <memory>

#include <QString>

class QSettings;

namespace ravelcue {

// The settings store on QSettings: the registry key HKEY_CURRENT_USER\Software\Ravelcue on
// Windows, an INI file elsewhere (~/.config/Ravelcue/Ravelcue.conf on Linux). Every value is
// text. The store comes into being at its first write. UI thread only.
class QSettingsStore final : public SettingsStore {
public:
    // The user's own store.
    QSettingsStore();
    // An INI file at that path (tests, portable installs).
    explicit QSettingsStore(const QString& iniPath);
    ~QSettingsStore() override;

    std::optional<std::string> readText(std::string_view name) const override;
    bool writeText(std::string_view name, std::string_view value) override;

    QString location() const;

private:
    std::unique_ptr<QSettings> settings_;
};

} // namespace ravelcue
