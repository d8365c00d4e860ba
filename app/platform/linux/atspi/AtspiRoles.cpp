#include "platform/linux/atspi/AtspiRoles.hpp"

#include <array>
#include <utility>

namespace lectorbell::platform::atspi {

namespace {

struct RoleRow {
    AtspiRole atspi;
    std::string_view ax;
    TextKind kind;
};

// The one table of role names. Roles not listed are groups.
constexpr std::array roleTable{
    RoleRow{ATSPI_ROLE_PASSWORD_TEXT, "AXSecureTextField", TextKind::secure},
    RoleRow{ATSPI_ROLE_ENTRY, "AXTextField", TextKind::textControl},
    RoleRow{ATSPI_ROLE_DOCUMENT_WEB, "AXWebArea", TextKind::container},
    // LibreOffice Writer's page: paragraphs read on one after another, as in a web page.
    RoleRow{ATSPI_ROLE_DOCUMENT_TEXT, "AXWebArea", TextKind::container},
    RoleRow{ATSPI_ROLE_HEADING, "AXHeading", TextKind::container},
    RoleRow{ATSPI_ROLE_TABLE, "AXTable", TextKind::container},
    RoleRow{ATSPI_ROLE_TREE_TABLE, "AXTable", TextKind::container},
    RoleRow{ATSPI_ROLE_TABLE_ROW, "AXRow", TextKind::container},
    RoleRow{ATSPI_ROLE_TABLE_CELL, "AXCell", TextKind::container},
    RoleRow{ATSPI_ROLE_COLUMN_HEADER, "AXCell", TextKind::container},
    RoleRow{ATSPI_ROLE_TABLE_COLUMN_HEADER, "AXCell", TextKind::container},
    RoleRow{ATSPI_ROLE_ROW_HEADER, "AXCell", TextKind::container},
    RoleRow{ATSPI_ROLE_TABLE_ROW_HEADER, "AXCell", TextKind::container},
    RoleRow{ATSPI_ROLE_PARAGRAPH, "AXStaticText", TextKind::staticText},
    RoleRow{ATSPI_ROLE_LABEL, "AXStaticText", TextKind::staticText},
    RoleRow{ATSPI_ROLE_STATIC, "AXStaticText", TextKind::staticText},
    RoleRow{ATSPI_ROLE_CAPTION, "AXStaticText", TextKind::staticText},
    RoleRow{ATSPI_ROLE_ACCELERATOR_LABEL, "AXStaticText", TextKind::staticText},
    RoleRow{ATSPI_ROLE_SCROLL_PANE, "AXScrollArea", TextKind::container},
    RoleRow{ATSPI_ROLE_FRAME, "AXWindow", TextKind::container},
    RoleRow{ATSPI_ROLE_WINDOW, "AXWindow", TextKind::container},
    RoleRow{ATSPI_ROLE_DIALOG, "AXWindow", TextKind::container},
    RoleRow{ATSPI_ROLE_APPLICATION, "AXApplication", TextKind::container},
    RoleRow{ATSPI_ROLE_PUSH_BUTTON, "AXButton", TextKind::container},
    RoleRow{ATSPI_ROLE_TOGGLE_BUTTON, "AXButton", TextKind::container},
    RoleRow{ATSPI_ROLE_PUSH_BUTTON_MENU, "AXMenuButton", TextKind::container},
    RoleRow{ATSPI_ROLE_CHECK_BOX, "AXCheckBox", TextKind::container},
    RoleRow{ATSPI_ROLE_RADIO_BUTTON, "AXRadioButton", TextKind::container},
    RoleRow{ATSPI_ROLE_COMBO_BOX, "AXComboBox", TextKind::container},
    RoleRow{ATSPI_ROLE_SPIN_BUTTON, "AXIncrementor", TextKind::container},
    RoleRow{ATSPI_ROLE_SLIDER, "AXSlider", TextKind::container},
    RoleRow{ATSPI_ROLE_SCROLL_BAR, "AXScrollBar", TextKind::container},
    RoleRow{ATSPI_ROLE_TOOL_BAR, "AXToolbar", TextKind::container},
    RoleRow{ATSPI_ROLE_MENU_BAR, "AXMenuBar", TextKind::container},
    RoleRow{ATSPI_ROLE_MENU, "AXMenu", TextKind::container},
    RoleRow{ATSPI_ROLE_POPUP_MENU, "AXMenu", TextKind::container},
    RoleRow{ATSPI_ROLE_MENU_ITEM, "AXMenuItem", TextKind::container},
    RoleRow{ATSPI_ROLE_CHECK_MENU_ITEM, "AXMenuItem", TextKind::container},
    RoleRow{ATSPI_ROLE_RADIO_MENU_ITEM, "AXMenuItem", TextKind::container},
    RoleRow{ATSPI_ROLE_IMAGE, "AXImage", TextKind::container},
    RoleRow{ATSPI_ROLE_ICON, "AXImage", TextKind::container},
    RoleRow{ATSPI_ROLE_PAGE_TAB_LIST, "AXTabGroup", TextKind::container},
    RoleRow{ATSPI_ROLE_TOOL_TIP, "AXHelpTag", TextKind::container},
    RoleRow{ATSPI_ROLE_LINK, "AXLink", TextKind::container},
    RoleRow{ATSPI_ROLE_LIST, "AXList", TextKind::container},
    RoleRow{ATSPI_ROLE_LIST_BOX, "AXList", TextKind::container},
};

// ARIA landmark and live-region names, as toolkits put them in "xml-roles".
constexpr std::array<std::pair<std::string_view, std::string_view>, 10> xmlSubroles{{
    {"main", "AXLandmarkMain"},
    {"navigation", "AXLandmarkNavigation"},
    {"banner", "AXLandmarkBanner"},
    {"contentinfo", "AXLandmarkContentInfo"},
    {"search", "AXLandmarkSearch"},
    {"complementary", "AXLandmarkComplementary"},
    {"article", "AXDocumentArticle"},
    {"status", "AXApplicationStatus"},
    {"timer", "AXApplicationTimer"},
    {"marquee", "AXApplicationMarquee"},
}};

} // namespace

bool isDocumentRole(AtspiRole role) {
    return role == ATSPI_ROLE_DOCUMENT_WEB || role == ATSPI_ROLE_DOCUMENT_TEXT;
}

bool needsXmlRoles(AtspiRole role) {
    switch (role) {
    case ATSPI_ROLE_LANDMARK:
    case ATSPI_ROLE_SECTION:
    case ATSPI_ROLE_ARTICLE:
    case ATSPI_ROLE_FORM:
    case ATSPI_ROLE_PANEL:
    case ATSPI_ROLE_HEADER:
    case ATSPI_ROLE_FOOTER:
    case ATSPI_ROLE_STATUS_BAR:
    case ATSPI_ROLE_TIMER:
    case ATSPI_ROLE_MARQUEE:
    case ATSPI_ROLE_LOG:
    case ATSPI_ROLE_GROUPING:
        return true;
    default:
        return false;
    }
}

MappedRole mapRole(AtspiRole role, bool multiLine, std::string_view xmlRoles) {
    MappedRole mapped{"AXGroup", std::nullopt, TextKind::container};
    if (role == ATSPI_ROLE_TEXT) {
        mapped = {multiLine ? "AXTextArea" : "AXTextField", std::nullopt, TextKind::textControl};
    }
    for (const RoleRow& row : roleTable) {
        if (row.atspi == role) {
            mapped = {std::string{row.ax}, std::nullopt, row.kind};
            break;
        }
    }
    if (role == ATSPI_ROLE_ARTICLE) {
        mapped.subrole = "AXDocumentArticle";
    }
    // "xml-roles" may list several names; the first known one counts.
    std::size_t start = 0;
    while (!xmlRoles.empty() && start < xmlRoles.size()) {
        std::size_t end = xmlRoles.find(' ', start);
        std::string_view name =
            xmlRoles.substr(start, end == std::string_view::npos ? end : end - start);
        for (const auto& [xml, subrole] : xmlSubroles) {
            if (name == xml) {
                mapped.subrole = std::string{subrole};
                return mapped;
            }
        }
        if (end == std::string_view::npos) {
            break;
        }
        start = end + 1;
    }
    return mapped;
}

} // namespace lectorbell::platform::atspi
