#pragma once

#include "platform/AccessibilityApp.hpp"

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

namespace lectorbell::testing {

// An accessibility tree loaded from JSON, standing in for another application.
//
// A node: {"id", "role", "subrole", "value", "frame": [x, y, w, h], "children": [...],
//   "layout": {"charWidth", "lineHeight"} (monospaced text: answers range, string and bounds
//   queries, unless "rangeQueries": false; text markers use the layout too), "hitTestable": false
//   (the hit test passes over it), "timeout": true (every call on it times out), "pid",
//   "selectedText", "selectedRange": [location, length], "url", "domId", "classes": [...],
//   "header": true (a table row of column headers), "repeat": n (the node stands for n copies)}.
// The document: {"pid", "focused": id, "markers": true (web areas offer text markers),
//   "callCostMs": n (each call advances the virtual clock), "root": node}.
class FixtureTree final : public AccessibilityDesktop {
public:
    explicit FixtureTree(const nlohmann::json& document);
    static std::unique_ptr<FixtureTree> fromFile(const std::string& name);

    bool isTrusted() override { return trusted; }
    std::optional<AccessibilityGrant> requestTrust() override {
        bool wasOff = !trusted;
        trusted = true;
        return AccessibilityGrant{wasOff, {}};
    }
    std::optional<ProcessID> processAt(ScreenPoint) override { return pid_; }
    std::optional<ProcessID> frontmostProcess() override { return pid_; }
    std::unique_ptr<AccessibilityApp> application(ProcessID pid) override;
    bool buildsTreeOnRequest(ProcessID) override { return buildsOnRequest; }

    std::chrono::steady_clock::time_point now() const { return clock_; }
    // Moves the virtual clock on, as a pause of the lookup's thread would.
    void advance(std::chrono::microseconds duration) { clock_ += duration; }
    // Reads of a password field's text (its value, ranges, selection): must stay zero.
    int secureReads() const { return secureReads_; }
    // Calls made into the tree.
    int calls() const { return calls_; }
    // Requests to build the tree on demand (the manual-accessibility switch).
    int manualRequests() const { return manualRequests_; }

    bool trusted = true;
    // The application builds its tree only when asked, as Chromium-family apps do.
    bool buildsOnRequest = false;
    // Runs after each call into the tree, with the number of calls made so far.
    std::function<void(int calls)> afterCall;

    struct Node;

private:
    friend class FixtureElement;
    friend class FixtureApp;
    void spend();

    std::shared_ptr<Node> root_;
    std::map<std::string, std::shared_ptr<Node>> byId_;
    ProcessID pid_ = 100;
    std::optional<std::string> focused_;
    bool markers_ = false;
    std::chrono::microseconds callCost_{0};
    std::chrono::steady_clock::time_point clock_{};
    int secureReads_ = 0;
    int calls_ = 0;
    int manualRequests_ = 0;
    bool timedOut_ = false;
};

} // namespace lectorbell::testing
