#include "platform/linux/settings/SettingsLog.hpp"

Q_LOGGING_CATEGORY(lcSettingsStore, "lectorbell.settings")
