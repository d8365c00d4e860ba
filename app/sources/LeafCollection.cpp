#include "lectorbell/Utf8.hpp"
#include "sources/AXVocabulary.hpp"
#include "sources/Leaves.hpp"
#include "sources/TextSpace.hpp"
#include "sources/TreeQueries.hpp"

#include <cmath>

namespace lectorbell::LeafWalk {

namespace {

bool isDuplicate(const std::vector<Leaf>& leaves, const Leaf& leaf) {
    if (leaves.empty() || leaves.back().text != leaf.text) {
        return false;
    }
    const std::optional<ScreenRect>& previous = leaves.back().frame;
    if (!previous || !leaf.frame) {
        return false;
    }
    return previous->verticalOverlap(*leaf.frame) > 0 ||
           std::abs(previous->minY() - leaf.frame->minY()) < 2;
}

void traceLeaf(const Leaf& leaf, const WalkContext& context) {
    if (!context.devLogExcerpts) {
        return;
    }
    std::string line = "leaf \"" + toUtf8(leaf.text) + "\" frame=";
    if (leaf.frame) {
        line += traceNumber(leaf.frame->x()) + "," + traceNumber(leaf.frame->y()) + "," +
                traceNumber(leaf.frame->width()) + "x" + traceNumber(leaf.frame->height());
    } else {
        line += "none";
    }
    context.trace(line);
}

} // namespace

void collect(const ElementRef& element, std::vector<Leaf>& leaves, WalkBudget& budget,
             CollectOptions options, const WalkContext& context) {
    if (context.cancelled()) {
        // Unwinds the walk as a spent budget would; the lookup then drops what was collected.
        budget.exhausted = true;
        return;
    }
    if (budget.exhausted || options.depth > maxCollectDepth) {
        return;
    }
    AXAnswer<ElementSnapshot> snapshot = element->snapshot();
    if (!snapshot) {
        budget.spend(0, context.now());
        return;
    }
    const std::optional<std::string>& role = snapshot->role;
    if (AXVocabulary::contains(AXVocabulary::skipRoles, role) ||
        (options.skipLandmarks &&
         AXVocabulary::contains(AXVocabulary::skipSubroles, snapshot->subrole))) {
        return;
    }
    if (AXVocabulary::contains(AXVocabulary::tableRoles, role)) {
        for (Leaf& row : tableLeaves(element, budget, context)) {
            leaves.push_back(std::move(row));
        }
        return;
    }
    if (role == "AXStaticText" && snapshot->value) {
        const std::u16string& text = *snapshot->value;
        bool goOn = budget.spend(static_cast<std::int64_t>(text.size()), context.now());
        Leaf leaf{element, text, snapshot->frame, options.inHeading, false};
        bool visible = !leaf.frame || (leaf.frame->width() > 2 && leaf.frame->height() > 2);
        if (!TextSpace::isBlank(text) && visible && !isDuplicate(leaves, leaf)) {
            traceLeaf(leaf, context);
            leaves.push_back(std::move(leaf));
        }
        (void)goOn;
        return;
    }
    if (!budget.spend(0, context.now())) {
        return;
    }
    CollectOptions childOptions = options;
    childOptions.isRoot = false;
    childOptions.depth = options.depth + 1;
    childOptions.inHeading = options.inHeading || role == "AXHeading";
    for (const ElementRef& child : snapshot->children) {
        collect(child, leaves, budget, childOptions, context);
        if (budget.exhausted) {
            return;
        }
    }
}

std::optional<std::size_t> bestAligned(const std::vector<Leaf>& leaves, ScreenPoint point) {
    auto clampedHeight = [](const ScreenRect& frame) {
        return std::clamp(frame.height(), 8.0, 28.0);
    };
    std::optional<std::size_t> winner;
    double bestScore = 0;
    for (std::size_t i = 0; i < leaves.size(); ++i) {
        if (!leaves[i].frame) {
            continue;
        }
        const ScreenRect& frame = *leaves[i].frame;
        double h = clampedHeight(frame);
        double dy = frame.verticalDistance(point);
        double dx = frame.horizontalDistance(point);
        if (dy > 0.75 * h || dx > std::min(6 * h, 60.0)) {
            continue;
        }
        double score = 4 * dy + dx;
        if (!winner || score < bestScore) {
            winner = i;
            bestScore = score;
        }
    }
    if (!winner) {
        return std::nullopt;
    }
    const ScreenRect& won = *leaves[*winner].frame;
    if (point.x < won.minX()) {
        // A line split into runs: the run that starts nearest right of the point begins the line.
        for (std::size_t i = 0; i < leaves.size(); ++i) {
            if (i == *winner) {
                break;
            }
            if (!leaves[i].frame) {
                continue;
            }
            const ScreenRect& frame = *leaves[i].frame;
            bool sameLine = frame.verticalDistance(point) <= 0.75 * clampedHeight(frame);
            if (sameLine && frame.minX() > point.x && frame.minX() <= won.minX() + 12) {
                return i;
            }
        }
    }
    return winner;
}

void forwardWalk(const ElementRef& leaf, const ElementRef& root, std::vector<Leaf>& leaves,
                 WalkBudget& budget, const WalkContext& context) {
    if (leaf->isSame(*root)) {
        return;
    }
    ElementRef current = leaf;
    // Bounded like every chain: a cyclic parent chain must not loop forever.
    for (int level = 0; level < 60 && !budget.exhausted && !context.cancelled(); ++level) {
        AXAnswer<ElementRef> parentAnswer = current->parent();
        if (!parentAnswer || !*parentAnswer) {
            return;
        }
        ElementRef parent = *parentAnswer;
        AXAnswer<std::vector<ElementRef>> children = parent->children();
        bool inHeading = TreeQueries::hasRole(*parent, "AXHeading");
        if (children) {
            bool after = false;
            for (const ElementRef& child : *children) {
                if (after) {
                    collect(child, leaves, budget, {inHeading, false, true}, context);
                    if (budget.exhausted) {
                        return;
                    }
                } else if (child->isSame(*current)) {
                    after = true;
                }
            }
        }
        if (parent->isSame(*root)) {
            return;
        }
        current = parent;
    }
}

} // namespace lectorbell::LeafWalk
