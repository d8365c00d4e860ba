#pragma once

#include <cstdint>
#include <optional>
#include <utility>

namespace lectorbell {

// Why another application's accessibility call gave no value. The extractor gives up on a
// time-out (the app is hung: further calls would only add up) and treats a plain absence as
// "not there".
enum class AXFailure {
    // The attribute or element does not exist, the element is gone, or the application answered
    // with an error.
    absent,
    // The application did not answer within the messaging time-out.
    timedOut,
};

// The numeric code traced for a failure, as the macOS accessibility API numbers them, so that
// traces read the same on every platform.
int errorCode(AXFailure failure);

// A value from another application's accessibility tree, or why there is none.
template <typename T>
class AXAnswer {
public:
    AXAnswer(T value)
        : value_(std::move(value)) {}
    AXAnswer(AXFailure failure = AXFailure::absent)
        : failure_(failure) {}

    // Named like std::optional's, so generic code takes either.
    bool has_value() const { return value_.has_value(); } // NOLINT(readability-identifier-naming)
    explicit operator bool() const { return value_.has_value(); }
    const T& operator*() const { return *value_; }
    T& operator*() { return *value_; }
    const T* operator->() const { return &*value_; }
    const std::optional<T>& optional() const { return value_; }
    // Meaningful only without a value.
    AXFailure failure() const { return failure_; }
    bool timedOut() const { return !value_ && failure_ == AXFailure::timedOut; }

private:
    std::optional<T> value_;
    AXFailure failure_ = AXFailure::absent;
};

} // namespace lectorbell
