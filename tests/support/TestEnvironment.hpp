#pragma once

// Skipping a test because a tool is missing is allowed on a developer's machine only: in CI
// (CI=true) every test must run, so there the same condition fails the test with its reason.

#include <cstdlib>
#include <gtest/gtest.h>
#include <string_view>

namespace lectorbell::testing {

inline bool everyTestMustRun() {
    const char* ci = std::getenv("CI");
    return ci != nullptr && std::string_view{ci} == "true";
}

} // namespace lectorbell::testing

// Ends the test for `reason`: a skip, or in CI a failure.
#define LECTORBELL_SKIP_TEST(reason)                                                               \
    do {                                                                                           \
        if (::lectorbell::testing::everyTestMustRun()) {                                           \
            FAIL() << "not run, and CI=true needs every test to run: " << (reason);                \
        }                                                                                          \
        GTEST_SKIP() << (reason);                                                                  \
    } while (false)

// Ends the test when `server` (from XvfbServer.hpp) is null: a failure when Xvfb is installed but
// did not start, a skip (a failure in CI) when it is not installed.
#define LECTORBELL_REQUIRE_XVFB(server)                                                            \
    do {                                                                                           \
        if ((server) == nullptr) {                                                                 \
            if (::lectorbell::testing::XvfbServer::installed()) {                                  \
                FAIL() << ::lectorbell::testing::XvfbServer::lastFailure();                        \
            }                                                                                      \
            LECTORBELL_SKIP_TEST("Xvfb is not installed");                                         \
        }                                                                                          \
    } while (false)
