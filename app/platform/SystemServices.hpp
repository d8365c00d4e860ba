#pragma once

#include "lectorbell/ScreenGeometry.hpp"
#include "lectorbell/SelectionPolicy.hpp"
#include "platform/AudioOutput.hpp"

#include <optional>
#include <string>

namespace lectorbell::platform {

// The application behind a window.
struct AppIdentity {
    // 0 when the window does not say.
    ProcessID pid = 0;
    // The desktop application id ("org.gnome.TextEditor", "chromium"), what exclusions and
    // per-app voices are keyed by; none when it cannot be told.
    std::optional<std::string> appID;
    // The desktop file's name, else the window's class, else "Unknown app".
    std::string displayName;

    friend bool operator==(const AppIdentity&, const AppIdentity&) = default;
};

inline constexpr const char* unknownAppName = "Unknown app";

// The short sounds Lectorbell makes.
enum class SystemSound {
    // A reading was refused, or nothing was there to save.
    tink,
    // A highlight was saved to the queue.
    pop,
};

// What the application asks of the desktop besides text and speech.
class SystemServices {
public:
    virtual ~SystemServices() = default;

    // The pointer in global screen points; none without a display.
    virtual std::optional<ScreenPoint> pointerPosition() = 0;
    // The application of the active window.
    virtual std::optional<AppIdentity> frontApplication() = 0;
    // The application of the top window under a global point.
    virtual std::optional<AppIdentity> windowOwner(ScreenPoint point) = 0;
    // Whether this process owns the active window.
    virtual bool isFrontApplication() = 0;
    // Whether the desktop tells applications to expose their accessibility trees.
    virtual bool accessibilityTrusted() = 0;
    virtual bool screenCapturePermitted() = 0;
    // Plays `sound` through `output`, behind anything already queued on it. Starts the output
    // when it has not been started.
    virtual void play(SystemSound sound, AudioOutput& output) = 0;
};

} // namespace lectorbell::platform
