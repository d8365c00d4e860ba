#pragma once

#include "lectorbell/ReadingModel.hpp"
#include "lectorbell/Uptime.hpp"
#include "lectorbell/Uuid.hpp"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace lectorbell {

// The system's monotonic uptime in nanoseconds, for timing a stage outside a reading.
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

    // Reads `uptime` (seconds), kept to the nanosecond.
    explicit Stopwatch(Uptime uptime = monotonicUptime);

    void mark(std::string name);
    // Whole milliseconds since the start for each mark, in order, truncated.
    std::vector<StageTiming> timingsMS() const;
    std::int64_t elapsedMS() const;

    std::uint64_t start() const { return start_; }
    const std::vector<Mark>& marks() const { return marks_; }

private:
    std::uint64_t now() const;

    Uptime uptime_;
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
