#include "coordinator/CoordinatorLog.hpp"

Q_LOGGING_CATEGORY(lcStores, "lectorbell.stores", QtWarningMsg)
Q_LOGGING_CATEGORY(lcFeedback, "lectorbell.feedback", QtWarningMsg)
