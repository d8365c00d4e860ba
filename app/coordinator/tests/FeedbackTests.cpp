#include "MemorySettingsStore.hpp"
#include "coordinator/Feedback.hpp"
#include "coordinator/ReadingSettings.hpp"

#include <QEventLoop>
#include <QNetworkReply>
#include <QProcess>
#include <QTcpServer>
#include <QTimer>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace lectorbell::coordinator {
namespace {

using namespace std::chrono_literals;
using Outcome = Feedback::RefreshResult::Outcome;
using testing::MemorySettingsStore;

// Runs the event loop until the callback has been called (at most 30 s).
template <typename Result, typename Start>
std::optional<Result> await(Start start) {
    std::optional<Result> result;
    QEventLoop loop;
    QTimer::singleShot(30s, &loop, &QEventLoop::quit);
    start([&](Result value) {
        result = std::move(value);
        loop.quit();
    });
    if (!result) {
        loop.exec();
    }
    return result;
}

class FeedbackTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        server = new QProcess;
        server->start(QStringLiteral("python3"),
                      {QStringLiteral(LECTORBELL_FEEDBACK_SERVER), QStringLiteral("300")});
        ASSERT_TRUE(server->waitForReadyRead(10000)) << "the test server did not start";
        port = server->readLine().trimmed().toInt();
        ASSERT_GT(port, 0);
    }

    static void TearDownTestSuite() {
        server->kill();
        server->waitForFinished();
        delete server;
    }

    static QUrl url(const QString& scenario) {
        return QUrl{QStringLiteral("http://127.0.0.1:%1/%2/").arg(port).arg(scenario)};
    }

    // What the server received under the scenario.
    static std::vector<nlohmann::json> received(const QString& scenario) {
        QNetworkAccessManager network;
        QNetworkReply* reply = network.get(
            QNetworkRequest{QUrl{QStringLiteral("http://127.0.0.1:%1/_received").arg(port)}});
        QEventLoop loop;
        QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
        loop.exec();
        std::vector<nlohmann::json> matching;
        for (const nlohmann::json& request :
             nlohmann::json::parse(reply->readAll().toStdString())) {
            if (request["path"].get<std::string>().starts_with("/" + scenario.toStdString() +
                                                               "/")) {
                matching.push_back(request);
            }
        }
        delete reply;
        return matching;
    }

    Feedback feedbackFor(const QString& scenario) {
        Feedback::Limits limits;
        limits.report = 1500ms;
        limits.shared = 1500ms;
        limits.suggestion = 1500ms;
        return Feedback{store, url(scenario), "1.2.3", limits};
    }

    Feedback::SendResult sendTo(std::optional<QUrl> where) {
        Feedback::Limits limits;
        limits.report = 1500ms;
        Feedback feedback{store, std::move(where), "1.2.3", limits};
        std::string body = feedback.reportBody(reading, FeedbackProblem::other, {}, false);
        return *await<Feedback::SendResult>([&](auto done) { feedback.send(body, done); });
    }

    static inline QProcess* server = nullptr;
    static inline int port = 0;
    MemorySettingsStore store;
    LastReading reading{{},
                        "Firefox",
                        "firefox",
                        "highlight",
                        "accessibilitySelection",
                        "The first sentence.",
                        "en.wikipedia.org"};
};

TEST_F(FeedbackTest, OnlyStatus200IsSuccess) {
    struct Case {
        std::optional<QUrl> server;
        bool sent;
        const char* message;
    };
    QTcpServer closed;
    ASSERT_TRUE(closed.listen(QHostAddress::LocalHost));
    QUrl closedPort{QStringLiteral("http://127.0.0.1:%1/").arg(closed.serverPort())};
    closed.close();
    for (const Case& c :
         {Case{url(QStringLiteral("status-200")), true, Feedback::thanksMessage},
          Case{url(QStringLiteral("status-201")), false, Feedback::notAcceptedMessage},
          Case{url(QStringLiteral("status-429")), false, Feedback::tooManyMessage},
          Case{url(QStringLiteral("status-500")), false, Feedback::notAcceptedMessage},
          Case{url(QStringLiteral("huge")), true, Feedback::thanksMessage},
          Case{closedPort, false, Feedback::unreachableMessage},
          Case{std::nullopt, false, Feedback::notAvailableMessage}}) {
        Feedback::SendResult result = sendTo(c.server);
        EXPECT_EQ(result.sent, c.sent) << c.message;
        EXPECT_EQ(result.message, c.message);
    }
}

