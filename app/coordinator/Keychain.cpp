#include "coordinator/Keychain.hpp"

#include "coordinator/CoordinatorLog.hpp"

namespace lectorbell::coordinator {

namespace {

std::string movedFlag(const std::string& account) {
    return "keychainMoved." + account;
}

} // namespace

Keychain::Keychain(platform::SecretStore& current, platform::SecretStore& former,
                   platform::SettingsStore& defaults)
    : current_{current}
    , former_{former}
    , defaults_{defaults} {}

platform::SecretStore::Lookup Keychain::get(const std::string& account) {
    using Status = platform::SecretStore::Status;
    platform::SecretStore::Lookup lookup = current_.get(account);
    if (lookup.status != Status::notFound) {
        if (lookup.status == Status::failed) {
            qCWarning(lcStores, "keyring: reading a key failed (%s)", lookup.problem.c_str());
        }
        return lookup;
    }
    const std::string flag = movedFlag(account);
    if (defaults_.boolValue(flag).value_or(false)) {
        return lookup;
    }
    defaults_.setValue(flag, true);
    platform::SecretStore::Lookup earlier = former_.get(account);
    if (earlier.status != Status::found) {
        return lookup;
    }
    platform::SecretStore::Outcome moved = current_.set(account, earlier.secret);
    if (!moved.ok) {
        // Try the move again at the next start rather than lose the key.
        defaults_.setValue(flag, false);
        qCWarning(lcStores, "keyring: moving the earlier key failed (%s)", moved.problem.c_str());
    } else {
        qCInfo(lcStores, "keyring: moved a key from the earlier service");
    }
    return earlier;
}

platform::SecretStore::Outcome Keychain::set(const std::string& secret,
                                             const std::string& account) {
    platform::SecretStore::Outcome outcome = current_.set(account, secret);
    if (!outcome.ok) {
        qCWarning(lcStores, "keyring: saving a key failed (%s)", outcome.problem.c_str());
    }
    return outcome;
}

platform::SecretStore::Outcome Keychain::remove(const std::string& account) {
    defaults_.setValue(movedFlag(account), true);
    platform::SecretStore::Outcome outcome = current_.remove(account);
    if (!outcome.ok) {
        qCWarning(lcStores, "keyring: deleting a key failed (%s)", outcome.problem.c_str());
    }
    return outcome;
}

} // namespace lectorbell::coordinator
