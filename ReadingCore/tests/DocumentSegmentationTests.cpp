// A markdown document through the segmenter: the chunks follow the rendered page, and hostile
// markup costs time in proportion to its length.

#include "DocumentMarkup.hpp"
#include "lectorbell/SpeechCleanup.hpp"
#include "lectorbell/TextSegmenter.hpp"
#include "lectorbell/Utf8.hpp"

#include <chrono>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

using namespace lectorbell;

std::vector<std::u16string> chunkTexts(std::u16string_view text) {
    std::vector<std::u16string> texts;
    for (const SpeechChunk& chunk : TextSegmenter::chunksForBlock(text, 0, 320)) {
        texts.push_back(chunk.text);
    }
    return texts;
}

TEST(DocumentSegmentation, ChunksFollowTheRenderedPage) {
    const std::u16string document = u"# Install [quill](https://q.dev)\n"
                                    u"Read the\n"
                                    u"[Getting Started](https://q.dev/start) guide and the [API\n"
                                    u"Reference](api.md \"The API. All of it\") first.\n"
                                    u"- [Docs](d) for users\n"
                                    u"- [Source](s) for developers\n"
                                    u"| [Name](n) | Role |\n"
                                    u"| Ada | [Lead](l) |\n"
                                    u"\n"
                                    u"Run this\n"
                                    u"```sh\n"
                                    u"make [target](x)\n"
                                    u"```\n"
                                    u"then run it.\n"
                                    u"\n"
                                    u"See [the guide][guide].\n"
                                    u"\n"
                                    u"[guide]: https://q.dev/guide\n";
    const std::vector<std::u16string> expected{
        u"# Install quill",  u"Read the Getting Started guide and the API Reference first.",
        u"- Docs for users", u"- Source for developers",
        u"| Name | Role |",  u"| Ada | Lead |",
        u"Run this",         u"make [target](x)",
        u"then run it.",     u"See the guide.",
    };
    EXPECT_EQ(chunkTexts(document), expected);
}

TEST(DocumentSegmentation, IndentedCodeIsReadAsWrittenUnlessItContinuesAList) {
    EXPECT_EQ(chunkTexts(u"Output:\n\n    x = [1, 2](3) &amp; y\n"),
              (std::vector<std::u16string>{u"Output:", u"x = [1, 2](3) &amp; y"}));
    EXPECT_EQ(chunkTexts(u"1. Step\n\n    See [the docs](d) &amp; more.\n"),
              (std::vector<std::u16string>{u"1. Step", u"See the docs & more."}));
}

// The chunker reads a long block in windows; the chunks must be those of the whole text read at
// once, with code fences open across a window edge and definitions far from their links.
TEST(DocumentSegmentation, WindowedReadingMatchesWholeText) {
    std::u16string text;
    for (int i = 0; i < 400; ++i) {
        text += u"Plain prose with no markup at all, sentence after sentence.\n";
    }
    text += u"\n    indented after plain windows [a](b)\n\n";
    for (int i = 0; i < 900; ++i) {
        text += (i % 50 == 0) ? u"```\n" : u"";
        text += u"A [link ";
        text += std::u16string(1, static_cast<char16_t>(u'a' + i % 26));
        text += u"][far] and ![image](x.png) &amp; [wrapped\nlink](y) [1].\n";
        text += (i % 13 == 0) ? u"\n<!-- a comment\n\nover a blank line -->\n" : u"";
    }
    text += u"\n[far]: https://example.org\n";
    std::u16string read = detail::removeDocumentMarkup(text, detail::Layout::lines);
    std::vector<SpeechChunk> expected;
    for (const std::u16string& paragraph :
         TextSegmenter::paragraphs(SpeechCleanup::removingReferenceMarkers(read))) {
        for (const std::u16string& sentence : TextSegmenter::sentences(paragraph)) {
            for (const std::u16string& piece : TextSegmenter::splitLong(sentence, 320)) {
                std::u16string spoken =
                    detail::speechNormalized(piece, detail::DocumentMarkup::removed);
                if (!spoken.empty()) {
                    expected.push_back({piece, spoken, 2});
                }
            }
        }
    }
    ASSERT_GT(text.size(), 80'000U);
    EXPECT_EQ(TextSegmenter::chunksForBlock(text, 2, 320), expected);
}

std::u16string repeated(std::u16string_view piece, std::size_t units) {
    std::u16string out;
    out.reserve(units + piece.size());
    while (out.size() < units) {
        out += piece;
    }
    return out;
}

// Far below what a quadratic scan of a megabyte would take, far above a linear one on a busy
// machine.
constexpr auto linearBudget = std::chrono::milliseconds{1500};

TEST(DocumentSegmentation, HostileMarkupIsKeptAndReadInLinearTime) {
    constexpr std::size_t megabyte = std::size_t{1} << 19; // UTF-16 units
    std::u16string growingFences;
    for (std::size_t n = 1; growingFences.size() < megabyte; n = n % 40 + 1) {
        growingFences += std::u16string(n, u'`') + u" x ";
    }
    const std::u16string kept[] = {
        repeated(u"[", megabyte),
        repeated(u"[[[[x]", megabyte),
        repeated(u"](", megabyte),
        repeated(u"![", megabyte),
        u"[a](" + repeated(u"x", megabyte),
        repeated(u"[a](x", megabyte),
        repeated(u"[a](x \"", megabyte),
        u"<img src=\"" + repeated(u"x", megabyte),
        repeated(u"<img src=\"x\" ", megabyte),
        repeated(u"<a b='", megabyte),
        repeated(u"<!--", megabyte),
        repeated(u"<http:", megabyte),
        repeated(u"&#", megabyte),
        growingFences,
    };
    for (const std::u16string& input : kept) {
        auto started = std::chrono::steady_clock::now();
        EXPECT_EQ(detail::removeDocumentMarkup(input, detail::Layout::lines), input)
            << toUtf8(input.substr(0, 12));
        EXPECT_EQ(detail::removeDocumentMarkup(input, detail::Layout::flat), input);
        EXPECT_LT(std::chrono::steady_clock::now() - started, linearBudget)
            << toUtf8(input.substr(0, 12));
    }
}

TEST(DocumentSegmentation, TenThousandNestedBracketsStayLinear) {
    const std::size_t depth = 10'000;
    const std::u16string opens(depth, u'[');
    std::u16string links = opens + u"xy";
    std::u16string brackets = opens + u"xy" + std::u16string(depth, u']');
    for (std::size_t i = 0; i < depth; ++i) {
        links += u"](u)";
    }
    auto started = std::chrono::steady_clock::now();
    EXPECT_EQ(detail::removeDocumentMarkup(links, detail::Layout::lines), u"xy");
    EXPECT_EQ(detail::removeDocumentMarkup(brackets, detail::Layout::lines), brackets);
    const std::u16string definition = u"\n\n[xy]: https://example.org\n";
    EXPECT_EQ(detail::removeDocumentMarkup(brackets + definition, detail::Layout::lines),
              std::u16string(depth - 1, u'[') + u"xy" + std::u16string(depth - 1, u']') +
                  u"\n\n\n");
    EXPECT_LT(std::chrono::steady_clock::now() - started, linearBudget);
}

} // namespace
