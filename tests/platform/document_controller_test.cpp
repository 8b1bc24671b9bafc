// The controller: what it opens, recovers, closes and remembers, and what it keeps aside.
#include "platform/document_controller.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <ctime>
#include <latch>
#include <thread>

#include "document_fixture.h"

namespace zorvel {
namespace {

class DocumentControllerTest : public DocumentFixture {};

TEST_F(DocumentControllerTest, AnUntouchedProjectLeavesNoFile) {
    restart();
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
        ASSERT_TRUE(!written || isSavedSoon(undone));
        undoAll(undone);
        EXPECT_TRUE(undone.isUntouched());
        run->controller.close(undone);
    }
    closeAndWait(first);
    EXPECT_EQ(untitledFiles().size(), 1);
    EXPECT_EQ(run->controller.documents(), std::vector<Document*>{&second});
    EXPECT_EQ(run->controller.newDocument().displayName(), "Untitled");
}

TEST_F(DocumentControllerTest, UntitledProjectsComeBackOnceUntilTheyAreSavedOrDiscarded) {
    restart();
    for (const char* name : {"closed", "left open", "discarded"}) {
        addNamedCensus(run->controller.newDocument(), name);
    }
    const auto documents = run->controller.documents();
    run->controller.close(*documents[0]);
    run->controller.discard(*documents[2]);
    restart();
    EXPECT_EQ(untitledFiles().size(), 2);
    // What a kill has left goes; the file that another run has begun an hour ago stays.
    const QString left = makeFile("data/untitled/.zorvel-0123456789abcdef.tmp", "x");
    const QString begun = makeFile("data/untitled/.zorvel-1123456789abcdef.tmp", "");
    const timespec hourAgo{::time(nullptr) - 3600, 0};
    const timespec times[] = {hourAgo, hourAgo};
    ASSERT_EQ(utimensat(AT_FDCWD, encodedPath(begun).c_str(), times, 0), 0);

    Document& untouched = run->controller.newDocument();
    const auto back = recovered(2);
    run->controller.close(untouched);
    ASSERT_EQ(back.size(), 2u);
    EXPECT_EQ(back[0]->displayName(), "Untitled");
    EXPECT_EQ(back[1]->displayName(), "Untitled 2");
    for (const Document* document : back) {
        EXPECT_TRUE(document->isUntitled());
        EXPECT_FALSE(document->isUntouched());
        EXPECT_EQ(document->saveState(), State::saved);
    }
    EXPECT_TRUE(!QFile::exists(left) && QFile::exists(begun));
    run->controller.recover();
    ProgramRun other(folders(), settings);
    other.controller.recover();
    processEventsFor(60);
    EXPECT_TRUE(other.told.opened.empty() && other.told.failed.empty());
    EXPECT_EQ(run->told.opened.size(), 2u);

    EXPECT_FALSE(saveAs(*back[0], "kept.zorvel"));
    run->controller.discard(*back[1]);
    run.reset();
    EXPECT_TRUE(untitledFiles().isEmpty());
    EXPECT_EQ(namesInFile(at("kept.zorvel")).size(), 1u);
}

TEST_F(DocumentControllerTest, ADamagedUntitledProjectIsToldOfOnceAndLeftAsItIs) {
    QDir().mkpath(folders().untitled);
    const QString name = "data/untitled/0f0e0d0c-1111-2222-3333-444455556666 mites.zorvel";
    const QByteArray bytes = "SQLite format 3" + QByteArray(2000, '\0');
    makeFile(name, bytes);
    makeFile("data/untitled/notes.txt", "not ours");
    for (const std::size_t expected : {1u, 0u}) {
        restart();
        recovered(0);
        if (expected == 1) waitUntil([&] { return !run->told.failed.empty(); });
        EXPECT_EQ(run->told.failed.size(), expected);
    }
    QFile file(at(name));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), bytes);
}

TEST_F(DocumentControllerTest, ATextFileIsAnUntitledProjectThatKeepsItsName) {
    const QString path = makeFile("mites.csv", "Abies alba,12\nAbies nigra,3\n");
    restart();
    Document& document = open(path);
    EXPECT_EQ(run->told.opened.back().path, path);
    EXPECT_EQ(document.displayName(), "mites");
    EXPECT_TRUE(document.isUntouched());
    EXPECT_FALSE(document.project().objectContext().canUndo());
    EXPECT_EQ(censusNames(document).size(), 1u);
    restart();
    EXPECT_TRUE(untitledFiles().isEmpty());
    addNamedCensus(open(path), "South");
    restart();
    const auto back = recovered(1);
    ASSERT_EQ(back.size(), 1u);
    EXPECT_EQ(back[0]->displayName(), "mites");
    EXPECT_EQ(censusNames(*back[0]).size(), 2u);
}

