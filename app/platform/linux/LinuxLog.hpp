#pragma once

#include <QLoggingCategory>

// Metadata-only log lines of the Linux speech adapters ("lectorbell.reading").
Q_DECLARE_LOGGING_CATEGORY(lcLinuxSpeech)
// The accessibility adapter's own failures ("lectorbell.accessibility"), never any text read.
Q_DECLARE_LOGGING_CATEGORY(lcLinuxAccessibility)
