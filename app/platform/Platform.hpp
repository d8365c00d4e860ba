#pragma once

#include "lectorbell/PixelBuffer.hpp"
#include "platform/AccessibilityApp.hpp"
#include "platform/AudioOutput.hpp"
#include "platform/HotkeyService.hpp"
#include "platform/PlatformSynthesizer.hpp"
#include "platform/Scheduler.hpp"
#include "platform/ScreenCapturer.hpp"
#include "platform/SecretStore.hpp"
#include "platform/SettingsStore.hpp"
#include "platform/SystemServices.hpp"
#include "platform/TextRecognizer.hpp"
#include "platform/WindowLocator.hpp"

#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace lectorbell::platform {

// Builds the running system's adapters behind their interfaces. main creates the one instance
// and hands it to the verbs and the application; nothing else names an adapter class.
class Platform {
public:
    virtual ~Platform() = default;

    // The desktop's accessibility service. Its client is bound to the thread that uses it: create
    // the desktop on the worker that walks trees, and use it there only.
    virtual std::unique_ptr<AccessibilityDesktop> accessibilityDesktop() = 0;
    // Whether the desktop tells applications to expose their trees; none when it cannot be asked.
    virtual std::optional<bool> toolkitAccessibilityEnabled() = 0;
    // Why an application showed no text when the way it was started is the reason (it must be
    // restarted, or started with an option); none otherwise.
    virtual std::optional<std::string> startNotice(AccessibilityDesktop& desktop,
                                                   ProcessID pid) = 0;

    // The window under a screen point; none when there is no display to ask.
    virtual std::unique_ptr<WindowLocator> windowLocator() = 0;
    // Captures of the screen; none when there is no display to capture.
    virtual std::shared_ptr<ScreenCapturer> screenCapturer() = 0;
    // A text recogniser; each worker thread keeps its own.
    virtual std::unique_ptr<TextRecognizer> textRecognizer() = 0;
    // An image file read as if it were a capture of the screen area at (0, 0), with
    // `pixelsPerPoint` image pixels per point; the reason when it cannot be read.
    virtual std::variant<PixelBuffer, std::string> readImageFile(const std::string& path,
                                                                 double pixelsPerPoint) = 0;

    // The built-in voice, its default chosen by the user's languages.
    virtual std::unique_ptr<PlatformSynthesizer> systemSynthesizer() = 0;
    // The sound device.
    virtual std::unique_ptr<AudioOutput> audioOutput() = 0;
    // The user's preferred languages as BCP-47 tags, most preferred first.
    virtual std::vector<std::string> preferredLanguages() = 0;

    // The main queue and its clock. Make it on the main thread, once the application's event
    // loop object exists.
    virtual std::unique_ptr<Scheduler> scheduler() = 0;
    // Global keys, their events delivered through `scheduler`, which must outlive the service;
    // none when there is no display to take keys from.
    virtual std::unique_ptr<HotkeyService> hotkeyService(Scheduler& scheduler) = 0;
    // The pointer, the applications behind windows, permissions and the application's sounds.
    virtual std::unique_ptr<SystemServices> systemServices() = 0;

    // The user's settings ("user defaults").
    virtual std::unique_ptr<SettingsStore> settingsStore(WatchOtherProcesses watch) = 0;
    // The earlier build's settings, read once to carry them over; none when it left none.
    virtual std::unique_ptr<SettingsStore> formerSettingsStore() = 0;
    // The folder that holds the queue, and the earlier build's.
    virtual std::string dataFolder() = 0;
    virtual std::string formerDataFolder() = 0;
    // The user's secrets under our application id, and under the earlier build's.
    virtual std::unique_ptr<SecretStore> secretStore() = 0;
    virtual std::unique_ptr<SecretStore> formerSecretStore() = 0;
};

// Prepares the process for the platform's libraries before anything else runs (it may re-run
// the executable with a changed environment). Call it first thing in main.
void prepareProcess(char** argv);

// The adapters of the system this executable was built for.
std::unique_ptr<Platform> makePlatform();

} // namespace lectorbell::platform
