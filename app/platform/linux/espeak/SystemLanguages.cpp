#include "platform/linux/espeak/SystemLanguages.hpp"

#include <QLocale>

namespace lectorbell::platform::espeak {

std::vector<std::string> preferredLanguages() {
    std::vector<std::string> tags;
    for (const QString& language : QLocale::system().uiLanguages()) {
        QString tag = QString{language}.replace(u'_', u'-');
        if (tag.isEmpty() || tag == u"C" || tag == u"POSIX" || tag.startsWith(u"C-")) {
            continue;
        }
        tags.push_back(tag.toStdString());
    }
    return tags;
}

} // namespace lectorbell::platform::espeak
