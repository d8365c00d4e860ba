#include "platform/linux/atspi/AtspiPipeline.hpp"

namespace lectorbell::platform::atspi {

AtspiPipeline::AtspiPipeline(DBusConnection* connection, std::string busName)
    : connection_(connection)
    , busName_(std::move(busName)) {}

AtspiPipeline::~AtspiPipeline() {
    for (DBusPendingCall* call : pending_) {
        if (call) {
            dbus_pending_call_cancel(call);
            dbus_pending_call_unref(call);
        }
    }
    for (DBusMessage* message : replies_) {
        if (message) {
            dbus_message_unref(message);
        }
    }
}

std::size_t AtspiPipeline::queue(DBusMessage* message) {
    DBusPendingCall* call = nullptr;
    if (message) {
        if (!dbus_connection_send_with_reply(connection_, message, &call,
                                             static_cast<int>(messagingTimeout.count()))) {
            call = nullptr;
        }
        dbus_message_unref(message);
    }
    pending_.push_back(call);
    replies_.push_back(nullptr);
    return pending_.size() - 1;
}

std::size_t AtspiPipeline::call(const std::string& path, const char* interface,
                                const char* member) {
    return queue(dbus_message_new_method_call(busName_.c_str(), path.c_str(), interface, member));
}

std::size_t AtspiPipeline::call(const std::string& path, const char* interface, const char* member,
                                dbus_int32_t first, dbus_int32_t second) {
    DBusMessage* message =
        dbus_message_new_method_call(busName_.c_str(), path.c_str(), interface, member);
    if (message && !dbus_message_append_args(message, DBUS_TYPE_INT32, &first, DBUS_TYPE_INT32,
                                             &second, DBUS_TYPE_INVALID)) {
        dbus_message_unref(message);
        message = nullptr;
    }
    return queue(message);
}

std::size_t AtspiPipeline::call(const std::string& path, const char* interface, const char* member,
                                dbus_uint32_t only) {
    DBusMessage* message =
        dbus_message_new_method_call(busName_.c_str(), path.c_str(), interface, member);
    if (message && !dbus_message_append_args(message, DBUS_TYPE_UINT32, &only, DBUS_TYPE_INVALID)) {
        dbus_message_unref(message);
        message = nullptr;
    }
    return queue(message);
}

bool AtspiPipeline::finish(HangGuard& guard) {
    dbus_connection_flush(connection_);
    for (std::size_t i = 0; i < pending_.size(); ++i) {
        DBusPendingCall* call = pending_[i];
        if (!call) {
            continue;
        }
        if (guard.timedOut()) {
            return false;
        }
        auto started = std::chrono::steady_clock::now();
        dbus_pending_call_block(call);
        if (std::chrono::steady_clock::now() - started >= hungAfter) {
            guard.markTimedOut();
            return false;
        }
        DBusMessage* message = dbus_pending_call_steal_reply(call);
        dbus_pending_call_unref(call);
        pending_[i] = nullptr;
        if (message && dbus_message_get_type(message) == DBUS_MESSAGE_TYPE_ERROR) {
            dbus_message_unref(message);
            message = nullptr;
        }
        replies_[i] = message;
    }
    return true;
}

DBusMessage* AtspiPipeline::reply(std::size_t index) const {
    return index < replies_.size() ? replies_[index] : nullptr;
}

} // namespace lectorbell::platform::atspi
