#include "platform/linux/settings/IniSettingsStore.hpp"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace lectorbell::platform::settings {
namespace {

class IniSettingsStoreTest : public ::testing::Test {
protected:
    QTemporaryDir root;
    QString path = root.filePath(QStringLiteral("lectorbell/lectorbell.conf"));

    QByteArray fileText() const {
        QFile file{path};
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray{};
    }

    void writeFile(const QByteArray& text) const {
        QFile file{path};
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }
};

TEST_F(IniSettingsStoreTest, ValuesReadBackFromTheFileAsWritten) {
    const std::string json = R"({"keyCode":15,"modifiers":768,"display":"Shift+Super+R"})";
    const std::string awkward = "@at, \"quoted\"; semi=colon\nnew line ünïcödé \\ back";
    {
        IniSettingsStore store{path};
        store.setValue("flag", true);
        store.setValue("count", std::int64_t{-42});
        store.setValue("ratio", 0.1);
        store.setValue("readHotkey", json);
        store.setValue("awkward", awkward);
        store.setValue("gone", std::string{"soon"});
        store.remove("gone");
    }
    // Each write is on disk at once, in plain text.
    EXPECT_TRUE(fileText().contains("flag=true"));
    EXPECT_TRUE(fileText().contains("count=-42"));
    EXPECT_TRUE(fileText().contains("ratio=0.1"));
    EXPECT_FALSE(fileText().contains("gone"));

    IniSettingsStore again{path};
    EXPECT_EQ(again.boolValue("flag"), true);
    EXPECT_EQ(again.intValue("count"), -42);
    EXPECT_EQ(again.doubleValue("ratio"), 0.1);
    EXPECT_EQ(again.stringValue("readHotkey"), json);
    EXPECT_EQ(again.stringValue("awkward"), awkward);
    EXPECT_FALSE(again.contains("gone"));
    // Text that does not spell the asked type reads as absent.
    EXPECT_EQ(again.boolValue("count"), std::nullopt);
    EXPECT_EQ(again.intValue("ratio"), std::nullopt);
}

TEST_F(IniSettingsStoreTest, AGarbageFileGivesWhatCanBeReadAndIsKept) {
    QDir{}.mkpath(root.filePath(QStringLiteral("lectorbell")));
    const QByteArray garbage{"\x00\xff\xfe[General\npace=fast\nlist=a,b,c\nweird=@Variant(\\0\\0)\n"
                             "=novalue\n\x80\x81\n",
                             81};
    writeFile(garbage);
    IniSettingsStore store{path};
    EXPECT_EQ(store.stringValue("list"), std::nullopt);
    EXPECT_EQ(store.stringValue("weird"), std::nullopt);
    store.setValue("pace", std::string{"slow"});
    // The lines QSettings could not read are gone from the file, but kept in a copy.
    QStringList copies = QDir{QFileInfo{path}.absolutePath()}.entryList(
        {QStringLiteral("lectorbell.conf.unreadable-*")}, QDir::Files);
    ASSERT_EQ(copies.size(), 1);
    QFile copy{QFileInfo{path}.absolutePath() + QLatin1Char('/') + copies[0]};
    ASSERT_TRUE(copy.open(QIODevice::ReadOnly));
    EXPECT_EQ(copy.readAll(), garbage);
    EXPECT_EQ(IniSettingsStore{path}.stringValue("pace"), "slow");
}

TEST_F(IniSettingsStoreTest, NoticesAnotherProcessesWrite) {
    IniSettingsStore store{path, WatchOtherProcesses::yes};
    store.setValue("pace", std::string{"slow"});
    store.setValue("keep", true);
    std::vector<std::string> told;
    store.observe([&told](const std::string& key) { told.push_back(key); });

    // Another program replaces the file in one rename, as QSettings itself does.
    QProcess writer;
    writer.start(QStringLiteral("python3"),
                 {QStringLiteral("-c"),
                  QStringLiteral("import os,sys\n"
                                 "p=sys.argv[1]\n"
                                 "open(p+'.new','w').write('[General]\\npace=fast\\nkeep=true\\n'"
                                 "'added=1\\n')\n"
                                 "os.replace(p+'.new',p)\n"),
                  path});
    ASSERT_TRUE(writer.waitForFinished(10000));
    ASSERT_EQ(writer.exitCode(), 0);

    QElapsedTimer waited;
    waited.start();
    while (told.size() < 2 && waited.elapsed() < 5000) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    }
    std::sort(told.begin(), told.end());
    EXPECT_EQ(told, (std::vector<std::string>{"added", "pace"}));
    EXPECT_EQ(store.stringValue("pace"), "fast");
    EXPECT_EQ(store.intValue("added"), 1);

    // Our own writes are told once, and only when the value changes.
    told.clear();
    store.setValue("pace", std::string{"fast"});
    store.setValue("pace", std::string{"maximum"});
    EXPECT_EQ(told, (std::vector<std::string>{"pace"}));
}

} // namespace
} // namespace lectorbell::platform::settings

int main(int argc, char** argv) {
    QCoreApplication application{argc, argv};
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
