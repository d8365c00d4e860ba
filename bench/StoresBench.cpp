// Start-up and store costs: loading every setting from the INI file, adding a highlight to a
// queue of 1,000, and loading a history of 200 readings.

#include "coordinator/QueueStore.hpp"
#include "coordinator/ReadingSettings.hpp"
#include "coordinator/StatsStore.hpp"
#include "lectorbell/Utf8.hpp"
#include "platform/linux/settings/IniSettingsStore.hpp"

#include <QDateTime>
#include <QFile>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace {

using namespace lectorbell;
using namespace std::chrono;

// A settings file with every key set and `rules` pronunciation fixes: up to 300 of the user's
// own, the rest shared.
void fillSettings(const QString& path, int rules) {
    platform::settings::IniSettingsStore store{path};
    coordinator::ReadingSettings settings{store};
    settings.setPace(PacePreset::fast);
    settings.setVoiceIdentifier("en-gb");
    settings.setStopHotkey(coordinator::hotkeyCombo(35, 6144));
    settings.setExclusions({"org.keepassxc.KeePassXC", "org.gnome.Terminal"});
    settings.setElevenEnabled(true);
    settings.setElevenVoiceID("voice-id");
    settings.setAppVoices(
        {{"chromium", "Chromium", {coordinator::AppVoiceRule::Voice::Kind::eleven, {}}}});
    std::vector<PronunciationRule> own;
    for (int i = 0; i < std::min(rules, 300); ++i) {
        own.push_back({Uuid::random(), u"word" + fromUtf8(std::to_string(i)), u"say"});
    }
    settings.setPronunciations(own);
    std::vector<PronunciationRule> shared;
    for (int i = 0; i < rules - 300; ++i) {
        shared.push_back({Uuid::random(), u"shared" + fromUtf8(std::to_string(i)), u"say"});
    }
    settings.setSharedPronunciations(shared);
}

void touch(const QString& path, const QDateTime& when) {
    QFile file{path};
    if (!file.open(QIODevice::ReadWrite) ||
        !file.setFileTime(when, QFileDevice::FileModificationTime)) {
        std::abort();
    }
}

void settingsLoad(benchmark::State& state) {
    QTemporaryDir root;
    const QString path = root.filePath(QStringLiteral("lectorbell.conf"));
    fillSettings(path, static_cast<int>(state.range(0)));
    QDateTime stamp = QDateTime::currentDateTimeUtc();
    for (auto _ : state) {
        // A new time on the file makes QSettings read it again, as a new process would.
        state.PauseTiming();
        stamp = stamp.addMSecs(10);
        touch(path, stamp);
        state.ResumeTiming();
        platform::settings::IniSettingsStore store{path};
        coordinator::ReadingSettings settings{store};
        benchmark::DoNotOptimize(settings.sharedPronunciations().size());
    }
}
// Most of the time with thousands of fixes goes to compiling them for the pronunciation layer.
BENCHMARK(settingsLoad)->Arg(0)->Arg(300)->Arg(5300)->Unit(benchmark::kMillisecond);

void queueAddTo1000(benchmark::State& state) {
    QTemporaryDir root;
    coordinator::QueueStore queue{root.filePath(QStringLiteral("Lectorbell"))};
    for (int i = 0; i < 1000; ++i) {
        coordinator::QueueItem item;
        item.date = system_clock::now();
        item.appName = "Firefox";
        item.text = u"A saved highlight of a few sentences, about as long as people save them. " +
                    fromUtf8(std::to_string(i)) + std::u16string(300, u'x');
        queue.add(std::move(item));
    }
    int n = 0;
    for (auto _ : state) {
        coordinator::QueueItem item;
        item.date = system_clock::now();
        item.appName = "Firefox";
        // Alternating texts keep the queue at 1,000 items: each add replaces an older copy.
        item.text = u"The newest highlight " + fromUtf8(std::to_string(n++ % 2));
        queue.add(std::move(item));
    }
    state.counters["items"] = static_cast<double>(queue.items().size());
}
BENCHMARK(queueAddTo1000)->Unit(benchmark::kMillisecond);

void historyLoad200(benchmark::State& state) {
    QDateTime stamp = QDateTime::currentDateTimeUtc();
    QTemporaryDir root;
    const QString path = root.filePath(QStringLiteral("lectorbell.conf"));
    {
        platform::settings::IniSettingsStore store{path};
        coordinator::StatsStore history{store, UserCalendar{"Europe/Kyiv"}};
        Date at = system_clock::now() - hours{24 * 400};
        for (int i = 0; i < 400; ++i) {
            history.record(120, 40.0, at + hours{24 * i});
        }
        for (int i = 0; i < 200; ++i) {
            history.addEntry({at + hours{i}, "Firefox", 120, 40.0, i % 3 == 0, "firefox"});
        }
    }
    for (auto _ : state) {
        state.PauseTiming();
        stamp = stamp.addMSecs(10);
        touch(path, stamp);
        state.ResumeTiming();
        platform::settings::IniSettingsStore store{path};
        coordinator::StatsStore history{store, UserCalendar{"Europe/Kyiv"}};
        benchmark::DoNotOptimize(history.recent().size());
    }
}
BENCHMARK(historyLoad200)->Unit(benchmark::kMillisecond);

} // namespace
