#include <gtest/gtest.h>

#include <QFile>
#include <QFileInfo>
#include <QSettings>

#include "app/settings_check.h"
#include "base/console.h"
#include "platform/preferences.h"

namespace zorvel {
namespace {

class SettingsTest : public ::testing::Test {
  protected:
    void SetUp() override {
        QSettings().clear();
        QSettings().sync();
        path = QSettings().fileName();
        setConsoleSink([this](std::string_view line) { console.emplace_back(line); });
    }
    void TearDown() override {
        setConsoleSink({});
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
        QFile::remove(path);
        QFile::remove(path + ".damaged");
    }
    void put(const QByteArray& bytes) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(bytes);
    }
    static QByteArray bytesOf(const QString& name) {
        QFile file(name);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    QString path;
    std::vector<std::string> console;
};

TEST_F(SettingsTest, ADamagedFileIsKeptBesideBeforeItIsReplaced) {
    const QByteArray garbage = QByteArray("\x7f\x01garbage without sense\n\0[[[", 27).repeated(40);
    put(garbage);
    checkSettings();
    ASSERT_EQ(console.size(), 1u);
    EXPECT_EQ(console[0].rfind("WARNING: ", 0), 0u);
    Preferences().setRarefactionSize(20);
    QSettings().sync();
    EXPECT_EQ(Preferences().rarefactionSize(), 20);
    EXPECT_EQ(bytesOf(path + ".damaged"), garbage);
    EXPECT_NE(bytesOf(path), garbage);
}

TEST_F(SettingsTest, AGoodFileAndNoneAreLeftAlone) {
    checkSettings();
    put("[General]\nrarefactionSize=30\n");
    checkSettings();
    EXPECT_TRUE(console.empty());
    EXPECT_FALSE(QFileInfo::exists(path + ".damaged"));
    EXPECT_EQ(Preferences().rarefactionSize(), 30);
}

}  // namespace
}  // namespace zorvel
