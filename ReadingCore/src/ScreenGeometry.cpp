#include "lectorbell/ScreenGeometry.hpp"

#include <algorithm>
#include <cmath>

namespace lectorbell {

ScreenRect::ScreenRect(double x, double y, double width, double height)
    : x_(width < 0 ? x + width : x)
    , y_(height < 0 ? y + height : y)
    , width_(std::fabs(width))
    , height_(std::fabs(height)) {}

bool ScreenRect::contains(ScreenPoint point) const {
    return point.x >= minX() && point.x < maxX() && point.y >= minY() && point.y < maxY();
}

double ScreenRect::horizontalDistance(ScreenPoint point) const {
    if (point.x < minX()) {
        return minX() - point.x;
    }
    if (point.x > maxX()) {
        return point.x - maxX();
    }
    return 0;
}

double ScreenRect::verticalDistance(ScreenPoint point) const {
    if (point.y < minY()) {
        return minY() - point.y;
    }
    if (point.y > maxY()) {
        return point.y - maxY();
    }
    return 0;
}

double ScreenRect::horizontalOverlap(const ScreenRect& other) const {
    return std::max(0.0, std::min(maxX(), other.maxX()) - std::max(minX(), other.minX()));
}

double ScreenRect::verticalOverlap(const ScreenRect& other) const {
    return std::max(0.0, std::min(maxY(), other.maxY()) - std::max(minY(), other.minY()));
}

ScreenRect ScreenRect::united(const ScreenRect& other) const {
    double left = std::min(minX(), other.minX());
    double top = std::min(minY(), other.minY());
    return {left, top, std::max(maxX(), other.maxX()) - left, std::max(maxY(), other.maxY()) - top};
}

double ScreenRect::intersectionOverUnion(const ScreenRect& other) const {
    // min and max skip NaN operands, which would make a rectangle with no position overlap.
    for (double v : {x_, y_, width_, height_, other.x_, other.y_, other.width_, other.height_}) {
        if (std::isnan(v)) {
            return 0;
        }
    }
    double w = std::min(maxX(), other.maxX()) - std::max(minX(), other.minX());
    double h = std::min(maxY(), other.maxY()) - std::max(minY(), other.minY());
    if (!(w > 0) || !(h > 0)) {
        return 0;
    }
    double intersection = w * h;
    double denominator = width() * height() + other.width() * other.height() - intersection;
    if (!(denominator > 0)) {
        return 0;
    }
    return intersection / denominator;
}

namespace GeometryMapper {

ScreenPoint screenPointFromCocoa(ScreenPoint point, double primaryScreenHeight) {
    return {point.x, primaryScreenHeight - point.y};
}

ScreenRect screenRectFromCocoa(const ScreenRect& rect, double primaryScreenHeight) {
    return {rect.minX(), primaryScreenHeight - rect.maxY(), rect.width(), rect.height()};
}

ScreenRect screenRectFromVisionNormalized(const ScreenRect& box, const ScreenRect& capturedArea) {
    return {capturedArea.minX() + box.minX() * capturedArea.width(),
            capturedArea.minY() + (1 - box.maxY()) * capturedArea.height(),
            box.width() * capturedArea.width(), box.height() * capturedArea.height()};
}

} // namespace GeometryMapper

double median(std::vector<double> values) {
    if (values.empty()) {
        return 1.0;
    }
    // NaN last keeps the ordering strict and weak, so sorting stays defined on bad boxes.
    auto less = [](double a, double b) { return !std::isnan(a) && (std::isnan(b) || a < b); };
    auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end(), less);
    return *middle;
}

} // namespace lectorbell
