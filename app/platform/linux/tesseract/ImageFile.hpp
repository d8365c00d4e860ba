#pragma once

#include "lectorbell/PixelBuffer.hpp"

#include <string>
#include <variant>

namespace lectorbell::platform::tesseract {

// Reads an image file (PNG, and whatever else Leptonica decodes) as if it were a capture of the
// screen area whose top-left is (0, 0), with `pixelsPerPoint` image pixels per point. Gives the
// reason instead when the file is missing, empty, truncated or not an image.
std::variant<PixelBuffer, std::string> readImageFile(const std::string& path,
                                                     double pixelsPerPoint);

} // namespace lectorbell::platform::tesseract
