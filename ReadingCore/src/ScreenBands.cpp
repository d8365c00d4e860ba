#include "lectorbell/ScreenBands.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <vector>

namespace lectorbell::ScreenBands {

namespace {

struct Rgb {
    int r = 0;
    int g = 0;
    int b = 0;
};

Rgb pixel(const PixelBuffer& image, std::int64_t x, std::int64_t y) {
    const std::uint8_t* p = &image.bytes[static_cast<std::size_t>((y * image.width + x) * 4)];
    return {p[0], p[1], p[2]};
}

bool close(Rgb a, Rgb b) {
    return std::abs(a.r - b.r) + std::abs(a.g - b.g) + std::abs(a.b - b.b) <= 36;
}

// A row is blank when nearly every pixel matches its most common colour: antialiased text
// leaves many differing pixels, a thin rule line or a stray dot only a few.
bool isBlankRow(const PixelBuffer& image, std::int64_t y) {
    // The background is taken from a handful of samples across the row.
    std::array<Rgb, 8> samples{};
    for (std::size_t i = 0; i < samples.size(); ++i) {
        samples[i] = pixel(image, static_cast<std::int64_t>(i) * (image.width - 1) / 7, y);
    }
    Rgb background = samples[0];
    std::size_t best = 0;
    for (Rgb candidate : samples) {
        auto votes = static_cast<std::size_t>(std::count_if(
            samples.begin(), samples.end(), [&](Rgb s) { return close(s, candidate); }));
        if (votes > best) {
            best = votes;
            background = candidate;
        }
    }
    std::int64_t differing = 0;
    const std::int64_t allowed = std::max<std::int64_t>(1, image.width / 200);
    for (std::int64_t x = 0; x < image.width; ++x) {
        if (!close(pixel(image, x, y), background) && ++differing > allowed) {
            return false;
        }
    }
    return true;
}

double pixelsPerPoint(const PixelBuffer& image, bool vertical) {
    double extent = vertical ? image.area.height() : image.area.width();
    double pixels = static_cast<double>(vertical ? image.height : image.width);
    return extent > 0 ? pixels / extent : 1.0;
}

} // namespace

ScreenRect snapToLineGaps(const PixelBuffer& image, const ScreenRect& band, double reach) {
    if (!image.isWellFormed() || image.width <= 0 || image.height <= 0) {
        return band;
    }
    const double scale = pixelsPerPoint(image, true);
    auto rowOf = [&](double y) {
        return std::clamp<std::int64_t>(
            static_cast<std::int64_t>(std::floor((y - image.area.minY()) * scale)), 0,
            image.height - 1);
    };
    auto yOf = [&](std::int64_t row) {
        return image.area.minY() + static_cast<double>(row) / scale;
    };
    const auto reachRows = static_cast<std::int64_t>(std::max(reach, 0.0) * scale);
    double top = std::max(band.minY(), image.area.minY());
    double bottom = std::min(band.maxY(), image.area.maxY());
    if (!(bottom > top)) {
        return band;
    }
    std::int64_t topRow = rowOf(top);
    for (std::int64_t row = topRow; row >= 0 && row >= topRow - reachRows; --row) {
        if (isBlankRow(image, row)) {
            top = yOf(row);
            break;
        }
    }
    std::int64_t bottomRow = rowOf(bottom);
    if (bottom >= image.area.maxY()) {
        bottom = image.area.maxY();
    } else {
        for (std::int64_t row = bottomRow; row < image.height && row <= bottomRow + reachRows;
             ++row) {
            if (isBlankRow(image, row)) {
                bottom = yOf(row + 1);
                break;
            }
        }
    }
    return ScreenRect{band.minX(), top, band.width(), bottom - top};
}

std::optional<PixelBuffer> cropped(const PixelBuffer& image, const ScreenRect& area) {
    std::optional<PixelBuffer::PixelRect> rect = image.pixelRect(area);
    if (!rect || !image.isWellFormed()) {
        return std::nullopt;
    }
    std::int64_t left = std::clamp<std::int64_t>(rect->left, 0, image.width);
    std::int64_t right = std::clamp<std::int64_t>(rect->right, 0, image.width);
    std::int64_t top = std::clamp<std::int64_t>(rect->top, 0, image.height);
    std::int64_t bottom = std::clamp<std::int64_t>(rect->bottom, 0, image.height);
    if (right <= left || bottom <= top) {
        return std::nullopt;
    }
    PixelBuffer out;
    out.width = right - left;
    out.height = bottom - top;
    out.bytes.resize(static_cast<std::size_t>(out.width * out.height * 4));
    for (std::int64_t y = 0; y < out.height; ++y) {
        const auto* from =
            &image.bytes[static_cast<std::size_t>(((top + y) * image.width + left) * 4)];
        std::copy(from, from + out.width * 4,
                  &out.bytes[static_cast<std::size_t>(y * out.width * 4)]);
    }
    const double sx = pixelsPerPoint(image, false);
    const double sy = pixelsPerPoint(image, true);
    out.area =
        ScreenRect{image.area.minX() + static_cast<double>(left) / sx,
                   image.area.minY() + static_cast<double>(top) / sy,
                   static_cast<double>(out.width) / sx, static_cast<double>(out.height) / sy};
    return out;
}

namespace {

// Dark and saturated, with blue leading: the selection colours of dark highlights (GTK, Qt and
// browsers draw white text on them).
bool isDarkSelection(Rgb c) {
    int high = std::max({c.r, c.g, c.b});
    int low = std::min({c.r, c.g, c.b});
    return c.b == high && high >= 90 && high <= 235 && high - low >= 70 && c.r < 140;
}

double luminance(Rgb c) {
    return 0.2126 * c.r + 0.7152 * c.g + 0.0722 * c.b;
}

struct Run {
    std::int64_t left = 0;
    std::int64_t right = 0; // exclusive
};

} // namespace

int invertDarkSelections(PixelBuffer& image) {
    if (!image.isWellFormed() || image.width < 8 || image.height < 4) {
        return 0;
    }
    // Rows where a long run of selection colour lies; consecutive such rows with overlapping runs
    // make one rectangle.
    struct Box {
        std::int64_t left, right, top, bottom;
    };
    std::vector<Box> boxes;
    std::vector<Box> open;
    const std::int64_t minRun = std::max<std::int64_t>(12, image.width / 100);
    for (std::int64_t y = 0; y < image.height; ++y) {
        std::vector<Run> runs;
        std::int64_t x = 0;
        while (x < image.width) {
            if (!isDarkSelection(pixel(image, x, y))) {
                ++x;
                continue;
            }
            std::int64_t start = x;
            // Text inside the selection interrupts the colour: allow short gaps.
            std::int64_t lastSelected = x;
            while (x < image.width && x - lastSelected <= 24) {
                if (isDarkSelection(pixel(image, x, y))) {
                    lastSelected = x;
                }
                ++x;
            }
            if (lastSelected + 1 - start >= minRun) {
                runs.push_back({start, lastSelected + 1});
            }
            x = lastSelected + 1;
        }
        std::vector<Box> stillOpen;
        for (Run run : runs) {
            auto joined = std::find_if(open.begin(), open.end(), [&](const Box& b) {
                return run.left < b.right && b.left < run.right;
            });
            if (joined != open.end()) {
                Box box = *joined;
                open.erase(joined);
                stillOpen.push_back(
                    {std::min(box.left, run.left), std::max(box.right, run.right), box.top, y + 1});
            } else {
                stillOpen.push_back({run.left, run.right, y, y + 1});
            }
        }
        for (const Box& box : open) {
            boxes.push_back(box);
        }
        open = std::move(stillOpen);
    }
    boxes.insert(boxes.end(), open.begin(), open.end());
    int inverted = 0;
    for (const Box& box : boxes) {
        // A few rows of colour are a rule or a border, not a highlighted line.
        if (box.bottom - box.top < 6) {
            continue;
        }
        // Grey levels from the selection's own brightness (white) up to white text (black):
        // dark text on a white ground, edges kept soft.
        double sum = 0;
        double count = 0;
        for (std::int64_t y = box.top; y < box.bottom; ++y) {
            for (std::int64_t x = box.left; x < box.right; ++x) {
                Rgb c = pixel(image, x, y);
                if (isDarkSelection(c)) {
                    sum += luminance(c);
                    count += 1;
                }
            }
        }
        const double ground = count > 0 ? sum / count : 0;
        const double span = std::max(255.0 - ground, 1.0);
        for (std::int64_t y = box.top; y < box.bottom; ++y) {
            for (std::int64_t x = box.left; x < box.right; ++x) {
                std::uint8_t* p = &image.bytes[static_cast<std::size_t>((y * image.width + x) * 4)];
                double ink = std::clamp((luminance(pixel(image, x, y)) - ground) / span, 0.0, 1.0);
                auto grey = static_cast<std::uint8_t>(std::lround(255.0 * (1.0 - ink)));
                p[0] = grey;
                p[1] = grey;
                p[2] = grey;
            }
        }
        ++inverted;
    }
    return inverted;
}

} // namespace lectorbell::ScreenBands
