#include "coordinator/Migration.hpp"

#include "coordinator/CoordinatorLog.hpp"
#include "coordinator/SettingKeys.hpp"

#include <QDir>
#include <QFileInfo>

namespace lectorbell::coordinator::Migration {

void run(platform::SettingsStore& settings, const platform::SettingsStore* former,
         const QString& formerDataFolder, const QString& dataFolder) {
    if (settings.boolValue(SettingKey::migratedFromMurmurbench).value_or(false)) {
        return;
    }
    bool loginChoiceCarried = false;
    int copied = 0;
    if (former) {
        for (const std::string& key : former->keys()) {
            std::optional<platform::SettingValue> value = former->value(key);
            if (!value || settings.contains(key)) {
                continue;
            }
            settings.setValue(key, *value);
            ++copied;
            loginChoiceCarried = loginChoiceCarried || key == SettingKey::startAtLoginChosen;
        }
    }
    if (loginChoiceCarried && settings.boolValue(SettingKey::startAtLoginChosen).value_or(false)) {
        settings.setValue(SettingKey::reRegisterLoginItem, true);
    }
    if (QFileInfo{formerDataFolder}.isDir() && !QFileInfo::exists(dataFolder)) {
        QDir{}.mkpath(QFileInfo{dataFolder}.absolutePath());
        if (!QDir{}.rename(formerDataFolder, dataFolder)) {
            qCWarning(lcStores, "migration: the earlier data folder could not be moved");
        }
    }
    settings.setValue(SettingKey::migratedFromMurmurbench, true);
    qCInfo(lcStores, "migration: %d settings carried over", copied);
}

} // namespace lectorbell::coordinator::Migration
