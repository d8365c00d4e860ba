#include "CannedRecognizer.hpp"

#include "lectorbell/Utf8.hpp"

namespace lectorbell::testing {

using platform::Recognition;
using platform::RecognitionFailure;

OCRLine cannedLine(std::string_view text, double x, double y, double charWidth, double height) {
    OCRLine line;
    line.text = fromUtf8(std::string{text});
    line.rect = ScreenRect{x, y, charWidth * static_cast<double>(line.text.size()), height};
    line.confidence = 0.95F;
    std::size_t start = 0;
    while (start < line.text.size()) {
        std::size_t end = line.text.find(u' ', start);
        if (end == std::u16string::npos) {
            end = line.text.size();
        }
        if (end > start) {
            line.words.push_back(
                {line.text.substr(start, end - start),
                 ScreenRect{x + charWidth * static_cast<double>(start), y,
                            charWidth * static_cast<double>(end - start), height},
                 {static_cast<std::int64_t>(start), static_cast<std::int64_t>(end - start)}});
        }
        start = end + 1;
    }
    return line;
}

void CannedScript::failWith(RecognitionFailure failure) {
    std::lock_guard lock{mutex_};
    failure_ = std::move(failure);
}

void CannedScript::hold() {
    std::lock_guard lock{mutex_};
    held_ = true;
}

void CannedScript::release() {
    {
        std::lock_guard lock{mutex_};
        held_ = false;
    }
    changed_.notify_all();
}

bool CannedScript::waitForStarted(std::size_t count) {
    std::unique_lock lock{mutex_};
    return changed_.wait_for(lock, holdLimit, [&] { return calls_.size() >= count; });
}

std::vector<CannedScript::Call> CannedScript::calls() const {
    std::lock_guard lock{mutex_};
    return calls_;
}

void CannedScript::finish(std::size_t call,
                          std::optional<platform::RecognitionFailure::Kind> stopped) {
    std::lock_guard lock{mutex_};
    calls_[call].stopped = stopped;
}

Recognition CannedScript::run(const PixelBuffer& image, platform::RecognitionMode mode,
                              const platform::RecognitionLimits& limits) {
    std::size_t call = 0;
    std::optional<RecognitionFailure> failure;
    {
        std::unique_lock lock{mutex_};
        call = calls_.size();
        calls_.push_back({mode, image.area, std::nullopt});
        changed_.notify_all();
        // Polled: cancellation and deadlines come from outside, without a notification.
        const auto giveUp = std::chrono::steady_clock::now() + holdLimit;
        while (held_ && !limits.cancel.cancelled() && !limits.pastDeadline() &&
               std::chrono::steady_clock::now() < giveUp) {
            changed_.wait_for(lock, std::chrono::milliseconds{1});
        }
        failure = failure_;
    }
    if (limits.cancel.cancelled()) {
        failure = RecognitionFailure{RecognitionFailure::Kind::cancelled, "cancelled", {}};
    } else if (limits.pastDeadline()) {
        failure = RecognitionFailure{RecognitionFailure::Kind::deadlinePassed, "deadline", {}};
    }
    if (failure) {
        finish(call, failure->kind);
        return {{}, failure};
    }
    Recognition result;
    for (const OCRLine& line : page_) {
        if (image.area.contains({line.rect.midX(), line.rect.midY()})) {
            result.lines.push_back(line);
        }
    }
    finish(call, std::nullopt);
    return result;
}

} // namespace lectorbell::testing
