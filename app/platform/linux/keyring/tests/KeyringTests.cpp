#include "coordinator/Keychain.hpp"
#include "platform/linux/keyring/KeyringSecretStore.hpp"
#include "platform/linux/settings/IniSettingsStore.hpp"

#include <QCoreApplication>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace lectorbell::platform::keyring {
namespace {

using settings::IniSettingsStore;

using Status = SecretStore::Status;

// Each test uses accounts of its own: the keyring outlives the single tests.
std::string account(const char* name) {
    return std::string{"test-"} + name;
}

// Files under the private home that hold the text as it is.
QStringList filesHolding(const QByteArray& text) {
    QStringList found;
    QDirIterator it{qEnvironmentVariable("LECTORBELL_KEYRING_HOME"), QDir::Files | QDir::Hidden,
                    QDirIterator::Subdirectories};
    while (it.hasNext()) {
        QFile file{it.next()};
        if (file.open(QIODevice::ReadOnly) && file.readAll().contains(text)) {
            found << file.fileName();
        }
    }
    return found;
}

TEST(Keyring, SetGetReplaceDelete) {
    KeyringSecretStore store{QString::fromLatin1(keyringService)};
    const std::string name = account("cycle");
    EXPECT_EQ(store.get(name).status, Status::notFound);

    QElapsedTimer timer;
    timer.start();
    ASSERT_TRUE(store.set(name, "sk-first-0123456789").ok);
    EXPECT_LT(timer.elapsed(), 2000);
    SecretStore::Lookup first = store.get(name);
    EXPECT_EQ(first.status, Status::found);
    EXPECT_EQ(first.secret, "sk-first-0123456789");

    ASSERT_TRUE(store.set(name, "sk-second-0123456789").ok);
    EXPECT_EQ(store.get(name).secret, "sk-second-0123456789");
    // Only under our service: another service's store does not see it.
    EXPECT_EQ(KeyringSecretStore{QString::fromLatin1(formerKeyringService)}.get(name).status,
              Status::notFound);

    ASSERT_TRUE(store.remove(name).ok);
    EXPECT_EQ(store.get(name).status, Status::notFound);
    EXPECT_TRUE(store.remove(name).ok);
}

TEST(Keyring, TheKeyIsNowhereInPlainText) {
    KeyringSecretStore store{QString::fromLatin1(keyringService)};
    ASSERT_TRUE(store.set(account("plain"), "sk-never-in-a-file-4242").ok);
    EXPECT_EQ(filesHolding("sk-never-in-a-file-4242"), QStringList{});
    EXPECT_FALSE(
        QDir{qEnvironmentVariable("XDG_DATA_HOME") + QStringLiteral("/keyrings")}.isEmpty());
}

TEST(Keyring, AKeyOfTheEarlierBuildIsMovedOnce) {
    QTemporaryDir config;
    IniSettingsStore defaults{config.filePath(QStringLiteral("lectorbell.conf"))};
    KeyringSecretStore current{QString::fromLatin1(keyringService)};
    KeyringSecretStore former{QString::fromLatin1(formerKeyringService)};
    const std::string name = account("moved");
    ASSERT_TRUE(former.set(name, "sk-earlier-build").ok);

    coordinator::Keychain keychain{current, former, defaults};
    SecretStore::Lookup moved = keychain.get(name);
    EXPECT_EQ(moved.status, Status::found);
    EXPECT_EQ(moved.secret, "sk-earlier-build");
    EXPECT_EQ(current.get(name).secret, "sk-earlier-build");
    EXPECT_EQ(defaults.boolValue("keychainMoved." + name), true);

    // Deleted under our service, it does not come back from the earlier one.
    ASSERT_TRUE(keychain.remove(name).ok);
    EXPECT_EQ(keychain.get(name).status, Status::notFound);
    EXPECT_EQ(former.get(name).status, Status::found);
}

// Run without a Secret Service on the bus (see CMakeLists.txt).
TEST(NoKeyring, SavingFailsAtOnceAndKeepsNothing) {
    KeyringSecretStore store{QString::fromLatin1(keyringService)};
    QElapsedTimer timer;
    timer.start();
    SecretStore::Outcome outcome = store.set(account("nowhere"), "sk-no-service-777");
    EXPECT_FALSE(outcome.ok);
    EXPECT_FALSE(outcome.problem.empty());
    EXPECT_EQ(outcome.problem.find("sk-no-service-777"), std::string::npos);
    EXPECT_LT(timer.elapsed(), 5000);
    EXPECT_EQ(store.get(account("nowhere")).status, Status::failed);
    EXPECT_EQ(filesHolding("sk-no-service-777"), QStringList{});
}

} // namespace
} // namespace lectorbell::platform::keyring

int main(int argc, char** argv) {
    QCoreApplication application{argc, argv};
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
