#include "lectorbell/SessionState.hpp"

#include "EnumNames.hpp"

#include <array>
#include <utility>

namespace lectorbell {

SessionState SessionState::completed(ReadingEndReason reason) {
    SessionState state{Kind::completed};
    state.endReason_ = reason;
    return state;
}

SessionState SessionState::failed(ReadingError error) {
    SessionState state{Kind::failed};
    state.error_ = std::move(error);
    return state;
}

std::string SessionState::statusText() const {
    switch (kind_) {
    case Kind::completed:
        return std::string{lectorbell::statusText(*endReason_)};
    case Kind::failed:
        return error_->userMessage();
    case Kind::idle:
        return "Ready";
    case Kind::preparing:
        return "Locating text\u2026";
    case Kind::speaking:
        return "Reading";
    case Kind::paused:
        return "Paused";
    case Kind::stopped:
        return "Stopped";
    }
    return {};
}

bool SessionState::isActive() const {
    return kind_ == Kind::preparing || kind_ == Kind::speaking || kind_ == Kind::paused;
}

bool SessionState::canTransition(const SessionState& from, const SessionState& to) {
    // Rows: from; columns: to; both in the order of Kind.
    static constexpr std::array<std::array<bool, 7>, 7> allowed{{
        // completed, failed, idle, preparing, speaking, paused, stopped
        {false, false, true, true, false, false, false}, // completed
        {false, false, true, true, false, false, false}, // failed
        {false, false, true, true, false, false, false}, // idle
        {true, true, true, true, true, false, true},     // preparing
        {true, true, false, true, false, true, true},    // speaking
        {false, true, false, true, true, false, true},   // paused
        {false, false, true, true, false, false, false}, // stopped
    }};
    return allowed.at(static_cast<std::size_t>(from.kind_)).at(static_cast<std::size_t>(to.kind_));
}

std::string_view SessionState::name() const {
    static constexpr std::array<std::string_view, 7> names{
        "completed", "failed", "idle", "preparing", "speaking", "paused", "stopped"};
    return detail::nameOf(names, kind_);
}

} // namespace lectorbell
