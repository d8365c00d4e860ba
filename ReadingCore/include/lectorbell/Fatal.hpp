#pragma once

namespace lectorbell {

// For conditions that real input cannot produce (a broken invariant, not bad data): prints
// the reason and aborts, so the fault is caught where it happens instead of corrupting state.
[[noreturn]] void fatalError(const char* reason);

} // namespace lectorbell
