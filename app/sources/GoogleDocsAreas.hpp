#pragma once

#include "platform/AccessibilityApp.hpp"
#include "sources/WalkContext.hpp"

#include <optional>
#include <vector>

// Where a Google Docs document is drawn, for the visual highlight search: Docs draws its
// highlight as pixels and hides the highlighted text.
namespace lectorbell::GoogleDocsAreas {

// The editor's area, or the window below its toolbars when the editor cannot be found.
std::optional<ScreenRect> editorFrame(AccessibilityApp& app, const WalkContext& context);

// The frames of the document's pages, in the order of the tree.
std::vector<ScreenRect> pageFrames(AccessibilityApp& app, const WalkContext& context);

} // namespace lectorbell::GoogleDocsAreas
