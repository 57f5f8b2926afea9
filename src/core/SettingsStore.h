#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace ravelcue {

// A flat, per-user store of named text values.
class SettingsStore {
public:
    virtual ~SettingsStore() = default;

    // The stored text, or nothing when no value of that name exists.
    virtual std::optional<std::string> readText(std::string_view name) const = 0;
    // Creates the store on first write. Returns false when the value could not be stored.
    virtual bool writeText(std::string_view name, std::string_view value) = 0;
};

// Values longer than this many bytes are not read; their default stands.
inline constexpr size_t kMaxSettingBytes = 1023;

// The stored text of a value, or the default when it is missing or too long. A stored empty text
// reads as "".
std::string RegistryRead(const SettingsStore& store, std::string_view name,
                         std::string_view defaultValue);
// As above, but with no default: nothing when missing or too long.
std::optional<std::string> RegistryReadOptional(const SettingsStore& store, std::string_view name);
bool RegistryWrite(SettingsStore& store, std::string_view name, std::string_view value);

// A store kept in memory, for tests and tools.
class MemorySettingsStore final : public SettingsStore {
public:
    std::optional<std::string> readText(std::string_view name) const override;
    bool writeText(std::string_view name, std::string_view value) override;

    const std::map<std::string, std::string, std::less<>>& values() const { return values_; }

private:
    std::map<std::string, std::string, std::less<>> values_;
};

} // namespace ravelcue
