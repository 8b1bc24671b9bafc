#include "platform/document_controller.h"

#include <sys/stat.h>

#include <QDateTime>
#include <algorithm>

#include "document_fixture.h"
#include "platform/event_loop_turns.h"
#include "test_disk.h"

namespace zorvel {
namespace {

using Names = std::vector<std::string>;
using State = Document::SaveState;

class DocumentControllerTest : public DocumentFixture {
  protected:
    // The projects that a run finds left in the folder.
    std::vector<Document*> recovered(ProgramRun& run, std::size_t expected) {
        run.controller.recover();
        waitUntil([&] { return run.told.opened.size() >= expected; });
        processEventsFor(60);
        std::vector<Document*> documents;
        for (const auto& opened : run.told.opened) {
            EXPECT_EQ(opened.path, "");
            documents.push_back(opened.document);
        }
        return documents;
    }
};

TEST_F(DocumentControllerTest, TheEndOfATurnComesOnceAndNotAfterItsTarget) {
    Names calls;
    {
        EventLoopTurns turns;
        turns.atTurnEnd([&] {
            calls.emplace_back("first");
            turns.atTurnEnd([&] { calls.emplace_back("third"); });
        });
        turns.atTurnEnd([&] { calls.emplace_back("second"); });
        EXPECT_TRUE(calls.empty());
        ASSERT_TRUE(waitUntil([&] { return calls.size() == 3; }));
        turns.atTurnEnd([&] { calls.emplace_back("too late"); });
    }
    processEventsFor(20);
    EXPECT_EQ(calls, (Names{"first", "second", "third"}));
}

TEST_F(DocumentControllerTest, AnUntouchedProjectLeavesNoFile) {
    auto run = newRun();
    Document& first = run->controller.newDocument();
    Document& second = run->controller.newDocument();
    EXPECT_EQ(first.displayName(), "Untitled");
    EXPECT_EQ(second.displayName(), "Untitled 2");
    EXPECT_TRUE(first.isUntouched());
    EXPECT_TRUE(first.path().isEmpty());
    addNamedCensus(second, "North");
    EXPECT_FALSE(second.isUntouched());
    // Every edit undone, whether it had been written or not.
    for (const bool written : {true, false}) {
        Document& undone = run->controller.newDocument();
        addNamedCensus(undone, "taken back");
        ASSERT_TRUE(!written || isSavedSoon(&undone));
        ObjectContext& context = undone.project().objectContext();
        while (context.canUndo()) context.undo();
        EXPECT_TRUE(undone.isUntouched());
        run->controller.close(undone);
    }
    run->controller.close(first);
    ASSERT_TRUE(run->controller.finish(std::chrono::seconds(20)).empty());
    EXPECT_EQ(untitledFiles().size(), 1);
    EXPECT_EQ(run->controller.documents(), std::vector<Document*>{&second});
    EXPECT_EQ(run->controller.newDocument().displayName(), "Untitled");
}

TEST_F(DocumentControllerTest, UntitledProjectsComeBackOnceUntilTheyAreSavedOrDiscarded) {
    auto run = newRun();
    addNamedCensus(run->controller.newDocument(), "closed");
    addNamedCensus(run->controller.newDocument(), "left open");
    addNamedCensus(run->controller.newDocument(), "discarded");
    const auto documents = run->controller.documents();
    run->controller.close(*documents[0]);
    run->controller.discard(*documents[2]);
    run.reset();
    EXPECT_EQ(untitledFiles().size(), 2);

    run = newRun();
    Document& untouched = run->controller.newDocument();
    const auto back = recovered(*run, 2);
    run->controller.close(untouched);
    ASSERT_EQ(back.size(), 2u);
    EXPECT_EQ(back[0]->displayName(), "Untitled");
    EXPECT_EQ(back[1]->displayName(), "Untitled 2");
    for (const Document* document : back) {
        EXPECT_TRUE(document->isUntitled());
        EXPECT_FALSE(document->isUntouched());
        EXPECT_EQ(document->saveState(), State::saved);
    }
    run->controller.recover();
    auto other = newRun();
    EXPECT_TRUE(recovered(*other, 0).empty());
    EXPECT_TRUE(other->told.failed.empty());
    EXPECT_EQ(run->told.opened.size(), 2u);

    bool saved = false;
    back[0]->saveAs(at("kept.zorvel"), [&](const auto& problem) { saved = !problem; });
    ASSERT_TRUE(waitUntil([&] { return saved; }));
    run->controller.discard(*back[1]);
    run.reset();
    EXPECT_TRUE(untitledFiles().isEmpty());
    EXPECT_EQ(namesInFile(at("kept.zorvel")).size(), 1u);
}

TEST_F(DocumentControllerTest, ADamagedUntitledProjectIsToldOfOnceAndLeftAsItIs) {
    QDir().mkpath(folders().untitled);
    const QString name = "0f0e0d0c-1111-2222-3333-444455556666 mites.zorvel";
    const QByteArray bytes = "SQLite format 3" + QByteArray(2000, '\0');
    makeFile("data/untitled/" + name, bytes);
    makeFile("data/untitled/notes.txt", "not ours");
    for (const std::size_t expected : {1u, 0u}) {
        auto run = newRun();
        EXPECT_TRUE(recovered(*run, 0).empty());
        if (expected == 1) waitUntil([&] { return !run->told.failed.empty(); });
        EXPECT_EQ(run->told.failed.size(), expected);
    }
    QFile file(folders().untitled + "/" + name);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), bytes);
}

