#include "cli/Stores.hpp"

#include "coordinator/Migration.hpp"
#include "platform/linux/keyring/KeyringSecretStore.hpp"
#include "platform/linux/settings/IniSettingsStore.hpp"
#include "platform/linux/settings/LinuxPlaces.hpp"

#include <QFileInfo>

namespace lectorbell::cli {

Stores makeStores() {
    Stores stores;
    stores.settings =
        std::make_unique<platform::IniSettingsStore>(platform::linuxPlaces::settingsFile());
    stores.dataFolder = platform::linuxPlaces::dataFolder();
    std::unique_ptr<platform::IniSettingsStore> former;
    if (QFileInfo::exists(platform::linuxPlaces::formerSettingsFile())) {
        former = std::make_unique<platform::IniSettingsStore>(
            platform::linuxPlaces::formerSettingsFile());
    }
    coordinator::Migration::run(*stores.settings, former.get(),
                                platform::linuxPlaces::formerDataFolder(), stores.dataFolder);
    stores.keyring = std::make_unique<platform::KeyringSecretStore>(
        QString::fromLatin1(platform::keyringService));
    stores.formerKeyring = std::make_unique<platform::KeyringSecretStore>(
        QString::fromLatin1(platform::formerKeyringService));
    return stores;
}

} // namespace lectorbell::cli