TEST_F(FeedbackTest, ASlowServerTimesOut) {
    auto start = std::chrono::steady_clock::now();
    Feedback::SendResult result = sendTo(url(QStringLiteral("slow")));
    EXPECT_EQ(result.message, Feedback::unreachableMessage);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 4s);
}

TEST_F(FeedbackTest, TheReportCarriesTheReadingAndNoMore) {
    Feedback feedback = feedbackFor(QStringLiteral("body"));
    std::string longNote(3000, 'n');
    for (bool includeSentence : {false, true}) {
        std::string body =
            feedback.reportBody(reading, FeedbackProblem::wrongStart, longNote, includeSentence);
        ASSERT_TRUE(
            await<Feedback::SendResult>([&](auto done) { feedback.send(body, done); })->sent);
    }
    std::vector<nlohmann::json> bodies;
    for (const nlohmann::json& request : received(QStringLiteral("body"))) {
        EXPECT_EQ(request["path"], "/body/api/report");
        bodies.push_back(nlohmann::json::parse(request["body"].get<std::string>()));
    }
    ASSERT_EQ(bodies.size(), 2U);
    const std::string install = *store.stringValue("feedbackInstallID");
    EXPECT_TRUE(Uuid::parse(install));
    nlohmann::json expected{{"install", install},
                            {"problem", "wrong-start"},
                            {"note", std::string(2000, 'n')},
                            {"mode", "highlight"},
                            {"origin", "accessibilitySelection"},
                            {"version", "1.2.3"},
                            {"site", "en.wikipedia.org"}};
    EXPECT_EQ(bodies[0], expected);
    expected["sentence"] = "The first sentence.";
    EXPECT_EQ(bodies[1], expected);
}

TEST_F(FeedbackTest, SuggestSendsTheFixWithTheInstallId) {
    Feedback feedback = feedbackFor(QStringLiteral("suggest"));
    EXPECT_TRUE(*await<bool>([&](auto done) {
        feedback.suggest({Uuid::random(), u"nginx", u"engine x"}, done);
    }));
    std::vector<nlohmann::json> requests = received(QStringLiteral("suggest"));
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_EQ(requests[0]["path"], "/suggest/api/pronunciations");
    EXPECT_EQ(nlohmann::json::parse(requests[0]["body"].get<std::string>()),
              (nlohmann::json{
                  {"install", feedback.installID()}, {"word", "nginx"}, {"sayAs", "engine x"}}));
}

TEST_F(FeedbackTest, SharedFixesAreCappedAndFetchedOnceADay) {
    ReadingSettings settings{store};
    Feedback feedback = feedbackFor(QStringLiteral("rules-6000"));
    auto refresh = [&](bool force) {
        return *await<Feedback::RefreshResult>(
            [&](auto done) { feedback.refreshShared(settings, force, done); });
    };
    Feedback::RefreshResult first = refresh(false);
    EXPECT_EQ(first.outcome, Outcome::fetched);
    EXPECT_EQ(first.rules, 5000U);
    ASSERT_EQ(settings.sharedPronunciations().size(), 5000U);
    EXPECT_EQ(settings.sharedPronunciations().back().word, u"word4999");
    EXPECT_TRUE(store.contains("sharedPronunciationsAt"));
    EXPECT_EQ(Pronunciations::apply(u"word17"), u"say 17");

    EXPECT_EQ(refresh(false).outcome, Outcome::upToDate);
    EXPECT_EQ(received(QStringLiteral("rules-6000")).size(), 1U);
    EXPECT_EQ(refresh(true).outcome, Outcome::fetched);
    EXPECT_EQ(received(QStringLiteral("rules-6000")).size(), 2U);
    Pronunciations::setRules({});
}

TEST_F(FeedbackTest, AFailedRefreshKeepsThePreviousFixes) {
    ReadingSettings settings{store};
    std::vector<PronunciationRule> previous{{Uuid::random(), u"SQL", u"sequel"}};
    settings.setSharedPronunciations(previous);
    for (const char* scenario : {"invalid", "status-500", "huge", "slow"}) {
        Feedback feedback = feedbackFor(QString::fromLatin1(scenario));
        Feedback::RefreshResult result = *await<Feedback::RefreshResult>(
            [&](auto done) { feedback.refreshShared(settings, true, done); });
        EXPECT_EQ(result.outcome, Outcome::failed) << scenario;
        EXPECT_EQ(settings.sharedPronunciations(), previous) << scenario;
        EXPECT_FALSE(store.contains("sharedPronunciationsAt")) << scenario;
    }
    Pronunciations::setRules({});
}

} // namespace
} // namespace lectorbell::coordinator