TEST_F(DocumentControllerTest, ATextFileIsAnUntitledProjectThatKeepsItsName) {
    const QString path = makeFile("mites.csv", "Abies alba,12\nAbies nigra,3\n");
    auto run = newRun();
    Document* document = run->open(path);
    ASSERT_TRUE(document) << run->told.failed.front().message.toStdString();
    EXPECT_EQ(run->told.opened.back().path, path);
    EXPECT_EQ(document->displayName(), "mites");
    EXPECT_TRUE(document->isUntouched());
    EXPECT_FALSE(document->project().objectContext().canUndo());
    const std::size_t censuses = censusNames(*document).size();
    EXPECT_GE(censuses, 1u);
    run.reset();
    EXPECT_TRUE(untitledFiles().isEmpty());

    run = newRun();
    document = run->open(path);
    addNamedCensus(*document, "South");
    run.reset();
    run = newRun();
    const auto back = recovered(*run, 1);
    ASSERT_EQ(back.size(), 1u);
    EXPECT_EQ(back[0]->displayName(), "mites");
    EXPECT_EQ(censusNames(*back[0]).size(), censuses + 1);
}

TEST_F(DocumentControllerTest, TellsWhyAFileCannotBeOpened) {
    makeFile("empty.zorvel", "");
    makeFile("text.zorvel", "North\n");
    makeFile("bad.csv", QByteArray("a,b\n\xff\xfe\x00", 7));
    makeFile("database", "SQLite format 3" + QByteArray(1, '\0') + QByteArray(3000, 'x'));
    QDir().mkpath(at("folder.zorvel"));
    ASSERT_EQ(::mkfifo(at("fifo.zorvel").toStdString().c_str(), 0600), 0);
    auto run = newRun();
    for (const char* name : {"none.zorvel", "empty.zorvel", "text.zorvel", "folder.zorvel",
                             "fifo.zorvel", "database", "bad.csv", "none.csv"}) {
        const std::size_t before = run->told.failed.size();
        EXPECT_FALSE(run->open(at(name))) << name;
        ASSERT_EQ(run->told.failed.size(), before + 1) << name;
        EXPECT_EQ(run->told.failed.back().path, at(name));
        EXPECT_TRUE(run->told.failed.back().message.startsWith(name))
            << run->told.failed.back().message.toStdString();
    }
    EXPECT_TRUE(run->controller.documents().empty());
    EXPECT_TRUE(run->controller.recentPaths().isEmpty());
}

