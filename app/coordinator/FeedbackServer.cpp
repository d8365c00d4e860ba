#include "coordinator/Feedback.hpp"

#include <QtGlobal>

namespace lectorbell::coordinator {

std::optional<QUrl> feedbackServer() {
    QString configured = QStringLiteral(LECTORBELL_FEEDBACK_URL);
    if (qEnvironmentVariableIsSet("LECTORBELL_FEEDBACK_URL")) {
        configured = qEnvironmentVariable("LECTORBELL_FEEDBACK_URL");
    }
    QUrl url{configured.trimmed()};
    if (configured.trimmed().isEmpty() || !url.isValid() || url.scheme().isEmpty()) {
        return std::nullopt;
    }
    return url;
}

} // namespace lectorbell::coordinator
