// What a file manager makes of project files: their type, told by name and by content, and the
// program that it offers for them.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <QDir>
#include <QFile>
#include <QMimeDatabase>
#include <QStringList>

#include "store/object_context.h"
#include "store/project_file.h"
#include "tests/support/scratch_folder.h"

namespace zorvel {
namespace {

const QString packaging = ZORVEL_SOURCE_DIR "/packaging/";
const QString projectType = "application/x-zorvel";

// The description of the type is put where Qt looks before it reads any. The system's own types are
// out of sight: Qt 6.4 lets those of the folder that it reads last win, whatever their priority,
// while an installed program's stand in one folder with them. Qt brings the common ones itself.
class ProjectType : public ScratchFolder {
  protected:
    static void SetUpTestSuite() {
        const QString types = qEnvironmentVariable("XDG_DATA_HOME") + "/mime/packages";
        ASSERT_TRUE(QDir().mkpath(types));
        ASSERT_TRUE(QFile::copy(packaging + "zorvel-mime.xml", types + "/zorvel.xml"));
        qputenv("XDG_DATA_DIRS", qgetenv("XDG_DATA_HOME"));
    }
    void SetUp() override {
        ScratchFolder::SetUp();
        ASSERT_TRUE(ProjectFile::create(path("named.zorvel"), ObjectContext()));
        ASSERT_TRUE(QFile::copy(file("named.zorvel"), file("nameless")));
        ASSERT_TRUE(QFile::copy(file("named.zorvel"), file("renamed.sqlite")));
        sqlite3* other = nullptr;
        ASSERT_EQ(sqlite3_open(path("other").c_str(), &other), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(other, "CREATE TABLE t(x)", nullptr, nullptr, nullptr), SQLITE_OK);
        sqlite3_close(other);
        put("empty.zorvel", "");
        put("counts.csv", "Abies alba,12\n");
    }
    [[nodiscard]] QString file(const std::string& name) const {
        return QString::fromStdString(path(name));
    }
};

TEST_F(ProjectType, IsToldByNameAndByContent) {
    struct Row {
        const char* name;
        QMimeDatabase::MatchMode mode;
        bool project;
    };
    const Row rows[] = {
        {"named.zorvel", QMimeDatabase::MatchDefault, true},
        {"named.zorvel", QMimeDatabase::MatchContent, true},
        {"nameless", QMimeDatabase::MatchDefault, true},
        {"renamed.sqlite", QMimeDatabase::MatchContent, true},
        {"empty.zorvel", QMimeDatabase::MatchExtension, true},
        {"other", QMimeDatabase::MatchDefault, false},
        {"counts.csv", QMimeDatabase::MatchDefault, false},
    };
    const QMimeDatabase types;
    for (const Row& row : rows) {
        const QString found = types.mimeTypeForFile(file(row.name), row.mode).name();
        EXPECT_EQ(found == projectType, row.project)
            << row.name << " is taken for " << found.toStdString();
    }
}

TEST_F(ProjectType, IsADatabaseWithAnIconAndAWordOfItsOwn) {
    const QMimeType type = QMimeDatabase().mimeTypeForName(projectType);
    EXPECT_TRUE(type.inherits("application/vnd.sqlite3"));
    EXPECT_EQ(type.comment(), "Zorvel project");
    EXPECT_TRUE(QFile::exists(packaging + "icons/" + type.iconName() + ".svg"))
        << type.iconName().toStdString();
}

TEST_F(ProjectType, IsOfferedToTheProgramWithTextsThatItReads) {
    QFile entry(packaging + "zorvel.desktop");
    ASSERT_TRUE(entry.open(QIODevice::ReadOnly));
    QStringList types;
    for (const QByteArray& line : entry.readAll().split('\n')) {
        if (line.startsWith("MimeType=")) types = QString(line.mid(9)).split(';');
    }
    EXPECT_TRUE(types.contains(projectType));
    EXPECT_TRUE(types.contains(QMimeDatabase().mimeTypeForFile(file("counts.csv")).name()));
}

}  // namespace
}  // namespace zorvel