TEST_F(DocumentControllerTest, AProjectIsNeverOpenTwice) {
    const QString path = makeProject("a.zorvel", {"North"});
    ASSERT_TRUE(QFile::link(path, at("symbolic.zorvel")));
    ASSERT_EQ(::link(path.toStdString().c_str(), at("hard.zorvel").toStdString().c_str()), 0);
    auto run = newRun();
    for (const char* name : {"a.zorvel", "symbolic.zorvel", "hard.zorvel", "./a.zorvel"}) {
        run->controller.open(at(name));
    }
    ASSERT_TRUE(waitUntil([&] { return run->told.opened.size() == 4; }));
    run->controller.open(path);
    ASSERT_TRUE(waitUntil([&] { return run->told.opened.size() == 5; }));
    EXPECT_EQ(run->controller.documents().size(), 1u);
    for (const auto& opened : run->told.opened) {
        EXPECT_EQ(opened.document, run->controller.documents().front());
    }

    auto other = newRun();
    EXPECT_FALSE(other->open(path));
    ASSERT_EQ(other->told.failed.size(), 1u);
    EXPECT_TRUE(other->told.failed.front().message.contains("another running Zorvel"));
}

TEST_F(DocumentControllerTest, AProjectMayBeReopenedRightAfterItWasClosed) {
    TestDisk disk;
    settings.vfs = disk.name();
    const QString path = makeProject("a.zorvel", {"North"});
    auto run = newRun();
    Document* document = run->open(path);
    disk.setHanging(true);
    addNamedCensus(*document, "South");
    run->controller.close(*document);
    EXPECT_TRUE(run->controller.documents().empty());
    run->controller.open(path);
    processEventsFor(50);
    EXPECT_EQ(run->told.opened.size(), 1u);
    disk.setHanging(false);
    ASSERT_TRUE(waitUntil([&] { return run->told.opened.size() == 2; }));
    ASSERT_EQ(run->controller.documents().size(), 1u);
    EXPECT_EQ(censusNames(*run->controller.documents().front()), (Names{"North", "South"}));
    EXPECT_TRUE(run->told.failed.empty());
    run.reset();
}

TEST_F(DocumentControllerTest, AClosedProjectThatWaitsForItsDiskComesBackAsItWas) {
    TestDisk disk;
    settings.vfs = disk.name();
    const QString path = makeProject("a.zorvel", {"North"});
    auto run = newRun();
    Document* document = run->open(path);
    disk.failWrites(TestDisk::full);
    addNamedCensus(*document, "South");
    run->controller.close(*document);
    processEventsFor(100);
    EXPECT_EQ(run->controller.finish(std::chrono::milliseconds(100)).size(), 1u);
    EXPECT_EQ(run->open(path), document);
    EXPECT_EQ(document->saveState(), State::failed);
    disk.failWrites(0);
    ASSERT_TRUE(isSavedSoon(document));
    EXPECT_EQ(namesInFile(path), (Names{"North", "South"}));
    run.reset();
}

TEST_F(DocumentControllerTest, WhatAClosedProjectCannotWriteIsKeptAsAnUntitledOne) {
    const QString path = makeProject("a.zorvel", {"North"});
    auto run = newRun();
    Document* document = run->open(path);
    QFile::remove(path);
    addNamedCensus(*document, "South");
    run->controller.close(*document);
    ASSERT_TRUE(waitUntil([&] { return !run->told.kept.empty(); }));
    EXPECT_TRUE(run->told.kept.front().startsWith("a: "));
    run.reset();
    run = newRun();
    const auto back = recovered(*run, 1);
    ASSERT_EQ(back.size(), 1u);
    EXPECT_EQ(back[0]->displayName(), "a (unsaved changes)");
    EXPECT_EQ(censusNames(*back[0]), (Names{"North", "South"}));
}

