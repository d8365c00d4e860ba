#include "platform/linux/keyring/KeyringSecretStore.hpp"

#include <QCoreApplication>
#include <QEventLoop>
#include <qt6keychain/keychain.h>
#include <utility>

namespace lectorbell::platform::keyring {

namespace {

const char* noApplication = "no Qt application to run the key store's job";

// Starts the job and waits for its end; the caller owns the job.
void runToEnd(QKeychain::Job& job) {
    QEventLoop loop;
    bool finished = false;
    QObject::connect(&job, &QKeychain::Job::finished, &loop, [&] {
        finished = true;
        loop.quit();
    });
    job.setAutoDelete(false);
    job.start();
    // Some failures finish the job inside start().
    if (!finished) {
        loop.exec();
    }
}

std::string describe(const QKeychain::Job& job) {
    return "error " + std::to_string(static_cast<int>(job.error())) + ": " +
           job.errorString().toStdString();
}

} // namespace

KeyringSecretStore::KeyringSecretStore(QString service)
    : service_{std::move(service)} {}

SecretStore::Lookup KeyringSecretStore::get(const std::string& account) {
    if (!QCoreApplication::instance()) {
        return {Status::failed, {}, noApplication};
    }
    QKeychain::ReadPasswordJob job{service_};
    job.setInsecureFallback(false);
    job.setKey(QString::fromStdString(account));
    runToEnd(job);
    switch (job.error()) {
    case QKeychain::NoError:
        return {Status::found, job.textData().toStdString(), {}};
    case QKeychain::EntryNotFound:
        return {Status::notFound, {}, {}};
    default:
        return {Status::failed, {}, describe(job)};
    }
}

SecretStore::Outcome KeyringSecretStore::set(const std::string& account,
                                             const std::string& secret) {
    if (!QCoreApplication::instance()) {
        return {false, noApplication};
    }
    QKeychain::WritePasswordJob job{service_};
    job.setInsecureFallback(false);
    job.setKey(QString::fromStdString(account));
    job.setTextData(QString::fromStdString(secret));
    runToEnd(job);
    if (job.error() != QKeychain::NoError) {
        return {false, describe(job)};
    }
    return {true, {}};
}

SecretStore::Outcome KeyringSecretStore::remove(const std::string& account) {
    if (!QCoreApplication::instance()) {
        return {false, noApplication};
    }
    QKeychain::DeletePasswordJob job{service_};
    job.setInsecureFallback(false);
    job.setKey(QString::fromStdString(account));
    runToEnd(job);
    if (job.error() != QKeychain::NoError && job.error() != QKeychain::EntryNotFound) {
        return {false, describe(job)};
    }
    return {true, {}};
}

} // namespace lectorbell::platform::keyring