TEST_F(DocumentControllerTest, TellsWhyAFileCannotBeOpened) {
    makeFile("empty.zorvel", "");
    makeFile("text.zorvel", "North\n");
    makeFile("bad.csv", QByteArray("a,b\n\xff\xfe\x00", 7));
    makeFile("database", "SQLite format 3" + QByteArray(1, '\0') + QByteArray(3000, 'x'));
    QDir().mkpath(at("folder.zorvel"));
    ASSERT_EQ(::mkfifo(at("fifo.zorvel").toStdString().c_str(), 0600), 0);
    restart();
    for (const char* name : {"none.zorvel", "empty.zorvel", "text.zorvel", "folder.zorvel",
                             "fifo.zorvel", "database", "bad.csv", "none.csv"}) {
        run->told.failed.clear();
        EXPECT_FALSE(run->open(at(name))) << name;
        ASSERT_EQ(run->told.failed.size(), 1u) << name;
        EXPECT_EQ(run->told.failed.back().path, at(name));
        EXPECT_TRUE(run->told.failed.back().message.startsWith(name))
            << qPrintable(run->told.failed.back().message);
    }
    EXPECT_TRUE(run->controller.documents().empty());
    EXPECT_TRUE(run->controller.recentPaths().isEmpty());
}

TEST_F(DocumentControllerTest, AProjectIsNeverOpenTwice) {
    const QString path = makeProject("a.zorvel", {"North"});
    ASSERT_TRUE(QFile::link(path, at("symbolic.zorvel")));
    ASSERT_EQ(::link(encodedPath(path).c_str(), encodedPath(at("hard.zorvel")).c_str()), 0);
    restart();
    for (const char* name : {"a.zorvel", "symbolic.zorvel", "hard.zorvel", "./a.zorvel"}) {
        run->beginOpening(at(name));
    }
    ASSERT_TRUE(waitUntil([&] { return run->told.opened.size() == 4; }));
    open(path);
    EXPECT_EQ(run->controller.documents().size(), 1u);
    for (const auto& opened : run->told.opened) {
        EXPECT_EQ(opened.document, run->controller.documents().front());
    }
    ProgramRun other(folders(), settings);
    EXPECT_FALSE(other.open(path));
    ASSERT_EQ(other.told.failed.size(), 1u);
    EXPECT_TRUE(other.told.failed.front().message.contains("another running Zorvel"));
}

// While the last write still runs, which may succeed or fail, or after it has failed. What could
// not be written comes back as it was.
TEST_F(DocumentControllerTest, AClosedProjectThatWaitsForItsDiskMayBeReopened) {
    const struct {
        bool duringAWrite;
        bool fails;
    } rows[] = {{true, false}, {true, true}, {false, true}};
    for (const auto& row : rows) {
        Document& document = openNorth();
        if (row.fails) disk.failWrites(TestDisk::full);
        disk.setHanging(row.duringAWrite);
        addNamedCensus(document, "South");
        run->controller.close(document);
        EXPECT_TRUE(run->controller.documents().empty());
        processEventsFor(100);
        EXPECT_EQ(run->controller.finish(milliseconds(100)).size(), 1u);
        run->beginOpening(at("a.zorvel"));
        if (row.duringAWrite) {
            processEventsFor(100);
            EXPECT_EQ(run->told.opened.size(), 1u);
            disk.setHanging(false);
        }
        ASSERT_TRUE(waitUntil([&] { return run->told.opened.size() == 2; }));
        Document& again = *run->told.opened.back().document;
        EXPECT_EQ(run->controller.documents(), std::vector<Document*>{&again});
        EXPECT_EQ(censusNames(again), (Names{"North", "South"}));
        EXPECT_TRUE(run->told.failed.empty());
        if (row.fails) {
            EXPECT_EQ(&again, &document);
            EXPECT_EQ(again.saveState(), State::failed);
        }
        disk.failWrites(0);
        ASSERT_TRUE(isSavedSoon(again));
        EXPECT_EQ(namesInFile(at("a.zorvel")), (Names{"North", "South"}));
    }
}

