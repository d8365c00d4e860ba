#pragma once

#include "platform/SystemServices.hpp"
#include "platform/linux/xdg/AppIdentities.hpp"
#include "platform/linux/xdg/DesktopEntries.hpp"

#include <memory>

namespace lectorbell::platform {

namespace x11 {
class Connection;
}

// The desktop's answers on X11: the pointer and windows from the X server, applications named
// by their windows, processes and installed desktop files, accessibility from the AT-SPI bus,
// and the sounds shipped with Lectorbell. Without a display the pointer and applications are
// unknown.
class LinuxSystemServices final : public SystemServices {
public:
    LinuxSystemServices(std::shared_ptr<x11::Connection> connection,
                        std::vector<std::filesystem::path> applicationFolders);

    std::optional<ScreenPoint> pointerPosition() override;
    std::optional<AppIdentity> frontApplication() override;
    std::optional<AppIdentity> windowOwner(ScreenPoint point) override;
    bool isFrontApplication() override;
    bool accessibilityTrusted() override;
    // X11 lets any client read the screen.
    bool screenCapturePermitted() override { return true; }
    void play(SystemSound sound, AudioOutput& output) override;

private:
    // The active window's clues; none without one.
    std::optional<xdg::WindowClues> frontClues();

    std::shared_ptr<x11::Connection> connection_;
    xdg::DesktopEntries entries_;
};

} // namespace lectorbell::platform
