// `lectorbell key status|set|delete`: the ElevenLabs API key in the desktop's key store. `set`
// reads the key from standard input only; nothing prints or logs the key itself.

#include "cli/Stores.hpp"
#include "cli/VerbSupport.hpp"
#include "cli/Verbs.hpp"
#include "coordinator/Keychain.hpp"

#include <QString>
#include <iostream>
#include <iterator>
#include <memory>

namespace lectorbell::cli {

namespace {

using coordinator::Keychain;
using Status = platform::SecretStore::Status;

// Longer than any API key; more input is not a key.
constexpr std::size_t longestKey = 4096;

// The keychain over the running system's secret stores.
struct KeyStores {
    explicit KeyStores(platform::Platform& platform)
        : stores{makeStores(platform)}
        , current{platform.secretStore()}
        , former{platform.formerSecretStore()}
        , keychain{*current, *former, *stores.settings} {}

    Stores stores;
    std::unique_ptr<platform::SecretStore> current;
    std::unique_ptr<platform::SecretStore> former;
    Keychain keychain;
};

int keyStatus(platform::Platform& platform) {
    qtApplication();
    KeyStores stores{platform};
    Keychain& keychain = stores.keychain;
    platform::SecretStore::Lookup lookup = keychain.get(Keychain::elevenLabsAccount);
    switch (lookup.status) {
    case Status::found:
        std::cout << "An ElevenLabs key is stored in the keyring.\n";
        return 0;
    case Status::notFound:
        std::cout << "No ElevenLabs key is stored in the keyring (or the keyring is locked).\n";
        return 0;
    case Status::failed:
        std::cerr << "lectorbell: couldn't read the keyring\n";
        return exitFailed;
    }
    return exitFailed;
}

int setKey(platform::Platform& platform) {
    std::string input;
    std::istreambuf_iterator<char> in{std::cin};
    for (; in != std::istreambuf_iterator<char>{} && input.size() <= longestKey; ++in) {
        input.push_back(*in);
    }
    std::string key = QString::fromStdString(input).trimmed().toStdString();
    if (key.empty()) {
        return refuse("key set: give the key on standard input");
    }
    if (input.size() > longestKey || key.find_first_of(" \t\r\n") != std::string::npos) {
        return refuse("key set: standard input does not hold one API key");
    }
    qtApplication();
    KeyStores stores{platform};
    Keychain& keychain = stores.keychain;
    if (!keychain.set(key, Keychain::elevenLabsAccount).ok) {
        std::cerr << "lectorbell: " << Keychain::saveFailedMessage << '\n';
        return exitFailed;
    }
    std::cout << "An ElevenLabs key is stored in the keyring.\n";
    return 0;
}

int deleteKey(platform::Platform& platform) {
    qtApplication();
    KeyStores stores{platform};
    Keychain& keychain = stores.keychain;
    if (!keychain.remove(Keychain::elevenLabsAccount).ok) {
        std::cerr << "lectorbell: couldn't delete the key from the keyring\n";
        return exitFailed;
    }
    std::cout << "No ElevenLabs key is stored in the keyring.\n";
    return 0;
}

} // namespace

void addKeyVerb(CLI::App& app, VerbOutcome& outcome, platform::Platform& platform) {
    CLI::App* verb = app.add_subcommand("key", "The ElevenLabs API key in the desktop's keyring");
    verb->require_subcommand(1);
    verb->add_subcommand("status", "Tell whether a key is stored")->callback([&outcome, &platform] {
        outcome.exitStatus = keyStatus(platform);
    });
    verb->add_subcommand("set", "Store the key read from standard input")
        ->callback([&outcome, &platform] { outcome.exitStatus = setKey(platform); });
    verb->add_subcommand("delete", "Delete the stored key")->callback([&outcome, &platform] {
        outcome.exitStatus = deleteKey(platform);
    });
}

} // namespace lectorbell::cli
