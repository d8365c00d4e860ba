#include "platform/linux/atspi/AtspiCall.hpp"

namespace lectorbell::platform::atspi {

std::string takeString(gchar* text) {
    if (!text) {
        return {};
    }
    std::string copy{text};
    g_free(text);
    return copy;
}

} // namespace lectorbell::platform::atspi
