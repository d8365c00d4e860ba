#pragma once

#include "coordinator/FeedbackProblem.hpp"
#include "coordinator/LastReading.hpp"
#include "lectorbell/Pronunciations.hpp"
#include "platform/SettingsStore.hpp"

#include <QNetworkAccessManager>
#include <QUrl>
#include <chrono>
#include <functional>
#include <optional>
#include <string>

class QNetworkReply;

namespace lectorbell::coordinator {

class ReadingSettings;

// Talks to the maker's server: anonymous problem reports about the last reading, and shared
// pronunciation fixes. A random install id stands for the user. Without a configured server,
// reports are not offered. Replies arrive on the main thread through the Qt event loop.
class Feedback {
public:
    static constexpr const char* notAvailableMessage = "Reports aren't available yet.";
    static constexpr const char* unreachableMessage = "Couldn't reach the server. Try again later.";
    static constexpr const char* tooManyMessage =
        "That's a lot of reports today. Try again tomorrow.";
    static constexpr const char* notAcceptedMessage = "The report wasn't accepted.";
    static constexpr const char* thanksMessage =
        "Thanks. Reports like this make reading better for everyone.";
    static constexpr std::size_t mostSharedRules = 5000;
    static constexpr std::chrono::seconds sharedRefreshInterval{86400};

    struct Limits {
        std::chrono::milliseconds report{15000};
        std::chrono::milliseconds shared{60000};
        std::chrono::milliseconds suggestion{15000};
        // Far more than 5,000 fixes take; a larger reply is refused unread.
        qint64 largestSharedReply = 8LL * 1024 * 1024;
        // A note or a sentence is cut to this many UTF-16 units before it is sent.
        std::size_t longestNote = 2000;
        std::size_t longestSentence = 500;
    };

    struct SendResult {
        bool sent = false;
        // One of the five messages above.
        std::string message;
    };

    struct RefreshResult {
        enum class Outcome { notConfigured, upToDate, fetched, failed };
        Outcome outcome = Outcome::failed;
        std::size_t rules = 0;
        // For failed: why, for one log line.
        std::string problem;
    };

    // `server` is the base URL ("api/report" and "api/pronunciations" go under it); none means
    // no server. `version` is the application's short version.
    Feedback(platform::SettingsStore& defaults, std::optional<QUrl> server, std::string version,
             Limits limits);
    Feedback(platform::SettingsStore& defaults, std::optional<QUrl> server, std::string version);
    ~Feedback();
    Feedback(const Feedback&) = delete;
    Feedback& operator=(const Feedback&) = delete;

    bool available() const { return server_.has_value(); }
    // Stored under "feedbackInstallID"; made on first use.
    std::string installID();

    // The report's JSON object.
    std::string reportBody(const LastReading& reading, FeedbackProblem problem,
                           const std::string& note, bool includeSentence);
    void send(const std::string& body, std::function<void(SendResult)> done);
    // Offers the user's new fix to everyone; failures are only logged. `done` (optional) hears
    // whether the server took it.
    void suggest(const PronunciationRule& rule, std::function<void(bool)> done = {});
    // Fetches the shared fixes into the settings, at most once a day unless forced; any failure
    // keeps the previous list.
    void refreshShared(ReadingSettings& settings, bool force,
                       std::function<void(RefreshResult)> done);

private:
    QNetworkReply* post(const char* path, const std::string& body,
                        std::chrono::milliseconds timeout);
    QUrl endpoint(const char* path) const;

    platform::SettingsStore& defaults_;
    std::optional<QUrl> server_;
    std::string version_;
    Limits limits_;
    QNetworkAccessManager network_;
};

// The server's base URL: the environment variable LECTORBELL_FEEDBACK_URL when it is set (empty
// means none), otherwise the one the build was configured with, if any.
std::optional<QUrl> feedbackServer();

} // namespace lectorbell::coordinator
