#pragma once

#include "platform/SecretStore.hpp"
#include "platform/SettingsStore.hpp"

#include <QString>
#include <memory>

namespace lectorbell::cli {

// The stores of the running system, as the verbs use them.
struct Stores {
    std::unique_ptr<platform::SettingsStore> settings;
    // The folder that holds the queue.
    QString dataFolder;
    // Our key store, and the earlier build's (read once to move a key).
    std::unique_ptr<platform::SecretStore> keyring;
    std::unique_ptr<platform::SecretStore> formerKeyring;
};

// Opens the stores, after carrying the earlier build's settings and data over once, as the
// application does at start-up.
Stores makeStores();

} // namespace lectorbell::cli
