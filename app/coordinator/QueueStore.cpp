#include "coordinator/QueueStore.hpp"

#include <QFileInfo>
#include <QFileSystemWatcher>
#include <algorithm>
#include <unordered_map>

namespace lectorbell::coordinator {

namespace {

bool sameList(const std::vector<QueueItem>& a, const std::vector<QueueItem>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const QueueItem& x, const QueueItem& y) { return x.sameStored(y); });
}

} // namespace

QueueStore::QueueStore(QString folder, Watch watch)
    : file_{std::move(folder)} {
    items_ = file_.load().value_or(std::vector<QueueItem>{});
    if (watch == Watch::otherProcesses) {
        watcher_ = std::make_unique<QFileSystemWatcher>();
        watcher_->addPath(QFileInfo{file_.path()}.absolutePath());
        auto changed = [this] {
            if (QFileInfo::exists(file_.path()) && !watcher_->files().contains(file_.path())) {
                watcher_->addPath(file_.path());
            }
            reload();
        };
        QObject::connect(watcher_.get(), &QFileSystemWatcher::directoryChanged, watcher_.get(),
                         changed);
        QObject::connect(watcher_.get(), &QFileSystemWatcher::fileChanged, watcher_.get(), changed);
        changed();
    }
}

QueueStore::~QueueStore() = default;

std::vector<QueueItem> QueueStore::unlistened() const {
    std::vector<QueueItem> waiting;
    std::copy_if(items_.begin(), items_.end(), std::back_inserter(waiting),
                 [](const QueueItem& item) { return !item.listened; });
    return waiting;
}

void QueueStore::change(const std::function<void(std::vector<QueueItem>&)>& edit) {
    std::optional<std::vector<QueueItem>> written;
    if (unsaved_) {
        std::vector<QueueItem> mine = items_;
        edit(mine);
        if (file_.replace(mine)) {
            written = std::move(mine);
        }
    } else {
        written = file_.update(edit);
    }
    if (written) {
        unsaved_ = false;
        adopt(std::move(*written));
    } else {
        // Keep the change here; it is written with the next one.
        unsaved_ = true;
        std::vector<QueueItem> mine = items_;
        edit(mine);
        items_ = std::move(mine);
    }
    observers_.notify();
}

void QueueStore::add(QueueItem item) {
    // As the file keeps it, so that the item is known again when the file is read back.
    item.date = std::chrono::time_point_cast<Date::duration>(
        std::chrono::floor<std::chrono::milliseconds>(item.date));
    change([&item](std::vector<QueueItem>& items) {
        std::erase_if(items, [&item](const QueueItem& old) { return old.text == item.text; });
        items.push_back(item);
    });
}

void QueueStore::markListened(const Uuid& id) {
    auto it = std::find_if(items_.begin(), items_.end(),
                           [&id](const QueueItem& item) { return item.id == id; });
    if (it == items_.end()) {
        return;
    }
    QueueItem target = *it;
    change([&target](std::vector<QueueItem>& items) {
        for (QueueItem& item : items) {
            if (item.id == target.id || item.sameStored(target)) {
                item.listened = true;
            }
        }
    });
}

void QueueStore::remove(const Uuid& id) {
    auto it = std::find_if(items_.begin(), items_.end(),
                           [&id](const QueueItem& item) { return item.id == id; });
    if (it == items_.end()) {
        return;
    }
    QueueItem target = *it;
    change([&target](std::vector<QueueItem>& items) {
        std::erase_if(items, [&target](const QueueItem& item) {
            return item.id == target.id || item.sameStored(target);
        });
    });
}

void QueueStore::clearListened() {
    change([](std::vector<QueueItem>& items) {
        std::erase_if(items, [](const QueueItem& item) { return item.listened; });
    });
}

std::optional<QueueItem> QueueStore::next(const Uuid& after) const {
    for (std::size_t i = 0; i + 1 < items_.size(); ++i) {
        if (items_[i].id == after) {
            return items_[i + 1];
        }
    }
    return std::nullopt;
}

void QueueStore::save() {
    unsaved_ = !file_.replace(items_);
}

void QueueStore::reload() {
    if (unsaved_) {
        return;
    }
    std::optional<std::vector<QueueItem>> fresh = file_.peek();
    if (!fresh || sameList(*fresh, items_)) {
        return;
    }
    adopt(std::move(*fresh));
    observers_.notify();
}

void QueueStore::adopt(std::vector<QueueItem> fresh) {
    // Items read from disk get new ids; an item already known keeps its id, so that a list on
    // screen or a playing queue follows it across reloads.
    std::unordered_multimap<Date::rep, const QueueItem*> known;
    for (const QueueItem& item : items_) {
        known.emplace(item.date.time_since_epoch().count(), &item);
    }
    for (QueueItem& item : fresh) {
        auto [first, last] = known.equal_range(item.date.time_since_epoch().count());
        for (auto it = first; it != last; ++it) {
            if (it->second->text == item.text && it->second->appName == item.appName) {
                item.id = it->second->id;
                known.erase(it);
                break;
            }
        }
    }
    items_ = std::move(fresh);
}

} // namespace lectorbell::coordinator
