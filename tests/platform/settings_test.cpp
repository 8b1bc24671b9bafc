#include "platform/settings.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QSettings>
#include <QTemporaryDir>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "base/console.h"
#include "tests/support/wait_until.h"

namespace zorvel {
namespace {

using std::chrono::milliseconds;

class SettingsTest : public ::testing::Test {
  protected:
    void SetUp() override {
        clearSettings();
        setConsoleSink([this](std::string_view line) { console.emplace_back(line); });
    }
    void TearDown() override {
        file.reset();
        clearSettings();
        setConsoleSink({});
    }
    void start(milliseconds patience = patient) {
        file = std::make_unique<SettingsFile>(path, patience);
    }
    // As if the program ended and began again.
    void restart() {
        EXPECT_TRUE(file->finish(patient));
        file.reset();
        clearSettings();
        start();
    }
    void put(const QByteArray& bytes) {
        QFile target(path);
        ASSERT_TRUE(target.open(QIODevice::WriteOnly | QIODevice::Truncate));
        target.write(bytes);
    }
    static QByteArray bytesOf(const QString& name) {
        QFile source(name);
        return source.open(QIODevice::ReadOnly) ? source.readAll() : QByteArray();
    }

    static constexpr milliseconds patient{20'000};
    QTemporaryDir folder;
    QString path = folder.filePath("zorvel/zorvel.ini");
    std::unique_ptr<SettingsFile> file;
    std::vector<std::string> console;
};

TEST_F(SettingsTest, LastFromRunToRunBesideThoseOfOtherPrograms) {
    start();
    storeSetting("size", 1);
    storeSetting("size", 20);
    storeSetting("shape", QByteArray("\0\x01", 2));
    storeSetting("passing", 1);
    EXPECT_EQ(setting("size").toInt(), 20);
    restart();
    EXPECT_EQ(setting("size").toInt(), 20);
    EXPECT_EQ(setting("shape"), QVariant(QByteArray("\0\x01", 2)));
    {
        QSettings other(path, QSettings::IniFormat);
        other.setValue("size", 30);
        other.setValue("others", "x");
    }
    removeSetting("passing");
    restart();
    EXPECT_EQ(setting("size", 0).toInt(), 30);
    EXPECT_EQ(setting("others").toString(), "x");
    EXPECT_FALSE(setting("passing").isValid());
    QSettings(path, QSettings::IniFormat).setValue("others", "yy");
    file->refresh();
    EXPECT_TRUE(waitUntil([] { return setting("others").toString() == "yy"; }));
    EXPECT_TRUE(console.empty());
}

TEST_F(SettingsTest, ADamagedFileIsKeptBesideBeforeItIsReplaced) {
    const QByteArray garbage = QByteArray("\x7f\x01garbage without sense\n\0[[[", 27).repeated(40);
    ASSERT_TRUE(QDir(folder.path()).mkdir("zorvel"));
    put(garbage);
    start();
    ASSERT_EQ(console.size(), 1u);
    EXPECT_EQ(console[0].rfind("WARNING: ", 0), 0u);
    EXPECT_TRUE(file->problem().contains(path + ".damaged"));
    storeSetting("size", 20);
    restart();
    EXPECT_EQ(setting("size").toInt(), 20);
    EXPECT_EQ(bytesOf(path + ".damaged"), garbage);
    EXPECT_EQ(file->problem(), "");
    EXPECT_EQ(console.size(), 1u);
}

// The lock is held by the thread that sets: were it to wait, this would not end well.
TEST_F(SettingsTest, AHeldLockIsToldAndNotWaitedFor) {
    start(milliseconds(20));
    QLockFile lock(path + ".lock");
    ASSERT_TRUE(lock.lock());
    storeSetting("size", 20);
    EXPECT_EQ(setting("size").toInt(), 20);
    EXPECT_TRUE(waitUntil([this] { return !file->problem().isEmpty(); }));
    EXPECT_TRUE(file->problem().contains(path + ".lock"));
    storeSetting("size", 30);
    EXPECT_EQ(bytesOf(path), "");
    lock.unlock();
    EXPECT_TRUE(waitUntil([this] { return bytesOf(path).contains("size=30"); }));
    EXPECT_TRUE(waitUntil([this] { return file->problem().isEmpty(); }));
}

TEST_F(SettingsTest, WhatIsNoFileOfSettingsIsLeftAlone) {
    ASSERT_TRUE(QDir(folder.path()).mkdir("zorvel"));
    const QByteArray name = path.toLocal8Bit();
    const struct {
        const char* what;
        std::function<bool()> put;
        const char* said;
    } rows[] = {
        {"a pipe", [&] { return mkfifo(name, 0600) == 0; }, "no regular file"},
        {"a folder", [&] { return QDir().mkdir(path); }, "no regular file"},
        {"a device", [&] { return QFile::link("/dev/zero", path); }, "no regular file"},
        {"a file of a gigabyte",
         [&] {
             put({});
             return QFile::resize(path, 1 << 30);
         },
         "too large"},
        {"a file in the folder's place",
         [&] {
             return QDir(folder.path()).rmdir("zorvel") &&
                    QFile::copy("/dev/null", folder.filePath("zorvel"));
         },
         "cannot be stored"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        ASSERT_TRUE(row.put());
        start();
        storeSetting("size", 20);
        EXPECT_TRUE(file->finish(patient));
        EXPECT_TRUE(file->problem().contains(row.said)) << file->problem().toStdString();
        EXPECT_EQ(setting("size").toInt(), 20);
        file.reset();
        QFile::remove(path) || QDir().rmdir(path);
    }
}

}  // namespace
}  // namespace zorvel
