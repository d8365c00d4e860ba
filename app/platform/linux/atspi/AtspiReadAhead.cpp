#include "platform/linux/atspi/AtspiReadAhead.hpp"

#include "platform/linux/LinuxLog.hpp"
#include "platform/linux/atspi/AtspiPipeline.hpp"
#include "platform/linux/atspi/AtspiRoles.hpp"

#include <algorithm>
#include <chrono>
#include <cstring>

// The library's own way from an element's path to its object. Not in its public headers, so
// looked up weakly: without it, elements are fetched through their parents instead.
// NOLINTNEXTLINE(bugprone-reserved-identifier,readability-identifier-naming)
extern "C" AtspiAccessible* _atspi_ref_accessible(const char* app, const char* path)
    __attribute__((weak));

namespace lectorbell::platform::atspi {

namespace {

// Elements looked at one by one before the tree is read ahead: a short lookup (a word in a
// text view) never pays for the cache.
constexpr int lookedAtBeforeReadAhead = 48;
// The first window is small so that a quick walk does not wait for text it will not read.
constexpr std::size_t firstWindow = 48;
constexpr std::size_t largestWindow = 512;
constexpr std::chrono::milliseconds slowWindow{60};
// Reading the cache of a huge application may take long; a walk without it is only slower.
constexpr int cacheTimeoutMs = 250;
constexpr const char* cacheSignature = "a((so)(so)(so)iiassusau)";

// An object reference: (bus name, path).
std::pair<std::string, std::string> objectReference(DBusMessageIter* reference) {
    DBusMessageIter fields;
    dbus_message_iter_recurse(reference, &fields);
    const char* bus = nullptr;
    dbus_message_iter_get_basic(&fields, static_cast<void*>(&bus));
    dbus_message_iter_next(&fields);
    const char* path = nullptr;
    dbus_message_iter_get_basic(&fields, static_cast<void*>(&path));
    return {bus ? bus : "", path ? path : ""};
}

template <typename T>
T basic(DBusMessageIter* it) {
    T value{};
    dbus_message_iter_get_basic(it, static_cast<void*>(&value));
    return value;
}

// One item of the cache: (self, app, parent, index, child count, interfaces, name, role,
// description, states).
std::pair<std::string, CachedElement> parseItem(DBusMessageIter* item) {
    DBusMessageIter field;
    dbus_message_iter_recurse(item, &field);
    std::pair<std::string, CachedElement> result;
    auto [bus, path] = objectReference(&field);
    result.first = std::move(path);
    dbus_message_iter_next(&field);
    dbus_message_iter_next(&field);
    // The application's root has the desktop for parent, on another bus (and with the same
    // path as the root itself): no parent in this tree.
    auto [parentBus, parentPath] = objectReference(&field);
    if (parentBus == bus) {
        result.second.parent = std::move(parentPath);
    }
    dbus_message_iter_next(&field);
    result.second.index = basic<dbus_int32_t>(&field);
    dbus_message_iter_next(&field);
    // -1 when the application does not list the children (elements that manage descendants).
    result.second.childCount = basic<dbus_int32_t>(&field);
    dbus_message_iter_next(&field);
    DBusMessageIter names;
    dbus_message_iter_recurse(&field, &names);
    while (dbus_message_iter_get_arg_type(&names) == DBUS_TYPE_STRING) {
        if (std::strcmp(basic<const char*>(&names), "org.a11y.atspi.Text") == 0) {
            result.second.hasText = true;
        }
        dbus_message_iter_next(&names);
    }
    dbus_message_iter_next(&field);
    dbus_message_iter_next(&field);
    result.second.role = static_cast<AtspiRole>(basic<dbus_uint32_t>(&field));
    dbus_message_iter_next(&field);
    dbus_message_iter_next(&field);
    DBusMessageIter states;
    dbus_message_iter_recurse(&field, &states);
    for (unsigned word = 0; word < 2 && dbus_message_iter_get_arg_type(&states) == DBUS_TYPE_UINT32;
         ++word) {
        result.second.states |= static_cast<std::uint64_t>(basic<dbus_uint32_t>(&states))
                                << (32U * word);
        dbus_message_iter_next(&states);
    }
    return result;
}

std::optional<std::string> stringReply(DBusMessage* reply) {
    const char* text = nullptr;
    if (!reply || std::strcmp(dbus_message_get_signature(reply), "s") != 0 ||
        !dbus_message_get_args(reply, nullptr, DBUS_TYPE_STRING, &text, DBUS_TYPE_INVALID)) {
        return std::nullopt;
    }
    return std::string{text};
}

std::optional<AtspiRect> rectReply(DBusMessage* reply) {
    if (!reply || std::strcmp(dbus_message_get_signature(reply), "(iiii)") != 0) {
        return std::nullopt;
    }
    DBusMessageIter it;
    DBusMessageIter field;
    dbus_message_iter_init(reply, &it);
    dbus_message_iter_recurse(&it, &field);
    AtspiRect rect{};
    for (gint* value : {&rect.x, &rect.y, &rect.width, &rect.height}) {
        *value = basic<dbus_int32_t>(&field);
        dbus_message_iter_next(&field);
    }
    return rect;
}

std::optional<std::string> attributeReply(DBusMessage* reply, const char* name) {
    if (!reply || std::strcmp(dbus_message_get_signature(reply), "a{ss}") != 0) {
        return std::nullopt;
    }
    DBusMessageIter it;
    DBusMessageIter entries;
    dbus_message_iter_init(reply, &it);
    dbus_message_iter_recurse(&it, &entries);
    while (dbus_message_iter_get_arg_type(&entries) == DBUS_TYPE_DICT_ENTRY) {
        DBusMessageIter entry;
        dbus_message_iter_recurse(&entries, &entry);
        const char* key = basic<const char*>(&entry);
        dbus_message_iter_next(&entry);
        if (key && std::strcmp(key, name) == 0) {
            return std::string{basic<const char*>(&entry)};
        }
        dbus_message_iter_next(&entries);
    }
    // Asked and not there: an empty attribute, not an unknown one.
    return std::string{};
}

} // namespace

AtspiReadAhead::AtspiReadAhead(std::shared_ptr<HangGuard> guard)
    : guard_(std::move(guard))
    , window_(firstWindow) {}

AtspiReadAhead::~AtspiReadAhead() {
    if (connection_) {
        dbus_connection_unref(connection_);
    }
}

void AtspiReadAhead::noteLookedAt(AtspiAccessible* any) {
    if (tried_ || !allowed_ || !any || ++lookedAt_ < lookedAtBeforeReadAhead) {
        return;
    }
    tried_ = true;
    if (!load(any)) {
        tree_.clear();
    }
}

bool AtspiReadAhead::load(AtspiAccessible* any) {
    AtspiApplication* app = any->parent.app;
    if (!app || !app->bus || !app->bus_name || guard_->timedOut()) {
        return false;
    }
    // Our own reference: the application may quit, and the library drop its connection.
    connection_ = dbus_connection_ref(app->bus);
    busName_ = app->bus_name;
    DBusMessage* request = dbus_message_new_method_call(busName_.c_str(), "/org/a11y/atspi/cache",
                                                        "org.a11y.atspi.Cache", "GetItems");
    if (!request) {
        return false;
    }
    DBusError error;
    dbus_error_init(&error);
    DBusMessage* reply =
        dbus_connection_send_with_reply_and_block(connection_, request, cacheTimeoutMs, &error);
    dbus_message_unref(request);
    if (!reply) {
        // Toolkits without the cache answer at once; a slow answer is worth a line.
        if (dbus_error_has_name(&error, DBUS_ERROR_NO_REPLY)) {
            qCInfo(lcAx) << "tree read-ahead: the cache did not answer within" << cacheTimeoutMs
                         << "ms; walking call by call";
        }
        dbus_error_free(&error);
        return false;
    }
    if (std::strcmp(dbus_message_get_signature(reply), cacheSignature) != 0) {
        qCInfo(lcAx) << "tree read-ahead: unknown cache layout"
                     << dbus_message_get_signature(reply);
        dbus_message_unref(reply);
        return false;
    }
    DBusMessageIter it;
    DBusMessageIter items;
    dbus_message_iter_init(reply, &it);
    dbus_message_iter_recurse(&it, &items);
    while (dbus_message_iter_get_arg_type(&items) == DBUS_TYPE_STRUCT) {
        auto [path, element] = parseItem(&items);
        tree_.add(std::move(path), std::move(element));
        dbus_message_iter_next(&items);
    }
    dbus_message_unref(reply);

    tree_.linkChildren();
    return !tree_.empty();
}

const CachedElement* AtspiReadAhead::element(const std::string& path) const {
    return tree_.element(path);
}

bool AtspiReadAhead::resolvesPaths() {
    return _atspi_ref_accessible != nullptr;
}

GRef<AtspiAccessible> AtspiReadAhead::accessible(const std::string& path) const {
    if (!_atspi_ref_accessible || busName_.empty()) {
        return {};
    }
    return GRef<AtspiAccessible>::adopt(_atspi_ref_accessible(busName_.c_str(), path.c_str()));
}

void AtspiReadAhead::readWindow(const std::string& from) {
    if (guard_->timedOut()) {
        return;
    }
    struct Asked {
        PrefetchedElement* element;
        std::optional<std::size_t> text, extents, attributes;
    };
    AtspiPipeline pipeline{connection_, busName_};
    std::vector<Asked> asked;
    const std::string* path = &from;
    for (std::size_t steps = 0; path && asked.size() < window_ && steps < 4 * window_; ++steps) {
        const CachedElement* cached = element(*path);
        auto [entry, fresh] = prefetched_.try_emplace(*path);
        if (cached && fresh) {
            bool multiLine = cached->hasState(ATSPI_STATE_MULTI_LINE);
            TextKind kind = mapRole(cached->role, multiLine, "").kind;
            Asked ask{&entry->second, std::nullopt, std::nullopt, std::nullopt};
            // Never a password field's text; text controls are read through the text view.
            if (cached->hasText && (kind == TextKind::staticText || kind == TextKind::container)) {
                ask.text = pipeline.call(*path, "org.a11y.atspi.Text", "GetText", 0, -1);
            }
            if (kind == TextKind::staticText && cached->childCount == 0) {
                ask.extents = pipeline.call(*path, "org.a11y.atspi.Component", "GetExtents",
                                            dbus_uint32_t{ATSPI_COORD_TYPE_SCREEN});
            }
            if (needsXmlRoles(cached->role)) {
                ask.attributes = pipeline.call(*path, "org.a11y.atspi.Accessible", "GetAttributes");
            }
            asked.push_back(ask);
        }
        path = tree_.next(*path);
    }
    auto started = std::chrono::steady_clock::now();
    if (!pipeline.finish(*guard_)) {
        return;
    }
    // Windows grow while the application answers briskly and shrink when it is slow, so that
    // one batch never keeps the walk long past its deadline.
    window_ = std::chrono::steady_clock::now() - started > slowWindow
                  ? std::max(window_ / 2, firstWindow)
                  : std::min(window_ * 2, largestWindow);
    for (Asked& ask : asked) {
        if (ask.text) {
            ask.element->text = stringReply(pipeline.reply(*ask.text));
            ask.element->textAsked = ask.element->text.has_value();
        }
        if (ask.extents) {
            ask.element->extents = rectReply(pipeline.reply(*ask.extents));
            ask.element->extentsAsked = ask.element->extents.has_value();
        }
        if (ask.attributes) {
            ask.element->xmlRoles = attributeReply(pipeline.reply(*ask.attributes), "xml-roles");
            ask.element->attributesAsked = ask.element->xmlRoles.has_value();
        }
    }
}

const PrefetchedElement* AtspiReadAhead::prefetched(const std::string& path) {
    if (!loaded() || !element(path) || guard_->timedOut()) {
        return nullptr;
    }
    auto found = prefetched_.find(path);
    if (found == prefetched_.end()) {
        readWindow(path);
        found = prefetched_.find(path);
    }
    return found == prefetched_.end() ? nullptr : &found->second;
}

} // namespace lectorbell::platform::atspi
