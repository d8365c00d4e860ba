#pragma once

#include "lectorbell/SelectionPolicy.hpp"

#include <string>

namespace lectorbell::atspi {

// The process's short name (its command name), or its number when that cannot be read.
std::string processName(ProcessID pid);

// Whether the process is built on a toolkit that decides as it starts whether to expose its
// accessibility tree (Qt, Chromium and Electron, Firefox): switching accessibility on later
// does not reach it. GTK exposes its tree always.
bool readsAccessibilitySwitchAtStart(ProcessID pid);

} // namespace lectorbell::atspi
