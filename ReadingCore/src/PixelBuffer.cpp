#include "lectorbell/PixelBuffer.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace lectorbell {

namespace {

// Pixel edges beyond this are far outside any image and only risk overflow.
constexpr double pixelLimit = 1e12;

std::optional<std::int64_t> edge(double value) {
    if (!std::isfinite(value)) {
        return std::nullopt;
    }
    return static_cast<std::int64_t>(std::clamp(value, -pixelLimit, pixelLimit));
}

} // namespace

std::optional<PixelBuffer::PixelRect> PixelBuffer::pixelRect(const ScreenRect& rect) const {
    if (!(area.width() > 0) || !(area.height() > 0)) {
        return std::nullopt;
    }
    const double sx = static_cast<double>(width) / area.width();
    const double sy = static_cast<double>(height) / area.height();
    auto left = edge(std::floor(sx * (rect.minX() - area.minX())));
    auto top = edge(std::floor(sy * (rect.minY() - area.minY())));
    auto right = edge(std::ceil(sx * (rect.maxX() - area.minX())));
    auto bottom = edge(std::ceil(sy * (rect.maxY() - area.minY())));
    if (!left || !top || !right || !bottom) {
        return std::nullopt;
    }
    return PixelRect{*left, *top, *right, *bottom};
}

bool PixelBuffer::isWellFormed() const {
    if (width <= 0 || height <= 0 || width > std::numeric_limits<std::int32_t>::max() ||
        height > std::numeric_limits<std::int32_t>::max()) {
        return false;
    }
    return bytes.size() == static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4;
}

} // namespace lectorbell
