#include "lectorbell/Diagnostics.hpp"

#include "lectorbell/Fatal.hpp"

#include <cmath>
#include <utility>

namespace lectorbell {

std::uint64_t monotonicUptimeNanoseconds() {
    return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::nanoseconds>(
                                          std::chrono::steady_clock::now().time_since_epoch())
                                          .count());
}

Stopwatch::Stopwatch(Uptime uptime)
    : uptime_(uptime ? std::move(uptime) : Uptime{monotonicUptime})
    , start_(now()) {}

// Rounded, not truncated: a double of seconds lands a hair either side of the nanosecond it
// stands for. Uptimes below zero (impossible on a monotonic clock) read as zero.
std::uint64_t Stopwatch::now() const {
    double nanoseconds = std::round(uptime_() * 1e9);
    return nanoseconds > 0 ? static_cast<std::uint64_t>(nanoseconds) : 0;
}

void Stopwatch::mark(std::string name) {
    std::uint64_t at = now();
    if (at < start_) {
        fatalError("Stopwatch mark earlier than its start");
    }
    marks_.push_back({std::move(name), at});
}

std::vector<StageTiming> Stopwatch::timingsMS() const {
    std::vector<StageTiming> timings;
    timings.reserve(marks_.size());
    for (const Mark& mark : marks_) {
        timings.push_back({mark.name, static_cast<std::int64_t>((mark.at - start_) / 1'000'000)});
    }
    return timings;
}

std::int64_t Stopwatch::elapsedMS() const {
    std::uint64_t at = now();
    if (at < start_) {
        fatalError("Stopwatch read earlier than its start");
    }
    return static_cast<std::int64_t>((at - start_) / 1'000'000);
}

DiagnosticRecord::DiagnosticRecord(std::chrono::system_clock::time_point date, std::string outcome,
                                   std::optional<ReadingMode> mode,
                                   std::optional<TextOrigin> origin,
                                   std::optional<AnchorPrecision> precision,
                                   std::optional<ConfidenceCategory> confidence,
                                   std::optional<std::string> bundleID, std::int64_t utf16Length,
                                   std::vector<StageTiming> timingsMS)
    : id(Uuid::random())
    , date(date)
    , outcome(std::move(outcome))
    , mode(mode)
    , origin(origin)
    , precision(precision)
    , confidence(confidence)
    , bundleID(std::move(bundleID))
    , sizeBucket(bucket(utf16Length))
    , timingsMS(std::move(timingsMS)) {}

std::string DiagnosticRecord::bucket(std::int64_t utf16Count) {
    if (utf16Count == 0) {
        return "empty";
    }
    if (utf16Count < 200) {
        return "<200 chars";
    }
    if (utf16Count < 2'000) {
        return "<2k chars";
    }
    if (utf16Count < 20'000) {
        return "<20k chars";
    }
    return "20k+ chars";
}

std::string DiagnosticRecord::summary() const {
    static constexpr std::string_view separator = " \u00B7 ";
    std::string line = outcome;
    auto append = [&line](std::string_view part) {
        line += separator;
        line += part;
    };
    if (mode) {
        append(*mode == ReadingMode::selectionOnly ? "selection" : "cursor");
    }
    if (origin) {
        append(label(*origin));
    }
    if (precision) {
        append("anchor: " + std::string{description(*precision)});
    }
    if (confidence) {
        append("confidence: " + std::string{rawValue(*confidence)});
    }
    append(sizeBucket);
    if (!timingsMS.empty()) {
        std::string timings;
        for (const StageTiming& timing : timingsMS) {
            if (!timings.empty()) {
                timings += ", ";
            }
            timings += timing.name + " " + std::to_string(timing.milliseconds) + "ms";
        }
        append(timings);
    }
    return line;
}

} // namespace lectorbell
