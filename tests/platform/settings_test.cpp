#include "platform/settings.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QSettings>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "base/console.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/wait_until.h"

namespace zorvel {
namespace {

using std::chrono::milliseconds;

class SettingsTest : public ScratchFolder {
  protected:
    void SetUp() override {
        ScratchFolder::SetUp();
        iniPath = QString::fromStdString(path("zorvel/zorvel.ini"));
        clearSettings();
        setConsoleSink([this](std::string_view line) { console.emplace_back(line); });
    }
    void TearDown() override {
        file.reset();
        clearSettings();
        setConsoleSink({});
        ScratchFolder::TearDown();
    }
    void start(milliseconds patience = patient) {
        file = std::make_unique<SettingsFile>(iniPath, patience);
    }
    [[nodiscard]] QString iniFolder() const { return QString::fromStdString(path("zorvel")); }
    // As if the program ended and began again.
    void restart() {
        EXPECT_TRUE(file->finish(patient));
        file.reset();
        clearSettings();
        start();
    }

    static constexpr milliseconds patient{20'000};
    QString iniPath;
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
        QSettings other(iniPath, QSettings::IniFormat);
        other.setValue("size", 30);
        other.setValue("others", "x");
    }
    removeSetting("passing");
    restart();
    EXPECT_EQ(setting("size", 0).toInt(), 30);
    EXPECT_EQ(setting("others").toString(), "x");
    EXPECT_FALSE(setting("passing").isValid());
    QSettings(iniPath, QSettings::IniFormat).setValue("others", "yy");
    file->refresh();
    EXPECT_TRUE(waitUntil([] { return setting("others").toString() == "yy"; }));
    EXPECT_TRUE(console.empty());
}

TEST_F(SettingsTest, ADamagedFileIsKeptBesideBeforeItIsReplaced) {
    const std::string garbage =
        QByteArray("\x7f\x01garbage without sense\n\0[[[", 27).repeated(40).toStdString();
    ASSERT_TRUE(QDir().mkdir(iniFolder()));
    put("zorvel/zorvel.ini", garbage);
    start();
    ASSERT_EQ(console.size(), 1u);
    EXPECT_EQ(console[0].rfind("WARNING: ", 0), 0u);
    EXPECT_TRUE(file->problem().contains(iniPath + ".damaged"));
    storeSetting("size", 20);
    restart();
    EXPECT_EQ(setting("size").toInt(), 20);
    EXPECT_EQ(bytesOf("zorvel/zorvel.ini.damaged"), garbage);
    EXPECT_EQ(file->problem(), "");
    EXPECT_EQ(console.size(), 1u);
}

// The lock is held by the thread that sets: were it to wait, this would not end well.
TEST_F(SettingsTest, AHeldLockIsToldAndNotWaitedFor) {
    start(milliseconds(20));
    QLockFile lock(iniPath + ".lock");
    ASSERT_TRUE(lock.lock());
    storeSetting("size", 20);
    EXPECT_EQ(setting("size").toInt(), 20);
    EXPECT_TRUE(waitUntil([this] { return !file->problem().isEmpty(); }));
    EXPECT_TRUE(file->problem().contains(iniPath + ".lock"));
    storeSetting("size", 30);
    EXPECT_EQ(bytesOf("zorvel/zorvel.ini"), "");
    lock.unlock();
    EXPECT_TRUE(waitUntil(
        [this] { return bytesOf("zorvel/zorvel.ini").find("size=30") != std::string::npos; }));
    EXPECT_TRUE(waitUntil([this] { return file->problem().isEmpty(); }));
}

TEST_F(SettingsTest, WhatIsNoFileOfSettingsIsLeftAlone) {
    ASSERT_TRUE(QDir().mkdir(iniFolder()));
    const QByteArray name = iniPath.toLocal8Bit();
    const struct {
        const char* what;
        std::function<bool()> put;
        const char* said;
    } rows[] = {
        {"a pipe", [&] { return mkfifo(name, 0600) == 0; }, "no regular file"},
        {"a folder", [&] { return QDir().mkdir(iniPath); }, "no regular file"},
        {"a device", [&] { return QFile::link("/dev/zero", iniPath); }, "no regular file"},
        {"a file of a gigabyte",
         [&] {
             put("zorvel/zorvel.ini", "");
             return QFile::resize(iniPath, 1 << 30);
         },
         "too large"},
        {"a file in the folder's place",
         [&] { return QDir().rmdir(iniFolder()) && QFile::copy("/dev/null", iniFolder()); },
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
        QFile::remove(iniPath) || QDir().rmdir(iniPath);
    }
}

}  // namespace
}  // namespace zorvel
