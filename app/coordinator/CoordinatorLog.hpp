#pragma once

#include <QLoggingCategory>

// The stores' log lines ("lectorbell.stores"): operations, sizes and counts, never text.
Q_DECLARE_LOGGING_CATEGORY(lcStores)
// Problem reports and shared pronunciations ("lectorbell.feedback").
Q_DECLARE_LOGGING_CATEGORY(lcFeedback)
