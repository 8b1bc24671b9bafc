// The saving of a document: in time, whole, and again after each kind of failure.
#include "platform/document.h"

#include <QElapsedTimer>

#include "document_fixture.h"
#include "store/object_context.h"
#include "without_power.h"

namespace zorvel {
namespace {

class DocumentTest : public DocumentFixture {};

TEST_F(DocumentTest, ChangesReachTheFileByThemselves) {
    Document& document = openNorth();
    EXPECT_EQ(document.displayName(), "a");
    EXPECT_EQ(document.saveState(), State::saved);
    addNamedCensus(document, "South");
    ASSERT_TRUE(becomes(document, State::waiting));
    ASSERT_TRUE(isSavedSoon(document));
    EXPECT_EQ(namesInFile(at("a.zorvel")), (Names{"North", "South"}));
    undoAll(document);
    document.saveSoon();
    ASSERT_TRUE(isSavedSoon(document));
    EXPECT_EQ(namesInFile(at("a.zorvel")), (Names{"North"}));
}

// Typing without a pause must not put off the writing, as a timer would that each change resets.
TEST_F(DocumentTest, ContinuousEditingIsSavedToo) {
    settings.autosave = milliseconds(200);
    Document& document = openNorth();
    ObjectContext& context = document.project().objectContext();
    const auto modified = QFileInfo(at("a.zorvel")).lastModified();
    QElapsedTimer timer;
    timer.start();
    int typed = 0;
    EXPECT_TRUE(waitUntil([&] {
        editName(context, context.censuses().front(), std::to_string(++typed));
        return QFileInfo(at("a.zorvel")).lastModified() != modified;
    }));
    EXPECT_LT(timer.elapsed(), 10000);
}

TEST_F(DocumentTest, WhatIsTypedReachesTheFileBeforeItIsAChange) {
    settings.typing = milliseconds(20);
    Document& document = openNorth();
    ObjectContext& context = document.project().objectContext();
    const Census census = context.censuses().front();
    std::string typed;
    document.setDrafts([&](ObjectContext& copy) {
        if (!typed.empty()) editName(copy, *copy.census(census.id()), typed);
    });
    const auto type = [&](const char* text, const char* inFile) {
        typed = text;
        document.noteTyping();
        EXPECT_TRUE(waitUntil([&] { return namesInFile(at("a.zorvel")) == Names{inFile}; }))
            << text;
        EXPECT_TRUE(isSavedSoon(document)) << text;
    };
    type("Nor", "Nor");
    type("Norwa", "Norwa");
    EXPECT_EQ(censusNames(document), Names{"North"});
    EXPECT_FALSE(context.canUndo());
    type("", "North");  // given up
    type("Norwa", "Norwa");
    typed.clear();
    editName(context, census, "Norway");
    ASSERT_TRUE(isSavedSoon(document));
    EXPECT_EQ(namesInFile(at("a.zorvel")), Names{"Norway"});
    context.undo();
    ASSERT_TRUE(isSavedSoon(document));

    // Given up just before the project closes.
    type("Norwa", "Norwa");
    typed.clear();
    document.noteTyping();
    closeAndWait(document);
    EXPECT_EQ(namesInFile(at("a.zorvel")), Names{"North"});

    // An editor that opens and closes writes nothing.
    Document& again = open(at("a.zorvel"));
    again.noteTyping();
    processEventsFor(100);
    EXPECT_EQ(again.saveState(), State::saved);
    EXPECT_EQ(backupPaths(again).size(), 1);

    // Given up while it is being written, just before the project closes.
    const RecordId north = again.project().objectContext().censuses().front().id();
    again.setDrafts([&](ObjectContext& copy) {
        if (!typed.empty()) editName(copy, *copy.census(north), typed);
    });
    disk.setHanging(true);
    typed = "Norwa";
    again.noteTyping();
    again.saveSoon();
    processEventsFor(100);
    typed.clear();
    again.noteTyping();
    run->controller.close(again);
    disk.setHanging(false);
    EXPECT_TRUE(run->controller.finish(std::chrono::seconds(20)).empty());
    EXPECT_EQ(namesInFile(at("a.zorvel")), Names{"North"});
}

TEST_F(DocumentTest, AnOpenStepIsWrittenWhenItHasEnded) {
    Document& document = openNorth();
    ObjectContext& context = document.project().objectContext();
    context.beginStep("Import");
    addNamedCensus(document, "South");
    processEventsFor(200);
    EXPECT_EQ(document.saveState(), State::waiting);
    EXPECT_EQ(namesInFile(at("a.zorvel")), (Names{"North"}));
    addNamedCensus(document, "West");
    context.endStep();
    ASSERT_TRUE(isSavedSoon(document));
    EXPECT_EQ(namesInFile(at("a.zorvel")), (Names{"North", "South", "West"}));
}

TEST_F(DocumentTest, AHangingDiskBlocksNothingAndLosesNothing) {
    Document& document = openNorth();
    disk.setHanging(true);
    addNamedCensus(document, "South");
    processEventsFor(100);
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < 50; ++i) addNamedCensus(document, "more");
    document.saveSoon();
    QCoreApplication::processEvents();
    EXPECT_LT(timer.elapsed(), 2000);
    EXPECT_EQ(document.saveState(), State::waiting);
    EXPECT_EQ(run->controller.finish(milliseconds(50)), std::vector<Document*>{&document});
    disk.setHanging(false);
    EXPECT_TRUE(run->controller.finish(std::chrono::seconds(20)).empty());
    EXPECT_EQ(namesInFile(at("a.zorvel")).size(), 52u);
}

TEST_F(DocumentTest, WhatCannotBeWrittenIsKeptAndTriedAgain) {
    Document& document = openNorth();
    for (const auto& [code, trouble] :
         {std::pair(TestDisk::full, FileTrouble::diskFull),
          std::pair(TestDisk::inputOutput, FileTrouble::inputOutput)}) {
        disk.failWrites(code);
        addNamedCensus(document, "South");
        ASSERT_TRUE(becomes(document, State::failed));
        EXPECT_EQ(document.problem()->trouble, trouble);
        const Names inFile = namesInFile(at("a.zorvel"));
        processEventsFor(300);
        EXPECT_EQ(document.saveState(), State::failed);
        EXPECT_EQ(namesInFile(at("a.zorvel")), inFile);
        disk.failWrites(0);
        ASSERT_TRUE(isSavedSoon(document));
        EXPECT_FALSE(document.problem());
        EXPECT_EQ(namesInFile(at("a.zorvel")), censusNames(document));
    }
}

// The backup could not be made either: it is made when the file can be written. Saving soon does
// not wait for the next try.
TEST_F(DocumentTest, AFileInUseForLongIsAFailureUntilItIsFree) {
    settings.firstRetry = std::chrono::hours(1);
    Document& document = openNorth();
    int told = 0;
    QObject::connect(&document, &Document::backupDidFail, &document, [&] { ++told; });
    disk.seemBusy(1000000);
    addNamedCensus(document, "South");
    ASSERT_TRUE(becomes(document, State::failed));
    EXPECT_EQ(document.problem()->trouble, FileTrouble::busy);
    disk.seemBusy(0);
    document.saveSoon();
    EXPECT_TRUE(isSavedSoon(document));
    EXPECT_EQ(told, 0);
    ASSERT_EQ(backupPaths(document).size(), 1);
    EXPECT_EQ(namesInFile(backupPaths(document).front()), (Names{"North"}));
}

TEST_F(DocumentTest, AFileInUseForAMomentIsNoFailure) {
    Document& document = openNorth();
    bool failed = false;
    QObject::connect(&document, &Document::saveStateDidChange, &document,
                     [&] { failed |= document.saveState() == State::failed; });
    disk.seemBusy(3);
    ASSERT_TRUE(addAndSave(document, "South"));
    EXPECT_FALSE(failed);
}

TEST_F(DocumentTest, AFileThatIsGoneIsStuckUntilItIsSavedElsewhere) {
    settings.firstRetry = settings.lastRetry = milliseconds(10);
    for (const bool replaced : {false, true}) {
        Document& document = openNorth();
        const QString other = replaced ? "b.zorvel" : "c.zorvel";
        QFile::rename(at("a.zorvel"), at("elsewhere.zorvel"));
        if (replaced) makeProject("a.zorvel", {"Stranger"});
        addNamedCensus(document, "South");
        ASSERT_TRUE(becomes(document, State::stuck));
        EXPECT_EQ(document.problem()->trouble, FileTrouble::moved);
        addNamedCensus(document, "West");
        processEventsFor(100);
        EXPECT_EQ(document.saveState(), State::stuck);
        EXPECT_FALSE(saveAs(document, other));
        EXPECT_EQ(document.saveState(), State::saved);
        EXPECT_EQ(document.path(), at(other));
        EXPECT_EQ(namesInFile(at(other)), (Names{"North", "South", "West"}));
        EXPECT_EQ(namesInFile(at("elsewhere.zorvel")), (Names{"North"}));
        if (replaced) {
            EXPECT_EQ(namesInFile(at("a.zorvel")), (Names{"Stranger"}));
        }
        ASSERT_TRUE(addAndSave(document, "East"));
        run.reset();
        QFile::remove(at("elsewhere.zorvel"));
    }
}

TEST_F(DocumentTest, AReadOnlyFileOpensAndIsStuckFromTheFirstEdit) {
    const QString path = makeProject("a.zorvel", {"North"});
    QDir().mkpath(at("data"));
    const WithoutPower nobody(folder.path());
    QFile::setPermissions(path, QFile::ReadOwner);
    restart();
    Document& document = open(path);
    ASSERT_TRUE(document.problem());
    EXPECT_EQ(document.problem()->trouble, FileTrouble::readOnlyFile);
    EXPECT_EQ(document.saveState(), State::saved);
    addNamedCensus(document, "South");
    processEventsFor(150);
    EXPECT_EQ(document.saveState(), State::stuck);
    EXPECT_TRUE(backupPaths(document).isEmpty());
    EXPECT_FALSE(saveAs(document, "b.zorvel"));
    EXPECT_EQ(namesInFile(at("b.zorvel")), (Names{"North", "South"}));
    EXPECT_FALSE(document.problem());
    EXPECT_EQ(namesInFile(path), (Names{"North"}));
    run.reset();
}

TEST_F(DocumentTest, SavingAsKeepsTheHistoryAndLeavesTheOldFile) {
    Document& document = openNorth();
    addNamedCensus(document, "South");
    EXPECT_FALSE(saveAs(document, "b.zorvel"));
    EXPECT_EQ(document.displayName(), "b");
    EXPECT_EQ(namesInFile(at("b.zorvel")), (Names{"North", "South"}));
    undoAll(document);
    ASSERT_TRUE(isSavedSoon(document));
    EXPECT_EQ(namesInFile(at("b.zorvel")), (Names{"North"}));
    EXPECT_TRUE(backupPaths(document).isEmpty());
    EXPECT_EQ(namesInFile(at("a.zorvel")).front(), "North");
}

TEST_F(DocumentTest, TheLastOfSeveralSavingsAsWins) {
    Document& document = openNorth();
    disk.setHanging(true);
    addNamedCensus(document, "South");
    document.saveSoon();
    int answers = 0;
    for (const char* name : {"b.zorvel", "c.zorvel", "d.zorvel"}) {
        document.saveAs(at(name), [&](const auto& problem) { answers += problem ? 100 : 1; });
    }
    addNamedCensus(document, "West");
    disk.setHanging(false);
    ASSERT_TRUE(waitUntil([&] { return answers >= 3 && isSaved(&document); }));
    EXPECT_EQ(answers, 3);
    EXPECT_EQ(document.path(), at("d.zorvel"));
    EXPECT_EQ(namesInFile(at("d.zorvel")), (Names{"North", "South", "West"}));
    EXPECT_EQ(namesInFile(at("c.zorvel")), (Names{"North", "South"}));
}

TEST_F(DocumentTest, SavingAsWhereTheProjectLivesAlready) {
    Document& document = openNorth();
    const auto before = fileIdentity(encodedPath(at("a.zorvel")));
    addNamedCensus(document, "South");
    EXPECT_FALSE(saveAs(document, "a.zorvel"));
    EXPECT_EQ(namesInFile(at("a.zorvel")), (Names{"North", "South"}));
    EXPECT_EQ(fileIdentity(encodedPath(at("a.zorvel"))), before);
    // Under the name that its file was given meanwhile.
    ASSERT_TRUE(QFile::rename(at("a.zorvel"), at("b.zorvel")));
    EXPECT_FALSE(saveAs(document, "b.zorvel"));
    EXPECT_EQ(document.path(), at("b.zorvel"));
    ASSERT_TRUE(addAndSave(document, "West"));
    EXPECT_EQ(namesInFile(at("b.zorvel")), (Names{"North", "South", "West"}));
}

TEST_F(DocumentTest, SavingOverAnotherOpenProjectIsRefused) {
    Document& first = openNorth();
    Document& second = open(makeProject("b.zorvel", {"South"}));
    ASSERT_TRUE(QFile::link(at("b.zorvel"), at("link.zorvel")));
    for (const char* name : {"b.zorvel", "link.zorvel"}) {
        const auto problem = saveAs(first, name);
        EXPECT_EQ(problem ? problem->detail : "", "it is open in another window") << name;
    }
    EXPECT_EQ(first.path(), at("a.zorvel"));
    EXPECT_EQ(namesInFile(at("b.zorvel")), (Names{"South"}));
    closeAndWait(second);
    EXPECT_FALSE(saveAs(first, "b.zorvel"));
    EXPECT_EQ(namesInFile(at("b.zorvel")), (Names{"North"}));
}

TEST_F(DocumentTest, AFailedSavingAsLeavesAllAsItWas) {
    restart();
    Document& document = run->controller.newDocument();
    ASSERT_TRUE(addAndSave(document, "North"));
    const QStringList files = untitledFiles();
    EXPECT_EQ(files.size(), 1);
    EXPECT_TRUE(saveAs(document, "no/such/folder/a.zorvel"));
    EXPECT_TRUE(document.isUntitled());
    EXPECT_EQ(untitledFiles(), files);
    ASSERT_TRUE(addAndSave(document, "South"));
    EXPECT_EQ(namesInUntitledFile(), (Names{"North", "South"}));
    EXPECT_FALSE(saveAs(document, "a.zorvel"));
    EXPECT_TRUE(untitledFiles().isEmpty());
    EXPECT_EQ(namesInFile(at("a.zorvel")), (Names{"North", "South"}));
}

// A file that another program put in the place of the untitled one is not deleted with it.
TEST_F(DocumentTest, OnlyItsOwnUntitledFileIsDeleted) {
    restart();
    Document& document = run->controller.newDocument();
    ASSERT_TRUE(addAndSave(document, "North"));
    const QString untitled = "data/untitled/" + untitledFiles().value(0);
    ASSERT_TRUE(QFile::rename(at(untitled), at("taken.zorvel")));
    makeProject(untitled, {"Stranger"});
    EXPECT_FALSE(saveAs(document, "a.zorvel"));
    EXPECT_EQ(namesInFile(at(untitled)), (Names{"Stranger"}));
}

TEST_F(DocumentTest, RevertingIsAStepOfUndo) {
    restart();
    Document& document = open(makeProject("a.zorvel", {"North", "South"}));
    ObjectContext& context = document.project().objectContext();
    EXPECT_FALSE(document.canRevert());
    deleteCensuses(context, {context.censuses().front()});
    addNamedCensus(document, "West");
    EXPECT_TRUE(document.canRevert());
    document.revertToOpening();
    EXPECT_EQ(censusNames(document), (Names{"North", "South"}));
    EXPECT_FALSE(document.canRevert());
    EXPECT_EQ(context.undoName(), "Revert");
    context.undo();
    EXPECT_EQ(censusNames(document), (Names{"South", "West"}));
    document.revertToOpening();
    ASSERT_TRUE(isSavedSoon(document));
    EXPECT_EQ(namesInFile(at("a.zorvel")), (Names{"North", "South"}));
}

// The reason names the folder, not a file that the user has not asked for.
TEST_F(DocumentTest, AnUntitledProjectWithoutAFolderIsKeptInMemory) {
    makeFile("data", "in the way of the folder");
    restart();
    Document& document = run->controller.newDocument();
    addNamedCensus(document, "North");
    ASSERT_TRUE(becomes(document, State::stuck));
    EXPECT_EQ(document.problem()->trouble, FileTrouble::readOnlyFolder);
    ASSERT_TRUE(QFile::remove(at("data")));
    ASSERT_TRUE(addAndSave(document, "South"));
    EXPECT_EQ(namesInUntitledFile(), (Names{"North", "South"}));
}

TEST_F(DocumentTest, AChangeDuringTheWriteThatSucceedsAgainDoesNotWaitForARetry) {
    settings.firstRetry = std::chrono::hours(1);
    makeFile("data", "in the way of the folder");
    restart();
    Document& document = run->controller.newDocument();
    addNamedCensus(document, "North");
    ASSERT_TRUE(becomes(document, State::stuck));
    ASSERT_TRUE(QFile::remove(at("data")));
    document.saveSoon();
    addNamedCensus(document, "South");
    ASSERT_TRUE(isSavedSoon(document));
    EXPECT_EQ(namesInUntitledFile(), (Names{"North", "South"}));
}

TEST_F(DocumentTest, ABackupIsMadeBeforeTheFirstChangeAfterEachOpening) {
    const QString path = makeProject("a.zorvel", {"0"});
    for (int i = 1; i <= 12; ++i) {
        restart();
        Document& document = open(path);
        EXPECT_EQ(backupPaths(document).size(), std::min(i - 1, 10));
        ObjectContext& context = document.project().objectContext();
        editName(context, context.censuses().front(), std::to_string(i));
        ASSERT_TRUE(isSavedSoon(document));
        addNamedCensus(document, "later");
        context.undo();
        ASSERT_TRUE(isSavedSoon(document));
        ASSERT_EQ(backupPaths(document).size(), std::min(i, 10));
        EXPECT_EQ(namesInFile(backupPaths(document).back()).front(), std::to_string(i - 1));
    }
    // A copy of the file shares the folder but takes no room from it. Its name is too long for a
    // file with a time behind it.
    const QString copy(240, 'n');
    ASSERT_TRUE(QFile::copy(path, at(copy + ".zorvel")));
    restart();
    Document& document = open(at(copy + ".zorvel"));
    ASSERT_TRUE(addAndSave(document, "x"));
    EXPECT_EQ(backupPaths(document).size(), 11);
    EXPECT_TRUE(QFileInfo(backupPaths(document).back()).fileName().startsWith("nnn"));
}

TEST_F(DocumentTest, AClockThatWasSetBackCostsNoBackup) {
    Document& document = openNorth();
    ASSERT_TRUE(addAndSave(document, "South"));
    const QFileInfo first(backupPaths(document).front());
    ASSERT_TRUE(QFile::remove(first.filePath()));
    for (int i = 0; i < 10; ++i) {
        makeFile(QDir(folder.path()).relativeFilePath(first.path()) +
                     QString("/a 2999-01-01 00.00.0%1.zorvel").arg(i),
                 "x");
    }
    restart();
    Document& again = open(at("a.zorvel"));
    ASSERT_TRUE(addAndSave(again, "West"));
    ASSERT_EQ(backupPaths(again).size(), 10);
    EXPECT_EQ(namesInFile(backupPaths(again).front()), (Names{"North", "South"}));
    EXPECT_TRUE(backupPaths(again).back().endsWith("a 2999-01-01 00.00.09.zorvel"));
}

TEST_F(DocumentTest, WithoutABackupTheProjectIsSavedAndTheUserTold) {
    makeFile("data", "in the way of the folder");
    Document& document = openNorth();
    QStringList told;
    QObject::connect(&document, &Document::backupDidFail, &document,
                     [&](const QString& message) { told.append(message); });
    for (const char* name : {"South", "West"}) ASSERT_TRUE(addAndSave(document, name));
    EXPECT_EQ(namesInFile(at("a.zorvel")), (Names{"North", "South", "West"}));
    ASSERT_EQ(told.size(), 1);
    EXPECT_TRUE(told.front().startsWith("a could not be backed up: ")) << qPrintable(told.front());
}

}  // namespace
}  // namespace zorvel
