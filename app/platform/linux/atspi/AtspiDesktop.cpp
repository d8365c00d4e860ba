#include "platform/linux/atspi/AtspiDesktop.hpp"

#include "platform/linux/atspi/AtspiApp.hpp"
#include "platform/linux/atspi/ProcessInfo.hpp"

#include <algorithm>
#include <gio/gio.h>
#include <unistd.h>

namespace lectorbell::platform::atspi {

namespace {

constexpr int applicationLimit = 500;

GDBusConnection* sessionBus() {
    GError* error = nullptr;
    GDBusConnection* bus = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, &error);
    if (error) {
        g_error_free(error);
        return nullptr;
    }
    return bus;
}

bool setStatus(GDBusConnection* bus, const char* property) {
    GError* error = nullptr;
    GVariant* reply = g_dbus_connection_call_sync(
        bus, "org.a11y.Bus", "/org/a11y/bus", "org.freedesktop.DBus.Properties", "Set",
        g_variant_new("(ssv)", "org.a11y.Status", property, g_variant_new_boolean(TRUE)), nullptr,
        G_DBUS_CALL_FLAGS_NONE, static_cast<int>(messagingTimeout.count()), nullptr, &error);
    if (error) {
        g_error_free(error);
        return false;
    }
    g_variant_unref(reply);
    return true;
}

} // namespace

AtspiDesktop::AtspiDesktop() = default;

bool AtspiDesktop::connect() {
    if (!connected_) {
        int status = atspi_init();
        connected_ = status == 0 || status == 1;
        if (*connected_) {
            atspi_set_timeout(static_cast<int>(messagingTimeout.count()),
                              static_cast<int>(messagingTimeout.count()));
        }
    }
    return *connected_;
}

std::optional<bool> AtspiDesktop::toolkitAccessibilityEnabled() {
    GDBusConnection* bus = sessionBus();
    if (!bus) {
        return std::nullopt;
    }
    GError* error = nullptr;
    GVariant* reply = g_dbus_connection_call_sync(
        bus, "org.a11y.Bus", "/org/a11y/bus", "org.freedesktop.DBus.Properties", "Get",
        g_variant_new("(ss)", "org.a11y.Status", "IsEnabled"), G_VARIANT_TYPE("(v)"),
        G_DBUS_CALL_FLAGS_NONE, static_cast<int>(messagingTimeout.count()), nullptr, &error);
    g_object_unref(bus);
    if (error) {
        g_error_free(error);
        return std::nullopt;
    }
    GVariant* boxed = nullptr;
    g_variant_get(reply, "(v)", &boxed);
    bool enabled =
        g_variant_is_of_type(boxed, G_VARIANT_TYPE_BOOLEAN) && g_variant_get_boolean(boxed);
    g_variant_unref(boxed);
    g_variant_unref(reply);
    return enabled;
}

bool AtspiDesktop::enableToolkitAccessibility() {
    GDBusConnection* bus = sessionBus();
    if (!bus) {
        return false;
    }
    // IsEnabled only: ScreenReaderEnabled would also start the desktop's screen reader at every
    // login, which is not ours to decide.
    bool enabled = setStatus(bus, "IsEnabled");
    g_object_unref(bus);
    return enabled;
}

bool AtspiDesktop::isTrusted() {
    if (!connect()) {
        return false;
    }
    std::optional<bool> enabled = toolkitAccessibilityEnabled();
    return enabled.value_or(false);
}

std::optional<AccessibilityGrant> AtspiDesktop::requestTrust() {
    if (!connect()) {
        return std::nullopt;
    }
    std::optional<bool> enabled = toolkitAccessibilityEnabled();
    if (!enabled) {
        return std::nullopt;
    }
    AccessibilityGrant grant;
    if (*enabled) {
        return grant;
    }
    if (!enableToolkitAccessibility()) {
        return std::nullopt;
    }
    grant.switchedOn = true;
    // Applications with a window but without a tree on the bus, of toolkits that look for the
    // switch only as they start.
    std::vector<std::pair<ProcessID, GRef<AtspiAccessible>>> onBus = busApplications();
    for (ProcessID pid : windows_.visibleProcesses()) {
        if (pid == static_cast<ProcessID>(getpid()) ||
            std::any_of(onBus.begin(), onBus.end(),
                        [pid](const auto& app) { return app.first == pid; })) {
            continue;
        }
        StartupToolkit toolkit = startupToolkit(pid);
        if (toolkit == StartupToolkit::none) {
            continue;
        }
        AppToRestart app{processName(pid).value_or("process " + std::to_string(pid)),
                         toolkit == StartupToolkit::chromium ? chromiumAccessibilityOption : ""};
        if (std::find(grant.restartNeeded.begin(), grant.restartNeeded.end(), app) ==
            grant.restartNeeded.end()) {
            grant.restartNeeded.push_back(std::move(app));
        }
    }
    return grant;
}

std::vector<std::pair<ProcessID, GRef<AtspiAccessible>>> AtspiDesktop::busApplications() {
    std::vector<std::pair<ProcessID, GRef<AtspiAccessible>>> applications;
    if (!connect()) {
        return applications;
    }
    GRef<AtspiAccessible> desktop = GRef<AtspiAccessible>::adopt(atspi_get_desktop(0));
    if (!desktop) {
        return applications;
    }
    // Only the bus is asked here (process ids come from the bus daemon), never the
    // applications themselves: a hung application elsewhere costs nothing.
    GError* error = nullptr;
    int count = atspi_accessible_get_child_count(desktop.get(), &error);
    if (error) {
        g_error_free(error);
        return applications;
    }
    for (int i = 0; i < count && i < applicationLimit; ++i) {
        GRef<AtspiAccessible> app = GRef<AtspiAccessible>::adopt(
            atspi_accessible_get_child_at_index(desktop.get(), i, &error));
        if (!error && app) {
            guint owner = atspi_accessible_get_process_id(app.get(), &error);
            if (!error) {
                applications.emplace_back(static_cast<ProcessID>(owner), std::move(app));
            }
        }
        if (error) {
            g_error_free(error);
            error = nullptr;
        }
    }
    return applications;
}

std::optional<ProcessID> AtspiDesktop::processAt(ScreenPoint point) {
    return windows_.processAt(point);
}

std::optional<ProcessID> AtspiDesktop::frontmostProcess() {
    return windows_.focusedProcess();
}

std::unique_ptr<AccessibilityApp> AtspiDesktop::application(ProcessID pid) {
    for (auto& [owner, app] : busApplications()) {
        if (owner == pid) {
            return std::make_unique<AtspiApp>(std::move(app), pid);
        }
    }
    return nullptr;
}

bool AtspiDesktop::buildsTreeOnRequest(ProcessID pid) {
    return startupToolkit(pid) == StartupToolkit::chromium;
}

} // namespace lectorbell::platform::atspi
