#pragma once

namespace lectorbell::platform::tesseract {

// Tesseract's OpenMP runtime reads OMP_THREAD_LIMIT once, when it is loaded; without a limit of
// one its threads fight over our cores and recognition runs two to three times slower. When the
// variable is not set, this sets it and replaces the process with a fresh run of the same
// executable and arguments; it returns only when the limit is already set or the re-run failed
// (logged). Call it first thing in main.
void ensureOpenMPThreadLimit(char** argv);

} // namespace lectorbell::platform::tesseract
