#include "lectorbell/SelectionPolicy.hpp"
#include "lectorbell/Utf8.hpp"

#include <gtest/gtest.h>
#include <ostream>

namespace lectorbell {

void PrintTo(const SelectionDecision& decision, std::ostream* os) {
    switch (decision.kind()) {
    case SelectionDecision::Kind::readSelection:
        *os << "readSelection(\"" << toUtf8(decision.text()) << "\")";
        return;
    case SelectionDecision::Kind::refuse:
        *os << "refuse(" << decision.error()->userMessage() << ")";
        return;
    case SelectionDecision::Kind::useCursor:
        *os << "useCursor";
        return;
    }
}

namespace {

constexpr ProcessID front = 42;

// The frontmost application owns the focus and nothing else is known.
SelectionObservation focused() {
    SelectionObservation seen;
    seen.frontmostPID = front;
    seen.focusedElementPID = front;
    return seen;
}

SelectionObservation searchFieldAllSelected(bool pointerOver) {
    SelectionObservation seen = focused();
    seen.focusedRole = "AXSearchField";
    seen.focusedValueLength = 12;
    seen.selectedRange = UTF16Range{0, 12};
    seen.selectedText = u"twelve chars";
    seen.pointerOverFocusedElement = pointerOver;
    return seen;
}

template <class Change>
SelectionObservation with(SelectionObservation seen, Change change) {
    change(seen);
    return seen;
}

const SelectionDecision useCursor = SelectionDecision::useCursor();
const SelectionDecision secureRefusal =
    SelectionDecision::refuse(ReadingError{ReadingError::Kind::secureField});
const SelectionDecision unsupportedRefusal =
    SelectionDecision::refuse(ReadingError{ReadingError::Kind::selectionUnsupported});

SelectionDecision read(std::u16string text) {
    return SelectionDecision::readSelection(std::move(text));
}

TEST(SelectionPolicy, Decisions) {
    struct Case {
        const char* name;
        SelectionObservation seen;
        SelectionDecision expected;
    };
    const Case cases[] = {
        {"nothing known", focused(), useCursor},
        {"focus unknown",
         with(focused(),
              [](auto& s) {
                  s.focusedElementPID.reset();
                  s.selectedText = u"text";
              }),
         useCursor},
        {"secure field in another process is not refused",
         with(focused(),
              [](auto& s) {
                  s.focusedElementPID = 7;
                  s.isSecure = true;
                  s.selectedText = u"secret";
              }),
         useCursor},
        {"secure field with a selection",
         with(focused(),
              [](auto& s) {
                  s.isSecure = true;
                  s.selectedText = u"secret";
              }),
         secureRefusal},
        {"whole search field selected, pointer elsewhere", searchFieldAllSelected(false),
         useCursor},
        {"whole search field selected, pointer over it", searchFieldAllSelected(true),
         read(u"twelve chars")},
        {"whole text area selected, pointer elsewhere",
         with(searchFieldAllSelected(false), [](auto& s) { s.focusedRole = "AXTextArea"; }),
         read(u"twelve chars")},
        {"range longer than the field value",
         with(searchFieldAllSelected(false),
              [](auto& s) {
                  s.selectedRange = UTF16Range{0, 20};
              }),
         useCursor},
        {"part of the search field",
         with(searchFieldAllSelected(false),
              [](auto& s) {
                  s.selectedRange = UTF16Range{1, 11};
                  s.selectedText = u"welve chars";
              }),
         read(u"welve chars")},
        {"empty search field",
         with(searchFieldAllSelected(false),
              [](auto& s) {
                  s.focusedValueLength = 0;
                  s.selectedRange = UTF16Range{0, 0};
                  s.selectedText = u"x";
              }),
         read(u"x")},
        {"search field without a value length",
         with(searchFieldAllSelected(false), [](auto& s) { s.focusedValueLength.reset(); }),
         read(u"twelve chars")},
        {"selected text is read untrimmed",
         with(focused(), [](auto& s) { s.selectedText = u"  Hello there.\n"; }),
         read(u"  Hello there.\n")},
        {"only spaces and newlines, no range",
         with(focused(), [](auto& s) { s.selectedText = u"  \n\t \r\n"; }), useCursor},
        {"only Unicode spaces and separators",
         with(focused(), [](auto& s) { s.selectedText = u"\u00a0\u2003\u2028\u3000"; }), useCursor},
        {"looked-up text for the range",
         with(focused(),
              [](auto& s) {
                  s.selectedRange = UTF16Range{3, 5};
                  s.textForSelectedRange = u"hello";
              }),
         read(u"hello")},
        {"looked-up text longer than the range",
         with(focused(),
              [](auto& s) {
                  s.selectedRange = UTF16Range{3, 5};
                  s.textForSelectedRange = u"hello!!";
              }),
         useCursor},
        {"looked-up length counts UTF-16 units",
         with(focused(),
              [](auto& s) {
                  s.selectedRange = UTF16Range{0, 3};
                  s.textForSelectedRange = u"ab\U0001F600";
              }),
         useCursor},
        {"surrogate pair fits its range",
         with(focused(),
              [](auto& s) {
                  s.selectedRange = UTF16Range{0, 4};
                  s.textForSelectedRange = u"ab\U0001F600";
              }),
         read(u"ab\U0001F600")},
        {"range not found",
         with(focused(),
              [](auto& s) {
                  s.selectedRange = UTF16Range{UTF16Range::notFound, 0};
              }),
         useCursor},
        {"empty range",
         with(focused(),
              [](auto& s) {
                  s.selectedRange = UTF16Range{4, 0};
              }),
         useCursor},
        {"range whose text the app does not expose",
         with(focused(),
              [](auto& s) {
                  s.selectedRange = UTF16Range{2, 4};
              }),
         unsupportedRefusal},
        {"blank selected text beside a range",
         with(focused(),
              [](auto& s) {
                  s.selectedRange = UTF16Range{2, 4};
                  s.selectedText = u"    ";
              }),
         useCursor},
        {"blank looked-up text",
         with(focused(),
              [](auto& s) {
                  s.selectedRange = UTF16Range{2, 4};
                  s.textForSelectedRange = u"    ";
              }),
         useCursor},
        {"selection hint alone is ignored",
         with(focused(), [](auto& s) { s.selectionHint = u"from the page"; }), useCursor},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(SelectionPolicy::decide(c.seen), c.expected);
    }
}

TEST(SelectionPolicy, RefusalsCarryTheUserMessages) {
    SelectionObservation secure = focused();
    secure.isSecure = true;
    SelectionDecision decision = SelectionPolicy::decide(secure);
    ASSERT_EQ(decision.kind(), SelectionDecision::Kind::refuse);
    EXPECT_EQ(decision.error()->userMessage(), "Secure field \u2014 not reading");

    SelectionObservation unexposed = focused();
    unexposed.selectedRange = UTF16Range{0, 3};
    decision = SelectionPolicy::decide(unexposed);
    ASSERT_EQ(decision.kind(), SelectionDecision::Kind::refuse);
    EXPECT_EQ(decision.error()->userMessage(),
              "This app has a selection but doesn't expose its text");
}

} // namespace
} // namespace lectorbell
