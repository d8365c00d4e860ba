#pragma once

#include <functional>
#include <map>
#include <vector>

namespace lectorbell::platform {

// Callbacks told of a change, by id. An observer may add or remove observers (itself included)
// while being told; one removed meanwhile is not called.
template <typename... Args>
class ObserverList {
public:
    using Observer = std::function<void(Args...)>;

    int add(Observer observer) {
        int id = nextId_++;
        observers_.emplace(id, std::move(observer));
        return id;
    }

    void remove(int id) { observers_.erase(id); }

    void notify(const Args&... args) {
        std::vector<int> ids;
        ids.reserve(observers_.size());
        for (const auto& entry : observers_) {
            ids.push_back(entry.first);
        }
        for (int id : ids) {
            auto it = observers_.find(id);
            if (it != observers_.end()) {
                Observer observer = it->second;
                observer(args...);
            }
        }
    }

private:
    std::map<int, Observer> observers_;
    int nextId_ = 1;
};

} // namespace lectorbell::platform
