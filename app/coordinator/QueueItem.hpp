#pragma once

#include "lectorbell/ListeningStats.hpp"
#include "lectorbell/Uuid.hpp"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lectorbell::coordinator {

// A highlight the user saved to be read later.
struct QueueItem {
    // Identity within the running application only; not stored.
    Uuid id = Uuid::random();
    Date date;
    std::string appName;
    std::optional<std::string> bundleID;
    std::u16string text;
    bool listened = false;

    // Equal in everything that is stored.
    bool sameStored(const QueueItem& other) const {
        return date == other.date && appName == other.appName && bundleID == other.bundleID &&
               text == other.text && listened == other.listened;
    }
};

// The queue file: a JSON array of {"date", "appName", "bundleID", "text", "listened"}.
std::string encodeQueue(const std::vector<QueueItem>& items);

struct DecodedQueue {
    std::vector<QueueItem> items;
    // The bytes were not a JSON array at all.
    bool unreadable = false;
    // Items that were not well-formed and were left out.
    std::size_t dropped = 0;
    // Invalid UTF-8 was replaced by U+FFFD to read the rest.
    bool repairedText = false;

    bool complete() const { return !unreadable && dropped == 0 && !repairedText; }
};
DecodedQueue decodeQueue(std::string_view bytes);

} // namespace lectorbell::coordinator
