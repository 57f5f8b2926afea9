#include "SettingsStore.h"

namespace ravelcue {

std::optional<std::string> RegistryReadOptional(const SettingsStore& store, std::string_view name) {
    std::optional<std::string> text = store.readText(name);
    if (!text || text->size() > kMaxSettingBytes) {
        return std::nullopt;
    }
    return text;
}

std::string RegistryRead(const SettingsStore& store, std::string_view name,
                         std::string_view defaultValue) {
    std::optional<std::string> text = RegistryReadOptional(store, name);
    return text ? *text : std::string(defaultValue);
}

bool RegistryWrite(SettingsStore& store, std::string_view name, std::string_view value) {
    return store.writeText(name, value);
}

std::optional<std::string> MemorySettingsStore::readText(std::string_view name) const {
    const auto found = values_.find(name);
    if (found == values_.end()) {
        return std::nullopt;
    }
    return found->second;
}

bool MemorySettingsStore::writeText(std::string_view name, std::string_view value) {
    values_.insert_or_assign(std::string(name), std::string(value));
    return true;
}

} // namespace ravelcue
