#include "ImageFileCapturer.hpp"

#include "lectorbell/ScreenBands.hpp"

#include <QImage>
#include <stdexcept>

namespace lectorbell::testing {

ImageFileCapturer::ImageFileCapturer(const std::string& path, ScreenPoint origin,
                                     double pixelsPerPoint) {
    QImage file{QString::fromStdString(path)};
    if (file.isNull()) {
        throw std::runtime_error("cannot read the image " + path);
    }
    const QImage rgba = file.convertToFormat(QImage::Format_RGBA8888);
    screen_.width = rgba.width();
    screen_.height = rgba.height();
    screen_.area = ScreenRect{origin.x, origin.y, rgba.width() / pixelsPerPoint,
                              rgba.height() / pixelsPerPoint};
    screen_.bytes.reserve(static_cast<std::size_t>(screen_.width * screen_.height * 4));
    for (int y = 0; y < rgba.height(); ++y) {
        const uchar* row = rgba.constScanLine(y);
        screen_.bytes.insert(screen_.bytes.end(), row, row + std::ptrdiff_t{rgba.width()} * 4);
    }
}

platform::CaptureResult ImageFileCapturer::capture(const ScreenRect& region) {
    ++captures_;
    if (std::optional<PixelBuffer> part = ScreenBands::cropped(screen_, region)) {
        return std::move(*part);
    }
    return platform::CaptureFailure{platform::CaptureFailure::Kind::emptyRegion,
                                    "the region lies beside the image"};
}

} // namespace lectorbell::testing
