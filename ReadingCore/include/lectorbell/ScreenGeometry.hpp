#pragma once

#include <vector>

namespace lectorbell {

// One global screen space: origin at the top-left of the primary display, y downwards, points.
struct ScreenPoint {
    double x = 0;
    double y = 0;

    friend bool operator==(const ScreenPoint&, const ScreenPoint&) = default;
};

// A rectangle whose width and height are never negative: every constructor standardises.
class ScreenRect {
public:
    ScreenRect() = default;
    ScreenRect(double x, double y, double width, double height);

    double x() const { return x_; }
    double y() const { return y_; }
    double width() const { return width_; }
    double height() const { return height_; }
    double minX() const { return x_; }
    double maxX() const { return x_ + width_; }
    double minY() const { return y_; }
    double maxY() const { return y_ + height_; }
    double midX() const { return x_ + width_ / 2; }
    double midY() const { return y_ + height_ / 2; }

    // Left and top edges inside, right and bottom edges outside.
    bool contains(ScreenPoint point) const;
    double horizontalDistance(ScreenPoint point) const;
    double verticalDistance(ScreenPoint point) const;
    double horizontalOverlap(const ScreenRect& other) const;
    double verticalOverlap(const ScreenRect& other) const;
    ScreenRect united(const ScreenRect& other) const;
    double intersectionOverUnion(const ScreenRect& other) const;

    friend bool operator==(const ScreenRect&, const ScreenRect&) = default;

private:
    double x_ = 0;
    double y_ = 0;
    double width_ = 0;
    double height_ = 0;
};

// Converts the foreign coordinate systems into screen space.
namespace GeometryMapper {

// From the window system's bottom-left-origin space; h is the primary display's height.
ScreenPoint screenPointFromCocoa(ScreenPoint point, double primaryScreenHeight);
ScreenRect screenRectFromCocoa(const ScreenRect& rect, double primaryScreenHeight);
// From a recogniser box normalised to 0..1 with a bottom-left origin, inside the captured area.
ScreenRect screenRectFromVisionNormalized(const ScreenRect& box, const ScreenRect& capturedArea);

} // namespace GeometryMapper

// 1.0 for an empty list, else the element at count / 2 after sorting: the upper middle for an
// even count, which the reading order thresholds depend on. NaN sorts last.
double median(std::vector<double> values);

} // namespace lectorbell
