#include "MemorySettingsStore.hpp"
#include "coordinator/Migration.hpp"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace lectorbell::coordinator {
namespace {

using platform::SettingValue;
using testing::MemorySettingsStore;

struct Places {
    QTemporaryDir root;
    QString former() const { return root.filePath(QStringLiteral("Murmurbench")); }
    QString current() const { return root.filePath(QStringLiteral("Lectorbell")); }
    void makeFormerQueue() const {
        QDir{}.mkpath(former());
        QFile queue{former() + QStringLiteral("/queue.json")};
        ASSERT_TRUE(queue.open(QIODevice::WriteOnly));
        queue.write("[]");
    }
};

TEST(Migration, CopiesKeysOnceWithoutOverwriting) {
    Places places;
    MemorySettingsStore former;
    former.setValue("pace", std::string{"fast"});
    former.setValue("setupDone", std::string{"true"});
    former.setValue("voiceIdentifier", std::string{"en-gb"});
    MemorySettingsStore settings;
    settings.setValue("voiceIdentifier", std::string{"de"});

    Migration::run(settings, &former, places.former(), places.current());
    EXPECT_EQ(settings.stringValue("pace"), "fast");
    EXPECT_EQ(settings.boolValue("setupDone"), true);
    EXPECT_EQ(settings.stringValue("voiceIdentifier"), "de");
    EXPECT_EQ(settings.boolValue("migratedFromMurmurbench"), true);
    EXPECT_FALSE(settings.contains("reRegisterLoginItem"));

    // A second start copies nothing, even what the earlier build changed meanwhile.
    former.setValue("pace", std::string{"slow"});
    former.setValue("showPlayerPanel", true);
    settings.remove("setupDone");
    Migration::run(settings, &former, places.former(), places.current());
    EXPECT_EQ(settings.stringValue("pace"), "fast");
    EXPECT_FALSE(settings.contains("showPlayerPanel"));
    EXPECT_FALSE(settings.contains("setupDone"));
}

TEST(Migration, ALoginChoiceCarriedOverAsTrueIsRegisteredAgain) {
    struct Case {
        std::optional<SettingValue> former;
        std::optional<SettingValue> current;
        bool reRegister;
    };
    for (const Case& c :
         {Case{SettingValue{true}, std::nullopt, true},
          Case{SettingValue{std::string{"true"}}, std::nullopt, true},
          Case{SettingValue{false}, std::nullopt, false}, Case{std::nullopt, std::nullopt, false},
          Case{SettingValue{true}, SettingValue{false}, false}}) {
        Places places;
        MemorySettingsStore former;
        MemorySettingsStore settings;
        if (c.former) {
            former.setValue("startAtLoginChosen", *c.former);
        }
        if (c.current) {
            settings.setValue("startAtLoginChosen", *c.current);
        }
        Migration::run(settings, &former, places.former(), places.current());
        EXPECT_EQ(settings.boolValue("reRegisterLoginItem").value_or(false), c.reRegister);
    }
}

TEST(Migration, MovesTheDataFolderOnlyWhenTheNewOneIsMissing) {
    Places places;
    places.makeFormerQueue();
    MemorySettingsStore settings;
    Migration::run(settings, nullptr, places.former(), places.current());
    EXPECT_TRUE(QFile::exists(places.current() + QStringLiteral("/queue.json")));
    EXPECT_FALSE(QFile::exists(places.former()));
    EXPECT_EQ(settings.boolValue("migratedFromMurmurbench"), true);

    Places both;
    both.makeFormerQueue();
    QDir{}.mkpath(both.current());
    MemorySettingsStore other;
    Migration::run(other, nullptr, both.former(), both.current());
    EXPECT_TRUE(QFile::exists(both.former() + QStringLiteral("/queue.json")));
    EXPECT_FALSE(QFile::exists(both.current() + QStringLiteral("/queue.json")));
}

} // namespace
} // namespace lectorbell::coordinator
