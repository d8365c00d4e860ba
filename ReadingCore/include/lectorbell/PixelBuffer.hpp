#pragma once

#include "lectorbell/ScreenGeometry.hpp"

#include <cstdint>
#include <optional>
#include <vector>

namespace lectorbell {

// A captured image in memory: rows of 4-byte pixels (red, green, blue, alpha), `width` × 4
// bytes per row, showing the screen rectangle `area`.
struct PixelBuffer {
    std::int64_t width = 0;
    std::int64_t height = 0;
    std::vector<std::uint8_t> bytes;
    ScreenRect area;

    // Pixel edges: left and top inside, right and bottom outside. Not clipped to the image.
    struct PixelRect {
        std::int64_t left = 0;
        std::int64_t top = 0;
        std::int64_t right = 0;
        std::int64_t bottom = 0;

        friend bool operator==(const PixelRect&, const PixelRect&) = default;
    };

    // The pixels that cover a screen rectangle; no value when the buffer or the rectangle
    // gives no finite pixel edges (an empty area, NaN or infinite coordinates).
    std::optional<PixelRect> pixelRect(const ScreenRect& rect) const;

    // Width, height and byte count agree.
    bool isWellFormed() const;

    friend bool operator==(const PixelBuffer&, const PixelBuffer&) = default;
};

} // namespace lectorbell
