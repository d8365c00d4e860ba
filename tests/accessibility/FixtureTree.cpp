#include "FixtureTree.hpp"

#include "lectorbell/Utf8.hpp"

#include <fstream>
#include <stdexcept>

namespace lectorbell::testing {

struct FixtureTree::Node {
    std::string id;
    std::optional<std::string> role;
    std::optional<std::string> subrole;
    std::optional<std::u16string> value;
    std::optional<ScreenRect> frame;
    std::vector<std::shared_ptr<Node>> children;
    std::weak_ptr<Node> parent;
    double charWidth = 0;
    double lineHeight = 0;
    bool hitTestable = true;
    bool rangeQueries = true;
    bool timeout = false;
    std::optional<ProcessID> pid;
    std::optional<std::u16string> selectedText;
    std::optional<UTF16Range> selectedRange;
    std::optional<std::u16string> markerSelection;
    std::optional<std::string> url;
    std::optional<std::string> domId;
    std::vector<std::string> classes;
    bool header = false;

    bool hasLayout() const { return charWidth > 0 && lineHeight > 0 && value && frame; }
    bool secure() const { return role == "AXSecureTextField" || subrole == "AXSecureTextField"; }
};

using Node = FixtureTree::Node;

namespace {

std::shared_ptr<Node> parseNode(const nlohmann::json& j, double dx, double dy, int copy,
                                std::map<std::string, std::shared_ptr<Node>>& byId);

void parseChildren(const nlohmann::json& j, const std::shared_ptr<Node>& node, double dx, double dy,
                   int copy, std::map<std::string, std::shared_ptr<Node>>& byId) {
    if (!j.contains("children")) {
        return;
    }
    for (const nlohmann::json& child : j["children"]) {
        int repeat = child.value("repeat", 1);
        std::vector<double> step = child.value("repeatStep", std::vector<double>{0, 0});
        for (int i = 0; i < repeat; ++i) {
            auto parsed =
                parseNode(child, dx + step[0] * i, dy + step[1] * i, repeat > 1 ? i : copy, byId);
            parsed->parent = node;
            node->children.push_back(parsed);
        }
    }
}

std::shared_ptr<Node> parseNode(const nlohmann::json& j, double dx, double dy, int copy,
                                std::map<std::string, std::shared_ptr<Node>>& byId) {
    auto node = std::make_shared<Node>();
    node->id = j.value("id", "");
    if (j.contains("role")) {
        node->role = j["role"].get<std::string>();
    }
    if (j.contains("subrole")) {
        node->subrole = j["subrole"].get<std::string>();
    }
    if (j.contains("value")) {
        std::string text = j["value"].get<std::string>();
        if (copy >= 0 && j.value("numbered", false)) {
            text += " " + std::to_string(copy);
        }
        node->value = fromUtf8(text);
    }
    if (j.contains("frame")) {
        auto f = j["frame"].get<std::vector<double>>();
        node->frame = ScreenRect{f[0] + dx, f[1] + dy, f[2], f[3]};
    }
    if (j.contains("layout")) {
        node->charWidth = j["layout"].value("charWidth", 0.0);
        node->lineHeight = j["layout"].value("lineHeight", 0.0);
    }
    node->hitTestable = j.value("hitTestable", true);
    node->rangeQueries = j.value("rangeQueries", true);
    node->timeout = j.value("timeout", false);
    if (j.contains("pid")) {
        node->pid = j["pid"].get<ProcessID>();
    }
    if (j.contains("selectedText")) {
        node->selectedText = fromUtf8(j["selectedText"].get<std::string>());
    }
    if (j.contains("selectedRange")) {
        auto r = j["selectedRange"].get<std::vector<std::int64_t>>();
        node->selectedRange = UTF16Range{r[0], r[1]};
    }
    if (j.contains("markerSelection")) {
        node->markerSelection = fromUtf8(j["markerSelection"].get<std::string>());
    }
    if (j.contains("url")) {
        node->url = j["url"].get<std::string>();
    }
    node->header = j.value("header", false);
    if (j.contains("domId")) {
        node->domId = j["domId"].get<std::string>();
    }
    node->classes = j.value("classes", std::vector<std::string>{});
    if (!node->id.empty()) {
        byId[node->id] = node;
    }
    parseChildren(j, node, dx, dy, copy, byId);
    return node;
}

// Monospaced layout: offset of the character at a point, clamped into the text's lines.
std::int64_t offsetAt(const Node& node, ScreenPoint point) {
    const std::u16string& text = *node.value;
    std::vector<std::int64_t> lineStarts{0};
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == u'\n') {
            lineStarts.push_back(static_cast<std::int64_t>(i) + 1);
        }
    }
    auto line = static_cast<std::int64_t>((point.y - node.frame->minY()) / node.lineHeight);
    line = std::clamp<std::int64_t>(line, 0, static_cast<std::int64_t>(lineStarts.size()) - 1);
    std::int64_t start = lineStarts[static_cast<std::size_t>(line)];
    std::int64_t end = static_cast<std::size_t>(line) + 1 < lineStarts.size()
                           ? lineStarts[static_cast<std::size_t>(line) + 1] - 1
                           : static_cast<std::int64_t>(text.size());
    auto column = static_cast<std::int64_t>((point.x - node.frame->minX()) / node.charWidth);
    std::int64_t offset = start + std::clamp<std::int64_t>(column, 0, end - start);
    return std::min(offset, static_cast<std::int64_t>(text.size()) - 1);
}

