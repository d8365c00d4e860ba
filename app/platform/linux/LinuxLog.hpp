#pragma once

#include <QLoggingCategory>

// The application's log categories. Lines carry metadata only (source, precision, timings, sizes,
// counts), never the text being read.
Q_DECLARE_LOGGING_CATEGORY(lcReading) // "lectorbell.reading": speech, sessions, shaping
Q_DECLARE_LOGGING_CATEGORY(lcAx)      // "lectorbell.ax": accessibility lookups
Q_DECLARE_LOGGING_CATEGORY(lcOcr)     // "lectorbell.ocr": capture and recognition

namespace lectorbell::platform {

// Sends the reading core's log lines ("reading", "ocr", "ax", "eleven") to the categories of the
// same name, so they reach the same place as the application's own.
void routeCoreLogToQt();

} // namespace lectorbell::platform
