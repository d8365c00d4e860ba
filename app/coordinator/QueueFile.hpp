#pragma once

#include "coordinator/QueueItem.hpp"

#include <QString>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

namespace lectorbell::coordinator {

// The file "queue.json" in the data folder, shared by every process of the user. Changes are
// read-modify-write cycles under a lock file, so two processes that change the queue at once
// both keep their change, and each write replaces the file in one rename (a crash leaves the
// old or the new queue). The file is readable by its owner only: it holds the user's text.
class QueueFile {
public:
    explicit QueueFile(QString folder);

    const QString& path() const { return path_; }

    // The queue on disk, read under the lock. A file that does not decode fully is kept aside
    // as "queue.json.corrupt-<time>" first, with one warning line; what could be read of it is
    // returned (nothing when it was not a JSON array at all).
    std::optional<std::vector<QueueItem>> load();

    // Reads the queue under the lock, hands it to `change`, and writes the result. No value when
    // the lock could not be had or the write failed (the queue on disk is then unchanged).
    std::optional<std::vector<QueueItem>>
    update(const std::function<void(std::vector<QueueItem>&)>& change);

    // Writes the whole list under the lock, whatever is on disk.
    bool replace(const std::vector<QueueItem>& items);

    // The queue on disk read without the lock, for noticing other processes' changes; no value
    // when the file does not decode fully (a later locked read deals with it).
    std::optional<std::vector<QueueItem>> peek() const;

private:
    std::optional<std::vector<QueueItem>> readLocked();
    bool write(const std::vector<QueueItem>& items);
    void keepAside(std::size_t bytes);

    // The file as this object last read or wrote it. A file with the same time and size was not
    // changed by anyone else since (every write replaces it), so it need not be read again.
    struct Known {
        std::filesystem::file_time_type modified;
        std::uintmax_t size = 0;
        std::vector<QueueItem> items;
    };
    std::optional<Known> stamp(std::vector<QueueItem> items) const;

    QString folder_;
    QString path_;
    QString lockPath_;
    std::optional<Known> known_;
};

} // namespace lectorbell::coordinator
