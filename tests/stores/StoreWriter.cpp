// Writes the stores over and over, for the crash tests that kill it in the middle of a write:
//   StoreWriter queue-churn FOLDER       queue versions of 400 items, each item naming its version
//   StoreWriter settings-churn FILE      a 200 kB setting and its version number, together
//   StoreWriter queue-add FOLDER PREFIX N  N items "PREFIX i" added one by one

#include "coordinator/QueueFile.hpp"
#include "coordinator/QueueStore.hpp"
#include "lectorbell/Utf8.hpp"
#include "platform/linux/settings/IniSettingsStore.hpp"

#include <QCoreApplication>
#include <cstdio>
#include <string>

using namespace lectorbell;

namespace {

void churnQueue(const QString& folder) {
    coordinator::QueueFile file{folder};
    for (int version = 0;; ++version) {
        std::vector<coordinator::QueueItem> items(400);
        for (std::size_t i = 0; i < items.size(); ++i) {
            items[i].date = std::chrono::system_clock::now();
            items[i].appName = "Writer";
            items[i].text = u"version " + fromUtf8(std::to_string(version)) + u" item " +
                            fromUtf8(std::to_string(i)) + std::u16string(200, u'x');
        }
        file.replace(items);
    }
}

void churnSettings(const QString& path) {
    platform::settings::IniSettingsStore store{path};
    for (int version = 0;; ++version) {
        std::string blob(200000, static_cast<char>('a' + version % 26));
        store.setValue("blob", blob + std::to_string(version));
        store.setValue("version", std::int64_t{version});
    }
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication application{argc, argv};
    const std::string mode = argc > 2 ? argv[1] : "";
    if (mode == "queue-churn") {
        churnQueue(QString::fromLocal8Bit(argv[2]));
    } else if (mode == "settings-churn") {
        churnSettings(QString::fromLocal8Bit(argv[2]));
    } else if (mode == "queue-add" && argc == 5) {
        coordinator::QueueStore queue{QString::fromLocal8Bit(argv[2])};
        for (int i = 0; i < std::stoi(argv[4]); ++i) {
            coordinator::QueueItem item;
            item.date = std::chrono::system_clock::now();
            item.appName = "Writer";
            item.text = fromUtf8(std::string{argv[3]} + " " + std::to_string(i));
            queue.add(std::move(item));
        }
        std::printf("%zu\n", queue.items().size());
    } else {
        std::fprintf(stderr, "usage: StoreWriter queue-churn|settings-churn|queue-add ...\n");
        return 2;
    }
    return 0;
}
