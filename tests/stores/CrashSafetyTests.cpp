#include "coordinator/QueueItem.hpp"
#include "lectorbell/Utf8.hpp"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <set>

namespace lectorbell {
namespace {

// Starts the writer, lets it write for a random moment, then kills it (SIGKILL).
void killMidWrite(const QStringList& arguments, std::mt19937& random) {
    QProcess writer;
    writer.start(QStringLiteral(LECTORBELL_STORE_WRITER), arguments);
    ASSERT_TRUE(writer.waitForStarted());
    QThread::msleep(std::uniform_int_distribution<int>{30, 250}(random));
    writer.kill();
    writer.waitForFinished();
}

TEST(CrashSafety, AKilledQueueWriteLeavesTheOldOrTheNewQueue) {
    QTemporaryDir root;
    const QString folder = root.filePath(QStringLiteral("Lectorbell"));
    std::mt19937 random{20260307};
    int versionsSeen = 0;
    for (int round = 0; round < 25; ++round) {
        killMidWrite({QStringLiteral("queue-churn"), folder}, random);
        QFile file{folder + QStringLiteral("/queue.json")};
        if (!file.exists()) {
            continue;
        }
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        QByteArray bytes = file.readAll();
        coordinator::DecodedQueue queue =
            coordinator::decodeQueue({bytes.constData(), static_cast<std::size_t>(bytes.size())});
        ASSERT_TRUE(queue.complete()) << "round " << round << ": a torn queue file";
        ASSERT_EQ(queue.items.size(), 400U);
        std::u16string version = queue.items[0].text.substr(0, queue.items[0].text.find(u" item"));
        for (const coordinator::QueueItem& item : queue.items) {
            ASSERT_TRUE(item.text.starts_with(version + u" item ")) << "round " << round;
        }
        ++versionsSeen;
    }
    EXPECT_GT(versionsSeen, 20);
}

TEST(CrashSafety, AKilledSettingsWriteLeavesTheOldOrTheNewSettings) {
    QTemporaryDir root;
    const QString path = root.filePath(QStringLiteral("lectorbell.conf"));
    std::mt19937 random{20260308};
    int filesSeen = 0;
    for (int round = 0; round < 25; ++round) {
        killMidWrite({QStringLiteral("settings-churn"), path}, random);
        if (!QFile::exists(path)) {
            continue;
        }
        // Read the file itself: a reader in this process would share QSettings' cache.
        QFile file{path};
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        std::map<QByteArray, QByteArray> values;
        for (const QByteArray& line : file.readAll().split('\n')) {
            qsizetype equals = line.indexOf('=');
            if (equals > 0) {
                values[line.left(equals)] = line.mid(equals + 1);
            }
        }
        const QByteArray& blob = values["blob"];
        ASSERT_GT(blob.size(), 200000) << "round " << round << ": a torn settings file";
        int version = blob.mid(200000).toInt();
        ASSERT_EQ(blob[0], static_cast<char>('a' + version % 26));
        ASSERT_EQ(blob.count(blob[0]), 200000) << "round " << round;
        // The version is written after the blob: it is the blob's or the one before.
        ASSERT_TRUE(values.contains("version")) << "round " << round;
        int stored = values["version"].toInt();
        ASSERT_TRUE(stored == version || stored == version - 1) << stored << " " << version;
        ++filesSeen;
    }
    EXPECT_GT(filesSeen, 20);
}

TEST(CrashSafety, TwoProcessesAddingAtOnceLoseNothing) {
    QTemporaryDir root;
    const QString folder = root.filePath(QStringLiteral("Lectorbell"));
    QProcess first;
    QProcess second;
    first.start(
        QStringLiteral(LECTORBELL_STORE_WRITER),
        {QStringLiteral("queue-add"), folder, QStringLiteral("first"), QStringLiteral("100")});
    second.start(
        QStringLiteral(LECTORBELL_STORE_WRITER),
        {QStringLiteral("queue-add"), folder, QStringLiteral("second"), QStringLiteral("100")});
    ASSERT_TRUE(first.waitForFinished(60000));
    ASSERT_TRUE(second.waitForFinished(60000));
    ASSERT_EQ(first.exitCode(), 0);
    ASSERT_EQ(second.exitCode(), 0);

    QFile file{folder + QStringLiteral("/queue.json")};
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QByteArray bytes = file.readAll();
    coordinator::DecodedQueue queue =
        coordinator::decodeQueue({bytes.constData(), static_cast<std::size_t>(bytes.size())});
    ASSERT_TRUE(queue.complete());
    std::set<std::u16string> texts;
    for (const coordinator::QueueItem& item : queue.items) {
        texts.insert(item.text);
    }
    EXPECT_EQ(texts.size(), 200U);
    EXPECT_EQ(queue.items.size(), 200U);
}

} // namespace
} // namespace lectorbell

int main(int argc, char** argv) {
    QCoreApplication application{argc, argv};
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
