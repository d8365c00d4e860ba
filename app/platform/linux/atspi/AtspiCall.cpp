#include "platform/linux/atspi/AtspiCall.hpp"

#include <string_view>

namespace lectorbell::platform::atspi {

namespace {

// libdbus's message for a call whose reply did not come within the time-out.
constexpr std::string_view noReply = "Did not receive a reply";
// libatspi's, for an application that has not answered since an earlier call went unanswered.
constexpr std::string_view hung = "The process appears to be hung.";

} // namespace

std::optional<AXFailure> failureOf(const GError* error, bool slow) {
    if (slow) {
        return AXFailure::timedOut;
    }
    if (!error) {
        return std::nullopt;
    }
    const std::string_view message = error->message ? error->message : "";
    if (message.starts_with(noReply) || message == hung) {
        return AXFailure::timedOut;
    }
    return AXFailure::absent;
}

std::string takeString(gchar* text) {
    if (!text) {
        return {};
    }
    std::string copy{text};
    g_free(text);
    return copy;
}

} // namespace lectorbell::platform::atspi
