#pragma once

#include <string>

namespace lectorbell::platform {

// Secrets (the cloud voice's API key) in the desktop's key store, one per account, under the
// service the store was made for. Calls block until the key store answers. A secret never
// appears in a log line, a problem text or an error message.
class SecretStore {
public:
    enum class Status {
        found,
        // Nothing under the account, or the key store is locked: never proof that nothing is
        // stored.
        notFound,
        // The key store could not be asked (no Secret Service, refused, timed out).
        failed,
    };

    struct Lookup {
        Status status = Status::notFound;
        std::string secret;
        // Why it failed, for one log line; empty otherwise.
        std::string problem;
    };

    struct Outcome {
        bool ok = false;
        std::string problem;
    };

    virtual ~SecretStore() = default;

    virtual Lookup get(const std::string& account) = 0;
    // Replaces whatever the account held.
    virtual Outcome set(const std::string& account, const std::string& secret) = 0;
    // Removing an account that holds nothing succeeds.
    virtual Outcome remove(const std::string& account) = 0;
};

} // namespace lectorbell::platform
