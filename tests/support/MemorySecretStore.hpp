#pragma once

#include "platform/SecretStore.hpp"

#include <map>

namespace lectorbell::testing {

// Secrets in an in-memory map. `unavailable` plays a desktop without a Secret Service: every
// call fails and nothing is kept.
class MemorySecretStore final : public platform::SecretStore {
public:
    bool unavailable = false;
    std::map<std::string, std::string> secrets;
    int reads = 0;

    Lookup get(const std::string& account) override {
        ++reads;
        if (unavailable) {
            return {Status::failed, {}, "no Secret Service"};
        }
        auto it = secrets.find(account);
        if (it == secrets.end()) {
            return {Status::notFound, {}, {}};
        }
        return {Status::found, it->second, {}};
    }

    Outcome set(const std::string& account, const std::string& secret) override {
        if (unavailable) {
            return {false, "no Secret Service"};
        }
        secrets[account] = secret;
        return {true, {}};
    }

    Outcome remove(const std::string& account) override {
        if (unavailable) {
            return {false, "no Secret Service"};
        }
        secrets.erase(account);
        return {true, {}};
    }
};

} // namespace lectorbell::testing
