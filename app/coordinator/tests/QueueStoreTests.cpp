#include "coordinator/QueueStore.hpp"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace lectorbell::coordinator {
namespace {

QueueItem saved(std::u16string text, std::string app = "Text Editor") {
    QueueItem item;
    item.date = std::chrono::system_clock::now();
    item.appName = std::move(app);
    item.text = std::move(text);
    return item;
}

std::vector<std::u16string> texts(const std::vector<QueueItem>& items) {
    std::vector<std::u16string> out;
    out.reserve(items.size());
    for (const QueueItem& item : items) {
        out.push_back(item.text);
    }
    return out;
}

class QueueStoreTest : public ::testing::Test {
protected:
    QTemporaryDir root;
    QString folder = root.filePath(QStringLiteral("Lectorbell"));
    QString file = folder + QStringLiteral("/queue.json");

    void writeFile(const QByteArray& bytes) {
        QDir{}.mkpath(folder);
        QFile out{file};
        ASSERT_TRUE(out.open(QIODevice::WriteOnly));
        out.write(bytes);
    }

    QStringList keptAside() const {
        return QDir{folder}.entryList({QStringLiteral("queue.json.corrupt-*")}, QDir::Files);
    }
};

TEST_F(QueueStoreTest, SavingTheSameTextTwiceKeepsTheNewOneLast) {
    QueueStore queue{folder};
    queue.add(saved(u"one"));
    queue.add(saved(u"two"));
    QueueItem again = saved(u"one", "Chromium");
    queue.add(again);
    EXPECT_EQ(texts(queue.items()), (std::vector<std::u16string>{u"two", u"one"}));
    EXPECT_EQ(queue.items().back().appName, "Chromium");
    EXPECT_EQ(queue.items().back().id, again.id);
}

TEST_F(QueueStoreTest, ListenedNextAndClear) {
    QueueStore queue{folder};
    for (const char16_t* text : {u"a", u"b", u"c"}) {
        queue.add(saved(text));
    }
    std::vector<QueueItem> items = queue.items();
    queue.markListened(items[1].id);
    EXPECT_EQ(texts(queue.unlistened()), (std::vector<std::u16string>{u"a", u"c"}));
    EXPECT_EQ(queue.next(items[0].id)->text, u"b");
    EXPECT_EQ(queue.next(items[1].id)->text, u"c");
    EXPECT_EQ(queue.next(items[2].id), std::nullopt);
    EXPECT_EQ(queue.next(Uuid::random()), std::nullopt);

    queue.clearListened();
    EXPECT_EQ(texts(queue.items()), (std::vector<std::u16string>{u"a", u"c"}));
    queue.remove(items[0].id);
    EXPECT_EQ(texts(queue.items()), (std::vector<std::u16string>{u"c"}));
    // Ids survive the re-reads that every change makes.
    EXPECT_EQ(queue.items()[0].id, items[2].id);

    QueueStore reopened{folder};
    EXPECT_EQ(texts(reopened.items()), (std::vector<std::u16string>{u"c"}));
    EXPECT_FALSE(reopened.items()[0].listened);
}

TEST_F(QueueStoreTest, TheFileIsTheOwnersAlone) {
    QueueStore queue{folder};
    queue.add(saved(u"private words"));
    const QFile::Permissions others = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup |
                                      QFile::ReadOther | QFile::WriteOther | QFile::ExeOther;
    QFile::Permissions mode = QFile::permissions(file);
    EXPECT_TRUE(mode.testFlags(QFile::ReadOwner | QFile::WriteOwner));
    EXPECT_FALSE(mode & (others | QFile::ExeOwner));
    EXPECT_FALSE(QFile::permissions(folder) & others);
}

TEST_F(QueueStoreTest, TwoStoresOnOneFileKeepBothChanges) {
    QueueStore first{folder};
    QueueStore second{folder};
    first.add(saved(u"from the first"));
    second.add(saved(u"from the second"));
    EXPECT_EQ(texts(second.items()),
              (std::vector<std::u16string>{u"from the first", u"from the second"}));
    int told = 0;
    first.observe([&told] { ++told; });
    first.reload();
    EXPECT_EQ(texts(first.items()), texts(second.items()));
    EXPECT_EQ(told, 1);
}

TEST_F(QueueStoreTest, AFileThatDoesNotDecodeIsKeptAside) {
    struct Case {
        QByteArray bytes;
        std::vector<std::u16string> kept;
    };
    std::vector<Case> cases{
        {"not json at all", {}},
        {"{\"an\":\"object\"}", {}},
        {R"([{"date":"2026-03-07T10:00:00Z","appName":"A","text":"good","listened":false},)"
         R"({"date":"yesterday","appName":"A","text":"bad date","listened":false}])",
         {u"good"}},
        {"[{\"date\":\"2026-03-07T10:00:00Z\",\"appName\":\"A\",\"text\":\"caf\xe9\","
         "\"listened\":true}]",
         {u"caf\ufffd"}},
    };
    for (const Case& c : cases) {
        QDir{folder}.removeRecursively();
        writeFile(c.bytes);
        QueueStore queue{folder};
        EXPECT_EQ(texts(queue.items()), c.kept) << c.bytes.toStdString();
        QStringList aside = keptAside();
        ASSERT_EQ(aside.size(), 1) << c.bytes.toStdString();
        QFile original{folder + QLatin1Char('/') + aside[0]};
        ASSERT_TRUE(original.open(QIODevice::ReadOnly));
        EXPECT_EQ(original.readAll(), c.bytes);

        queue.add(saved(u"new"));
        EXPECT_EQ(QueueStore{folder}.items().size(), c.kept.size() + 1);
        EXPECT_EQ(keptAside().size(), 1);
    }
}

} // namespace
} // namespace lectorbell::coordinator
