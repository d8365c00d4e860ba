#pragma once

#include "platform/Platform.hpp"
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
};

// Opens the stores, after carrying the earlier build's settings and data over once, as the
// application does at start-up.
Stores makeStores(platform::Platform& platform);

} // namespace lectorbell::cli
