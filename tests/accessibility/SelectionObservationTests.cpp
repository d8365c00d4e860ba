#include "ExtractorHarness.hpp"
#include "lectorbell/SelectionPolicy.hpp"

#include <fstream>
#include <gtest/gtest.h>

namespace lectorbell::testing {
namespace {

using nlohmann::json;

json withFocus(json document, const std::string& id) {
    document["focused"] = id;
    return document;
}

json webPage() {
    std::ifstream file{std::string{LECTORBELL_FIXTURE_DIR} + "/web_page.json"};
    return json::parse(file);
}

TEST(SelectionObservation, focusedEditorSelectionIsReadWithItsRange) {
    ExtractorHarness probe{FixtureTree::fromFile("editor.json")};
    SelectionLookup lookup = probe.extractor.observeSelection(200, {150, 50});
    const SelectionObservation& o = lookup.observation;
    EXPECT_EQ(o.focusedElementPID, 200);
    EXPECT_EQ(o.focusedRole, "AXTextArea");
    EXPECT_EQ(o.selectedText, u"more words");
    EXPECT_EQ(o.textForSelectedRange, u"more words");
    EXPECT_EQ(o.focusedValueLength, 86);
    EXPECT_TRUE(o.pointerOverFocusedElement);
    EXPECT_EQ(SelectionPolicy::decide(o), SelectionDecision::readSelection(u"more words"));
}

TEST(SelectionObservation, passwordFieldIsOnlyReportedAsSecure) {
    ExtractorHarness probe{FixtureTree::fromFile("password_form.json")};
    SelectionLookup lookup = probe.extractor.observeSelection(300, {150, 30});
    EXPECT_TRUE(lookup.observation.isSecure);
    EXPECT_FALSE(lookup.observation.selectedText);
    EXPECT_FALSE(lookup.observation.selectedRange);
    EXPECT_EQ(probe.tree->secureReads(), 0);
    SelectionDecision decision = SelectionPolicy::decide(lookup.observation);
    ASSERT_TRUE(decision.error());
    EXPECT_EQ(decision.error()->userMessage(), "Secure field \u2014 not reading");
}

TEST(SelectionObservation, webPageMarkerSelectionStandsInForAnEmptySelectedText) {
    json page = webPage();
    json& article = page["root"]["children"][0]["children"][0]["children"][2];
    article["id"] = "article";
    page["focused"] = "article";
    // The focused group answers an empty selected text; the page holds the marker selection.
    article["selectedText"] = "";
    page["root"]["children"][0]["children"][0]["markerSelection"] = "brown trout";
    ExtractorHarness probe{std::make_unique<FixtureTree>(page)};
    SelectionLookup lookup = probe.extractor.observeSelection(100, {300, 160});
    EXPECT_EQ(lookup.observation.selectedText, u"brown trout");
    EXPECT_FALSE(lookup.observation.selectedRange);
    EXPECT_TRUE(probe.traced("selection: found in web page content (11 chars)"));
    EXPECT_EQ(SelectionPolicy::decide(lookup.observation),
              SelectionDecision::readSelection(u"brown trout"));
}

TEST(SelectionObservation, googleDocsWithoutScreenReaderSupportGetsTheHint) {
    json page = webPage();
    json& area = page["root"]["children"][0]["children"][0];
    area["url"] = "https://docs.google.com/document/d/abc/edit";
    page["markers"] = false;
    page = withFocus(page, "article");
    ExtractorHarness probe{std::make_unique<FixtureTree>(page)};
    SelectionLookup lookup = probe.extractor.observeSelection(100, {300, 160});
    EXPECT_FALSE(lookup.observation.selectedText);
    ASSERT_TRUE(lookup.googleDocsHint);
    EXPECT_TRUE(lookup.googleDocsHint->starts_with("Google Docs hides highlighted text"));
    EXPECT_TRUE(probe.traced(
        "google docs: focused AXGroup, AXSelectedText=false, markers=false, value=0 chars"));
}

TEST(SelectionObservation, focusOwnedByAnotherProcessLeavesThePolicyToReadFromThePointer) {
    json page = webPage();
    page["root"]["children"][0]["children"][0]["children"][2]["pid"] = 555;
    page = withFocus(page, "article");
    ExtractorHarness probe{std::make_unique<FixtureTree>(page)};
    SelectionLookup lookup = probe.extractor.observeSelection(100, {300, 160});
    EXPECT_EQ(lookup.observation.frontmostPID, 100);
    EXPECT_EQ(lookup.observation.focusedElementPID, 555);
    EXPECT_EQ(SelectionPolicy::decide(lookup.observation), SelectionDecision::useCursor());
}

} // namespace
} // namespace lectorbell::testing
