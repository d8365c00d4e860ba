#include "platform/linux/atspi/AtspiCall.hpp"

#include <gtest/gtest.h>

namespace lectorbell::platform::atspi {
namespace {

TEST(AtspiCall, errorsTellAHungApplicationFromAMissingValue) {
    // The messages libatspi passes on, as libdbus and libatspi word them.
    struct Case {
        const char* name;
        const char* message; // none: the call gave no error
        bool slow;
        std::optional<AXFailure> expected;
    };
    const Case cases[] = {
        {"an answer in time", nullptr, false, std::nullopt},
        {"an answer that took as long as the time-out", nullptr, true, AXFailure::timedOut},
        {"no reply within the time-out",
         "Did not receive a reply. Possible causes include: the remote application did not send "
         "a reply, the message bus security policy blocked the reply, the reply timeout expired, "
         "or the network connection was broken.",
         false, AXFailure::timedOut},
        {"an application that went unanswered before", "The process appears to be hung.", false,
         AXFailure::timedOut},
        {"an application that quit", "The application no longer exists", false, AXFailure::absent},
        {"an application that quit during the call",
         "Message recipient disconnected from message bus without replying", false,
         AXFailure::absent},
        {"an element that is gone", "Unknown object '/org/a11y/atspi/accessible/42'.", false,
         AXFailure::absent},
        {"an error that was slow to come", "Unknown method", true, AXFailure::timedOut},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        GError* error =
            c.message ? g_error_new_literal(g_quark_from_static_string("atspi_error"), 1, c.message)
                      : nullptr;
        EXPECT_EQ(failureOf(error, c.slow), c.expected);
        if (error) {
            g_error_free(error);
        }
    }
}

TEST(AtspiCall, onceTimedOutEveryLaterCallAnswersAtOnce) {
    HangGuard guard;
    int calls = 0;
    auto hung = guard.run([&](GError** error) {
        ++calls;
        g_set_error_literal(error, g_quark_from_static_string("atspi_error"), 1,
                            "The process appears to be hung.");
        return 0;
    });
    EXPECT_TRUE(hung.timedOut());
    auto later = guard.run([&](GError**) {
        ++calls;
        return 1;
    });
    EXPECT_TRUE(later.timedOut());
    EXPECT_EQ(calls, 1);

    HangGuard other;
    auto gone = other.run([](GError** error) {
        g_set_error_literal(error, g_quark_from_static_string("atspi_error"), 0,
                            "The application no longer exists");
        return 0;
    });
    EXPECT_FALSE(gone);
    EXPECT_EQ(gone.failure(), AXFailure::absent);
    EXPECT_FALSE(other.timedOut());
    EXPECT_EQ(*other.run([](GError**) { return 7; }), 7);
}

} // namespace
} // namespace lectorbell::platform::atspi
