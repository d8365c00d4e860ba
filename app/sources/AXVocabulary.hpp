#pragma once

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>

// The role names that the tree walks match on, exactly as the adapters report them.
namespace lectorbell::AXVocabulary {

inline constexpr std::array<std::string_view, 23> skipRoles{"AXButton",      "AXMenuButton",
                                                            "AXPopUpButton", "AXCheckBox",
                                                            "AXRadioButton", "AXSlider",
                                                            "AXScrollBar",   "AXToolbar",
                                                            "AXMenuBar",     "AXMenu",
                                                            "AXMenuItem",    "AXTextField",
                                                            "AXComboBox",    "AXSearchField",
                                                            "AXIncrementor", "AXDisclosureTriangle",
                                                            "AXImage",       "AXSecureTextField",
                                                            "AXTabGroup",    "AXSplitter",
                                                            "AXTextArea",    "AXHelpTag",
                                                            "AXPopover"};

inline constexpr std::array<std::string_view, 9> skipSubroles{
    "AXLandmarkNavigation", "AXLandmarkBanner",        "AXLandmarkContentInfo",
    "AXLandmarkSearch",     "AXLandmarkComplementary", "AXSecureTextField",
    "AXApplicationStatus",  "AXApplicationTimer",      "AXApplicationMarquee"};

inline constexpr std::array<std::string_view, 6> landmarkRoots{
    "AXLandmarkMain",          "AXDocumentArticle",     "AXLandmarkNavigation",
    "AXLandmarkComplementary", "AXLandmarkContentInfo", "AXLandmarkBanner"};

inline constexpr std::array<std::string_view, 2> tableRoles{"AXTable", "AXGrid"};

inline constexpr std::array<std::string_view, 16> controlRoles{
    "AXButton",         "AXMenuButton", "AXPopUpButton", "AXCheckBox",           "AXRadioButton",
    "AXTextField",      "AXTextArea",   "AXSearchField", "AXComboBox",           "AXToolbar",
    "AXMenuBar",        "AXSlider",     "AXIncrementor", "AXDisclosureTriangle", "AXScrollBar",
    "AXSecureTextField"};

inline constexpr std::string_view secureTextField = "AXSecureTextField";

template <std::size_t N>
bool contains(const std::array<std::string_view, N>& list, const std::optional<std::string>& name) {
    return name && std::find(list.begin(), list.end(), *name) != list.end();
}

} // namespace lectorbell::AXVocabulary
