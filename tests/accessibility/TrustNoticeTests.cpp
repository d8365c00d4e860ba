#include "sources/TrustNotice.hpp"

#include <gtest/gtest.h>

namespace lectorbell {
namespace {

TEST(TrustNotice, IsSaidOnlyWhenTheSwitchWasTurnedOn) {
    struct Case {
        AccessibilityGrant grant;
        std::optional<std::string> expected;
    };
    const Case cases[] = {
        {{false, {{"okular", ""}}}, std::nullopt},
        {{true, {}}, "Accessibility is now on for your apps."},
        {{true, {{"okular", ""}}},
         "Accessibility is now on for your apps. Restart this app so Lectorbell can read it: "
         "okular."},
        {{true, {{"chromium", "--force-renderer-accessibility"}, {"okular", ""}}},
         "Accessibility is now on for your apps. Restart these apps so Lectorbell can read them: "
         "chromium (with --force-renderer-accessibility), okular."},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(trustNotice(c.grant), c.expected);
    }
}

} // namespace
} // namespace lectorbell
