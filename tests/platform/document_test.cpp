#include "platform/document.h"

#include <QElapsedTimer>

#include "document_fixture.h"
#include "store/undo_step.h"
#include "test_disk.h"
#include "without_power.h"

namespace zorvel {
namespace {

using Names = std::vector<std::string>;
using State = Document::SaveState;

class DocumentTest : public DocumentFixture {
  protected:
    // A controller on the disk that fails on demand, and one of its documents.
    Document& openOnTestDisk(const QString& path) {
        settings.vfs = disk.name();
        run = newRun();
        Document* document = run->open(path);
        if (!document) throw std::runtime_error("not opened");
        return *document;
    }
    std::optional<FileProblem> saveAs(Document& document, const QString& path) {
        bool answered = false;
        std::optional<FileProblem> answer;
        document.saveAs(path, [&](const std::optional<FileProblem>& problem) {
            answered = true;
            answer = problem;
        });
        EXPECT_TRUE(waitUntil([&] { return answered; }));
        return answer;
    }

    TestDisk disk;
    std::unique_ptr<ProgramRun> run;
};

TEST_F(DocumentTest, ChangesReachTheFileByThemselves) {
    run = newRun();
    Document* document = run->open(makeProject("a.zorvel", {"North"}));
    ASSERT_TRUE(document);
    EXPECT_EQ(document->displayName(), "a");
    EXPECT_EQ(document->saveState(), State::saved);

    addNamedCensus(*document, "South");
    ASSERT_TRUE(waitUntil([&] { return document->saveState() == State::waiting; }));
    ASSERT_TRUE(isSavedSoon(document));
    EXPECT_EQ(namesInFile(at("a.zorvel")), (Names{"North", "South"}));

    ObjectContext& context = document->project().objectContext();
    while (context.canUndo()) context.undo();
    document->saveSoon();
    ASSERT_TRUE(isSavedSoon(document));
    EXPECT_EQ(namesInFile(at("a.zorvel")), (Names{"North"}));
}

// Typing without a pause must not put off the writing, as a timer would that each change resets.
TEST_F(DocumentTest, OneWhoNeverStopsTypingIsSavedAllTheSame) {
    settings.autosave = std::chrono::milliseconds(200);
    run = newRun();
    Document* document = run->open(makeProject("a.zorvel", {"North"}));
    const Census census = document->project().objectContext().censuses().front();
    const auto modified = QFileInfo(at("a.zorvel")).lastModified();
    QElapsedTimer timer;
    timer.start();
    int typed = 0;
    const bool written = waitUntil([&] {
        editName(document->project().objectContext(), census, std::to_string(++typed));
        return QFileInfo(at("a.zorvel")).lastModified() != modified;
    });
    EXPECT_TRUE(written);
    EXPECT_LT(timer.elapsed(), 10000);
}

TEST_F(DocumentTest, WhatIsTypedReachesTheFileBeforeItIsAChange) {
    settings.typing = std::chrono::milliseconds(20);
    run = newRun();
    Document* document = run->open(makeProject("a.zorvel", {"North"}));
    ASSERT_TRUE(document);
    ObjectContext& context = document->project().objectContext();
    const Census census = context.censuses().front();
    std::string typed;
    document->setDrafts([&](ObjectContext& copy) {
        if (!typed.empty()) editName(copy, *copy.census(census.id()), typed);
    });
    const auto type = [&](const char* text, const char* inFile) {
        typed = text;
        document->noteTyping();
        EXPECT_TRUE(waitUntil([&] { return namesInFile(at("a.zorvel")) == Names{inFile}; }))
            << text;
        EXPECT_TRUE(isSavedSoon(document)) << text;
    };
    type("Nor", "Nor");
    type("Norwa", "Norwa");
    EXPECT_EQ(censusNames(*document), Names{"North"});
    EXPECT_FALSE(context.canUndo());
    type("", "North");  // given up
    type("Norwa", "Norwa");
    typed.clear();
    editName(context, census, "Norway");
    ASSERT_TRUE(isSavedSoon(document));
    EXPECT_EQ(namesInFile(at("a.zorvel")), Names{"Norway"});
    context.undo();
    ASSERT_TRUE(isSavedSoon(document));
    EXPECT_FALSE(context.canUndo());

    // Given up just before the project closes.
    type("Norwa", "Norwa");
    typed.clear();
    document->noteTyping();
    run->controller.close(*document);
    EXPECT_TRUE(waitUntil([&] { return namesInFile(at("a.zorvel")) == Names{"North"}; }));

    // An editor that opens and closes writes nothing.
    document = run->open(at("a.zorvel"));
    ASSERT_TRUE(document);
    document->noteTyping();
    processEventsFor(100);
    EXPECT_EQ(document->saveState(), State::saved);
    EXPECT_EQ(backupPaths(*document).size(), 1);
}

TEST_F(DocumentTest, AnOpenStepIsWrittenWhenItHasEnded) {
    Document& document = openOnTestDisk(makeProject("a.zorvel", {"North"}));
    ObjectContext& context = document.project().objectContext();
    context.beginStep("Import");
    addNamedCensus(document, "South");
    processEventsFor(200);
    EXPECT_EQ(document.saveState(), State::waiting);
    EXPECT_EQ(namesInFile(at("a.zorvel")), (Names{"North"}));
    addNamedCensus(document, "West");
    context.endStep();
    ASSERT_TRUE(isSavedSoon(&document));
    EXPECT_EQ(namesInFile(at("a.zorvel")), (Names{"North", "South", "West"}));
}

TEST_F(DocumentTest, AHangingDiskHoldsUpNoOneAndLosesNothing) {
    Document& document = openOnTestDisk(makeProject("a.zorvel", {"North"}));
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
    EXPECT_EQ(run->controller.finish(std::chrono::milliseconds(50)),
              std::vector<Document*>{&document});
    disk.setHanging(false);
    EXPECT_TRUE(run->controller.finish(std::chrono::seconds(20)).empty());
    EXPECT_EQ(namesInFile(at("a.zorvel")).size(), 52u);
}

struct Fault {
    int code;
    FileTrouble trouble;
};

TEST_F(DocumentTest, WhatCannotBeWrittenIsKeptAndTriedAgain) {
    Document& document = openOnTestDisk(makeProject("a.zorvel", {"North"}));
    for (const Fault fault : {Fault{TestDisk::full, FileTrouble::diskFull},
                              Fault{TestDisk::inputOutput, FileTrouble::inputOutput}}) {
        disk.failWrites(fault.code);
        addNamedCensus(document, "South");
        ASSERT_TRUE(waitUntil([&] { return document.saveState() == State::failed; }));
        EXPECT_EQ(document.problem()->trouble, fault.trouble);
        const Names inFile = namesInFile(at("a.zorvel"));
        processEventsFor(300);
        EXPECT_EQ(document.saveState(), State::failed);
        EXPECT_EQ(namesInFile(at("a.zorvel")), inFile);
        disk.failWrites(0);
        ASSERT_TRUE(isSavedSoon(&document));
        EXPECT_FALSE(document.problem());
        EXPECT_EQ(namesInFile(at("a.zorvel")), censusNames(document));
    }
}

TEST_F(DocumentTest, SavingSoonDoesNotWaitForTheNextTry) {
    settings.firstRetry = std::chrono::hours(1);
    Document& document = openOnTestDisk(makeProject("a.zorvel", {"North"}));
    disk.failWrites(TestDisk::full);
    addNamedCensus(document, "South");
    ASSERT_TRUE(waitUntil([&] { return document.saveState() == State::failed; }));
    disk.failWrites(0);
    document.saveSoon();
    EXPECT_TRUE(isSavedSoon(&document));
}

TEST_F(DocumentTest, AFileInUseForAMomentIsNoFailure) {
    Document& document = openOnTestDisk(makeProject("a.zorvel", {"North"}));
    bool failed = false;
    QObject::connect(&document, &Document::saveStateDidChange, &document,
                     [&] { failed |= document.saveState() == State::failed; });
    disk.seemBusy(3);
    addNamedCensus(document, "South");
    ASSERT_TRUE(isSavedSoon(&document));
    EXPECT_FALSE(failed);
}

// The backup could not be made either: it is made when the file can be written.
TEST_F(DocumentTest, AFileInUseForLongIsAFailureUntilItIsFree) {
    Document& document = openOnTestDisk(makeProject("a.zorvel", {"North"}));
    int told = 0;
    QObject::connect(&document, &Document::backupDidFail, &document, [&] { ++told; });
    disk.seemBusy(1000000);
    addNamedCensus(document, "South");
    ASSERT_TRUE(waitUntil([&] { return document.saveState() == State::failed; }));
    EXPECT_EQ(document.problem()->trouble, FileTrouble::busy);
    disk.seemBusy(0);
    EXPECT_TRUE(isSavedSoon(&document));
    EXPECT_EQ(told, 0);
    ASSERT_EQ(backupPaths(document).size(), 1);
    EXPECT_EQ(namesInFile(backupPaths(document).front()), (Names{"North"}));
}

TEST_F(DocumentTest, AFileThatIsGoneIsStuckUntilItIsSavedElsewhere) {
    settings.firstRetry = settings.lastRetry = std::chrono::milliseconds(10);
    for (const bool replaced : {false, true}) {
        const QString path = makeProject("a.zorvel", {"North"});
        const QString other = at(replaced ? "b.zorvel" : "c.zorvel");
        run = newRun();
        Document* document = run->open(path);
        ASSERT_TRUE(document);
        QFile::rename(path, at("elsewhere.zorvel"));
        if (replaced) makeProject("a.zorvel", {"Stranger"});
        addNamedCensus(*document, "South");
        ASSERT_TRUE(waitUntil([&] { return document->saveState() == State::stuck; }));
        EXPECT_EQ(document->problem()->trouble, FileTrouble::moved);
        addNamedCensus(*document, "West");
        processEventsFor(100);
        EXPECT_EQ(document->saveState(), State::stuck);
        EXPECT_FALSE(saveAs(*document, other));
        EXPECT_EQ(document->saveState(), State::saved);
        EXPECT_EQ(document->path(), other);
        EXPECT_EQ(namesInFile(other), (Names{"North", "South", "West"}));
        EXPECT_EQ(namesInFile(at("elsewhere.zorvel")), (Names{"North"}));
        if (replaced) {
            EXPECT_EQ(namesInFile(path), (Names{"Stranger"}));
        }
        addNamedCensus(*document, "East");
        ASSERT_TRUE(isSavedSoon(document));
        run.reset();
        QFile::remove(at("elsewhere.zorvel"));
    }
}

TEST_F(DocumentTest, AReadOnlyFileOpensAndIsStuckFromTheFirstEdit) {
    const QString path = makeProject("a.zorvel", {"North"});
    QDir().mkpath(at("data"));
    const WithoutPower nobody(folder.path());
    QFile::setPermissions(path, QFile::ReadOwner);
    run = newRun();
    Document* document = run->open(path);
    ASSERT_TRUE(document);
    ASSERT_TRUE(document->problem());
    EXPECT_EQ(document->problem()->trouble, FileTrouble::readOnlyFile);
    EXPECT_EQ(document->saveState(), State::saved);
    addNamedCensus(*document, "South");
    QCoreApplication::processEvents();
    EXPECT_EQ(document->saveState(), State::stuck);
    processEventsFor(150);
    EXPECT_EQ(document->saveState(), State::stuck);
    EXPECT_TRUE(backupPaths(*document).isEmpty());
    EXPECT_FALSE(saveAs(*document, at("b.zorvel")));
    EXPECT_EQ(namesInFile(at("b.zorvel")), (Names{"North", "South"}));
    EXPECT_FALSE(document->problem());
    EXPECT_EQ(namesInFile(path), (Names{"North"}));
    run.reset();
}

TEST_F(DocumentTest, SavingAsKeepsTheHistoryAndLeavesTheOldFile) {
    run = newRun();
    Document* document = run->open(makeProject("a.zorvel", {"North"}));
    addNamedCensus(*document, "South");
    EXPECT_FALSE(saveAs(*document, at("b.zorvel")));
    EXPECT_EQ(document->displayName(), "b");
    EXPECT_EQ(namesInFile(at("b.zorvel")), (Names{"North", "South"}));
    ObjectContext& context = document->project().objectContext();
    while (context.canUndo()) context.undo();
    ASSERT_TRUE(isSavedSoon(document));
    EXPECT_EQ(namesInFile(at("b.zorvel")), (Names{"North"}));
    EXPECT_TRUE(backupPaths(*document).isEmpty());
    const Names old = namesInFile(at("a.zorvel"));
    EXPECT_TRUE(old == (Names{"North"}) || old == (Names{"North", "South"}));
}

TEST_F(DocumentTest, TheLastOfSeveralSavingsAsWins) {
    Document& document = openOnTestDisk(makeProject("a.zorvel", {"North"}));
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

TEST_F(DocumentTest, SavingAsWhereItIsAlready) {
    run = newRun();
    Document* document = run->open(makeProject("a.zorvel", {"North"}));
    const auto before = fileIdentity(at("a.zorvel").toStdString());
    EXPECT_FALSE(saveAs(*document, at("a.zorvel")));
    addNamedCensus(*document, "South");
    EXPECT_FALSE(saveAs(*document, at("a.zorvel")));
    EXPECT_EQ(namesInFile(at("a.zorvel")), (Names{"North", "South"}));
    EXPECT_EQ(fileIdentity(at("a.zorvel").toStdString()), before);
}

TEST_F(DocumentTest, SavingWhereItsFileWasRenamedToGoesOnThere) {
    run = newRun();
    Document* document = run->open(makeProject("a.zorvel", {"North"}));
    ASSERT_TRUE(QFile::rename(at("a.zorvel"), at("b.zorvel")));
    EXPECT_FALSE(saveAs(*document, at("b.zorvel")));
    EXPECT_EQ(document->path(), at("b.zorvel"));
    addNamedCensus(*document, "South");
    ASSERT_TRUE(isSavedSoon(document));
    EXPECT_EQ(namesInFile(at("b.zorvel")), (Names{"North", "South"}));
}

TEST_F(DocumentTest, SavingOverAnotherOpenProjectIsRefused) {
    run = newRun();
    Document* first = run->open(makeProject("a.zorvel", {"North"}));
    Document* second = run->open(makeProject("b.zorvel", {"South"}));
    ASSERT_TRUE(QFile::link(at("b.zorvel"), at("link.zorvel")));
    EXPECT_TRUE(saveAs(*first, at("b.zorvel")));
    EXPECT_TRUE(saveAs(*first, at("link.zorvel")));
    EXPECT_EQ(first->path(), at("a.zorvel"));
    EXPECT_EQ(namesInFile(at("b.zorvel")), (Names{"South"}));
    run->controller.close(*second);
    ASSERT_TRUE(run->controller.finish(std::chrono::seconds(20)).empty());
    EXPECT_FALSE(saveAs(*first, at("b.zorvel")));
    EXPECT_EQ(namesInFile(at("b.zorvel")), (Names{"North"}));
}

TEST_F(DocumentTest, AFailedSavingAsLeavesAllAsItWas) {
    run = newRun();
    Document& document = run->controller.newDocument();
    addNamedCensus(document, "North");
    ASSERT_TRUE(isSavedSoon(&document));
    const QStringList files = untitledFiles();
    EXPECT_EQ(files.size(), 1);
    EXPECT_TRUE(saveAs(document, at("no/such/folder/a.zorvel")));
    EXPECT_TRUE(document.isUntitled());
    EXPECT_EQ(untitledFiles(), files);
    addNamedCensus(document, "South");
    ASSERT_TRUE(isSavedSoon(&document));
    EXPECT_EQ(namesInFile(folders().untitled + "/" + files.front()), (Names{"North", "South"}));
    EXPECT_FALSE(saveAs(document, at("a.zorvel")));
    EXPECT_TRUE(untitledFiles().isEmpty());
    EXPECT_EQ(namesInFile(at("a.zorvel")), (Names{"North", "South"}));
}

TEST_F(DocumentTest, RevertingIsAStepOfUndo) {
    run = newRun();
    Document* document = run->open(makeProject("a.zorvel", {"North", "South"}));
    ObjectContext& context = document->project().objectContext();
    EXPECT_FALSE(document->canRevert());
    deleteCensuses(context, {context.censuses().front()});
    addNamedCensus(*document, "West");
    EXPECT_TRUE(document->canRevert());
    document->revertToOpening();
    EXPECT_EQ(censusNames(*document), (Names{"North", "South"}));
    EXPECT_FALSE(document->canRevert());
    EXPECT_EQ(context.undoName(), "Revert");
    context.undo();
    EXPECT_EQ(censusNames(*document), (Names{"South", "West"}));
    document->revertToOpening();
    ASSERT_TRUE(isSavedSoon(document));
    EXPECT_EQ(namesInFile(at("a.zorvel")), (Names{"North", "South"}));
}

// The latest backup stays, though by their times all others are younger.
// The reason names the folder, not a file that nobody has asked for.
TEST_F(DocumentTest, AnUntitledProjectWithoutAFolderIsKeptInMemory) {
    makeFile("data", "in the way of the folder");
    run = newRun();
    Document& document = run->controller.newDocument();
    addNamedCensus(document, "North");
    ASSERT_TRUE(waitUntil([&] { return document.saveState() == State::stuck; }));
    EXPECT_EQ(document.problem()->trouble, FileTrouble::readOnlyFolder);
    ASSERT_TRUE(QFile::remove(at("data")));
    addNamedCensus(document, "South");
    ASSERT_TRUE(isSavedSoon(&document));
    ASSERT_EQ(untitledFiles().size(), 1);
    EXPECT_EQ(namesInFile(folders().untitled + "/" + untitledFiles().front()),
              (Names{"North", "South"}));
}

}  // namespace
}  // namespace zorvel
