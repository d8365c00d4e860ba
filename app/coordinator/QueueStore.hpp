#pragma once

#include "coordinator/QueueFile.hpp"
#include "coordinator/QueueItem.hpp"
#include "platform/ObserverList.hpp"

#include <QString>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <vector>

class QFileSystemWatcher;

namespace lectorbell::coordinator {

// The saved highlights, read back like a playlist ("The text stays on this computer."). Every
// change is written at once; changes that other processes make to the file are taken in while
// the event loop runs. Main thread only.
class QueueStore {
public:
    enum class Watch {
        otherProcesses,
        no,
    };
    using Observer = std::function<void()>;

    // `folder` is the data folder ($XDG_DATA_HOME/Lectorbell).
    explicit QueueStore(QString folder, Watch watch = Watch::no);
    ~QueueStore();
    QueueStore(const QueueStore&) = delete;
    QueueStore& operator=(const QueueStore&) = delete;

    const std::vector<QueueItem>& items() const { return items_; }
    std::vector<QueueItem> unlistened() const;
    // Removes every item with the same text, then adds the item at the end.
    void add(QueueItem item);
    void markListened(const Uuid& id);
    void remove(const Uuid& id);
    void clearListened();
    // The item after the given one in the list; none after the last or for an unknown id.
    std::optional<QueueItem> next(const Uuid& after) const;
    // Writes the whole list as it is here.
    void save();

    // Reads the file again and takes in what other processes changed.
    void reload();

    int observe(Observer observer) { return observers_.add(std::move(observer)); }
    void unobserve(int id) { observers_.remove(id); }

private:
    void change(const std::function<void(std::vector<QueueItem>&)>& edit);
    // Takes the list read from disk, keeping the ids of items already known.
    void adopt(std::vector<QueueItem> fresh);

    QueueFile file_;
    std::vector<QueueItem> items_;
    // The last write failed: the next change starts from the list here, not from disk.
    bool unsaved_ = false;
    std::unique_ptr<QFileSystemWatcher> watcher_;
    platform::ObserverList<> observers_;
};

} // namespace lectorbell::coordinator
