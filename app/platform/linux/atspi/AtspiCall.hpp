#pragma once

#include "platform/AXAnswer.hpp"

#include <atspi/atspi.h>
#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace lectorbell::platform::atspi {

// The messaging time-out of every call into another application.
inline constexpr std::chrono::milliseconds messagingTimeout{500};
// A call that took this long met the time-out (the library reports most of them as empty
// answers, not errors): the application is taken as hung.
inline constexpr std::chrono::milliseconds hungAfter{400};

// What a call's error, and whether the call took as long as a hung application would, say
// about the application: no failure (no error, in time), timed out, or absent. libatspi passes a
// D-Bus failure on as a GError carrying only the D-Bus error's message, so a reply that never
// came is known by libdbus's wording; every other error (the element or application is gone,
// the application refused the call) means there is no value. AT-SPI has no "busy, ask again"
// answer: an application answers, answers with an error, or does not answer in time.
std::optional<AXFailure> failureOf(const GError* error, bool slow);

// Shared by every element of one application during one lookup: once a call has timed out,
// the others answer at once instead of waiting again (waits would add up).
class HangGuard {
public:
    bool timedOut() const { return timedOut_; }
    // For waits made outside run() (pipelined calls).
    void markTimedOut() { timedOut_ = true; }

    // Runs `call(GError**)`; the answer is its value, or the failure it met.
    template <typename Call>
    auto run(Call call) -> AXAnswer<decltype(call(static_cast<GError**>(nullptr)))> {
        using Value = decltype(call(static_cast<GError**>(nullptr)));
        if (timedOut_) {
            return AXFailure::timedOut;
        }
        GError* error = nullptr;
        auto started = std::chrono::steady_clock::now();
        Value value = call(&error);
        std::optional<AXFailure> failure =
            failureOf(error, std::chrono::steady_clock::now() - started >= hungAfter);
        if (error) {
            g_error_free(error);
        }
        if (!failure) {
            return value;
        }
        if (*failure == AXFailure::timedOut) {
            timedOut_ = true;
        }
        return *failure;
    }

private:
    bool timedOut_ = false;
};

// Owns one GObject reference.
template <typename T>
class GRef {
public:
    GRef() = default;
    // Takes over a reference the caller already holds.
    static GRef adopt(T* object) {
        GRef ref;
        ref.object_ = object;
        return ref;
    }
    // Adds a reference of its own.
    static GRef retain(T* object) {
        if (object) {
            g_object_ref(object);
        }
        return adopt(object);
    }
    GRef(const GRef& other)
        : object_(other.object_) {
        if (object_) {
            g_object_ref(object_);
        }
    }
    GRef(GRef&& other) noexcept
        : object_(std::exchange(other.object_, nullptr)) {}
    GRef& operator=(GRef other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~GRef() {
        if (object_) {
            g_object_unref(object_);
        }
    }
    T* get() const { return object_; }
    explicit operator bool() const { return object_ != nullptr; }

private:
    T* object_ = nullptr;
};

// A string the library allocated, copied and freed.
std::string takeString(gchar* text);

} // namespace lectorbell::platform::atspi
