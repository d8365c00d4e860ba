#pragma once

#include "platform/linux/atspi/AtspiCall.hpp"

#include <chrono>
#include <dbus/dbus.h>
#include <string>
#include <vector>

namespace lectorbell::platform::atspi {

// Many calls to one application sent at once, their replies read afterwards. An application
// answers a queue of requests far faster than the same requests one round trip at a time.
class AtspiPipeline {
public:
    AtspiPipeline(DBusConnection* connection, std::string busName);
    ~AtspiPipeline();
    AtspiPipeline(const AtspiPipeline&) = delete;
    AtspiPipeline& operator=(const AtspiPipeline&) = delete;

    // Queues a call to the object at `path`; the answer is its number.
    std::size_t call(const std::string& path, const char* interface, const char* member);
    // The same with two 32-bit integer arguments, or one unsigned one.
    std::size_t call(const std::string& path, const char* interface, const char* member,
                     dbus_int32_t first, dbus_int32_t second);
    std::size_t call(const std::string& path, const char* interface, const char* member,
                     dbus_uint32_t only);

    // Sends everything queued and waits for the replies. A reply that keeps us waiting as long
    // as a hung application would marks the guard timed out and ends the wait: false.
    bool finish(HangGuard& guard);
    // The reply to call `index`, or null when it failed or never came.
    DBusMessage* reply(std::size_t index) const;
    std::size_t size() const { return pending_.size(); }

private:
    std::size_t queue(DBusMessage* message);

    DBusConnection* connection_;
    std::string busName_;
    std::vector<DBusPendingCall*> pending_;
    std::vector<DBusMessage*> replies_;
};

} // namespace lectorbell::platform::atspi
