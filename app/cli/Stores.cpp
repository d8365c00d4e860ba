#include "cli/Stores.hpp"

#include "coordinator/Migration.hpp"

namespace lectorbell::cli {

Stores makeStores(platform::Platform& platform) {
    Stores stores;
    stores.settings = platform.settingsStore(platform::WatchOtherProcesses::no);
    stores.dataFolder = QString::fromStdString(platform.dataFolder());
    std::unique_ptr<platform::SettingsStore> former = platform.formerSettingsStore();
    coordinator::Migration::run(*stores.settings, former.get(),
                                QString::fromStdString(platform.formerDataFolder()),
                                stores.dataFolder);
    return stores;
}

} // namespace lectorbell::cli
