#pragma once

#include "platform/HotkeyService.hpp"
#include "platform/Scheduler.hpp"

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

namespace lectorbell::platform::x11 {

class Connection;

// Global keys on X11: a passive grab of the combination on the root window, once for each state
// of CapsLock and NumLock, so the locks do not matter and no other modifier is taken. A grab
// another client holds fails with BadAccess, found by syncing before the registration answers.
// The keyboard's auto-repeat is made detectable, so a held key sends no release until it is let
// go. Events are read on a thread of the service's own connection, time-stamped there, and
// handed to the main queue.
class X11HotkeyService final : public HotkeyService {
public:
    // None without a display. `scheduler` must outlive the service.
    static std::unique_ptr<X11HotkeyService> open(Scheduler& scheduler);
    ~X11HotkeyService() override;
    X11HotkeyService(const X11HotkeyService&) = delete;
    X11HotkeyService& operator=(const X11HotkeyService&) = delete;

    void setListener(Listener listener) override;
    HotkeyRegistration registerHotkey(HotkeyId id, KeyCombination combination) override;
    void unregisterHotkey(HotkeyId id) override;

private:
    struct Grab {
        unsigned keycode = 0;
        unsigned modifiers = 0;

        friend bool operator==(const Grab&, const Grab&) = default;
    };
    // Posted tasks reach the listener through this, so none runs once the service is gone.
    struct Delivery {
        Listener listener;
    };

    // A key event as the server sent it.
    struct KeyMove {
        bool press = false;
        unsigned keycode = 0;
        unsigned state = 0;
        // Server time in milliseconds.
        unsigned long time = 0;
    };

    X11HotkeyService(std::shared_ptr<Connection> connection, Scheduler& scheduler, int wakeFd);
    void watch();
    void take(const std::vector<KeyMove>& moves);
    void deliver(KeyEvent event);
    void releaseAllHeld();
    void wake() const;

    std::shared_ptr<Connection> connection_;
    Scheduler& scheduler_;
    int wakeFd_;
    // Guards grabs_ and held_, shared by the main queue and the event thread.
    std::mutex mutex_;
    std::map<HotkeyId, Grab> grabs_;
    std::set<HotkeyId> held_;
    std::shared_ptr<Delivery> delivery_;
    std::weak_ptr<Delivery> deliveryForEvents_;
    std::atomic<bool> stopping_{false};
    std::thread thread_;
};

} // namespace lectorbell::platform::x11
