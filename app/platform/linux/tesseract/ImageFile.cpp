#include "platform/linux/tesseract/ImageFile.hpp"

#include <cmath>
#include <fstream>
#include <iterator>
#include <leptonica/allheaders.h>
#include <memory>
#include <vector>

namespace lectorbell::platform::tesseract {

namespace {

struct PixDeleter {
    void operator()(Pix* pix) const { pixDestroy(&pix); }
};
using PixPtr = std::unique_ptr<Pix, PixDeleter>;

// Larger captures than this (a 10K display) are refused rather than decoded.
constexpr std::int64_t maxPixels = 10240LL * 10240LL;

} // namespace

std::variant<PixelBuffer, std::string> readImageFile(const std::string& path,
                                                     double pixelsPerPoint) {
    if (!std::isfinite(pixelsPerPoint) || pixelsPerPoint <= 0) {
        return std::string{"the scale must be a positive number"};
    }
    std::ifstream file{path, std::ios::binary};
    if (!file) {
        return "cannot open " + path;
    }
    std::vector<l_uint8> bytes{std::istreambuf_iterator<char>{file},
                               std::istreambuf_iterator<char>{}};
    if (bytes.empty()) {
        return path + " is empty";
    }
    // Leptonica reports decoding problems on standard error; the caller reports them instead.
    setMsgSeverity(L_SEVERITY_NONE);
    PixPtr decoded{pixReadMem(bytes.data(), bytes.size())};
    if (!decoded) {
        return path + " is not a readable image (truncated or not PNG)";
    }
    PixPtr rgb{pixConvertTo32(decoded.get())};
    if (!rgb) {
        return path + " has a pixel format that cannot be converted";
    }
    const std::int64_t width = pixGetWidth(rgb.get());
    const std::int64_t height = pixGetHeight(rgb.get());
    if (width <= 0 || height <= 0 || width * height > maxPixels) {
        return path + " is too large or has no pixels";
    }
    const bool hasAlpha = pixGetSpp(decoded.get()) == 4;
    PixelBuffer image;
    image.width = width;
    image.height = height;
    image.area = ScreenRect{0, 0, static_cast<double>(width) / pixelsPerPoint,
                            static_cast<double>(height) / pixelsPerPoint};
    image.bytes.resize(static_cast<std::size_t>(width * height * 4));
    const l_uint32* data = pixGetData(rgb.get());
    const l_int32 wpl = pixGetWpl(rgb.get());
    for (std::int64_t y = 0; y < height; ++y) {
        for (std::int64_t x = 0; x < width; ++x) {
            l_int32 r = 0, g = 0, b = 0, a = 0;
            extractRGBAValues(data[y * wpl + x], &r, &g, &b, &a);
            std::uint8_t* p = &image.bytes[static_cast<std::size_t>((y * width + x) * 4)];
            p[0] = static_cast<std::uint8_t>(r);
            p[1] = static_cast<std::uint8_t>(g);
            p[2] = static_cast<std::uint8_t>(b);
            p[3] = hasAlpha ? static_cast<std::uint8_t>(a) : 255;
        }
    }
    return image;
}

} // namespace lectorbell::platform::tesseract
