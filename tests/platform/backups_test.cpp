#include "platform/backups.h"

#include <algorithm>

#include "document_fixture.h"

namespace zorvel {
namespace {

using Names = std::vector<std::string>;

class BackupsTest : public DocumentFixture {
  protected:
    std::unique_ptr<ProgramRun> run;
};

TEST_F(BackupsTest, ABackupIsMadeBeforeTheFirstChangeAfterEachOpening) {
    const QString path = makeProject("a.zorvel", {"0"});
    QString copy;
    for (int i = 1; i <= 12; ++i) {
        run = newRun();
        Document* document = run->open(path);
        ASSERT_TRUE(document);
        EXPECT_EQ(backupPaths(*document).size(), std::min(i - 1, 10));
        editName(document->project().objectContext(),
                 document->project().objectContext().censuses().front(), std::to_string(i));
        ASSERT_TRUE(isSavedSoon(document));
        addNamedCensus(*document, "later");
        document->project().objectContext().undo();
        ASSERT_TRUE(isSavedSoon(document));
        const QStringList backups = backupPaths(*document);
        ASSERT_EQ(backups.size(), std::min(i, 10));
        EXPECT_EQ(namesInFile(backups.back()).front(), std::to_string(i - 1));
        run.reset();
    }
    // A copy of the file is the same project to the backups, but takes no room from it.
    ASSERT_TRUE(QFile::copy(path, at("a copy.zorvel")));
    run = newRun();
    Document* document = run->open(at("a copy.zorvel"));
    addNamedCensus(*document, "x");
    ASSERT_TRUE(isSavedSoon(document));
    EXPECT_EQ(backupPaths(*document).size(), 11);
    EXPECT_TRUE(QFileInfo(backupPaths(*document).back()).fileName().startsWith("a copy "));
}

TEST_F(BackupsTest, AClockThatWasSetBackCostsNoBackup) {
    run = newRun();
    Document* document = run->open(makeProject("a.zorvel", {"North"}));
    addNamedCensus(*document, "South");
    ASSERT_TRUE(isSavedSoon(document));
    const QFileInfo first(backupPaths(*document).front());
    ASSERT_TRUE(QFile::remove(first.filePath()));
    for (int i = 0; i < 10; ++i) {
        makeFile(QDir(folder.path()).relativeFilePath(first.path()) +
                     QString("/a 2999-01-01 00.00.0%1.zorvel").arg(i),
                 "x");
    }
    run = newRun();
    document = run->open(at("a.zorvel"));
    addNamedCensus(*document, "West");
    ASSERT_TRUE(isSavedSoon(document));
    ASSERT_EQ(backupPaths(*document).size(), 10);
    EXPECT_EQ(namesInFile(backupPaths(*document).front()), (Names{"North", "South"}));
    EXPECT_TRUE(backupPaths(*document).back().endsWith("a 2999-01-01 00.00.09.zorvel"));
}

TEST_F(BackupsTest, WithoutABackupTheProjectIsSavedAndThePersonTold) {
    makeFile("data", "in the way of the folder");
    run = newRun();
    Document* document = run->open(makeProject("a.zorvel", {"North"}));
    QStringList told;
    QObject::connect(document, &Document::backupDidFail, document,
                     [&](const QString& message) { told.append(message); });
    for (const char* name : {"South", "West"}) {
        addNamedCensus(*document, name);
        ASSERT_TRUE(isSavedSoon(document));
    }
    EXPECT_EQ(namesInFile(at("a.zorvel")), (Names{"North", "South", "West"}));
    ASSERT_EQ(told.size(), 1);
    EXPECT_TRUE(told.front().startsWith("a could not be backed up: "))
        << told.front().toStdString();
}

}  // namespace
}  // namespace zorvel
