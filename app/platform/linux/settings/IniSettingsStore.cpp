#include "platform/linux/settings/IniSettingsStore.hpp"

#include "platform/linux/settings/SettingsLog.hpp"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFileSystemWatcher>
#include <array>
#include <charconv>

namespace lectorbell::platform::settings {

namespace {

std::string storedText(const SettingValue& value) {
    struct Visitor {
        std::string operator()(bool flag) const { return flag ? "true" : "false"; }
        std::string operator()(std::int64_t number) const { return std::to_string(number); }
        std::string operator()(double number) const {
            std::array<char, 32> buffer{};
            auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number);
            return {buffer.data(), result.ptr};
        }
        std::string operator()(const std::string& text) const { return text; }
    };
    return std::visit(Visitor{}, value);
}

} // namespace

IniSettingsStore::IniSettingsStore(const QString& path, WatchOtherProcesses watch)
    : path_{path}
    , settings_{std::make_unique<QSettings>(path, QSettings::IniFormat)} {
    readSnapshot(snapshot_);
    if (settings_->status() == QSettings::FormatError) {
        startOverFromSnapshot();
    }
    if (watch == WatchOtherProcesses::yes) {
        // The folder is watched as well: QSettings replaces the file on every write, which ends
        // a watch on the file itself.
        QDir{}.mkpath(QFileInfo{path_}.absolutePath());
        watcher_ = std::make_unique<QFileSystemWatcher>();
        watcher_->addPath(QFileInfo{path_}.absolutePath());
        watchFile();
        QObject::connect(watcher_.get(), &QFileSystemWatcher::directoryChanged, watcher_.get(),
                         [this] { reload(); });
        QObject::connect(watcher_.get(), &QFileSystemWatcher::fileChanged, watcher_.get(),
                         [this] { reload(); });
    }
}

IniSettingsStore::~IniSettingsStore() = default;

void IniSettingsStore::startOverFromSnapshot() {
    // QSettings refuses to write over a file with lines it cannot read, which would leave every
    // later change unsaved. Keep the file as the user left it, then write what could be read.
    QString stamp =
        QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyyMMdd'T'HHmmss'Z'"));
    QString aside = path_ + QStringLiteral(".unreadable-") + stamp;
    if (QFile::copy(path_, aside)) {
        qCWarning(lcSettingsStore,
                  "settings: the settings file has lines that do not read; "
                  "a copy is kept as %s",
                  qPrintable(QFileInfo{aside}.fileName()));
    } else {
        qCWarning(lcSettingsStore, "settings: the settings file has lines that do not read");
        return;
    }
    settings_.reset();
    QFile::remove(path_);
    settings_ = std::make_unique<QSettings>(path_, QSettings::IniFormat);
    for (const auto& [key, text] : snapshot_) {
        settings_->setValue(QString::fromStdString(key), QString::fromStdString(text));
    }
    settings_->sync();
}

void IniSettingsStore::readSnapshot(std::map<std::string, std::string>& into) {
    into.clear();
    for (const QString& key : settings_->allKeys()) {
        if (key.isEmpty()) {
            continue;
        }
        QVariant stored = settings_->value(key);
        // A hand-edited value with bare commas reads as a list, "@Variant(...)" as some other
        // type: neither is anything we wrote, so the key counts as absent.
        if (stored.typeId() != QMetaType::QString) {
            continue;
        }
        into.emplace(key.toStdString(), stored.toString().toStdString());
    }
}

std::optional<SettingValue> IniSettingsStore::value(const std::string& key) const {
    auto it = snapshot_.find(key);
    if (it == snapshot_.end()) {
        return std::nullopt;
    }
    return SettingValue{it->second};
}

void IniSettingsStore::setValue(const std::string& key, const SettingValue& value) {
    std::string text = storedText(value);
    auto it = snapshot_.find(key);
    bool changed = it == snapshot_.end() || it->second != text;
    settings_->setValue(QString::fromStdString(key), QString::fromStdString(text));
    snapshot_[key] = std::move(text);
    write();
    if (changed) {
        notifyChanged(key);
    }
}

void IniSettingsStore::remove(const std::string& key) {
    bool changed = snapshot_.erase(key) > 0;
    settings_->remove(QString::fromStdString(key));
    write();
    if (changed) {
        notifyChanged(key);
    }
}

std::vector<std::string> IniSettingsStore::keys() const {
    std::vector<std::string> names;
    names.reserve(snapshot_.size());
    for (const auto& entry : snapshot_) {
        names.push_back(entry.first);
    }
    return names;
}

void IniSettingsStore::write() {
    settings_->sync();
    if (settings_->status() == QSettings::FormatError) {
        startOverFromSnapshot();
    }
    if (settings_->status() != QSettings::NoError) {
        qCWarning(lcSettingsStore, "settings: the settings file could not be written (status %d)",
                  static_cast<int>(settings_->status()));
    }
}

void IniSettingsStore::watchFile() {
    if (watcher_ && QFileInfo::exists(path_) && !watcher_->files().contains(path_)) {
        watcher_->addPath(path_);
    }
}

void IniSettingsStore::reload() {
    watchFile();
    settings_->sync();
    std::map<std::string, std::string> fresh;
    readSnapshot(fresh);
    std::vector<std::string> changed;
    for (const auto& [key, text] : fresh) {
        auto it = snapshot_.find(key);
        if (it == snapshot_.end() || it->second != text) {
            changed.push_back(key);
        }
    }
    for (const auto& entry : snapshot_) {
        if (!fresh.contains(entry.first)) {
            changed.push_back(entry.first);
        }
    }
    snapshot_ = std::move(fresh);
    for (const std::string& key : changed) {
        notifyChanged(key);
    }
}

} // namespace lectorbell::platform::settings
