// The Linux adapters: AT-SPI for accessibility, X11 for windows, capture and global keys,
// Tesseract for text recognition, espeak-ng for the built-in voice, Qt Multimedia for sound, Qt's
// event loop for the main queue, an INI file for the settings and the Secret Service for secrets.

#include "platform/Platform.hpp"
#include "platform/linux/LinuxLog.hpp"
#include "platform/linux/LinuxSystemServices.hpp"
#include "platform/linux/atspi/AtspiDesktop.hpp"
#include "platform/linux/atspi/ProcessInfo.hpp"
#include "platform/linux/audio/QtAudioOutput.hpp"
#include "platform/linux/espeak/EspeakSynthesizer.hpp"
#include "platform/linux/espeak/SystemLanguages.hpp"
#include "platform/linux/keyring/KeyringSecretStore.hpp"
#include "platform/linux/settings/IniSettingsStore.hpp"
#include "platform/linux/settings/LinuxPlaces.hpp"
#include "platform/linux/tesseract/ImageFile.hpp"
#include "platform/linux/tesseract/OpenMPEnvironment.hpp"
#include "platform/linux/tesseract/TesseractRecognizer.hpp"
#include "platform/linux/x11/X11Connection.hpp"
#include "platform/linux/x11/X11HotkeyService.hpp"
#include "platform/linux/x11/X11ScreenCapturer.hpp"
#include "platform/linux/x11/X11WindowLocator.hpp"
#include "platform/linux/xdg/DesktopEntries.hpp"
#include "platform/qt/QtScheduler.hpp"

#include <QFileInfo>
#include <mutex>

namespace lectorbell::platform {

namespace {

class LinuxPlatform final : public Platform {
public:
    std::unique_ptr<AccessibilityDesktop> accessibilityDesktop() override {
        return std::make_unique<atspi::AtspiDesktop>();
    }

    std::optional<bool> toolkitAccessibilityEnabled() override {
        return atspi::AtspiDesktop::toolkitAccessibilityEnabled();
    }

    // Qt apps expose their trees only when accessibility was on as they started, and
    // Chromium-family apps their pages only with their own option.
    std::optional<std::string> startNotice(AccessibilityDesktop& desktop, ProcessID pid) override {
        atspi::StartupToolkit toolkit = atspi::startupToolkit(pid);
        std::optional<std::string> command = atspi::processName(pid);
        std::string name = command ? *command + " (process " + std::to_string(pid) + ")"
                                   : "process " + std::to_string(pid);
        if (toolkit == atspi::StartupToolkit::chromium &&
            !atspi::startedWith(pid, atspi::chromiumAccessibilityOption)) {
            return name + " shows no page text to accessibility: start it with " +
                   atspi::chromiumAccessibilityOption;
        }
        if ((toolkit == atspi::StartupToolkit::qt || toolkit == atspi::StartupToolkit::firefox) &&
            !desktop.application(pid)) {
            return name +
                   " is not on the accessibility bus: restart it now that accessibility is on";
        }
        return std::nullopt;
    }

    std::unique_ptr<WindowLocator> windowLocator() override {
        std::shared_ptr<x11::Connection> display = connection();
        if (!display) {
            return nullptr;
        }
        return std::make_unique<x11::X11WindowLocator>(display);
    }

    std::shared_ptr<ScreenCapturer> screenCapturer() override {
        std::shared_ptr<x11::Connection> display = connection();
        if (!display) {
            return nullptr;
        }
        return std::make_shared<x11::X11ScreenCapturer>(display);
    }

    std::unique_ptr<TextRecognizer> textRecognizer() override {
        return std::make_unique<tesseract::TesseractRecognizer>();
    }

    std::variant<PixelBuffer, std::string> readImageFile(const std::string& path,
                                                         double pixelsPerPoint) override {
        return tesseract::readImageFile(path, pixelsPerPoint);
    }

    std::unique_ptr<PlatformSynthesizer> systemSynthesizer() override {
        auto synth = std::make_unique<espeak::EspeakSynthesizer>(espeak::preferredLanguages());
        if (!synth->isAvailable()) {
            return nullptr;
        }
        return synth;
    }

    std::unique_ptr<AudioOutput> audioOutput() override {
        return std::make_unique<audio::QtAudioOutput>();
    }

    std::vector<std::string> preferredLanguages() override { return espeak::preferredLanguages(); }

    std::unique_ptr<Scheduler> scheduler() override { return std::make_unique<qt::QtScheduler>(); }

    std::unique_ptr<HotkeyService> hotkeyService(Scheduler& scheduler) override {
        return x11::X11HotkeyService::open(scheduler);
    }

    std::unique_ptr<SystemServices> systemServices() override {
        return std::make_unique<LinuxSystemServices>(connection(),
                                                     xdg::DesktopEntries::applicationFolders());
    }

    std::unique_ptr<SettingsStore> settingsStore(WatchOtherProcesses watch) override {
        return std::make_unique<settings::IniSettingsStore>(settings::settingsFile(), watch);
    }

    std::unique_ptr<SettingsStore> formerSettingsStore() override {
        if (!QFileInfo::exists(settings::formerSettingsFile())) {
            return nullptr;
        }
        return std::make_unique<settings::IniSettingsStore>(settings::formerSettingsFile());
    }

    std::string dataFolder() override { return settings::dataFolder().toStdString(); }
    std::string formerDataFolder() override { return settings::formerDataFolder().toStdString(); }

    std::unique_ptr<SecretStore> secretStore() override {
        return std::make_unique<keyring::KeyringSecretStore>(
            QString::fromLatin1(keyring::keyringService));
    }

    std::unique_ptr<SecretStore> formerSecretStore() override {
        return std::make_unique<keyring::KeyringSecretStore>(
            QString::fromLatin1(keyring::formerKeyringService));
    }

private:
    // One X connection for every X11 adapter, opened on first use.
    std::shared_ptr<x11::Connection> connection() {
        std::lock_guard lock{mutex_};
        if (!connection_) {
            connection_ = x11::Connection::open();
        }
        return connection_;
    }

    std::mutex mutex_;
    std::shared_ptr<x11::Connection> connection_;
};

} // namespace

void prepareProcess(char** argv) {
    tesseract::ensureOpenMPThreadLimit(argv);
    routeCoreLogToQt();
}

std::unique_ptr<Platform> makePlatform() {
    return std::make_unique<LinuxPlatform>();
}

} // namespace lectorbell::platform
