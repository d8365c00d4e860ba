#pragma once

#include "lectorbell/ScreenGeometry.hpp"

namespace lectorbell::platform {
class Platform;
}

namespace lectorbell::cli {

// `ocr --screen`: the window under the point captured once and read from there, band first.
int runScreenOcr(platform::Platform& platform, ScreenPoint at, bool selection, bool json);

} // namespace lectorbell::cli
