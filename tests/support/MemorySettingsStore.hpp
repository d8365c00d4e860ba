#pragma once

#include "platform/SettingsStore.hpp"

#include <map>

namespace lectorbell::testing {

// The settings store as an in-memory map, typed values kept as given. A test plays another
// process by calling setValue or remove on it directly.
class MemorySettingsStore final : public platform::SettingsStore {
public:
    std::optional<platform::SettingValue> value(const std::string& key) const override {
        auto it = values_.find(key);
        return it == values_.end() ? std::nullopt : std::optional{it->second};
    }

    void setValue(const std::string& key, const platform::SettingValue& value) override {
        auto it = values_.find(key);
        bool changed = it == values_.end() || it->second != value;
        values_[key] = value;
        ++writes_;
        if (changed) {
            notifyChanged(key);
        }
    }

    void remove(const std::string& key) override {
        ++writes_;
        if (values_.erase(key) > 0) {
            notifyChanged(key);
        }
    }

    std::vector<std::string> keys() const override {
        std::vector<std::string> names;
        for (const auto& entry : values_) {
            names.push_back(entry.first);
        }
        return names;
    }

    // Calls of setValue and remove so far.
    int writes() const { return writes_; }

private:
    std::map<std::string, platform::SettingValue> values_;
    int writes_ = 0;
};

} // namespace lectorbell::testing
