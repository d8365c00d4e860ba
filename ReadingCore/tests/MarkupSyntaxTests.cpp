// The single pieces of markdown and HTML syntax, each parsed at an offset.

#include "DocumentMarkup.hpp"
#include "MarkupSyntax.hpp"
#include "lectorbell/Utf8.hpp"

#include <gtest/gtest.h>
#include <optional>
#include <string>

namespace {

using namespace lectorbell;
using detail::TagKind;

TEST(MarkupSyntax, InlineLinkDestinationsAndTitles) {
    // The text starts at the "(" after a link's closing bracket; the end is the offset after ")".
    const std::pair<std::u16string_view, std::optional<std::size_t>> cases[] = {
        {u"(https://x.org) tail", 15},
        {u"()", 2},
        {u"( <a b.html> )", 14},
        {u"(url \"title (with) parens\")", 27},
        {u"(url 'it''s')", std::nullopt},
        {u"(url (paren title))", 19},
        {u"(url (nested (no)))", std::nullopt},
        {u"(wiki/Foo_(bar))", 16},
        {u"(wiki/Foo_(bar)", std::nullopt},
        {u"(a\\)b)", 6},
        {u"(\n  url\n  \"title\"\n)", 19},
        {u"(url\"no space before title\")", std::nullopt},
        {u"(two words)", std::nullopt},
        {u"(<never closed)", std::nullopt},
    };
    for (const auto& [text, end] : cases) {
        EXPECT_EQ(detail::inlineLinkEnd(text, 0), end) << toUtf8(text);
    }
    // Parentheses nest 32 deep in a destination, no deeper.
    for (std::size_t depth : {32, 33}) {
        std::u16string text =
            u"(" + std::u16string(depth, u'(') + u"x" + std::u16string(depth + 1, u')');
        EXPECT_EQ(detail::inlineLinkEnd(text, 0).has_value(), depth == 32);
    }
}

TEST(MarkupSyntax, DefinitionLines) {
    const std::pair<std::u16string_view, std::optional<std::u16string>> cases[] = {
        {u"[npm-url]: https://npmjs.org/package/x", u"npm-url"},
        {u"   [Foo  Bar]: <a b> \"Title\"  ", u"foo bar"},
        {u"[x]: url 'title'", u"x"},
        {u"[x]: url (title)", u"x"},
        {u"    [x]: url", std::nullopt},
        {u"[x]: url title", std::nullopt},
        {u"[x]:", std::nullopt},
        {u"[^1]: A footnote is read.", std::nullopt},
        {u"[a[b]]: url", std::nullopt},
        {u"[]: url", std::nullopt},
        {u"[x] : url", std::nullopt},
    };
    for (const auto& [line, label] : cases) {
        EXPECT_EQ(detail::definitionLabel(line), label) << toUtf8(line);
    }
}

TEST(MarkupSyntax, LabelsCompareFoldedWithWhitespaceCollapsed) {
    EXPECT_EQ(detail::normalizedLabel(u"  The\n\tGUIDE  "), u"the guide");
    EXPECT_EQ(detail::normalizedLabel(u"\u00C9T\u00C9"), u"\u00E9t\u00E9");
    EXPECT_EQ(detail::normalizedLabel(u"a\\]b"), u"a\\]b");
    EXPECT_EQ(detail::normalizedLabel(u"a]b"), std::nullopt);
    EXPECT_EQ(detail::normalizedLabel(u" \n "), std::nullopt);
    EXPECT_EQ(detail::normalizedLabel(std::u16string(1000, u'a')), std::nullopt);
    const detail::LinkLabels labels{u"text\n\n[The Guide]: g.html\n[npm]: n\n"};
    EXPECT_TRUE(labels.contains(u"the  guide"));
    EXPECT_TRUE(labels.contains(u"NPM"));
    EXPECT_FALSE(labels.contains(u"text"));
}

TEST(MarkupSyntax, HtmlTags) {
    struct TagCase {
        std::u16string_view text;
        std::optional<TagKind> kind;
        std::size_t end = 0;
        std::u16string_view alt;
    };
    const TagCase cases[] = {
        {u"<a href=\"x\">Docs</a>", TagKind::inlineElement, 12, u""},
        {u"</A >", TagKind::inlineElement, 5, u""},
        {u"<br/>", TagKind::lineBreak, 5, u""},
        {u"<BR>", TagKind::lineBreak, 4, u""},
        {u"<p align=center>", TagKind::blockElement, 16, u""},
        {u"<img\n  src='x.png'\n  ALT=\"A &amp; B\"\n/>", TagKind::image, 39, u"A &amp; B"},
        {u"<img src=x.png>", TagKind::image, 15, u""},
        {u"</img>", TagKind::inlineElement, 6, u""},
        {u"<int>", std::nullopt, 0, u""},
        {u"<T>", std::nullopt, 0, u""},
        {u"< p>", std::nullopt, 0, u""},
        {u"<p", std::nullopt, 0, u""},
        {u"<img src=\"x>", std::nullopt, 0, u""},
        {u"<a href=x=y>", std::nullopt, 0, u""},
        {u"<a\"x\">", std::nullopt, 0, u""},
        {u"<details open>", TagKind::blockElement, 14, u""},
        {u"<b and c>", std::nullopt, 0, u""},
    };
    for (const TagCase& c : cases) {
        std::optional<detail::HtmlTag> tag = detail::htmlTagAt(c.text, 0);
        ASSERT_EQ(tag.has_value(), c.kind.has_value()) << toUtf8(c.text);
        if (tag) {
            EXPECT_EQ(tag->kind, *c.kind) << toUtf8(c.text);
            EXPECT_EQ(tag->end, c.end) << toUtf8(c.text);
            EXPECT_EQ(tag->alt, c.alt) << toUtf8(c.text);
        }
    }
}

TEST(MarkupSyntax, AutolinksAndEntities) {
    EXPECT_EQ(detail::autolinkEnd(u"<https://x.org/a_(b)> t", 0), 21U);
    EXPECT_EQ(detail::autolinkEnd(u"<me@example.org>", 0), 16U);
    EXPECT_EQ(detail::autolinkEnd(u"<https://x .org>", 0), std::nullopt);
    EXPECT_EQ(detail::autolinkEnd(u"<a:>", 0), std::nullopt);
    EXPECT_EQ(detail::autolinkEnd(u"<x@>", 0), std::nullopt);
    EXPECT_EQ(detail::decodeEntities(u"&amp;&lt;&gt;&quot;&nbsp;&mdash;&Dagger;&dagger;"),
              u"&<>\"\u00A0\u2014\u2021\u2020");
    EXPECT_EQ(detail::decodeEntities(u"&#65;&#x1F600;&#X41;&#1114112;&#xD800;"),
              u"A\U0001F600A\uFFFD\uFFFD");
    EXPECT_EQ(detail::decodeEntities(u"&AMP; &amp &#; &#x; &#12345678; AT&T &bogus;"),
              u"&AMP; &amp &#; &#x; &#12345678; AT&T &bogus;");
}

} // namespace
