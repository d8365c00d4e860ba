#pragma once

#include "lectorbell/PixelBuffer.hpp"
#include "lectorbell/ScreenGeometry.hpp"

#include <optional>

namespace lectorbell {

// Image steps of reading a captured window band by band: where a band's edges may fall without
// cutting a line of text in half, cropping, and making dark selections readable.
namespace ScreenBands {

// The band's top moved up, and its bottom moved down, to the nearest pixel row with no text
// (every pixel close to the row's background), looking at most `reach` points away; an edge
// with no blank row within reach stays where it was. The result is clipped to the image.
ScreenRect snapToLineGaps(const PixelBuffer& image, const ScreenRect& band, double reach);

// The part of the image that covers `area` (clipped to the image), with `area` as its area; no
// value when nothing of it lies in the image.
std::optional<PixelBuffer> cropped(const PixelBuffer& image, const ScreenRect& area);

// Inverts every rectangle of dark, saturated selection colour (white text on a dark blue
// highlight), so the recogniser sees dark text on a light ground. Returns how many it inverted.
int invertDarkSelections(PixelBuffer& image);

} // namespace ScreenBands

} // namespace lectorbell
