#include "platform/linux/settings/LinuxPlaces.hpp"

#include <QStandardPaths>

namespace lectorbell::platform::settings {

namespace {

QString configHome() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
}

QString dataHome() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
}

} // namespace

QString settingsFile() {
    return configHome() + QStringLiteral("/lectorbell/lectorbell.conf");
}

QString formerSettingsFile() {
    return configHome() + QStringLiteral("/murmurbench/murmurbench.conf");
}

QString dataFolder() {
    return dataHome() + QStringLiteral("/Lectorbell");
}

QString formerDataFolder() {
    return dataHome() + QStringLiteral("/Murmurbench");
}

} // namespace lectorbell::platform::settings