// Whether it is closed before, or the program ends with the disk of the project still full.
TEST_F(DocumentControllerTest, WhatCannotBeWrittenByTheEndIsKeptAsAnUntitledProject) {
    for (const bool closed : {true, false}) {
        Document& document = openNorth();
        if (closed) {
            QFile::remove(at("a.zorvel"));
        } else {
            disk.failWrites(TestDisk::full, at("a.zorvel"));
        }
        addNamedCensus(document, "South");
        if (closed) {
            run->controller.close(document);
            ASSERT_TRUE(waitUntil([&] { return !run->told.kept.empty(); }));
            EXPECT_TRUE(run->told.kept.front().startsWith("a: "));
        } else {
            ASSERT_TRUE(becomes(document, State::failed));
        }
        restart();
        const auto back = recovered(1);
        ASSERT_EQ(back.size(), 1u);
        EXPECT_EQ(back[0]->displayName(), "a (unsaved changes)");
        EXPECT_EQ(censusNames(*back[0]), (Names{"North", "South"}));
        run->controller.discard(*back[0]);
        EXPECT_TRUE(waitUntil([&] { return untitledFiles().isEmpty(); }));
    }
}

// As a kill would leave it: the file of the copy is read while the program runs.
TEST_F(DocumentControllerTest, WhatCannotBeWrittenIsKeptAsideFromTheFirstFailureOn) {
    settings.firstRetry = settings.lastRetry = std::chrono::hours(1);
    const Names all{"North", "South", "West"};
    const auto fail = [&](Document& document) {
        disk.failWrites(TestDisk::full, at("a.zorvel"));
        for (const char* name : {"South", "West"}) {
            addNamedCensus(document, name);
            ASSERT_TRUE(waitUntil([&] { return document.isKeptAside(); }));
        }
        EXPECT_TRUE(document.asideNote().contains("next start"));
        ASSERT_EQ(untitledFiles().size(), 1);
        EXPECT_EQ(namesInUntitledFile(), all);
        EXPECT_EQ(namesInFile(at("a.zorvel")), Names{"North"});
    };
    const auto isDropped = [&] {
        return waitUntil([&] { return QDir(folders().untitled).isEmpty(); });
    };

    // It opens at the next start and says what it is; the file stays as it was.
    fail(openNorth());
    restart();
    const auto back = recovered(1);
    ASSERT_EQ(back.size(), 1u);
    EXPECT_EQ(back[0]->displayName(), "a (unsaved changes)");
    EXPECT_EQ(censusNames(*back[0]), all);
    ASSERT_EQ(run->told.asides.size(), 1);
    EXPECT_TRUE(run->told.asides.front().contains(at("a.zorvel")));
    EXPECT_EQ(namesInFile(at("a.zorvel")), Names{"North"});
    run->controller.discard(*back[0]);
    EXPECT_TRUE(isDropped());

    // It goes when the project is discarded, saved elsewhere, or saved after all.
    Document* document = &open(at("a.zorvel"));
    fail(*document);
    run->controller.discard(*document);
    EXPECT_TRUE(isDropped());
    document = &open(at("a.zorvel"));
    fail(*document);
    EXPECT_FALSE(saveAs(*document, "b.zorvel"));
    EXPECT_TRUE(isDropped());
    EXPECT_EQ(namesInFile(at("b.zorvel")), all);
    document = &open(at("a.zorvel"));
    fail(*document);
    disk.failWrites(0);
    document->saveSoon();
    ASSERT_TRUE(isSavedSoon(*document));
    EXPECT_TRUE(isDropped());
    EXPECT_EQ(namesInFile(at("a.zorvel")), all);
}

TEST_F(DocumentControllerTest, KeepingAsideIsTriedUntilThereIsRoom) {
    makeFile("data", "in the way of the folder");
    Document& document = openNorth();
    QFile::remove(at("a.zorvel"));
    addNamedCensus(document, "South");
    run->controller.close(document);
    processEventsFor(300);
    EXPECT_TRUE(run->told.kept.empty());
    EXPECT_TRUE(document.asideNote().contains("cannot be kept"));
    ASSERT_TRUE(QFile::remove(at("data")));
    EXPECT_TRUE(waitUntil([&] { return !run->told.kept.empty(); }));
    EXPECT_EQ(untitledFiles().size(), 1);
}

TEST_F(DocumentControllerTest, CopiesAreUntitledProjectsWorthKeeping) {
    Document& document = openNorth();
    ASSERT_TRUE(addAndSave(document, "South"));
    ASSERT_EQ(backupPaths(document).size(), 1);
    Document& copy = run->controller.duplicate(document);
    addNamedCensus(copy, "West");
    run->controller.openBackup(backupPaths(document).front(), "a before");
    ASSERT_TRUE(waitUntil([&] { return run->told.opened.size() == 3; }));
    const Document* backup = run->told.opened.back().document;
    EXPECT_EQ(censusNames(document), (Names{"North", "South"}));
    EXPECT_EQ(censusNames(copy), (Names{"North", "South", "West"}));
    EXPECT_EQ(censusNames(*backup), (Names{"North"}));
    EXPECT_EQ(backup->displayName(), "a before");
    EXPECT_FALSE(backup->isUntouched());
    ASSERT_TRUE(waitUntil([&] { return isSaved(backup) && isSaved(&copy); }));
    EXPECT_EQ(untitledFiles().size(), 2);
    EXPECT_EQ(namesInFile(backupPaths(document).front()), (Names{"North"}));
}

