#include "platform/linux/atspi/AtspiRoles.hpp"

#include <gtest/gtest.h>
#include <map>

namespace lectorbell::platform::atspi {
namespace {

struct Mapped {
    const char* role;
    TextKind kind;
};

// Every AT-SPI role with a name in the AX vocabulary; every other role is a group.
const std::map<AtspiRole, Mapped>& mappedRoles() {
    static const std::map<AtspiRole, Mapped> roles{
        {ATSPI_ROLE_PASSWORD_TEXT, {"AXSecureTextField", TextKind::secure}},
        {ATSPI_ROLE_ENTRY, {"AXTextField", TextKind::textControl}},
        {ATSPI_ROLE_DOCUMENT_WEB, {"AXWebArea", TextKind::container}},
        {ATSPI_ROLE_DOCUMENT_TEXT, {"AXWebArea", TextKind::container}},
        {ATSPI_ROLE_HEADING, {"AXHeading", TextKind::container}},
        {ATSPI_ROLE_TABLE, {"AXTable", TextKind::container}},
        {ATSPI_ROLE_TREE_TABLE, {"AXTable", TextKind::container}},
        {ATSPI_ROLE_TABLE_ROW, {"AXRow", TextKind::container}},
        {ATSPI_ROLE_TABLE_CELL, {"AXCell", TextKind::container}},
        {ATSPI_ROLE_COLUMN_HEADER, {"AXCell", TextKind::container}},
        {ATSPI_ROLE_TABLE_COLUMN_HEADER, {"AXCell", TextKind::container}},
        {ATSPI_ROLE_ROW_HEADER, {"AXCell", TextKind::container}},
        {ATSPI_ROLE_TABLE_ROW_HEADER, {"AXCell", TextKind::container}},
        {ATSPI_ROLE_PARAGRAPH, {"AXStaticText", TextKind::staticText}},
        {ATSPI_ROLE_LABEL, {"AXStaticText", TextKind::staticText}},
        {ATSPI_ROLE_STATIC, {"AXStaticText", TextKind::staticText}},
        {ATSPI_ROLE_CAPTION, {"AXStaticText", TextKind::staticText}},
        {ATSPI_ROLE_ACCELERATOR_LABEL, {"AXStaticText", TextKind::staticText}},
        {ATSPI_ROLE_SCROLL_PANE, {"AXScrollArea", TextKind::container}},
        {ATSPI_ROLE_FRAME, {"AXWindow", TextKind::container}},
        {ATSPI_ROLE_WINDOW, {"AXWindow", TextKind::container}},
        {ATSPI_ROLE_DIALOG, {"AXWindow", TextKind::container}},
        {ATSPI_ROLE_APPLICATION, {"AXApplication", TextKind::container}},
        {ATSPI_ROLE_PUSH_BUTTON, {"AXButton", TextKind::container}},
        {ATSPI_ROLE_TOGGLE_BUTTON, {"AXButton", TextKind::container}},
        {ATSPI_ROLE_PUSH_BUTTON_MENU, {"AXMenuButton", TextKind::container}},
        {ATSPI_ROLE_CHECK_BOX, {"AXCheckBox", TextKind::container}},
        {ATSPI_ROLE_RADIO_BUTTON, {"AXRadioButton", TextKind::container}},
        {ATSPI_ROLE_COMBO_BOX, {"AXComboBox", TextKind::container}},
        {ATSPI_ROLE_SPIN_BUTTON, {"AXIncrementor", TextKind::container}},
        {ATSPI_ROLE_SLIDER, {"AXSlider", TextKind::container}},
        {ATSPI_ROLE_SCROLL_BAR, {"AXScrollBar", TextKind::container}},
        {ATSPI_ROLE_TOOL_BAR, {"AXToolbar", TextKind::container}},
        {ATSPI_ROLE_MENU_BAR, {"AXMenuBar", TextKind::container}},
        {ATSPI_ROLE_MENU, {"AXMenu", TextKind::container}},
        {ATSPI_ROLE_POPUP_MENU, {"AXMenu", TextKind::container}},
        {ATSPI_ROLE_MENU_ITEM, {"AXMenuItem", TextKind::container}},
        {ATSPI_ROLE_CHECK_MENU_ITEM, {"AXMenuItem", TextKind::container}},
        {ATSPI_ROLE_RADIO_MENU_ITEM, {"AXMenuItem", TextKind::container}},
        {ATSPI_ROLE_IMAGE, {"AXImage", TextKind::container}},
        {ATSPI_ROLE_ICON, {"AXImage", TextKind::container}},
        {ATSPI_ROLE_PAGE_TAB_LIST, {"AXTabGroup", TextKind::container}},
        {ATSPI_ROLE_TOOL_TIP, {"AXHelpTag", TextKind::container}},
        {ATSPI_ROLE_LINK, {"AXLink", TextKind::container}},
        {ATSPI_ROLE_LIST, {"AXList", TextKind::container}},
        {ATSPI_ROLE_LIST_BOX, {"AXList", TextKind::container}},
    };
    return roles;
}

TEST(AtspiRoles, everyRoleMapsToItsAXNameOrToAGroup) {
    for (int value = ATSPI_ROLE_INVALID; value < ATSPI_ROLE_LAST_DEFINED; ++value) {
        const auto role = static_cast<AtspiRole>(value);
        if (role == ATSPI_ROLE_TEXT) {
            continue; // depends on the multi-line state, below
        }
        SCOPED_TRACE(value);
        MappedRole mapped = mapRole(role, false, "");
        auto known = mappedRoles().find(role);
        if (known != mappedRoles().end()) {
            EXPECT_EQ(mapped.role, known->second.role);
            EXPECT_EQ(mapped.kind, known->second.kind);
        } else {
            EXPECT_EQ(mapped.role, "AXGroup");
            EXPECT_EQ(mapped.kind, TextKind::container);
        }
        // Only an article has a subrole of its own; the others take theirs from xml-roles.
        EXPECT_EQ(mapped.subrole, role == ATSPI_ROLE_ARTICLE
                                      ? std::optional<std::string>{"AXDocumentArticle"}
                                      : std::nullopt);
        // The multi-line state matters only to a text role.
        EXPECT_EQ(mapRole(role, true, "").role, mapped.role);
    }
}

TEST(AtspiRoles, textControlsAndSubrolesFollowTheirStateAndXmlRoles) {
    struct Case {
        const char* name;
        AtspiRole role;
        bool multiLine;
        const char* xmlRoles;
        const char* expectedRole;
        std::optional<std::string> expectedSubrole;
    };
    const Case cases[] = {
        {"a one-line text", ATSPI_ROLE_TEXT, false, "", "AXTextField", std::nullopt},
        {"a multi-line text", ATSPI_ROLE_TEXT, true, "", "AXTextArea", std::nullopt},
        {"main landmark", ATSPI_ROLE_LANDMARK, false, "main", "AXGroup", "AXLandmarkMain"},
        {"navigation", ATSPI_ROLE_LANDMARK, false, "navigation", "AXGroup", "AXLandmarkNavigation"},
        {"banner", ATSPI_ROLE_HEADER, false, "banner", "AXGroup", "AXLandmarkBanner"},
        {"content info", ATSPI_ROLE_FOOTER, false, "contentinfo", "AXGroup",
         "AXLandmarkContentInfo"},
        {"search", ATSPI_ROLE_FORM, false, "search", "AXGroup", "AXLandmarkSearch"},
        {"complementary", ATSPI_ROLE_SECTION, false, "complementary", "AXGroup",
         "AXLandmarkComplementary"},
        {"status", ATSPI_ROLE_STATUS_BAR, false, "status", "AXGroup", "AXApplicationStatus"},
        {"timer", ATSPI_ROLE_TIMER, false, "timer", "AXGroup", "AXApplicationTimer"},
        {"marquee", ATSPI_ROLE_MARQUEE, false, "marquee", "AXGroup", "AXApplicationMarquee"},
        {"article from xml-roles", ATSPI_ROLE_SECTION, false, "article", "AXGroup",
         "AXDocumentArticle"},
        {"the first known of several names", ATSPI_ROLE_SECTION, false, "region main navigation",
         "AXGroup", "AXLandmarkMain"},
        {"no known name", ATSPI_ROLE_SECTION, false, "region presentation", "AXGroup",
         std::nullopt},
        {"a name is matched whole", ATSPI_ROLE_SECTION, false, "mainly", "AXGroup", std::nullopt},
        {"xml-roles on an article win over its own subrole", ATSPI_ROLE_ARTICLE, false,
         "navigation", "AXGroup", "AXLandmarkNavigation"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        MappedRole mapped = mapRole(c.role, c.multiLine, c.xmlRoles);
        EXPECT_EQ(mapped.role, c.expectedRole);
        EXPECT_EQ(mapped.subrole, c.expectedSubrole);
    }
}

TEST(AtspiRoles, documentsAndLandmarkRolesAreKnown) {
    for (int value = ATSPI_ROLE_INVALID; value < ATSPI_ROLE_LAST_DEFINED; ++value) {
        const auto role = static_cast<AtspiRole>(value);
        SCOPED_TRACE(value);
        EXPECT_EQ(isDocumentRole(role),
                  role == ATSPI_ROLE_DOCUMENT_WEB || role == ATSPI_ROLE_DOCUMENT_TEXT);
        const bool landmarkLike = role == ATSPI_ROLE_LANDMARK || role == ATSPI_ROLE_SECTION ||
                                  role == ATSPI_ROLE_ARTICLE || role == ATSPI_ROLE_FORM ||
                                  role == ATSPI_ROLE_PANEL || role == ATSPI_ROLE_HEADER ||
                                  role == ATSPI_ROLE_FOOTER || role == ATSPI_ROLE_STATUS_BAR ||
                                  role == ATSPI_ROLE_TIMER || role == ATSPI_ROLE_MARQUEE ||
                                  role == ATSPI_ROLE_LOG || role == ATSPI_ROLE_GROUPING;
        EXPECT_EQ(needsXmlRoles(role), landmarkLike);
    }
}

} // namespace
} // namespace lectorbell::platform::atspi
