#pragma once

#include <atomic>
#include <memory>
#include <vector>

namespace lectorbell {

// Whether a lookup is still wanted. Copies share one flag: the thread that starts a lookup keeps
// a copy and cancels it when a newer press or a stop makes the lookup stale; the worker checks it
// between calls into other applications and between recognition passes. Safe from any thread.
class CancelToken {
public:
    CancelToken()
        : state_(std::make_shared<State>()) {}

    void cancel() const { state_->flag.store(true, std::memory_order_relaxed); }
    bool cancelled() const { return state_->cancelled(); }

    // A token that is cancelled as soon as this one or `other` is. Cancelling it cancels neither.
    CancelToken orWhen(const CancelToken& other) const {
        CancelToken either;
        either.state_->sources = {state_, other.state_};
        return either;
    }

private:
    struct State {
        std::atomic<bool> flag{false};
        std::vector<std::shared_ptr<const State>> sources;

        bool cancelled() const {
            if (flag.load(std::memory_order_relaxed)) {
                return true;
            }
            for (const auto& source : sources) {
                if (source->cancelled()) {
                    return true;
                }
            }
            return false;
        }
    };

    std::shared_ptr<State> state_;
};

// The outcome of a lookup that was cancelled: no result, and nothing to show the user.
struct Cancelled {
    friend bool operator==(const Cancelled&, const Cancelled&) = default;
};

} // namespace lectorbell