ScreenRect boxOf(const Node& node, std::int64_t offset) {
    const std::u16string& text = *node.value;
    std::int64_t line = 0;
    std::int64_t start = 0;
    for (std::int64_t i = 0; i < offset && i < static_cast<std::int64_t>(text.size()); ++i) {
        if (text[static_cast<std::size_t>(i)] == u'\n') {
            ++line;
            start = i + 1;
        }
    }
    return ScreenRect{node.frame->minX() + static_cast<double>(offset - start) * node.charWidth,
                      node.frame->minY() + static_cast<double>(line) * node.lineHeight,
                      node.charWidth, node.lineHeight};
}

void documentOrder(const std::shared_ptr<Node>& node, std::vector<std::shared_ptr<Node>>& out) {
    out.push_back(node);
    for (const auto& child : node->children) {
        documentOrder(child, out);
    }
}

struct Marker {
    std::shared_ptr<Node> node;
    std::int64_t offset = 0;
};
struct MarkerSpan {
    Marker start;
    std::optional<std::u16string> selection;
};

} // namespace

class FixtureElement final : public AccessibilityElement {
public:
    FixtureElement(std::shared_ptr<Node> node, FixtureTree* tree)
        : node_(std::move(node))
        , tree_(tree) {}

    const std::shared_ptr<Node>& node() const { return node_; }

