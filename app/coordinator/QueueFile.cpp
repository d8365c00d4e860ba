#include "coordinator/QueueFile.hpp"

#include "coordinator/CoordinatorLog.hpp"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QSaveFile>

namespace lectorbell::coordinator {

namespace {

constexpr int lockWaitMs = 5000;
// Larger than any queue a person saves; a bigger file is kept aside unread.
constexpr qint64 largestReadableBytes = 512LL * 1024 * 1024;

constexpr QFile::Permissions ownerOnly = QFile::ReadOwner | QFile::WriteOwner;

std::optional<QByteArray> readAll(const QString& path, bool& missing) {
    QFile file{path};
    missing = !file.exists();
    if (missing) {
        return QByteArray{};
    }
    if (file.size() > largestReadableBytes || !file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    return file.readAll();
}

// The folder holds the user's text: created readable by its owner only.
void ensureFolder(const QString& folder) {
    if (QFileInfo::exists(folder)) {
        return;
    }
    QDir{}.mkpath(folder);
    QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

} // namespace

QueueFile::QueueFile(QString folder)
    : folder_{std::move(folder)}
    , path_{folder_ + QStringLiteral("/queue.json")}
    , lockPath_{folder_ + QStringLiteral("/queue.json.lock")} {}

std::optional<std::vector<QueueItem>> QueueFile::load() {
    ensureFolder(folder_);
    QLockFile lock{lockPath_};
    if (!lock.tryLock(lockWaitMs)) {
        qCWarning(lcStores, "queue: the queue's lock could not be had (error %d)",
                  static_cast<int>(lock.error()));
        return peek();
    }
    return readLocked();
}

std::optional<QueueFile::Known> QueueFile::stamp(std::vector<QueueItem> items) const {
    std::error_code error;
    std::filesystem::path file{path_.toStdString()};
    auto modified = std::filesystem::last_write_time(file, error);
    auto size = error ? 0 : std::filesystem::file_size(file, error);
    if (error) {
        return std::nullopt;
    }
    return Known{modified, size, std::move(items)};
}

std::optional<std::vector<QueueItem>> QueueFile::readLocked() {
    if (known_) {
        std::optional<Known> now = stamp({});
        if (now && now->modified == known_->modified && now->size == known_->size) {
            return known_->items;
        }
    }
    bool missing = false;
    std::optional<QByteArray> bytes = readAll(path_, missing);
    if (missing) {
        return std::vector<QueueItem>{};
    }
    if (!bytes) {
        keepAside(static_cast<std::size_t>(QFileInfo{path_}.size()));
        return std::vector<QueueItem>{};
    }
    DecodedQueue decoded =
        decodeQueue(std::string_view{bytes->constData(), static_cast<std::size_t>(bytes->size())});
    if (!decoded.complete()) {
        keepAside(static_cast<std::size_t>(bytes->size()));
        if (!decoded.unreadable) {
            qCWarning(lcStores, "queue: %zu items read, %zu left out%s", decoded.items.size(),
                      decoded.dropped, decoded.repairedText ? ", invalid UTF-8 replaced" : "");
            // Put back what could be read, so that other processes see it too.
            write(decoded.items);
        }
    } else {
        known_ = stamp(decoded.items);
    }
    return std::move(decoded.items);
}

void QueueFile::keepAside(std::size_t bytes) {
    QString stamp =
        QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyyMMdd'T'HHmmss'Z'"));
    QString aside = path_ + QStringLiteral(".corrupt-") + stamp;
    for (int n = 2; QFileInfo::exists(aside); ++n) {
        aside = path_ + QStringLiteral(".corrupt-") + stamp + QLatin1Char('-') + QString::number(n);
    }
    if (QFile::rename(path_, aside)) {
        qCWarning(lcStores, "queue: queue.json did not decode (%zu bytes); kept aside as %s", bytes,
                  qPrintable(QFileInfo{aside}.fileName()));
    } else {
        qCWarning(lcStores,
                  "queue: queue.json did not decode (%zu bytes) and could not be kept "
                  "aside",
                  bytes);
    }
}

std::optional<std::vector<QueueItem>>
QueueFile::update(const std::function<void(std::vector<QueueItem>&)>& change) {
    ensureFolder(folder_);
    QLockFile lock{lockPath_};
    if (!lock.tryLock(lockWaitMs)) {
        qCWarning(lcStores, "queue: the queue's lock could not be had (error %d)",
                  static_cast<int>(lock.error()));
        return std::nullopt;
    }
    std::optional<std::vector<QueueItem>> items = readLocked();
    if (!items) {
        return std::nullopt;
    }
    change(*items);
    if (!write(*items)) {
        return std::nullopt;
    }
    return items;
}

bool QueueFile::replace(const std::vector<QueueItem>& items) {
    ensureFolder(folder_);
    QLockFile lock{lockPath_};
    if (!lock.tryLock(lockWaitMs)) {
        qCWarning(lcStores, "queue: the queue's lock could not be had (error %d)",
                  static_cast<int>(lock.error()));
        return false;
    }
    return write(items);
}

bool QueueFile::write(const std::vector<QueueItem>& items) {
    std::string json = encodeQueue(items);
    QSaveFile file{path_};
    if (!file.open(QIODevice::WriteOnly)) {
        qCWarning(lcStores, "queue: queue.json could not be opened for writing (error %d)",
                  static_cast<int>(file.error()));
        return false;
    }
    file.setPermissions(ownerOnly);
    file.write(json.data(), static_cast<qint64>(json.size()));
    if (!file.commit()) {
        qCWarning(lcStores, "queue: queue.json could not be written (%zu items, error %d)",
                  items.size(), static_cast<int>(file.error()));
        known_.reset();
        return false;
    }
    known_ = stamp(items);
    return true;
}

std::optional<std::vector<QueueItem>> QueueFile::peek() const {
    bool missing = false;
    std::optional<QByteArray> bytes = readAll(path_, missing);
    if (missing) {
        return std::vector<QueueItem>{};
    }
    if (!bytes) {
        return std::nullopt;
    }
    DecodedQueue decoded =
        decodeQueue(std::string_view{bytes->constData(), static_cast<std::size_t>(bytes->size())});
    if (!decoded.complete()) {
        return std::nullopt;
    }
    return std::move(decoded.items);
}

} // namespace lectorbell::coordinator
