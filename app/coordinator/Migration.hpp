#pragma once

#include "platform/SettingsStore.hpp"

#include <QString>

namespace lectorbell::coordinator::Migration {

// Carries the earlier build's settings and data over, once: called at start-up before the
// settings are read. Keys the current settings already hold are kept; the earlier build's data
// folder is moved into place only while the new one does not exist. `former` is null when the
// earlier build left no settings. Failures of the folder move are logged and otherwise ignored.
void run(platform::SettingsStore& settings, const platform::SettingsStore* former,
         const QString& formerDataFolder, const QString& dataFolder);

} // namespace lectorbell::coordinator::Migration