    AXAnswer<std::string> role() override { return answer(node_->role); }
    AXAnswer<std::string> subrole() override { return answer(node_->subrole); }
    AXAnswer<std::u16string> value() override { return textAnswer(node_->value); }
    AXAnswer<std::vector<ElementRef>> children() override {
        if (!enter()) {
            return AXFailure::timedOut;
        }
        std::vector<ElementRef> result;
        for (const auto& child : node_->children) {
            result.push_back(wrap(child));
        }
        return result;
    }
    AXAnswer<ElementRef> parent() override {
        if (!enter()) {
            return AXFailure::timedOut;
        }
        auto parent = node_->parent.lock();
        if (!parent) {
            return AXFailure::absent;
        }
        return wrap(parent);
    }
    AXAnswer<ScreenRect> frame() override { return answer(node_->frame); }
    AXAnswer<ProcessID> processID() override {
        return answer(std::optional<ProcessID>{node_->pid.value_or(tree_->pid_)});
    }
    AXAnswer<ElementSnapshot> snapshot() override {
        if (!enter()) {
            return AXFailure::timedOut;
        }
        ElementSnapshot snap{node_->role, node_->subrole, std::nullopt, {}, node_->frame};
        if (node_->value) {
            noteSecureRead();
            snap.value = node_->value;
        }
        for (const auto& child : node_->children) {
            snap.children.push_back(wrap(child));
        }
        return snap;
    }
    bool isSame(const AccessibilityElement& other) const override {
        const auto* element = dynamic_cast<const FixtureElement*>(&other);
        return element && element->node_ == node_;
    }
    std::set<std::string> attributeNames() override {
        std::set<std::string> names{"AXRole", "AXChildren", "AXParent"};
        if (node_->value) {
            names.insert("AXValue");
        }
        if (node_->selectedText) {
            names.insert("AXSelectedText");
        }
        return names;
    }
    std::set<std::string> parameterizedNames() override {
        std::set<std::string> names;
        if (node_->hasLayout() && node_->rangeQueries) {
            names.insert({"AXRangeForPosition", "AXStringForRange", "AXBoundsForRange"});
        }
        if ((tree_->markers_ && node_->role == "AXWebArea") || node_->markerSelection) {
            names.insert({"AXTextMarkerForPosition", "AXTextMarkerRangeForUnorderedTextMarkers",
                          "AXStringForTextMarkerRange"});
        }
        return names;
    }
    AXAnswer<UTF16Range> rangeForPosition(ScreenPoint point) override {
        if (!enter()) {
            return AXFailure::timedOut;
        }
        noteSecureRead();
        if (!node_->hasLayout() || node_->value->empty()) {
            return AXFailure::absent;
        }
        return UTF16Range{offsetAt(*node_, point), 1};
    }
    AXAnswer<std::u16string> stringForRange(UTF16Range range) override {
        if (!enter()) {
            return AXFailure::timedOut;
        }
        noteSecureRead();
        if (!node_->value) {
            return AXFailure::absent;
        }
        std::optional<std::u16string> part = UTF16Text::substring(*node_->value, range);
        return part ? AXAnswer<std::u16string>{*part} : AXAnswer<std::u16string>{};
    }
    AXAnswer<ScreenRect> boundsForRange(UTF16Range range) override {
        if (!enter()) {
            return AXFailure::timedOut;
        }
        if (!node_->hasLayout()) {
            return AXFailure::absent;
        }
        return boxOf(*node_, range.location);
    }
    AXAnswer<std::int64_t> numberOfCharacters() override {
        if (!enter()) {
            return AXFailure::timedOut;
        }
        if (!node_->value) {
            return AXFailure::absent;
        }
        return static_cast<std::int64_t>(node_->value->size());
    }
    AXAnswer<std::u16string> selectedText() override { return textAnswer(node_->selectedText); }
    AXAnswer<UTF16Range> selectedTextRange() override {
        noteSecureRead();
        return answer(node_->selectedRange);
    }
    AXAnswer<std::vector<ElementRef>> rows() override {
        std::vector<ElementRef> result;
        for (const auto& child : node_->children) {
            if (child->role == "AXRow") {
                result.push_back(wrap(child));
            }
        }
        return result;
    }
    AXAnswer<std::vector<ElementRef>> cells() override { return children(); }
    AXAnswer<std::vector<ElementRef>> columnHeaders() override {
        for (const auto& child : node_->children) {
            if (child->header) {
                return FixtureElement{child, tree_}.children();
            }
        }
        return AXFailure::absent;
    }
    AXAnswer<std::string> url() override { return answer(node_->url); }
    AXAnswer<std::string> domIdentifier() override { return answer(node_->domId); }
    AXAnswer<std::vector<std::string>> domClassList() override {
        return answer(std::optional<std::vector<std::string>>{node_->classes});
    }

    AXAnswer<TextMarker> textMarkerForPosition(ScreenPoint point) override {
        if (!enter()) {
            return AXFailure::timedOut;
        }
        std::vector<std::shared_ptr<Node>> all;
        documentOrder(node_, all);
        for (const auto& candidate : all) {
            if (candidate->role == "AXStaticText" && candidate->hasLayout() &&
                candidate->frame->contains(point)) {
                return TextMarker{Marker{candidate, offsetAt(*candidate, point)}};
            }
        }
        return AXFailure::absent;
    }
    AXAnswer<TextMarker> endTextMarker() override { return TextMarker{Marker{}}; }
    AXAnswer<TextMarkerRange> textMarkerRange(const TextMarker& from, const TextMarker&,
                                              bool) override {
        const auto* start = std::any_cast<Marker>(&from.handle);
        if (!start) {
            return AXFailure::absent;
        }
        return TextMarkerRange{MarkerSpan{*start, std::nullopt}};
    }
    AXAnswer<std::u16string> stringForTextMarkerRange(const TextMarkerRange& range) override {
        const auto* span = std::any_cast<MarkerSpan>(&range.handle);
        if (!span) {
            return AXFailure::absent;
        }
        if (span->selection) {
            return *span->selection;
        }
        // The page's text from the marker on: the leaf's rest, then the following leaves.
        std::vector<std::shared_ptr<Node>> all;
        documentOrder(tree_->root_, all);
        std::u16string stream;
        bool started = false;
        for (const auto& candidate : all) {
            if (candidate == span->start.node) {
                started = true;
                stream += candidate->value->substr(static_cast<std::size_t>(span->start.offset));
            } else if (started && candidate->role == "AXStaticText" && candidate->value) {
                stream += u" " + *candidate->value;
            }
        }
        return stream;
    }
    AXAnswer<TextMarkerRange> selectedTextMarkerRange() override {
        if (!node_->markerSelection) {
            return AXFailure::absent;
        }
        return TextMarkerRange{MarkerSpan{{}, node_->markerSelection}};
    }

private:
    bool enter() {
        tree_->spend();
        if (node_->timeout) {
            tree_->timedOut_ = true;
        }
        return !tree_->timedOut_;
    }
    void noteSecureRead() {
        if (node_->secure()) {
            ++tree_->secureReads_;
        }
    }
    template <typename T>
    AXAnswer<T> answer(const std::optional<T>& value) {
        if (!enter()) {
            return AXFailure::timedOut;
        }
        return value ? AXAnswer<T>{*value} : AXAnswer<T>{AXFailure::absent};
    }
    AXAnswer<std::u16string> textAnswer(const std::optional<std::u16string>& value) {
        noteSecureRead();
        return answer(value);
    }
    ElementRef wrap(const std::shared_ptr<Node>& node) {
        return std::make_shared<FixtureElement>(node, tree_);
    }

