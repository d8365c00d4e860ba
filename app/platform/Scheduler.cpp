#include "platform/Scheduler.hpp"

#include <utility>

namespace lectorbell::platform {

TimerHandle::TimerHandle(std::shared_ptr<State> state)
    : state_(std::move(state)) {}

TimerHandle::~TimerHandle() {
    cancel();
}

TimerHandle& TimerHandle::operator=(TimerHandle&& other) noexcept {
    if (this != &other) {
        cancel();
        state_ = std::move(other.state_);
    }
    return *this;
}

void TimerHandle::cancel() {
    if (state_) {
        state_->cancelled = true;
        state_.reset();
    }
}

bool TimerHandle::pending() const {
    return state_ && !state_->cancelled && !state_->ran;
}

std::pair<TimerHandle, Scheduler::Task> Scheduler::guarded(Task task) {
    auto state = std::make_shared<TimerHandle::State>();
    Task run = [state, task = std::move(task)] {
        if (state->cancelled || state->ran) {
            return;
        }
        state->ran = true;
        task();
    };
    return {TimerHandle{std::move(state)}, std::move(run)};
}

} // namespace lectorbell::platform
