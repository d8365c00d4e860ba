#include "lectorbell/ExclusionPolicy.hpp"

#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

namespace lectorbell {
namespace {

TEST(ExclusionPolicy, Decisions) {
    struct Case {
        std::optional<std::string> bundleID;
        std::vector<std::string> user;
        bool excluded;
    };
    const Case cases[] = {
        {std::nullopt, {"com.example.app"}, false},
        {"COM.BITWARDEN.DESKTOP", {}, true},
        {"com.bitwarden", {}, false},
        {"com.bitwarden.desktop.helper", {}, false},
        {" com.bitwarden.desktop", {}, false},
        {"com.apple.passwords", {}, true},
        {"com.example.app", {"Com.Example.App"}, true},
        {"COM.EXAMPLE.APP", {"other.app", "com.example.app"}, true},
        {"com.example", {"com.example.app"}, false},
        {"com.example.app", {"com.example.*"}, false},
        {"com.apple.TextEdit", {}, false},
        // Full Unicode case mapping, independent of the user's language.
        {"\u00e9diteur.app", {"\u00c9DITEUR.APP"}, true},
        {"info.app", {"INFO.APP"}, true},
#if defined(__linux__)
        {"KeePassXC", {}, true},
        {"keepassxc", {}, true},
        {"org.keepassxc.KeePassXC", {}, true},
        {"Bitwarden", {}, true},
        {"1password", {}, true},
        {"Seahorse", {}, true},
        {"org.gnome.seahorse.Application", {}, true},
        {"org.gnome.Seahorse", {}, true},
        {"org.gnome", {}, false},
        {"kwalletmanager5", {}, true},
        {"org.kde.kwalletmanager", {}, true},
        {"keepass", {}, false},
#endif
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.bundleID.value_or("(none)"));
        EXPECT_EQ(ExclusionPolicy::isExcluded(c.bundleID, c.user), c.excluded);
    }
}

TEST(ExclusionPolicy, BuiltInListStartsWithTheDesktopPasswordManagers) {
    const std::vector<std::string_view> expected{
        "com.apple.keychainaccess",        "com.apple.Passwords",     "com.1password.1password",
        "com.agilebits.onepassword7",      "com.bitwarden.desktop",   "com.lastpass.LastPass",
        "com.dashlane.dashlanephonefinal", "org.keepassxc.keepassxc",
    };
    auto list = ExclusionPolicy::defaultExcluded();
    ASSERT_GE(list.size(), expected.size());
    EXPECT_EQ(std::vector<std::string_view>(list.begin(), list.begin() + 8), expected);
    for (std::string_view entry : list) {
        EXPECT_TRUE(ExclusionPolicy::isExcluded(std::string{entry}, {})) << entry;
    }
}

} // namespace
} // namespace lectorbell
