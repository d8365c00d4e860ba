#pragma once

#include "platform/TextRecognizer.hpp"

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <string_view>
#include <vector>

namespace lectorbell::testing {

// A line of monospaced text whose top-left is (x, y), each character `charWidth` points wide,
// split into words at spaces.
OCRLine cannedLine(std::string_view text, double x, double y, double charWidth = 10,
                   double height = 20);

// What the canned recognisers read, shared by every recogniser a pool makes (one per worker):
// the page's lines in screen points. A recognition reads the lines whose centre lies in the
// image's area, as a real recogniser reads only the pixels it is given.
class CannedScript {
public:
    struct Call {
        platform::RecognitionMode mode = platform::RecognitionMode::accurate;
        ScreenRect area;
        // How it ended: none when it read its lines.
        std::optional<platform::RecognitionFailure::Kind> stopped;
    };

    // A held recognition gives up waiting after this long, so a test of a fault fails instead
    // of hanging.
    static constexpr std::chrono::seconds holdLimit{3};

    explicit CannedScript(std::vector<OCRLine> page)
        : page_(std::move(page)) {}

    // Every recognition fails this way instead of reading.
    void failWith(platform::RecognitionFailure failure);
    // Recognitions wait, once started, until release(), their cancellation or their deadline.
    void hold();
    void release();
    // Waits (at most holdLimit) until `count` recognitions have started; false if they did not.
    bool waitForStarted(std::size_t count);

    std::vector<Call> calls() const;

private:
    friend class CannedRecognizer;
    platform::Recognition run(const PixelBuffer& image, platform::RecognitionMode mode,
                              const platform::RecognitionLimits& limits);
    void finish(std::size_t call, std::optional<platform::RecognitionFailure::Kind> stopped);

    const std::vector<OCRLine> page_;
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::optional<platform::RecognitionFailure> failure_;
    bool held_ = false;
    std::vector<Call> calls_;
};

// A recogniser that answers from a CannedScript, honouring its limits while it is held.
class CannedRecognizer final : public platform::TextRecognizer {
public:
    explicit CannedRecognizer(std::shared_ptr<CannedScript> script)
        : script_(std::move(script)) {}

    platform::Recognition recognize(const PixelBuffer& image, platform::RecognitionMode mode,
                                    const platform::RecognitionLimits& limits) override {
        return script_->run(image, mode, limits);
    }

private:
    std::shared_ptr<CannedScript> script_;
};

} // namespace lectorbell::testing
