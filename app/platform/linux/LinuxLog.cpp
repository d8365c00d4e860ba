#include "platform/linux/LinuxLog.hpp"

Q_LOGGING_CATEGORY(lcLinuxSpeech, "lectorbell.reading")
Q_LOGGING_CATEGORY(lcLinuxAccessibility, "lectorbell.accessibility")
