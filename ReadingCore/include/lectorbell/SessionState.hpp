#pragma once

#include "lectorbell/ReadingModel.hpp"

#include <optional>
#include <string>

namespace lectorbell {

// Where a reading session stands. `completed` carries why the reading ended, `failed` the error.
class SessionState {
public:
    enum class Kind { completed, failed, idle, preparing, speaking, paused, stopped };

    static SessionState completed(ReadingEndReason reason);
    static SessionState failed(ReadingError error);
    static SessionState idle() { return SessionState{Kind::idle}; }
    static SessionState preparing() { return SessionState{Kind::preparing}; }
    static SessionState speaking() { return SessionState{Kind::speaking}; }
    static SessionState paused() { return SessionState{Kind::paused}; }
    static SessionState stopped() { return SessionState{Kind::stopped}; }

    Kind kind() const { return kind_; }
    const std::optional<ReadingEndReason>& endReason() const { return endReason_; }
    const std::optional<ReadingError>& error() const { return error_; }

    std::string statusText() const;
    // preparing, speaking and paused.
    bool isActive() const;
    // The allowed changes; the values carried by completed and failed play no part.
    static bool canTransition(const SessionState& from, const SessionState& to);
    // The case name ("speaking", "completed", ...).
    std::string_view name() const;

    friend bool operator==(const SessionState&, const SessionState&) = default;

private:
    explicit SessionState(Kind kind)
        : kind_(kind) {}

    Kind kind_;
    std::optional<ReadingEndReason> endReason_;
    std::optional<ReadingError> error_;
};

} // namespace lectorbell
