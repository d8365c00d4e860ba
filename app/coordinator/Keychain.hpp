#pragma once

#include "platform/SecretStore.hpp"
#include "platform/SettingsStore.hpp"

#include <string>

namespace lectorbell::coordinator {

// The user's secrets: the secret store under our application id, with a one-time move of a key
// that the earlier build stored under its own id.
class Keychain {
public:
    static constexpr const char* elevenLabsAccount = "elevenlabs";
    static constexpr const char* saveFailedMessage = "Couldn't save the key to the keyring";

    // `current` holds our secrets, `former` the earlier build's; `defaults` keeps the flags
    // that the move was attempted ("keychainMoved." + account).
    Keychain(platform::SecretStore& current, platform::SecretStore& former,
             platform::SettingsStore& defaults);

    // The account's secret. When our store has none, the earlier build's store is read once
    // (guarded by the flag) and a secret found there is stored under our id.
    platform::SecretStore::Lookup get(const std::string& account);
    platform::SecretStore::Outcome set(const std::string& secret, const std::string& account);
    // Also marks the move as done, so that a deleted key never comes back from the earlier
    // build's store.
    platform::SecretStore::Outcome remove(const std::string& account);

private:
    platform::SecretStore& current_;
    platform::SecretStore& former_;
    platform::SettingsStore& defaults_;
};

} // namespace lectorbell::coordinator
