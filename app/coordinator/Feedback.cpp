#include "coordinator/Feedback.hpp"

#include "coordinator/CoordinatorLog.hpp"
#include "coordinator/IsoDate.hpp"
#include "coordinator/ReadingSettings.hpp"
#include "coordinator/SettingForms.hpp"
#include "coordinator/SettingKeys.hpp"
#include "lectorbell/UTF16Text.hpp"
#include "lectorbell/Utf8.hpp"

#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>
#include <memory>
#include <nlohmann/json.hpp>

namespace lectorbell::coordinator {

namespace {

using Json = nlohmann::ordered_json;

std::string dump(const Json& json) {
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

// The text cut to at most `longest` UTF-16 units, at a whole character.
std::string shortened(const std::string& utf8, std::size_t longest) {
    std::u16string text = fromUtf8(utf8);
    if (text.size() <= longest) {
        return utf8;
    }
    auto end = UTF16Text::snapDown(static_cast<std::int64_t>(longest), text);
    return toUtf8(std::u16string_view{text}.substr(0, static_cast<std::size_t>(end)));
}

// Aborts the reply when the time is up; whether it did so is kept in the returned flag.
std::shared_ptr<bool> abortAfter(QNetworkReply* reply, std::chrono::milliseconds timeout) {
    auto timedOut = std::make_shared<bool>(false);
    QTimer::singleShot(timeout, reply, [reply, timedOut] {
        if (reply->isRunning()) {
            *timedOut = true;
            reply->abort();
        }
    });
    return timedOut;
}

std::optional<int> httpStatus(QNetworkReply* reply) {
    QVariant status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (!status.isValid()) {
        return std::nullopt;
    }
    return status.toInt();
}

std::optional<std::vector<PronunciationRule>> decodeSharedRules(const QByteArray& bytes,
                                                                std::size_t most) {
    Json reply = Json::parse(bytes.begin(), bytes.end(), nullptr, false);
    if (!reply.is_object()) {
        return std::nullopt;
    }
    auto rules = reply.find("rules");
    if (rules == reply.end() || !rules->is_array()) {
        return std::nullopt;
    }
    std::vector<PronunciationRule> decoded;
    decoded.reserve(std::min(most, rules->size()));
    for (const Json& rule : *rules) {
        if (!rule.is_object()) {
            return std::nullopt;
        }
        auto word = rule.find("word");
        auto sayAs = rule.find("sayAs");
        if (word == rule.end() || !word->is_string() || sayAs == rule.end() ||
            !sayAs->is_string()) {
            return std::nullopt;
        }
        if (decoded.size() < most) {
            decoded.push_back({Uuid::random(), fromUtf8(word->get_ref<const std::string&>()),
                               fromUtf8(sayAs->get_ref<const std::string&>())});
        }
    }
    return decoded;
}

} // namespace

Feedback::Feedback(platform::SettingsStore& defaults, std::optional<QUrl> server,
                   std::string version, Limits limits)
    : defaults_{defaults}
    , server_{std::move(server)}
    , version_{std::move(version)}
    , limits_{limits} {
    if (server_ && !server_->path().endsWith(QLatin1Char('/'))) {
        // The API paths go under the base, not in place of its last segment.
        server_->setPath(server_->path() + QLatin1Char('/'));
    }
}

Feedback::Feedback(platform::SettingsStore& defaults, std::optional<QUrl> server,
                   std::string version)
    : Feedback{defaults, std::move(server), std::move(version), Limits{}} {}

Feedback::~Feedback() = default;

std::string Feedback::installID() {
    std::optional<std::string> stored = defaults_.stringValue(SettingKey::feedbackInstallID);
    if (stored && !stored->empty()) {
        return *stored;
    }
    std::string fresh = Uuid::random().string();
    defaults_.setValue(SettingKey::feedbackInstallID, fresh);
    return fresh;
}

std::string Feedback::reportBody(const LastReading& reading, FeedbackProblem problem,
                                 const std::string& note, bool includeSentence) {
    Json body{{"install", installID()}, {"problem", std::string{rawValue(problem)}}};
    if (!note.empty()) {
        body["note"] = shortened(note, limits_.longestNote);
    }
    body["mode"] = reading.mode;
    body["origin"] = reading.origin;
    body["version"] = version_;
    if (reading.site) {
        body["site"] = *reading.site;
    }
    if (includeSentence && reading.firstSentence) {
        body["sentence"] = shortened(*reading.firstSentence, limits_.longestSentence);
    }
    return dump(body);
}

QUrl Feedback::endpoint(const char* path) const {
    return server_->resolved(QUrl{QString::fromLatin1(path)});
}

QNetworkReply* Feedback::post(const char* path, const std::string& body,
                              std::chrono::milliseconds timeout) {
    QNetworkRequest request{endpoint(path)};
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    request.setTransferTimeout(static_cast<int>(timeout.count()));
    QNetworkReply* reply =
        network_.post(request, QByteArray{body.data(), static_cast<qsizetype>(body.size())});
    // Only the status matters: drop the body as it comes, however large.
    QObject::connect(reply, &QNetworkReply::readyRead, reply, [reply] { reply->readAll(); });
    return reply;
}

void Feedback::send(const std::string& body, std::function<void(SendResult)> done) {
    if (!server_) {
        done({false, notAvailableMessage});
        return;
    }
    QNetworkReply* reply = post("api/report", body, limits_.report);
    std::shared_ptr<bool> timedOut = abortAfter(reply, limits_.report);
    QObject::connect(
        reply, &QNetworkReply::finished, reply, [reply, timedOut, done = std::move(done)] {
            reply->deleteLater();
            std::optional<int> status = httpStatus(reply);
            if (*timedOut || !status) {
                qCWarning(lcFeedback, "feedback: report not sent (%s, error %d)",
                          *timedOut ? "timed out" : "no reply", static_cast<int>(reply->error()));
                done({false, unreachableMessage});
            } else if (*status == 200) {
                qCInfo(lcFeedback, "feedback: report sent (HTTP %ld)", static_cast<long>(*status));
                done({true, thanksMessage});
            } else {
                qCWarning(lcFeedback, "feedback: report refused (HTTP %d)", *status);
                done({false, *status == 429 ? tooManyMessage : notAcceptedMessage});
            }
        });
}

void Feedback::suggest(const PronunciationRule& rule, std::function<void(bool)> done) {
    auto finish = [done = std::move(done)](bool ok) {
        if (done) {
            done(ok);
        }
    };
    if (!server_) {
        finish(false);
        return;
    }
    std::string body = dump(
        Json{{"install", installID()}, {"word", toUtf8(rule.word)}, {"sayAs", toUtf8(rule.sayAs)}});
    QNetworkReply* reply = post("api/pronunciations", body, limits_.suggestion);
    std::shared_ptr<bool> timedOut = abortAfter(reply, limits_.suggestion);
    QObject::connect(reply, &QNetworkReply::finished, reply, [reply, timedOut, finish] {
        reply->deleteLater();
        std::optional<int> status = httpStatus(reply);
        bool ok = !*timedOut && status && *status >= 200 && *status < 300;
        if (ok) {
            qCInfo(lcFeedback, "feedback: shared a pronunciation fix");
        } else {
            qCWarning(lcFeedback, "feedback: sharing a fix failed (HTTP %d, error %d)",
                      status.value_or(0), static_cast<int>(reply->error()));
        }
        finish(ok);
    });
}

void Feedback::refreshShared(ReadingSettings& settings, bool force,
                             std::function<void(RefreshResult)> done) {
    using Outcome = RefreshResult::Outcome;
    if (!server_) {
        done({Outcome::notConfigured, 0, {}});
        return;
    }
    const Date now = std::chrono::system_clock::now();
    std::optional<Date> last =
        SettingForms::loadTime(defaults_, SettingKey::sharedPronunciationsAt);
    if (!force && last && *last <= now && now - *last < sharedRefreshInterval) {
        done({Outcome::upToDate, settings.sharedPronunciations().size(), {}});
        return;
    }
    QNetworkRequest request{endpoint("api/pronunciations")};
    request.setTransferTimeout(static_cast<int>(limits_.shared.count()));
    QNetworkReply* reply = network_.get(request);
    std::shared_ptr<bool> timedOut = abortAfter(reply, limits_.shared);
    auto body = std::make_shared<QByteArray>();
    auto tooLarge = std::make_shared<bool>(false);
    QObject::connect(reply, &QNetworkReply::readyRead, reply,
                     [reply, body, tooLarge, most = limits_.largestSharedReply] {
                         body->append(reply->readAll());
                         if (body->size() > most && !*tooLarge) {
                             *tooLarge = true;
                             reply->abort();
                         }
                     });
    QObject::connect(
        reply, &QNetworkReply::finished, reply,
        [this, reply, body, timedOut, tooLarge, &settings, now, done = std::move(done)] {
            reply->deleteLater();
            body->append(reply->readAll());
            std::optional<int> status = httpStatus(reply);
            auto fail = [&](const char* why) {
                qCWarning(lcFeedback, "feedback: shared fixes not fetched (%s, HTTP %d)", why,
                          status.value_or(0));
                done({Outcome::failed, 0, why});
            };
            if (*timedOut) {
                return fail("timed out");
            }
            if (*tooLarge) {
                return fail("reply too large");
            }
            if (!status || *status < 200 || *status >= 300) {
                return fail(status ? "refused" : "no reply");
            }
            std::optional<std::vector<PronunciationRule>> rules =
                decodeSharedRules(*body, mostSharedRules);
            if (!rules) {
                return fail("reply did not decode");
            }
            std::size_t count = rules->size();
            settings.setSharedPronunciations(std::move(*rules));
            defaults_.setValue(SettingKey::sharedPronunciationsAt, isoDate(now));
            qCInfo(lcFeedback, "feedback: %ld shared pronunciation fixes",
                   static_cast<long>(count));
            done({Outcome::fetched, count, {}});
        });
}

} // namespace lectorbell::coordinator
