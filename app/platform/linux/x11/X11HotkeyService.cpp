#include "platform/linux/x11/X11HotkeyService.hpp"

#include "platform/linux/LinuxLog.hpp"
#include "platform/linux/x11/X11Connection.hpp"
#include "platform/linux/x11/XkbKeys.hpp"

#include <X11/XKBlib.h>
#include <cerrno>
#include <cstdint>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>
#include <utility>

namespace lectorbell::platform::x11 {

namespace {

// The combination with every state of the locks, which X counts as modifiers.
std::vector<unsigned> lockVariants(::Display* display, unsigned modifiers) {
    std::vector<unsigned> variants{modifiers, modifiers | LockMask};
    if (unsigned numLock = numLockMask(display); numLock != 0) {
        variants.push_back(modifiers | numLock);
        variants.push_back(modifiers | numLock | LockMask);
    }
    return variants;
}

void grabAll(::Display* display, unsigned keycode, unsigned modifiers) {
    for (unsigned variant : lockVariants(display, modifiers)) {
        XGrabKey(display, static_cast<int>(keycode), variant, DefaultRootWindow(display), False,
                 GrabModeAsync, GrabModeAsync);
    }
}

// Releases only this client's grabs: another client's grab of the same keys stays.
void ungrabAll(::Display* display, unsigned keycode, unsigned modifiers) {
    for (unsigned variant : lockVariants(display, modifiers)) {
        XUngrabKey(display, static_cast<int>(keycode), variant, DefaultRootWindow(display));
    }
}

// Server time stamps are milliseconds that wrap around after 49 days.
double secondsBetween(::Time earlier, ::Time later) {
    return static_cast<double>(static_cast<std::uint32_t>(later - earlier)) / 1000.0;
}

} // namespace

std::unique_ptr<X11HotkeyService> X11HotkeyService::open(Scheduler& scheduler) {
    std::shared_ptr<Connection> connection = Connection::open();
    if (!connection) {
        return nullptr;
    }
    {
        Connection::Session session{*connection};
        Bool detectable = False;
        XkbSetDetectableAutoRepeat(session.display(), True, &detectable);
        if (detectable == False) {
            qCWarning(lcReading, "keys: the X server cannot tell held keys from repeated ones");
        }
    }
    int wakeFd = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (wakeFd < 0) {
        return nullptr;
    }
    return std::unique_ptr<X11HotkeyService>(
        new X11HotkeyService(std::move(connection), scheduler, wakeFd));
}

X11HotkeyService::X11HotkeyService(std::shared_ptr<Connection> connection, Scheduler& scheduler,
                                   int wakeFd)
    : connection_(std::move(connection))
    , scheduler_(scheduler)
    , wakeFd_(wakeFd)
    , delivery_(std::make_shared<Delivery>())
    , deliveryForEvents_(delivery_)
    , thread_([this] { watch(); }) {}

X11HotkeyService::~X11HotkeyService() {
    stopping_ = true;
    wake();
    thread_.join();
    std::map<HotkeyId, Grab> grabs;
    {
        std::lock_guard lock{mutex_};
        grabs.swap(grabs_);
    }
    Connection::Session session{*connection_};
    if (session.alive()) {
        for (const auto& [id, grab] : grabs) {
            ungrabAll(session.display(), grab.keycode, grab.modifiers);
        }
        session.syncAndTakeError();
    }
    close(wakeFd_);
}

void X11HotkeyService::setListener(Listener listener) {
    delivery_->listener = std::move(listener);
}

HotkeyRegistration X11HotkeyService::registerHotkey(HotkeyId id, KeyCombination combination) {
    unregisterHotkey(id);
    std::optional<unsigned> modifiers = modifierMask(combination.modifiers);
    if (!modifiers) {
        return HotkeyRegistration::unavailable;
    }
    Grab grab;
    {
        Connection::Session session{*connection_};
        if (!session.alive()) {
            return HotkeyRegistration::unavailable;
        }
        ::Display* display = session.display();
        std::optional<unsigned> keycode = serverKeycode(display, combination.keyCode);
        if (!keycode) {
            qCWarning(lcReading, "keys: no key on this keyboard for key code %u",
                      combination.keyCode);
            return HotkeyRegistration::unavailable;
        }
        grab = Grab{*keycode, *modifiers};
        {
            std::lock_guard lock{mutex_};
            for (const auto& [other, held] : grabs_) {
                if (held == grab) {
                    return HotkeyRegistration::taken;
                }
            }
        }
        session.syncAndTakeError();
        grabAll(display, grab.keycode, grab.modifiers);
        // The grabs' errors arrive only once the server has answered.
        const int error = session.syncAndTakeError();
        if (error != 0) {
            ungrabAll(display, grab.keycode, grab.modifiers);
            session.syncAndTakeError();
            wake();
            return error == BadAccess ? HotkeyRegistration::taken : HotkeyRegistration::unavailable;
        }
    }
    {
        std::lock_guard lock{mutex_};
        grabs_[id] = grab;
    }
    // Syncing may have read key events into the connection's queue, where the event thread's
    // wait on the socket does not see them.
    wake();
    return HotkeyRegistration::registered;
}

void X11HotkeyService::unregisterHotkey(HotkeyId id) {
    Grab grab;
    {
        std::lock_guard lock{mutex_};
        auto found = grabs_.find(id);
        if (found == grabs_.end()) {
            return;
        }
        grab = found->second;
        grabs_.erase(found);
        held_.erase(id);
    }
    Connection::Session session{*connection_};
    if (session.alive()) {
        ungrabAll(session.display(), grab.keycode, grab.modifiers);
        session.syncAndTakeError();
    }
    wake();
}

void X11HotkeyService::wake() const {
    const std::uint64_t one = 1;
    // Only fails when the counter is already huge, and then the thread wakes anyway.
    [[maybe_unused]] ssize_t written = write(wakeFd_, &one, sizeof one);
}

// The event thread: reads what the connection has, then waits for the socket or a wake-up.
void X11HotkeyService::watch() {
    int socket = -1;
    {
        Connection::Session session{*connection_};
        socket = ConnectionNumber(session.display());
    }
    std::vector<KeyMove> moves;
    bool alive = true;
    while (!stopping_ && alive) {
        {
            Connection::Session session{*connection_};
            while (session.alive() && XPending(session.display()) > 0) {
                XEvent event;
                XNextEvent(session.display(), &event);
                if (event.type == KeyPress || event.type == KeyRelease) {
                    moves.push_back({event.type == KeyPress, event.xkey.keycode, event.xkey.state,
                                     event.xkey.time});
                }
            }
            alive = session.alive();
        }
        take(moves);
        moves.clear();
        if (!alive) {
            break;
        }
        pollfd waits[2] = {{socket, POLLIN, 0}, {wakeFd_, POLLIN, 0}};
        if (poll(waits, 2, -1) < 0 && errno != EINTR) {
            break;
        }
        if ((waits[1].revents & POLLIN) != 0) {
            std::uint64_t count = 0;
            [[maybe_unused]] ssize_t got = read(wakeFd_, &count, sizeof count);
        }
        if ((waits[0].revents & (POLLHUP | POLLERR | POLLNVAL)) != 0) {
            alive = false;
        }
    }
    if (!stopping_) {
        qCWarning(lcReading, "keys: lost the X display; global keys are gone");
        releaseAllHeld();
    }
}

void X11HotkeyService::take(const std::vector<KeyMove>& moves) {
    if (moves.empty()) {
        return;
    }
    // Moves read together are dated from the server's time stamps, back from now.
    const double now = scheduler_.uptime();
    const ::Time latest = moves.back().time;
    for (const KeyMove& move : moves) {
        const double at = now - secondsBetween(move.time, latest);
        std::optional<KeyEvent> delivered;
        {
            std::lock_guard lock{mutex_};
            for (const auto& [id, grab] : grabs_) {
                if (grab.keycode != move.keycode) {
                    continue;
                }
                if (move.press) {
                    // A press already held is the keyboard repeating it.
                    if (grab.modifiers == (move.state & matchedModifiers) &&
                        held_.insert(id).second) {
                        delivered = KeyEvent{id, KeyTransition::down, at};
                    }
                } else if (held_.erase(id) > 0) {
                    // Modifiers may have changed while the key was held.
                    delivered = KeyEvent{id, KeyTransition::up, at};
                }
                if (delivered) {
                    break;
                }
            }
        }
        if (delivered) {
            deliver(*delivered);
        }
    }
}

void X11HotkeyService::deliver(KeyEvent event) {
    scheduler_.post([delivery = deliveryForEvents_, event] {
        if (std::shared_ptr<Delivery> alive = delivery.lock(); alive && alive->listener) {
            alive->listener(event);
        }
    });
}

// Without its connection no release will come; a reading that follows a held key must not go
// on for ever.
void X11HotkeyService::releaseAllHeld() {
    std::set<HotkeyId> held;
    {
        std::lock_guard lock{mutex_};
        held.swap(held_);
    }
    const double now = scheduler_.uptime();
    for (HotkeyId id : held) {
        deliver(KeyEvent{id, KeyTransition::up, now});
    }
}

} // namespace lectorbell::platform::x11
