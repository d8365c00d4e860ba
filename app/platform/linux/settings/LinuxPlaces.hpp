#pragma once

#include <QString>

// Where Lectorbell keeps its files on Linux (XDG base directories), and where the earlier build
// kept them.
namespace lectorbell::platform::settings {

// $XDG_CONFIG_HOME/lectorbell/lectorbell.conf
QString settingsFile();
// $XDG_CONFIG_HOME/murmurbench/murmurbench.conf, the earlier build's settings.
QString formerSettingsFile();
// $XDG_DATA_HOME/Lectorbell, which holds the queue.
QString dataFolder();
// $XDG_DATA_HOME/Murmurbench, the earlier build's data folder.
QString formerDataFolder();

} // namespace lectorbell::platform::settings
