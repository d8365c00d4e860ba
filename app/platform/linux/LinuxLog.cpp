#include "platform/linux/LinuxLog.hpp"

#include "lectorbell/CoreLog.hpp"

#include <string>

Q_LOGGING_CATEGORY(lcReading, "lectorbell.reading")
Q_LOGGING_CATEGORY(lcAx, "lectorbell.ax")
Q_LOGGING_CATEGORY(lcOcr, "lectorbell.ocr")
Q_LOGGING_CATEGORY(lcEleven, "lectorbell.eleven")

namespace lectorbell::platform {

void routeCoreLogToQt() {
    setCoreLogSink([](std::string_view category, std::string_view message) {
        const QLoggingCategory& target = category == "ocr"      ? lcOcr()
                                         : category == "ax"     ? lcAx()
                                         : category == "eleven" ? lcEleven()
                                                                : lcReading();
        const std::string line{message};
        qCInfo(target, "%s", line.c_str());
    });
}

} // namespace lectorbell::platform
