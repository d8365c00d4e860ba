#pragma once

#include "lectorbell/ReadingModel.hpp"
#include "lectorbell/Uuid.hpp"

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace lectorbell {

// Monotonic uptime in nanoseconds.
using UptimeClock = std::function<std::uint64_t()>;
std::uint64_t monotonicUptimeNanoseconds();

struct StageTiming {
    std::string name;
    std::int64_t milliseconds = 0;

    friend bool operator==(const StageTiming&, const StageTiming&) = default;
};

// Times the stages of one reading attempt.
class Stopwatch {
public:
    struct Mark {
        std::string name;
        std::uint64_t at = 0;
    };

    // The clock defaults to the monotonic uptime; tests pass their own.
    explicit Stopwatch(UptimeClock clock = monotonicUptimeNanoseconds);

    void mark(std::string name);
    // Whole milliseconds since the start for each mark, in order, truncated.
    std::vector<StageTiming> timingsMS() const;
    std::int64_t elapsedMS() const;

    std::uint64_t start() const { return start_; }
    const std::vector<Mark>& marks() const { return marks_; }

private:
    UptimeClock clock_;
    std::uint64_t start_;
    std::vector<Mark> marks_;
};

// What one reading attempt did, without its text: only the text's size bucket.
struct DiagnosticRecord {
    Uuid id;
    std::chrono::system_clock::time_point date;
    std::string outcome;
    std::optional<ReadingMode> mode;
    std::optional<TextOrigin> origin;
    std::optional<AnchorPrecision> precision;
    std::optional<ConfidenceCategory> confidence;
    std::optional<std::string> bundleID;
    std::string sizeBucket;
    std::vector<StageTiming> timingsMS;

    DiagnosticRecord(std::chrono::system_clock::time_point date, std::string outcome,
                     std::optional<ReadingMode> mode, std::optional<TextOrigin> origin,
                     std::optional<AnchorPrecision> precision,
                     std::optional<ConfidenceCategory> confidence,
                     std::optional<std::string> bundleID, std::int64_t utf16Length,
                     std::vector<StageTiming> timingsMS);

    static std::string bucket(std::int64_t utf16Count);
    // One line for the log: the parts joined with " · ".
    std::string summary() const;
};

} // namespace lectorbell
