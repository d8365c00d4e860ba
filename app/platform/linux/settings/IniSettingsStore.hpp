#pragma once

#include "platform/SettingsStore.hpp"

#include <QSettings>
#include <QString>
#include <map>
#include <memory>

class QFileSystemWatcher;

namespace lectorbell::platform::settings {

// The settings kept in an INI file through QSettings. Every value is stored as text (a bool as
// true/false, a number in its shortest exact form, structured values as their JSON), so the file
// reads well and a hand edit stays possible. A file with lines that do not read is copied aside
// and written again with what could be read. QSettings writes through a locked temporary file
// that replaces the old one, so a crash leaves the old or the new file, and it merges the keys
// that other processes changed meanwhile.
class IniSettingsStore final : public platform::SettingsStore {
public:
    explicit IniSettingsStore(const QString& path,
                              WatchOtherProcesses watch = WatchOtherProcesses::no);
    ~IniSettingsStore() override;
    IniSettingsStore(const IniSettingsStore&) = delete;
    IniSettingsStore& operator=(const IniSettingsStore&) = delete;

    std::optional<SettingValue> value(const std::string& key) const override;
    void setValue(const std::string& key, const SettingValue& value) override;
    void remove(const std::string& key) override;
    std::vector<std::string> keys() const override;

    // Reads the file again and tells observers of every key that differs. The watcher calls
    // this by itself; tests and command-line verbs without an event loop may call it directly.
    void reload();

    const QString& path() const { return path_; }

private:
    void startOverFromSnapshot();
    void readSnapshot(std::map<std::string, std::string>& into);
    void write();
    void watchFile();

    QString path_;
    std::unique_ptr<QSettings> settings_;
    // The file's content as last read or written: key to stored text.
    std::map<std::string, std::string> snapshot_;
    std::unique_ptr<QFileSystemWatcher> watcher_;
};

} // namespace lectorbell::platform::settings
