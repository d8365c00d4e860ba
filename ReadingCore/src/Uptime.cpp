#include "lectorbell/Uptime.hpp"

#include <chrono>

namespace lectorbell {

double monotonicUptime() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

} // namespace lectorbell
