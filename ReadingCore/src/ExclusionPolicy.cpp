#include "lectorbell/ExclusionPolicy.hpp"

#include <array>
#include <unicode/locid.h>
#include <unicode/unistr.h>

namespace lectorbell::ExclusionPolicy {

namespace {

constexpr std::array builtInExclusions {
    std::string_view{"com.apple.keychainaccess"}, std::string_view{"com.apple.Passwords"},
        std::string_view{"com.1password.1password"}, std::string_view{"com.agilebits.onepassword7"},
        std::string_view{"com.bitwarden.desktop"}, // also Bitwarden's flatpak id
        std::string_view{"com.lastpass.LastPass"},
        std::string_view{"com.dashlane.dashlanephonefinal"},
        std::string_view{"org.keepassxc.keepassxc"}, // also KeePassXC's desktop and flatpak id
#if defined(__linux__)
        // Linux password managers as the front-application lookup may name them. Matching ignores
        // case, so one entry covers every spelling of a name:
        // - KeePassXC: AT-SPI application "KeePassXC", WM_CLASS "keepassxc" / "KeePassXC".
        std::string_view{"KeePassXC"},
        // - Bitwarden: AT-SPI application "Bitwarden", WM_CLASS "bitwarden" / "Bitwarden",
        //   desktop id "bitwarden".
        std::string_view{"Bitwarden"},
        // - 1Password: AT-SPI application "1Password", WM_CLASS "1password" / "1Password",
        //   desktop id "1password".
        std::string_view{"1Password"},
        // - GNOME Passwords and Keys: AT-SPI application (GTK 3 reports the program name) and
        //   WM_CLASS "seahorse" / "Seahorse"; application, desktop and flatpak id up to version 46,
        //   then from version 47.
        std::string_view{"seahorse"}, std::string_view{"org.gnome.seahorse.Application"},
        std::string_view{"org.gnome.Seahorse"},
        // - KWalletManager: AT-SPI application and WM_CLASS "kwalletmanager5" (its program name),
        //   "kwalletmanager" for builds that drop the suffix; desktop ids of both.
        std::string_view{"kwalletmanager5"}, std::string_view{"kwalletmanager"},
        std::string_view{"org.kde.kwalletmanager5"}, std::string_view{"org.kde.kwalletmanager"},
#endif
};

// Full Unicode lower case in the root locale, so the result does not depend on the user's
// language (a Turkish locale would turn "I" into a dotless "ı").
icu::UnicodeString lowercased(std::string_view identifier) {
    return icu::UnicodeString::fromUTF8(identifier).toLower(icu::Locale::getRoot());
}

} // namespace

std::span<const std::string_view> defaultExcluded() {
    return builtInExclusions;
}

bool isExcluded(const std::optional<std::string>& bundleID,
                std::span<const std::string> userExclusions) {
    if (!bundleID) {
        return false;
    }
    const icu::UnicodeString wanted = lowercased(*bundleID);
    for (std::string_view entry : builtInExclusions) {
        if (lowercased(entry) == wanted) {
            return true;
        }
    }
    for (const std::string& entry : userExclusions) {
        if (lowercased(entry) == wanted) {
            return true;
        }
    }
    return false;
}

} // namespace lectorbell::ExclusionPolicy
