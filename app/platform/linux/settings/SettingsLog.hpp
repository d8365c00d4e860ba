#pragma once

#include <QLoggingCategory>

// The Linux settings and key store adapters' own failures ("lectorbell.settings"); lines name
// the operation and a status, never a value.
Q_DECLARE_LOGGING_CATEGORY(lcSettingsStore)