// As a kill would leave it: the file of the copy is read while the program runs.
TEST_F(DocumentControllerTest, WhatCannotBeWrittenIsKeptAsideFromTheFirstFailureOn) {
    TestDisk disk;
    settings.vfs = disk.name();
    settings.firstRetry = settings.lastRetry = std::chrono::hours(1);
    const QString path = makeProject("a.zorvel", {"North"});
    auto run = newRun();
    const auto copies = [this] {
        return QDir(folders().untitled).entryList({"*.zorvel"}, QDir::Files);
    };
    const auto fail = [&](Document& document, const Names& expected) {
        disk.failWrites(TestDisk::full, path);
        for (const char* name : {"South", "West"}) {
            addNamedCensus(document, name);
            ASSERT_TRUE(waitUntil([&] { return document.isKeptAside(); }));
        }
        EXPECT_TRUE(document.asideNote().contains("next start"));
        ASSERT_EQ(copies().size(), 1);
        EXPECT_EQ(namesInFile(folders().untitled + "/" + copies().front()), expected);
        EXPECT_EQ(namesInFile(path), Names{"North"});
    };
    const Names all{"North", "South", "West"};

    // It opens at the next start and says what it is; the file stays as it was.
    fail(*run->open(path), all);
    run.reset();
    run = newRun();
    QString told;
    QObject::connect(&run->controller, &DocumentController::asideDidOpen, &run->told.connections,
                     [&](Document* /*document*/, const QString& message) { told = message; });
    const auto back = recovered(*run, 1);
    ASSERT_EQ(back.size(), 1u);
    EXPECT_EQ(back[0]->displayName(), "a (unsaved changes)");
    EXPECT_EQ(censusNames(*back[0]), all);
    EXPECT_TRUE(told.contains(path)) << told.toStdString();
    EXPECT_EQ(namesInFile(path), Names{"North"});
    run->controller.discard(*back[0]);
    EXPECT_TRUE(waitUntil([&] { return untitledFiles().isEmpty(); }));

    // It goes when the project is discarded, saved elsewhere, or saved after all.
    Document* document = run->open(path);
    fail(*document, all);
    run->controller.discard(*document);
    EXPECT_TRUE(waitUntil([&] { return untitledFiles().isEmpty(); }));
    document = run->open(path);
    fail(*document, all);
    document->saveAs(at("b.zorvel"), [](const auto& problem) { EXPECT_FALSE(problem); });
    EXPECT_TRUE(waitUntil([&] { return untitledFiles().isEmpty(); }));
    EXPECT_EQ(namesInFile(at("b.zorvel")), all);
    document = run->open(path);
    fail(*document, all);
    disk.failWrites(0);
    document->saveSoon();
    ASSERT_TRUE(isSavedSoon(document));
    EXPECT_TRUE(waitUntil([&] { return untitledFiles().isEmpty(); }));
    EXPECT_EQ(namesInFile(path), all);
    run.reset();
}

TEST_F(DocumentControllerTest, KeepingAsideIsTriedUntilThereIsRoom) {
    const QString path = makeProject("a.zorvel", {"North"});
    makeFile("data", "in the way of the folder");
    auto run = newRun();
    Document* document = run->open(path);
    QFile::remove(path);
    addNamedCensus(*document, "South");
    run->controller.close(*document);
    processEventsFor(300);
    EXPECT_TRUE(run->told.kept.empty());
    EXPECT_TRUE(document->asideNote().contains("cannot be kept"));
    ASSERT_TRUE(QFile::remove(at("data")));
    EXPECT_TRUE(waitUntil([&] { return !run->told.kept.empty(); }));
    EXPECT_EQ(untitledFiles().size(), 1);
}

// The disk of the project stays full to the end, that of the user's folder does not.
TEST_F(DocumentControllerTest, WhatCouldNotBeWrittenByTheEndIsKeptAsAnUntitledProject) {
    TestDisk disk;
    settings.vfs = disk.name();
    const QString path = makeProject("a.zorvel", {"North"});
    auto run = newRun();
    Document* document = run->open(path);
    disk.failWrites(TestDisk::full, path);
    addNamedCensus(*document, "South");
    ASSERT_TRUE(waitUntil([&] { return document->saveState() == State::failed; }));
    run.reset();
    EXPECT_EQ(namesInFile(path), (Names{"North"}));
    run = newRun();
    const auto back = recovered(*run, 1);
    ASSERT_EQ(back.size(), 1u);
    EXPECT_EQ(censusNames(*back[0]), (Names{"North", "South"}));
    run.reset();
}

TEST_F(DocumentControllerTest, LeftoversOfUnfinishedFilesGo) {
    QDir().mkpath(folders().untitled);
    const QString left = makeFile("data/untitled/.zorvel-0123456789abcdef.tmp", "x");
    auto run = newRun();
    recovered(*run, 0);
    EXPECT_TRUE(waitUntil([&] { return !QFile::exists(left); }));
}

