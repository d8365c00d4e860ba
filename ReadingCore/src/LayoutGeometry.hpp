#pragma once

// Small geometric helpers shared by the reading order steps. Internal to ReadingCore.

#include "lectorbell/ReadingOrderEngine.hpp"

#include <algorithm>
#include <cmath>

namespace lectorbell::detail {

inline bool isFinite(const ScreenRect& rect) {
    return std::isfinite(rect.x()) && std::isfinite(rect.y()) && std::isfinite(rect.width()) &&
           std::isfinite(rect.height());
}

// A line's height for ratios and allowances: never below one point.
inline double usableHeight(const ScreenRect& rect) {
    return std::max(rect.height(), 1.0);
}

// The union of the lines' rectangles (an empty rectangle for no lines).
inline ScreenRect unionOf(const std::vector<ReadingOrderEngine::Line>& lines) {
    if (lines.empty()) {
        return {};
    }
    ScreenRect rect = lines.front().rect;
    for (const auto& line : lines) {
        rect = rect.united(line.rect);
    }
    return rect;
}

// Top to bottom, then left to right.
inline bool topThenLeft(const ScreenRect& a, const ScreenRect& b) {
    if (a.minY() != b.minY()) {
        return a.minY() < b.minY();
    }
    return a.minX() < b.minX();
}

} // namespace lectorbell::detail
