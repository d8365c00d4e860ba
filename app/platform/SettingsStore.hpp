#pragma once

#include "platform/ObserverList.hpp"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace lectorbell::platform {

// Whether a store kept in a file notices other processes' changes to it (while the event loop
// runs).
enum class WatchOtherProcesses { yes, no };

// One stored value. Structured values (shortcuts, rule lists, history) are JSON text.
using SettingValue = std::variant<bool, std::int64_t, double, std::string>;

// The flat key-value store of the user's choices ("user defaults"). Every write is durable when
// the call returns, as far as the backend allows; a failed write is logged by the backend and
// the value stays readable from this object. Main thread only.
class SettingsStore {
public:
    using ChangeObserver = std::function<void(const std::string& key)>;

    virtual ~SettingsStore() = default;

    virtual std::optional<SettingValue> value(const std::string& key) const = 0;
    virtual void setValue(const std::string& key, const SettingValue& value) = 0;
    virtual void remove(const std::string& key) = 0;
    virtual std::vector<std::string> keys() const = 0;

    bool contains(const std::string& key) const { return value(key).has_value(); }

    // Typed reads: no value when the key is absent or holds another type. Backends that keep
    // text only (an INI file) hand back text, so text that spells a value of the asked type
    // counts: "true"/"false" for a bool, a whole decimal number for an integer.
    std::optional<bool> boolValue(const std::string& key) const;
    std::optional<std::int64_t> intValue(const std::string& key) const;
    std::optional<double> doubleValue(const std::string& key) const;
    std::optional<std::string> stringValue(const std::string& key) const;

    // Observers hear of every key whose value changed: written or removed through this object,
    // or, for a store kept in a file, changed in that file by another process (noticed while
    // the event loop runs). Removing an observer from inside a notification is allowed.
    int observe(ChangeObserver observer) { return observers_.add(std::move(observer)); }
    void unobserve(int id) { observers_.remove(id); }

protected:
    void notifyChanged(const std::string& key) { observers_.notify(key); }

private:
    ObserverList<std::string> observers_;
};

} // namespace lectorbell::platform