TEST_F(DocumentControllerTest, CopiesAreUntitledProjectsWorthKeeping) {
    auto run = newRun();
    Document* document = run->open(makeProject("a.zorvel", {"North"}));
    addNamedCensus(*document, "South");
    ASSERT_TRUE(isSavedSoon(document));
    ASSERT_EQ(backupPaths(*document).size(), 1);
    Document& copy = run->controller.duplicate(*document);
    addNamedCensus(copy, "West");
    run->controller.openBackup(backupPaths(*document).front(), "a before");
    ASSERT_TRUE(waitUntil([&] { return run->told.opened.size() == 3; }));
    Document* backup = run->told.opened.back().document;
    EXPECT_EQ(censusNames(*document), (Names{"North", "South"}));
    EXPECT_EQ(censusNames(copy), (Names{"North", "South", "West"}));
    EXPECT_EQ(censusNames(*backup), (Names{"North"}));
    EXPECT_EQ(backup->displayName(), "a before");
    EXPECT_FALSE(backup->isUntouched());
    ASSERT_TRUE(waitUntil([&] { return isSaved(backup) && isSaved(&copy); }));
    EXPECT_EQ(untitledFiles().size(), 2);
    EXPECT_EQ(namesInFile(backupPaths(*document).front()), (Names{"North"}));
}

TEST_F(DocumentControllerTest, QuittingWritesAllAndIsNotHeldUpByWhatIsBeingRead) {
    const QString path = makeProject("a.zorvel", {"North"});
    const QString other = makeProject("b.zorvel", {"North"});
    settings.autosave = std::chrono::hours(1);
    auto run = newRun();
    Document* document = run->open(path);
    addNamedCensus(*document, "South");
    addNamedCensus(run->controller.newDocument(), "new");
    run->controller.close(*document);
    run->controller.open(other);
    EXPECT_TRUE(run->controller.finish(std::chrono::seconds(20)).empty());
    EXPECT_EQ(namesInFile(path), (Names{"North", "South"}));
    EXPECT_EQ(untitledFiles().size(), 1);
    run.reset();
    EXPECT_EQ(namesInFile(other), (Names{"North"}));
}

TEST_F(DocumentControllerTest, RemembersTheLastTenFiles) {
    auto run = newRun();
    QStringList expected;
    for (int i = 0; i < 12; ++i) {
        const QString path = makeProject(QString("p%1.zorvel").arg(i), {"North"});
        ASSERT_TRUE(run->open(path));
        expected.prepend(path);
    }
    EXPECT_EQ(run->controller.recentPaths(), expected.mid(0, 10));
    run->open(expected[5]);
    expected.move(5, 0);
    EXPECT_EQ(run->controller.recentPaths(), expected.mid(0, 10));
    // Nothing looks for the files on this thread: they may be on a disk that does not answer.
    QFile::remove(expected[1]);
    run = newRun();
    EXPECT_EQ(run->controller.recentPaths(), expected.mid(0, 10));
    run->controller.lookForRecentPaths();
    expected.removeAt(1);
    EXPECT_TRUE(waitUntil([&] { return run->controller.recentPaths() == expected.mid(0, 9); }));
    run->controller.clearRecentPaths();
    EXPECT_TRUE(run->controller.recentPaths().isEmpty());
}

TEST_F(DocumentControllerTest, AFileSavedDuringALookAtRecentOnesIsShown) {
    RecentPaths recent;
    recent.add("/a");
    recent.add("/b");
    const QStringList looked = recent.beginLook();
    recent.add("/b");  // saved anew while the look is under way
    recent.endLook(looked);
    EXPECT_EQ(recent.list(), QStringList{"/b"});
}

TEST(UserFolders, AreNeverRelative) {
    const QByteArray before = qgetenv("XDG_DATA_HOME");
    for (const char* named : {"data/files", "./data", ""}) {
        qputenv("XDG_DATA_HOME", named);
        const auto folders = DocumentController::userFolders();
        EXPECT_EQ(folders.untitled.toStdString(),
                  (QDir::homePath() + "/.local/share/zorvel/zorvel/untitled").toStdString());
    }
    qputenv("XDG_DATA_HOME", before);
}

}  // namespace
}  // namespace zorvel
