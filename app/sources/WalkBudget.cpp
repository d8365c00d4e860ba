#include "sources/WalkBudget.hpp"

namespace lectorbell {

bool WalkBudget::spend(std::int64_t textLength, std::chrono::steady_clock::time_point now) {
    nodes -= 1;
    chars -= textLength;
    if (nodes >= 1 && chars >= 1 && now <= deadline && !exhausted) {
        return true;
    }
    exhausted = true;
    return false;
}

} // namespace lectorbell
