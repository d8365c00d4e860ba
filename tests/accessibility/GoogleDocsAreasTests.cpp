#include "ExtractorHarness.hpp"
#include "sources/GoogleDocsAreas.hpp"

#include <gtest/gtest.h>

namespace lectorbell::testing {
namespace {

TEST(GoogleDocsAreas, editorAndPagesAreFoundByTheirClasses) {
    ExtractorHarness probe{FixtureTree::fromFile("google_docs.json")};
    std::unique_ptr<AccessibilityApp> app = probe.tree->application(400);
    std::optional<ScreenRect> editor =
        GoogleDocsAreas::editorFrame(*app, probe.extractor.context());
    EXPECT_EQ(editor, (ScreenRect{100, 150, 900, 700}));
    EXPECT_TRUE(probe.tracedStart("google docs: editor area 100,150 900x700 at y=150 via class"));
    // The page of zero height is left out.
    EXPECT_EQ(GoogleDocsAreas::pageFrames(*app, probe.extractor.context()),
              (std::vector<ScreenRect>{{150, 160, 800, 1000}}));
    EXPECT_TRUE(probe.tracedStart("1 visible page(s) found ("));
}

TEST(GoogleDocsAreas, withoutAnEditorTheWindowBelowItsToolbarsIsUsed) {
    ExtractorHarness probe{FixtureTree::fromFile("editor.json")};
    std::unique_ptr<AccessibilityApp> app = probe.tree->application(200);
    EXPECT_EQ(GoogleDocsAreas::editorFrame(*app, probe.extractor.context()),
              (ScreenRect{0, 130, 900, 470}));
    EXPECT_TRUE(probe.traced("google docs: editor area not usable (none); using whole window"));
}

} // namespace
} // namespace lectorbell::testing