TEST_F(DocumentControllerTest, WhatIsDiscardedWhileItsFileIsInUseIsNotWrittenAgain) {
    settings.autosave = std::chrono::hours(1);
    restart();
    Document& made = run->controller.newDocument();
    addNamedCensus(made, "South");
    made.saveSoon();
    ASSERT_TRUE(isSavedSoon(made));
    restart();
    const auto back = recovered(1);
    ASSERT_EQ(back.size(), 1u);
    Document& document = *back[0];
    Document& other = open(makeProject("a.zorvel", {"North"}));
    addNamedCensus(document, "West");
    addNamedCensus(other, "East");
    disk.seemBusy(1000000);
    disk.setHanging(true, at("a.zorvel"));
    document.saveSoon();
    other.saveSoon();  // keeps the closing of the first from its turn
    run->controller.discard(document);
    processEventsFor(500);
    disk.seemBusy(0);
    disk.setHanging(false);
    ASSERT_TRUE(isSavedSoon(other));
    processEventsFor(100);
    EXPECT_EQ(untitledFiles(), QStringList());
}

TEST_F(DocumentControllerTest, QuittingWritesAllAndDoesNotWaitForReading) {
    const QString other = makeProject("b.zorvel", {"North"});
    settings.autosave = std::chrono::hours(1);
    settings.busyTries = 1000;
    Document& document = openNorth();
    addNamedCensus(document, "South");
    addNamedCensus(run->controller.newDocument(), "new");
    disk.seemBusy(20);  // no timer runs while the program quits, and it is tried again all the same
    run->controller.close(document);
    run->beginOpening(other);
    EXPECT_TRUE(run->controller.finish(std::chrono::seconds(20)).empty());
    EXPECT_EQ(namesInFile(at("a.zorvel")), (Names{"North", "South"}));
    EXPECT_EQ(untitledFiles().size(), 1);
    run.reset();
    EXPECT_EQ(namesInFile(other), (Names{"North"}));
}

TEST_F(DocumentControllerTest, RemembersTheLastTenFiles) {
    restart();
    QStringList expected;
    for (int i = 0; i < 12; ++i) {
        expected.prepend(makeProject(QString("p%1.zorvel").arg(i), {"North"}));
        open(expected.front());
    }
    EXPECT_EQ(run->controller.recentPaths(), expected.mid(0, 10));
    open(expected[5]);
    expected.move(5, 0);
    // Nothing looks for the files on this thread: they may be on a disk that does not answer.
    QFile::remove(expected[1]);
    restart();
    EXPECT_EQ(run->controller.recentPaths(), expected.mid(0, 10));
    run->controller.lookForRecentPaths();
    expected.removeAt(1);
    EXPECT_TRUE(waitUntil([&] { return run->controller.recentPaths() == expected.mid(0, 9); }));
    run->controller.clearRecentPaths();
    EXPECT_TRUE(run->controller.recentPaths().isEmpty());
}

TEST_F(DocumentControllerTest, AFileSavedDuringALookAtRecentOnesIsShown) {
    closeAndWait(openNorth());
    QFile::remove(at("a.zorvel"));
    Document& saved = run->controller.newDocument();
    QObject receiver;
    const auto held = std::make_shared<std::latch>(1);
    for (unsigned i = 0; i < std::max(2U, std::thread::hardware_concurrency()); ++i) {
        run->jobs.start(
            &receiver,
            [held] {
                held->wait();
                return 0;
            },
            [](int) {});
    }
    run->controller.lookForRecentPaths();
    EXPECT_FALSE(saveAs(saved, "a.zorvel"));
    QFile::remove(at("a.zorvel"));  // the look finds none, as if it had come before the saving
    bool hasLooked = false;
    QObject::connect(&run->controller, &DocumentController::recentPathsDidChange, &receiver,
                     [&] { hasLooked = true; });
    held->count_down();
    EXPECT_TRUE(waitUntil([&] { return hasLooked; }));
    EXPECT_EQ(run->controller.recentPaths(), QStringList{at("a.zorvel")});
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