    std::shared_ptr<Node> node_;
    FixtureTree* tree_;
};

class FixtureApp final : public AccessibilityApp {
public:
    FixtureApp(FixtureTree* tree, ProcessID pid)
        : tree_(tree)
        , pid_(pid) {}

    ProcessID processID() const override { return pid_; }
    ElementRef applicationElement() override {
        return std::make_shared<FixtureElement>(tree_->root_, tree_);
    }
    AXAnswer<ElementRef> elementAtPosition(ScreenPoint point) override {
        tree_->spend();
        if (tree_->timedOut_ || tree_->root_->timeout) {
            tree_->timedOut_ = true;
            return AXFailure::timedOut;
        }
        std::shared_ptr<Node> hit = deepest(tree_->root_, point);
        if (!hit) {
            return AXFailure::absent;
        }
        return ElementRef{std::make_shared<FixtureElement>(hit, tree_)};
    }
    AXAnswer<ElementRef> focusedElement() override {
        if (!tree_->focused_) {
            return AXFailure::absent;
        }
        return ElementRef{
            std::make_shared<FixtureElement>(tree_->byId_.at(*tree_->focused_), tree_)};
    }
    bool hasTimedOut() const override { return tree_->timedOut_; }
    bool requestManualAccessibility() override {
        ++tree_->manualRequests_;
        return true;
    }
    // The fixture answers from memory: nothing to read ahead.
    void allowReadAhead(bool /*allowed*/) override {}

private:
    static std::shared_ptr<Node> deepest(const std::shared_ptr<Node>& node, ScreenPoint point) {
        for (auto child = node->children.rbegin(); child != node->children.rend(); ++child) {
            if (!(*child)->hitTestable) {
                continue;
            }
            if (std::shared_ptr<Node> found = deepest(*child, point)) {
                return found;
            }
        }
        if (node->frame && node->frame->contains(point)) {
            return node;
        }
        return nullptr;
    }

    FixtureTree* tree_;
    ProcessID pid_;
};

FixtureTree::FixtureTree(const nlohmann::json& document) {
    pid_ = document.value("pid", 100);
    if (document.contains("focused")) {
        focused_ = document["focused"].get<std::string>();
    }
    markers_ = document.value("markers", false);
    callCost_ = std::chrono::microseconds{
        static_cast<std::int64_t>(document.value("callCostMs", 0.0) * 1000)};
    root_ = parseNode(document.at("root"), 0, 0, -1, byId_);
}

std::unique_ptr<FixtureTree> FixtureTree::fromFile(const std::string& name) {
    std::ifstream file{std::string{LECTORBELL_FIXTURE_DIR} + "/" + name};
    if (!file) {
        throw std::runtime_error("missing fixture " + name);
    }
    return std::make_unique<FixtureTree>(nlohmann::json::parse(file));
}

std::unique_ptr<AccessibilityApp> FixtureTree::application(ProcessID pid) {
    if (pid != pid_) {
        return nullptr;
    }
    timedOut_ = false;
    return std::make_unique<FixtureApp>(this, pid);
}

void FixtureTree::spend() {
    ++calls_;
    clock_ += callCost_;
    if (afterCall) {
        afterCall(calls_);
    }
}

} // namespace lectorbell::testing
