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

class ProjectType : public ScratchFolder {
  protected:
    // The description of the type is put where Qt looks before it reads any. The system's own types
    // are out of sight: Qt 6.4 lets those of the folder that it reads last win, whatever their
    // priority, while an installed program's are in one folder with them.
    static void SetUpTestSuite() {
        const QString types = qEnvironmentVariable("XDG_DATA_HOME") + "/mime/packages";
        ASSERT_TRUE(QDir().mkpath(types));
        ASSERT_TRUE(QFile::copy(packaging + "zorvel-mime.xml", types + "/zorvel.xml"));
        qputenv("XDG_DATA_DIRS", qgetenv("XDG_DATA_HOME"));
    }
    [[nodiscard]] QMimeType typeOf(const std::string& name,
                                   QMimeDatabase::MatchMode mode = QMimeDatabase::MatchDefault) {
        return QMimeDatabase().mimeTypeForFile(QString::fromStdString(path(name)), mode);
    }
};

TEST_F(ProjectType, IsToldByNameAndByContent) {
    ASSERT_TRUE(ProjectFile::create(path("named.zorvel"), ObjectContext()));
    put("nameless", bytesOf("named.zorvel"));
    put("renamed.sqlite", bytesOf("named.zorvel"));
    put("empty.zorvel", "");
    put("counts.csv", "Abies alba,12\n");
    sqlite3* other = nullptr;
    ASSERT_EQ(sqlite3_open(path("other").c_str(), &other), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(other, "CREATE TABLE t(x)", nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(other);
    const struct {
        const char* name;
        QMimeDatabase::MatchMode mode;
        bool project;
    } rows[] = {
        {"named.zorvel", QMimeDatabase::MatchDefault, true},
        {"named.zorvel", QMimeDatabase::MatchContent, true},
        {"nameless", QMimeDatabase::MatchDefault, true},
        {"renamed.sqlite", QMimeDatabase::MatchContent, true},
        {"empty.zorvel", QMimeDatabase::MatchExtension, true},
        {"other", QMimeDatabase::MatchDefault, false},
        {"counts.csv", QMimeDatabase::MatchDefault, false},
    };
    for (const auto& row : rows) {
        const QMimeType type = typeOf(row.name, row.mode);
        EXPECT_EQ(type.name() == "application/x-zorvel", row.project)
            << row.name << " is taken for " << type.name().toStdString();
        if (!row.project) continue;
        EXPECT_TRUE(type.inherits("application/vnd.sqlite3"));
        EXPECT_EQ(type.comment(), "Zorvel project");
        EXPECT_TRUE(QFile::exists(packaging + "icons/" + type.iconName() + ".svg"));
    }
    // The program is offered for projects and for the texts that it reads.
    QFile entry(packaging + "zorvel.desktop");
    ASSERT_TRUE(entry.open(QIODevice::ReadOnly));
    QStringList offered;
    for (const QByteArray& line : entry.readAll().split('\n')) {
        if (line.startsWith("MimeType=")) offered = QString(line.mid(9)).split(';');
    }
    EXPECT_TRUE(offered.contains("application/x-zorvel"));
    EXPECT_TRUE(offered.contains(typeOf("counts.csv").name()));
}

}  // namespace
}  // namespace zorvel
