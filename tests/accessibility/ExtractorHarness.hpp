#pragma once

#include "FixtureTree.hpp"
#include "lectorbell/Utf8.hpp"
#include "sources/AccessibilityExtractor.hpp"

#include <string>
#include <vector>

namespace lectorbell::testing {

// An extractor over a fixture tree, with its trace lines and the tree's virtual clock (pauses
// advance it).
struct ExtractorHarness {
    explicit ExtractorHarness(std::unique_ptr<FixtureTree> fixture, ExtractorConfig config = {})
        : tree(std::move(fixture))
        , extractor(
              *tree, config,
              WalkContext{[this] { return tree->now(); },
                          [this](std::string_view line) { trace.emplace_back(line); }, false,
                          [this](std::chrono::milliseconds pause) { tree->advance(pause); }}) {}

    CursorOutcome at(ProcessID pid, ScreenPoint point, bool quick = false,
                     CancelToken cancel = {}) {
        return extractor.extractAtCursor(pid, point, quick, std::move(cancel));
    }

    bool traced(std::string_view line) const {
        for (const std::string& candidate : trace) {
            if (candidate == line) {
                return true;
            }
        }
        return false;
    }
    bool tracedStart(std::string_view prefix) const {
        for (const std::string& candidate : trace) {
            if (candidate.starts_with(prefix)) {
                return true;
            }
        }
        return false;
    }
    bool anyTraceContains(std::string_view text) const {
        for (const std::string& candidate : trace) {
            if (candidate.find(text) != std::string::npos) {
                return true;
            }
        }
        return false;
    }

    std::unique_ptr<FixtureTree> tree;
    std::vector<std::string> trace;
    AccessibilityExtractor extractor;
};

inline std::vector<std::string> blockTexts(const AXCursorResult& result) {
    std::vector<std::string> texts;
    for (const ReadingBlock& block : result.blocks) {
        texts.push_back(toUtf8(block.text));
    }
    return texts;
}

} // namespace lectorbell::testing
