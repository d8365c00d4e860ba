#include "OCRTestLines.hpp"
#include "lectorbell/VisualSelection.hpp"

#include <gtest/gtest.h>
#include <limits>

namespace lectorbell {
namespace {

using test::ocrLine;
using VisualSelection::Colour;

// A white image of w × h pixels showing the area (0, 0, w / scale, h / scale).
PixelBuffer whiteImage(std::int64_t w, std::int64_t h, double scale = 1) {
    PixelBuffer image{
        w, h, std::vector<std::uint8_t>(static_cast<std::size_t>(w * h * 4), 255),
        ScreenRect{0, 0, static_cast<double>(w) / scale, static_cast<double>(h) / scale}};
    return image;
}

void paint(PixelBuffer& image, const ScreenRect& rect, Colour colour) {
    auto pixels = *image.pixelRect(rect);
    for (auto y = std::max<std::int64_t>(pixels.top, 0); y < std::min(pixels.bottom, image.height);
         ++y) {
        for (auto x = std::max<std::int64_t>(pixels.left, 0);
             x < std::min(pixels.right, image.width); ++x) {
            auto at = static_cast<std::size_t>((y * image.width + x) * 4);
            image.bytes[at] = static_cast<std::uint8_t>(colour.r);
            image.bytes[at + 1] = static_cast<std::uint8_t>(colour.g);
            image.bytes[at + 2] = static_cast<std::uint8_t>(colour.b);
        }
    }
}

const Colour selectionBlue{179, 215, 255};

TEST(VisualSelection, PixelRect) {
    PixelBuffer image = whiteImage(200, 100, 2);
    image.area = ScreenRect{50, 20, 100, 50};
    EXPECT_EQ(image.pixelRect(ScreenRect{60.2, 25, 10, 5.1}),
              (PixelBuffer::PixelRect{20, 10, 41, 21}));
    EXPECT_FALSE(image.pixelRect(ScreenRect{std::numeric_limits<double>::infinity(), 0, 1, 1}));
    image.area = ScreenRect{};
    EXPECT_FALSE(image.pixelRect(ScreenRect{0, 0, 1, 1}));
}

TEST(VisualSelection, HighlightThresholds) {
    struct Case {
        std::optional<Colour> colour;
        bool highlighted;
    };
    const Case cases[] = {
        {Colour{255, 255, 255}, false}, {selectionBlue, true},
        {std::nullopt, false},          {Colour{89, 120, 200}, false},
        {Colour{90, 120, 200}, true},   {Colour{239, 239, 255}, false},
        {Colour{200, 220, 227}, false}, {Colour{200, 220, 228}, true},
        {Colour{150, 185, 190}, false}, {Colour{150, 184, 190}, true},
        {Colour{150, 180, 189}, false},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(VisualSelection::isHighlight(c.colour), c.highlighted)
            << (c.colour ? c.colour->r : -1) << " " << (c.colour ? c.colour->b : -1);
    }
}

TEST(VisualSelection, BackgroundIgnoresTheDarkText) {
    PixelBuffer image = whiteImage(100, 40);
    paint(image, ScreenRect{10, 10, 60, 20}, selectionBlue);
    paint(image, ScreenRect{20, 14, 30, 12}, Colour{0, 0, 0}); // the glyphs
    auto colour = VisualSelection::background(ScreenRect{10, 10, 60, 20}, image);
    ASSERT_TRUE(colour);
    EXPECT_EQ(*colour, selectionBlue);
    EXPECT_FALSE(VisualSelection::background(ScreenRect{500, 500, 10, 10}, image));
    PixelBuffer broken = image;
    broken.bytes.resize(10);
    EXPECT_FALSE(VisualSelection::background(ScreenRect{10, 10, 60, 20}, broken));
}

TEST(VisualSelection, SmallWordsAreSampledAtEveryPixel) {
    PixelBuffer image = whiteImage(40, 20);
    // One blue pixel in a 10 × 5 box: the brightest two fifths (20 of 50) are all white.
    paint(image, ScreenRect{0, 0, 10, 5}, Colour{0, 0, 0});
    paint(image, ScreenRect{0, 0, 10, 1}, Colour{255, 255, 255});
    paint(image, ScreenRect{0, 1, 10, 1}, selectionBlue);
    auto colour = VisualSelection::background(ScreenRect{0, 0, 10, 5}, image);
    ASSERT_TRUE(colour);
    // 10 white and 10 blue samples are the brightest 20.
    EXPECT_DOUBLE_EQ(colour->r, (255.0 + 179.0) / 2);
}

TEST(VisualSelection, SelectedText) {
    PixelBuffer image = whiteImage(400, 100, 2);
    OCRLine first = ocrLine(u"one two three.", 10, 10);
    OCRLine second = ocrLine(u"four five", 10, 30);
    paint(image, first.words[1].rect.united(first.words[2].rect), selectionBlue);
    EXPECT_EQ(VisualSelection::selectedText({first}, image), u"two three.");
    paint(image, second.words[0].rect, selectionBlue);
    EXPECT_EQ(VisualSelection::selectedText({second, first}, image), u"two three. four");
    EXPECT_EQ(VisualSelection::selectedText({first}, whiteImage(400, 100, 2)), std::nullopt);
    auto bluest = VisualSelection::bluestBackground({first}, image);
    ASSERT_TRUE(bluest);
    EXPECT_EQ(*bluest, (VisualSelection::IntegerColour{179, 215, 255}));
    EXPECT_FALSE(VisualSelection::bluestBackground({}, image));
}

TEST(VisualSelection, TrailingPunctuationEnd) {
    struct Case {
        std::u16string text;
        std::int64_t offset;
        std::int64_t expected;
    };
    const Case cases[] = {
        {u"word.\u201D next", 4, 6},
        {u"word, next", 4, 5},
        {u"word next", 4, 4},
        {u"word!\U0001F600", 4, 5},
        {u"a+=b", 1, 3},
        {u"end", 3, 3},
        {u"end", 99, 3},
        {u"x", -5, 0},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(VisualSelection::trailingPunctuationEnd(c.text, c.offset), c.expected);
    }
}

TEST(VisualSelection, OnPages) {
    std::vector<OCRLine> lines{ocrLine(u"in", 10, 10), ocrLine(u"out", 500, 10)};
    EXPECT_EQ(VisualSelection::onPages(lines, {ScreenRect{0, 0, 100, 100}}).size(), 1U);
    EXPECT_EQ(VisualSelection::onPages(lines, {}).size(), 2U);
}

} // namespace
} // namespace lectorbell
