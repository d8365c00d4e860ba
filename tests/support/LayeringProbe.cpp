// Must not compile: the text sources do not link speech, so speech headers are out of their
// reach. The test build.layersEnforced builds this file and expects the include to fail.
#include "sources/AccessibilityExtractor.hpp"
#include "speech/SystemSpeechEngine.hpp"
