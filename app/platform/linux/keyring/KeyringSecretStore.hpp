#pragma once

#include "platform/SecretStore.hpp"

#include <QString>

namespace lectorbell::platform::keyring {

// Our application id, the service our secrets are stored under.
inline constexpr const char* keyringService = "org.lectorbell.Lectorbell";
// The earlier build's application id, read once to move a key it stored.
inline constexpr const char* formerKeyringService = "org.murmurbench.Murmurbench";

// Secrets in the desktop's Secret Service (GNOME Keyring, KWallet) through QtKeychain. Each call
// runs the key store's job to its end in a local event loop, so a QCoreApplication must exist.
// QtKeychain's plain-text fallback stays off: a key is kept in the key store or not at all.
class KeyringSecretStore final : public platform::SecretStore {
public:
    explicit KeyringSecretStore(QString service);

    Lookup get(const std::string& account) override;
    Outcome set(const std::string& account, const std::string& secret) override;
    Outcome remove(const std::string& account) override;

private:
    QString service_;
};

} // namespace lectorbell::platform::keyring
