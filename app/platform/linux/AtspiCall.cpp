#include "platform/linux/AtspiCall.hpp"

namespace lectorbell::atspi {

std::string takeString(gchar* text) {
    if (!text) {
        return {};
    }
    std::string copy{text};
    g_free(text);
    return copy;
}

} // namespace lectorbell::atspi
