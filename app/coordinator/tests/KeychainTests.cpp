#include "MemorySecretStore.hpp"
#include "MemorySettingsStore.hpp"
#include "coordinator/Keychain.hpp"

#include <gtest/gtest.h>

namespace lectorbell::coordinator {
namespace {

using Status = platform::SecretStore::Status;
using testing::MemorySecretStore;
using testing::MemorySettingsStore;

struct Stores {
    MemorySecretStore current;
    MemorySecretStore former;
    MemorySettingsStore defaults;
    Keychain keychain{current, former, defaults};
};

TEST(Keychain, AKeyOfTheEarlierBuildIsMovedOnce) {
    Stores s;
    s.former.secrets["elevenlabs"] = "sk-earlier";
    auto first = s.keychain.get("elevenlabs");
    EXPECT_EQ(first.status, Status::found);
    EXPECT_EQ(first.secret, "sk-earlier");
    EXPECT_EQ(s.current.secrets["elevenlabs"], "sk-earlier");
    EXPECT_EQ(s.defaults.boolValue("keychainMoved.elevenlabs"), true);

    // Found directly afterwards, without asking the earlier store.
    int formerReads = s.former.reads;
    EXPECT_EQ(s.keychain.get("elevenlabs").secret, "sk-earlier");
    EXPECT_EQ(s.former.reads, formerReads);
}

TEST(Keychain, TheEarlierStoreIsReadOnlyOnce) {
    Stores s;
    EXPECT_EQ(s.keychain.get("elevenlabs").status, Status::notFound);
    s.former.secrets["elevenlabs"] = "sk-later";
    EXPECT_EQ(s.keychain.get("elevenlabs").status, Status::notFound);
    EXPECT_EQ(s.former.reads, 1);
}

TEST(Keychain, ADeletedKeyNeverComesBackFromTheEarlierStore) {
    Stores s;
    s.former.secrets["elevenlabs"] = "sk-earlier";
    ASSERT_TRUE(s.keychain.set("sk-mine", "elevenlabs").ok);
    ASSERT_TRUE(s.keychain.remove("elevenlabs").ok);
    EXPECT_EQ(s.keychain.get("elevenlabs").status, Status::notFound);
    EXPECT_EQ(s.former.reads, 0);
}

TEST(Keychain, AnUnreachableStoreIsAFailureNotAnAbsence) {
    Stores s;
    s.current.unavailable = true;
    s.former.unavailable = true;
    EXPECT_EQ(s.keychain.get("elevenlabs").status, Status::failed);
    EXPECT_FALSE(s.defaults.contains("keychainMoved.elevenlabs"));
    EXPECT_FALSE(s.keychain.set("sk-new", "elevenlabs").ok);
    EXPECT_TRUE(s.current.secrets.empty());
    // The key is never kept anywhere else, the settings included.
    for (const std::string& key : s.defaults.keys()) {
        EXPECT_NE(s.defaults.stringValue(key), "sk-new") << key;
    }
}

TEST(Keychain, AFailedMoveIsTriedAgainLater) {
    Stores s;
    s.former.secrets["elevenlabs"] = "sk-earlier";
    struct RefusingStore final : platform::SecretStore {
        Lookup get(const std::string&) override { return {Status::notFound, {}, {}}; }
        Outcome set(const std::string&, const std::string&) override { return {false, "locked"}; }
        Outcome remove(const std::string&) override { return {true, {}}; }
    } refusing;
    Keychain keychain{refusing, s.former, s.defaults};
    EXPECT_EQ(keychain.get("elevenlabs").secret, "sk-earlier");
    EXPECT_EQ(s.defaults.boolValue("keychainMoved.elevenlabs"), false);
    EXPECT_EQ(s.keychain.get("elevenlabs").secret, "sk-earlier");
    EXPECT_EQ(s.current.secrets["elevenlabs"], "sk-earlier");
}

} // namespace
} // namespace lectorbell::coordinator
