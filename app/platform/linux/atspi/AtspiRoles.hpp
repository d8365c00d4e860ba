#pragma once

#include <atspi/atspi.h>
#include <optional>
#include <string>
#include <string_view>

namespace lectorbell::platform::atspi {

// How the adapter treats an element's own text.
enum class TextKind {
    // A container: its own text, if any, is split into static-text runs between its children.
    container,
    // One run of static text (a paragraph, a label): its text is its value, links expanded.
    staticText,
    // An editable or multi-line text control, read through the text-view strategy.
    textControl,
    // A password field: nothing of it is ever read.
    secure,
};

struct MappedRole {
    std::string role;
    std::optional<std::string> subrole;
    TextKind kind = TextKind::container;
};

// A document read as a page of paragraphs (a web page, a word processor's text): its text is
// anchored through markers and read on from paragraph to paragraph.
bool isDocumentRole(AtspiRole role);

// Whether the role's subrole depends on the element's "xml-roles" attribute (landmarks).
bool needsXmlRoles(AtspiRole role);

// The AT-SPI role, the element's multi-line state and its "xml-roles" attribute (empty when not
// asked) in the AX vocabulary the extractor matches on.
MappedRole mapRole(AtspiRole role, bool multiLine, std::string_view xmlRoles);

} // namespace lectorbell::platform::atspi
