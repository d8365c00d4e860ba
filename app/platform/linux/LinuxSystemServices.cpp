#include "platform/linux/LinuxSystemServices.hpp"

#include "platform/linux/atspi/AtspiDesktop.hpp"
#include "platform/linux/sound/ShippedSounds.hpp"
#include "platform/linux/x11/X11Clients.hpp"
#include "platform/linux/x11/X11Connection.hpp"
#include "platform/linux/x11/X11WindowClues.hpp"
#include "platform/linux/x11/X11WindowLocator.hpp"

#include <unistd.h>
#include <utility>

namespace lectorbell::platform {

namespace {

// The client windows below a window manager's frame sit this deep at most.
constexpr int clientDepth = 4;

} // namespace

LinuxSystemServices::LinuxSystemServices(std::shared_ptr<x11::Connection> connection,
                                         std::vector<std::filesystem::path> applicationFolders)
    : connection_(std::move(connection))
    , entries_(std::move(applicationFolders)) {}

std::optional<ScreenPoint> LinuxSystemServices::pointerPosition() {
    if (!connection_) {
        return std::nullopt;
    }
    x11::Connection::Session session{*connection_};
    if (!session.alive()) {
        return std::nullopt;
    }
    std::optional<ScreenPoint> point = x11::pointerPosition(session.display());
    session.syncAndTakeError();
    return point;
}

std::optional<xdg::WindowClues> LinuxSystemServices::frontClues() {
    if (!connection_) {
        return std::nullopt;
    }
    x11::Connection::Session session{*connection_};
    if (!session.alive()) {
        return std::nullopt;
    }
    std::optional<::Window> client = x11::focusedClient(session.display());
    std::optional<xdg::WindowClues> clues;
    if (client) {
        clues = x11::windowClues(session.display(), *client);
    }
    // A window that closed meanwhile leaves an error behind, and no clues worth having.
    if (session.syncAndTakeError() != 0) {
        return std::nullopt;
    }
    return clues;
}

std::optional<AppIdentity> LinuxSystemServices::frontApplication() {
    std::optional<xdg::WindowClues> clues = frontClues();
    if (!clues) {
        return std::nullopt;
    }
    return xdg::identifyApp(*clues, entries_);
}

std::optional<AppIdentity> LinuxSystemServices::windowOwner(ScreenPoint point) {
    if (!connection_) {
        return std::nullopt;
    }
    std::optional<TargetWindow> window = x11::X11WindowLocator{connection_}.window(point);
    if (!window) {
        return std::nullopt;
    }
    xdg::WindowClues clues;
    {
        x11::Connection::Session session{*connection_};
        if (!session.alive()) {
            return std::nullopt;
        }
        // Without a window manager's client list the window found may be a frame.
        std::optional<::Window> client =
            x11::clientWindow(session.display(), window->windowID, clientDepth);
        clues = x11::windowClues(session.display(), client.value_or(window->windowID));
        if (session.syncAndTakeError() != 0) {
            return std::nullopt;
        }
    }
    return xdg::identifyApp(clues, entries_);
}

bool LinuxSystemServices::isFrontApplication() {
    std::optional<xdg::WindowClues> front = frontClues();
    return front && front->pid == static_cast<ProcessID>(getpid());
}

bool LinuxSystemServices::accessibilityTrusted() {
    return atspi::AtspiDesktop::toolkitAccessibilityEnabled().value_or(false);
}

void LinuxSystemServices::play(SystemSound sound, AudioOutput& output) {
    sound::playShippedSound(sound, output);
}

} // namespace lectorbell::platform
