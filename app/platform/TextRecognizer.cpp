#include "platform/TextRecognizer.hpp"

namespace lectorbell::platform {

// Defined here so the interface's vtable lives in one object file.
TextRecognizer::~TextRecognizer() = default;

} // namespace lectorbell::platform
