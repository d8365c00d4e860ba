#include "LayoutGeometry.hpp"
#include "TextTrim.hpp"
#include "lectorbell/ReadingOrderEngine.hpp"

#include <algorithm>
#include <map>
#include <numeric>
#include <unordered_map>

namespace lectorbell::ReadingOrderEngine {

namespace {

using detail::isFinite;
using detail::usableHeight;

// The line with its text trimmed and its words moved to match; words that fall outside the
// text or have no usable box are dropped, the line itself stays.
Line trimmedLine(const OCRLine& source) {
    std::u16string_view trimmed = detail::trimSpacesAndTabs(source.text);
    const auto lead = static_cast<std::int64_t>(trimmed.data() - source.text.data());
    const auto length = static_cast<std::int64_t>(trimmed.size());
    Line line{std::u16string{trimmed}, source.rect, source.confidence, {}};
    for (const OCRWord& word : source.words) {
        UTF16Range range = word.utf16Range;
        if (range.location < lead || range.length <= 0 || range.location == UTF16Range::notFound ||
            range.length > length || range.location - lead > length - range.length ||
            !isFinite(word.rect)) {
            continue;
        }
        range.location -= lead;
        line.words.push_back({word.text, word.rect, range});
    }
    return line;
}

} // namespace

std::vector<Line> cleanLines(const std::vector<OCRLine>& lines, float minConfidence) {
    std::vector<Line> kept;
    kept.reserve(lines.size());
    for (const OCRLine& source : lines) {
        // NaN confidences fail the comparison and are dropped with the rest.
        bool usable = source.confidence >= minConfidence && isFinite(source.rect) &&
                      source.rect.width() > 0 && source.rect.height() > 0;
        if (!usable) {
            continue;
        }
        Line line = trimmedLine(source);
        if (!line.text.empty()) {
            kept.push_back(std::move(line));
        }
    }
    return kept;
}

// A repeat overlaps a kept line by more than half their union, so it is less than twice as high
// and its top lies within one of its own heights of the kept line's top: only kept lines of the
// same text with a top in that window are compared.
std::vector<Line> dedupe(std::vector<Line> lines) {
    std::vector<Line> kept;
    kept.reserve(lines.size());
    std::unordered_map<std::u16string, std::multimap<double, std::size_t>> byText;
    for (Line& line : lines) {
        std::multimap<double, std::size_t>& same = byText[line.text];
        const double h = line.rect.height();
        bool repeated = false;
        for (auto it = same.upper_bound(line.rect.minY() - h);
             it != same.end() && it->first < line.rect.minY() + h && !repeated; ++it) {
            repeated = kept[it->second].rect.intersectionOverUnion(line.rect) > 0.5;
        }
        if (!repeated) {
            same.emplace(line.rect.minY(), kept.size());
            kept.push_back(std::move(line));
        }
    }
    return kept;
}

namespace {

// The words first..last of a line as a line of their own.
Line lineOfWords(const Line& line, std::size_t first, std::size_t last) {
    const std::int64_t start = line.words[first].utf16Range.location;
    const std::int64_t end = line.words[last].utf16Range.end();
    Line part{
        line.text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(end - start)),
        line.words[first].rect,
        line.confidence,
        {}};
    for (std::size_t i = first; i <= last; ++i) {
        OCRWord word = line.words[i];
        word.utf16Range.location -= start;
        part.rect = part.rect.united(word.rect);
        part.words.push_back(std::move(word));
    }
    return part;
}

} // namespace

std::vector<Line> splitAtGutters(std::vector<Line> lines) {
    std::vector<Line> result;
    result.reserve(lines.size());
    for (Line& line : lines) {
        std::vector<std::size_t> groupStarts{0};
        const double allowed = 1.5 * usableHeight(line.rect);
        for (std::size_t i = 1; i < line.words.size(); ++i) {
            if (line.words[i].rect.minX() - line.words[i - 1].rect.maxX() > allowed) {
                groupStarts.push_back(i);
            }
        }
        // Words out of order would give groups whose texts overlap: keep such a line whole.
        bool ordered = std::is_sorted(line.words.begin(), line.words.end(),
                                      [](const OCRWord& a, const OCRWord& b) {
                                          return a.utf16Range.location < b.utf16Range.location;
                                      });
        if (groupStarts.size() < 2 || !ordered) {
            result.push_back(std::move(line));
            continue;
        }
        groupStarts.push_back(line.words.size());
        for (std::size_t g = 0; g + 1 < groupStarts.size(); ++g) {
            result.push_back(lineOfWords(line, groupStarts[g], groupStarts[g + 1] - 1));
        }
    }
    return result;
}

namespace {

bool sameRowFragments(const Line& a, const Line& b) {
    const double hMin = std::min(a.rect.height(), b.rect.height());
    const double hMax = std::max(a.rect.height(), b.rect.height());
    if (a.rect.verticalOverlap(b.rect) <= 0.6 * hMin) {
        return false;
    }
    // At a height of a point or less the ratio is hMax itself, so a tiny height cannot divide.
    const double ratio = hMin <= 1.0 ? hMax : hMax / hMin;
    if (ratio >= 1.4) {
        return false;
    }
    const double gap = b.rect.minX() - a.rect.maxX();
    return gap >= -0.2 * hMin && gap < 0.6 * hMin;
}

void mergeInto(Line& a, Line& b) {
    const auto shift = static_cast<std::int64_t>(a.text.size()) + 1;
    a.text += u' ';
    a.text += b.text;
    for (OCRWord& word : b.words) {
        word.utf16Range.location += shift;
        a.words.push_back(std::move(word));
    }
    a.rect = a.rect.united(b.rect);
    a.confidence = std::min(a.confidence, b.confidence);
}

} // namespace

// Sorted by left edge (then top), so the earlier line of a pair is the left fragment. A
// fragment that can join A starts within a few tenths of A's height of A's right edge, so only
// the lines whose left edges fall in that window are tested, found by binary search.
std::vector<Line> mergeSameRowFragments(std::vector<Line> lines) {
    std::sort(lines.begin(), lines.end(), [](const Line& a, const Line& b) {
        if (a.rect.minX() != b.rect.minX()) {
            return a.rect.minX() < b.rect.minX();
        }
        return a.rect.minY() < b.rect.minY();
    });
    std::vector<double> lefts(lines.size());
    std::transform(lines.begin(), lines.end(), lefts.begin(),
                   [](const Line& line) { return line.rect.minX(); });
    std::vector<bool> merged(lines.size(), false);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (merged[i]) {
            continue;
        }
        bool found = true;
        while (found) {
            found = false;
            const Line& a = lines[i];
            const double h = a.rect.height();
            auto from = std::lower_bound(lefts.begin(), lefts.end(), a.rect.maxX() - 0.2 * h);
            for (auto j = static_cast<std::size_t>(from - lefts.begin());
                 j < lines.size() && lefts[j] < a.rect.maxX() + 0.6 * h; ++j) {
                if (j != i && !merged[j] && sameRowFragments(lines[i], lines[j])) {
                    mergeInto(lines[i], lines[j]);
                    merged[j] = true;
                    found = true;
                    break;
                }
            }
        }
    }
    std::vector<Line> result;
    result.reserve(lines.size());
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (!merged[i]) {
            result.push_back(std::move(lines[i]));
        }
    }
    return result;
}

} // namespace lectorbell::ReadingOrderEngine
