#include "lectorbell/CoreLog.hpp"

#include <cstdio>
#include <mutex>
#include <string>

namespace lectorbell {

namespace {

void writeToStandardError(std::string_view category, std::string_view message) {
    std::string line = "lectorbell: ";
    line.append(category).append(": ").append(message).push_back('\n');
    std::fwrite(line.data(), 1, line.size(), stderr);
}

// Log lines are rare (a rule gave up, a list was skipped), so one lock is cheap enough and keeps
// a sink from being replaced while another thread is inside it.
struct SinkSlot {
    std::mutex mutex;
    CoreLogSink sink = writeToStandardError;
};

SinkSlot& slot() {
    static SinkSlot instance;
    return instance;
}

} // namespace

void setCoreLogSink(CoreLogSink sink) {
    SinkSlot& s = slot();
    std::lock_guard lock{s.mutex};
    s.sink = sink ? std::move(sink) : CoreLogSink{writeToStandardError};
}

void coreLog(std::string_view category, std::string_view message) {
    SinkSlot& s = slot();
    std::lock_guard lock{s.mutex};
    s.sink(category, message);
}

} // namespace lectorbell
