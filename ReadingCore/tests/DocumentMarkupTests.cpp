// Markdown and HTML from notes and READMEs, read as the rendered page shows them.

#include "DocumentMarkup.hpp"
#include "lectorbell/SpeechCleanup.hpp"
#include "lectorbell/Utf8.hpp"

#include <gtest/gtest.h>
#include <random>
#include <string>

namespace {

using namespace lectorbell;

struct Case {
    std::u16string input;
    std::u16string expected;
};
void PrintTo(const Case& c, std::ostream* os) {
    *os << '"' << toUtf8(c.input) << '"';
}

class DocumentCleanTest : public testing::TestWithParam<Case> {};

TEST_P(DocumentCleanTest, ReadsWhatThePageShows) {
    EXPECT_EQ(SpeechCleanup::clean(GetParam().input), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Links, DocumentCleanTest,
    testing::Values(
        Case{u"See [Documentation](https://fmt.dev/latest/) now.", u"See Documentation now."},
        Case{u"[docs](https://x.org \"The docs. Read them\") here", u"docs here"},
        Case{u"[docs](<a b.html> 'title') and [x](y (paren title))", u"docs and x"},
        Case{u"[Foo](https://en.wikipedia.org/wiki/Foo_(bar)) rocks", u"Foo rocks"},
        Case{u"[https://fmt.dev](https://fmt.dev)", u"link to fmt.dev"},
        Case{u"a **[bold link](x)** b", u"a bold link b"},
        Case{u"[](https://empty.example) gone", u"gone"},
        Case{u"[a [nested](x) link](y)", u"a nested link"},
        // Reference links need their definition; the definition itself is silent.
        Case{u"[fmt][1] and [docs][] and [Docs]\n\n[1]: https://fmt.dev\n[docs]: d.html \"D\"",
             u"fmt and docs and Docs"},
        Case{u"[text][undefined] stays", u"[text][undefined] stays"},
        Case{u"[xy]: not a definition, just words", u"[xy]: not a definition, just words"},
        Case{u"[ref]: https://example.org 'A title'", u""},
        Case{u"> [!NOTE]\n> Useful", u"Note\nUseful"},
        Case{u"<https://example.org/a_(b)> and <me@example.org>",
             u"link to example.org and me@example.org"}));

INSTANTIATE_TEST_SUITE_P(
    Images, DocumentCleanTest,
    testing::Values(
        Case{u"![A map of the garden](garden.png) here", u"A map of the garden here"},
        Case{u"![image](https://user-images.githubusercontent.com/1/x.png)", u""},
        Case{u"![logo](l.svg) ![Badge](b.svg) ![](e.png) ![cat.png](cat.png) end", u"end"},
        Case{u"[![Build Status](https://ci.example/badge.svg)](https://ci.example)",
             u"Build Status"},
        Case{u"[![image](https://img.shields.io/x.svg)](https://github.com/x)", u""},
        Case{u"[![npm][npm-img]][npm] [![CI][ci-img]][ci]\n\n[npm-img]: a.svg\n[npm]: b\n"
             u"[ci-img]: c.svg\n[ci]: d",
             u"npm CI"},
        Case{u"- ![A cat](cat.png) in a list [with ![logo](l.png) an image](u)",
             u"A cat in a list with an image"}));

INSTANTIATE_TEST_SUITE_P(
    Html, DocumentCleanTest,
    testing::Values(
        Case{u"<img src=\"https://user-images.githubusercontent.com/x.png\" alt=\"{fmt}\" "
             u"width=\"25%\"/>",
             u"{fmt}"},
        Case{u"<img src=x.png alt='Logo'><img src=y.png>", u""},
        Case{u"<a href=\"https://x.org\"><strong>Explore the docs &raquo;</strong></a>",
             u"Explore the docs \u00BB"},
        Case{u"line one<br/>line two<BR>three", u"line one line two three"},
        Case{u"<p align=\"center\">Centred</p><details><summary>More</summary>Inside</details>",
             u"Centred More Inside"},
        Case{u"<!-- hidden\nover lines --> shown <!-- and --> here", u"shown here"},
        Case{u"std::vector<int> and <T> and a < b > c", u"std:vector<int> and <T> and a < b > c"},
        Case{u"if i<b and j>0 then x<b>y</b>", u"if i<b and j>0 then xy"},
        Case{u"Fish &amp; chips&nbsp;here &#8212; ok &#x2014; &#0; &bogus; AT&T",
             u"Fish & chips\u00A0here \u2014 ok \u2014 &bogus; AT&T"}));

INSTANTIATE_TEST_SUITE_P(CodeAndEscapes, DocumentCleanTest,
                         testing::Values(Case{u"```c++", u""}, Case{u"~~~", u""},
                                         Case{u"```c++\nint a = b[1](2);\n```", u"int a = b(2);"},
                                         Case{u"Text:\n\n    [not](a link) &amp;",
                                              u"Text: [not](a link) &amp;"},
                                         Case{u"`[a b](c)` and `&amp;`", u"[a b](c) and &amp;"},
                                         Case{u"it\\'s \\*literal\\* \\[xy\\](y) C:\\Users",
                                              u"it's literal [xy](y) C:\\Users"},
                                         Case{u"a hard\\\nbreak", u"a hard\nbreak"}));

// Broken markup is read as text, not dropped.
INSTANTIATE_TEST_SUITE_P(Unbalanced, DocumentCleanTest,
                         testing::Values(Case{u"[link](https://x.org", u"[link](link to x.org"},
                                         Case{u"](x) hello", u"](x) hello"},
                                         Case{u"a ] b [ c", u"a ] b [ c"},
                                         Case{u"<img src=\"x alt=\"y\"", u"<img src=\"x alt=\"y\""},
                                         Case{u"<!-- never closed", u"<!-- never closed"},
                                         Case{u"``unclosed code `x`", u"unclosed code x"},
                                         Case{u"[[[x](y)", u"[[x"}));

TEST(DocumentMarkup, SilentImageDescriptions) {
    const std::pair<std::u16string_view, bool> cases[] = {
        {u"", true},          {u"  ", true},
        {u"image", true},     {u"Logo", true},
        {u"badge", true},     {u"Screenshot image", true},
        {u"cat.PNG", true},   {u"docs/anim.gif", true},
        {u"{fmt}", false},    {u"Build Status", false},
        {u"A cat", false},    {u"Vue.js", false},
        {u"fmt logo", false}, {u"\u5716", false},
    };
    for (const auto& [description, silent] : cases) {
        EXPECT_EQ(detail::isSilentImageText(description), silent) << toUtf8(description);
    }
}

// Text that holds none of the constructs, though it has the characters that may start one,
// comes out exactly as the cleanup without the markdown reading gives it.
TEST(DocumentMarkup, TextWithoutConstructsIsUnchanged) {
    const std::u16string_view fixed[] = {
        u"x < y and y > z, AT&T & co",
        u"Paris[3] is[citation needed] big",
        u"C:\\Users\\me",
        u"a ~ b ~~ c",
        u"[1][2] cited",
        u"if (i < n && v[i] > 0) *p = 1;",
        u"\u2022 a [b] c",
    };
    for (std::u16string_view text : fixed) {
        EXPECT_EQ(SpeechCleanup::clean(text),
                  detail::cleanForSpeech(text, detail::DocumentMarkup::removed))
            << toUtf8(text);
    }
    // No letters that spell a tag or an entity, no "(", ":", "!", "\", "`" or "~": no link,
    // definition, image, comment, escape or code can form.
    const std::u16string alphabet = u"xyzXYZ .,;?-*_#|=+%<>&[]\n\t\u00E9\u2014";
    std::mt19937 random{7};
    std::uniform_int_distribution<std::size_t> pick{0, alphabet.size() - 1};
    std::uniform_int_distribution<int> length{1, 60};
    for (int round = 0; round < 3000; ++round) {
        std::u16string text;
        for (int n = length(random); n > 0; --n) {
            text += alphabet[pick(random)];
        }
        ASSERT_EQ(SpeechCleanup::clean(text),
                  detail::cleanForSpeech(text, detail::DocumentMarkup::removed))
            << toUtf8(text);
    }
}

} // namespace
