#include "lectorbell/ScreenBands.hpp"

#include <cmath>
#include <gtest/gtest.h>

namespace lectorbell {
namespace {

// A white image with "text" (grey noise) on rows [top, bottom) of each line.
PixelBuffer page(std::int64_t width, std::int64_t height, std::vector<std::pair<int, int>> lines,
                 double scale = 1) {
    PixelBuffer image;
    image.width = width;
    image.height = height;
    image.bytes.assign(static_cast<std::size_t>(width * height * 4), 255);
    for (auto [top, bottom] : lines) {
        for (int y = top; y < bottom; ++y) {
            for (std::int64_t x = 10; x < width - 10; x += 3) {
                std::uint8_t* p = &image.bytes[static_cast<std::size_t>((y * width + x) * 4)];
                p[0] = p[1] = p[2] = 40;
            }
        }
    }
    image.area = ScreenRect{100, 50, static_cast<double>(width) / scale,
                            static_cast<double>(height) / scale};
    return image;
}

TEST(ScreenBands, BandEdgesMoveToTheGapsBetweenLines) {
    PixelBuffer image = page(400, 300, {{20, 40}, {60, 80}, {100, 120}, {200, 220}});
    struct Case {
        double top, bottom, reach;
        double snappedTop, snappedBottom;
    };
    const Case cases[] = {
        {50 + 30, 50 + 110, 40, 50 + 19, 50 + 121}, // both edges cut lines: move outwards
        {50 + 50, 50 + 90, 40, 50 + 50, 50 + 91},   // top already in a gap
        {50 + 30, 50 + 110, 5, 50 + 30, 50 + 110},  // no gap within reach: unchanged
        {0, 50 + 130, 40, 50, 50 + 131},            // clipped to the image
        {50 + 210, 400, 40, 50 + 199, 350},
    };
    for (const Case& c : cases) {
        ScreenRect band = ScreenBands::snapToLineGaps(
            image, ScreenRect{100, c.top, 400, c.bottom - c.top}, c.reach);
        EXPECT_DOUBLE_EQ(band.minY(), c.snappedTop) << c.top;
        EXPECT_DOUBLE_EQ(band.maxY(), c.snappedBottom) << c.bottom;
    }
}

TEST(ScreenBands, CropKeepsScreenPointsAtAnyScale) {
    PixelBuffer image = page(400, 300, {}, 2); // 2 pixels per point: area 200 × 150 points
    std::optional<PixelBuffer> part = ScreenBands::cropped(image, ScreenRect{150, 100, 20, 10});
    ASSERT_TRUE(part);
    EXPECT_EQ(part->width, 40);
    EXPECT_EQ(part->height, 20);
    EXPECT_EQ(part->area, ScreenRect(150, 100, 20, 10));
    EXPECT_TRUE(part->isWellFormed());
    // Partly outside: clipped; wholly outside or NaN: nothing.
    part = ScreenBands::cropped(image, ScreenRect{280, 180, 100, 100});
    ASSERT_TRUE(part);
    EXPECT_EQ(part->area, ScreenRect(280, 180, 20, 20));
    EXPECT_FALSE(ScreenBands::cropped(image, ScreenRect{900, 900, 10, 10}));
    EXPECT_FALSE(ScreenBands::cropped(image, ScreenRect{NAN, 100, 10, 10}));
}

TEST(ScreenBands, DarkSelectionsBecomeDarkTextOnWhite) {
    PixelBuffer image = page(200, 60, {});
    auto paint = [&](int x0, int y0, int x1, int y1, std::uint8_t r, std::uint8_t g,
                     std::uint8_t b) {
        for (int y = y0; y < y1; ++y) {
            for (int x = x0; x < x1; ++x) {
                std::uint8_t* p = &image.bytes[static_cast<std::size_t>((y * 200 + x) * 4)];
                p[0] = r;
                p[1] = g;
                p[2] = b;
            }
        }
    };
    paint(20, 10, 180, 30, 0x35, 0x84, 0xE4); // dark blue highlight
    paint(40, 15, 44, 25, 255, 255, 255);     // a white stroke of text on it
    paint(20, 40, 180, 42, 0x35, 0x84, 0xE4); // a two-pixel rule: not a highlight
    EXPECT_EQ(ScreenBands::invertDarkSelections(image), 1);
    auto at = [&](int x, int y) {
        return image.bytes[static_cast<std::size_t>((y * 200 + x) * 4)];
    };
    EXPECT_EQ(at(30, 20), 255);  // the highlight is now white
    EXPECT_EQ(at(42, 20), 0);    // the text is now black
    EXPECT_EQ(at(30, 41), 0x35); // the rule is untouched
    EXPECT_EQ(at(5, 5), 255);
    PixelBuffer plain = page(200, 60, {{10, 30}});
    EXPECT_EQ(ScreenBands::invertDarkSelections(plain), 0);
}

} // namespace
} // namespace lectorbell
