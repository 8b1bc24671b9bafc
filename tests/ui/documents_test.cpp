// Windows and the files of their projects.
#include <QDir>
#include <QFileInfo>
#include <QMenu>
#include <QPushButton>
#include <QToolButton>
#include <QTreeWidget>

#include "store/project_file.h"
#include "ui/window_fixture.h"

namespace zorvel {
namespace {

class DocumentsTest : public WindowTest {
  protected:
    QString path(const char* name) { return folder.filePath(name); }
    // A project of one census with one taxon, in a file and in the window.
    void openProject() {
        trigger("addCensusMenuItemTapped");
        trigger("addSpeciesMenuItemTapped");
        type(speciesTable(), 0, 1, "Abies");
        type(speciesTable(), 0, 2, "5");
        savePanel.answer = path("moss");
        trigger("saveDocument");
        ASSERT_TRUE(waitUntil([this] { return !window->document().isUntitled(); }));
        ASSERT_TRUE(waitUntilSaved());
    }
    // An edit cannot be saved: the file was deleted.
    void loseTheFile() {
        openProject();
        ASSERT_TRUE(QFile::remove(path("moss.zorvel")));
        editAbundanceTo("8");
        ASSERT_TRUE(waitUntil([this] { return !messages().isEmpty(); }));
    }
    // The abundance of the first taxon, as another program would read it; -1 without one.
    std::int64_t abundanceIn(const QString& file) {
        auto opened = ProjectFile::open(file.toStdString(), {true, nullptr});
        if (!opened) return -1;
        auto records = opened.value()->load();
        if (!records || records.value().censuses.empty()) return -1;
        std::int64_t abundance = -1;
        records.value().censuses[0]->forEachTaxon(
            [&](const TaxonRecord& taxon) { abundance = taxon.values.abundance; });
        return abundance;
    }
    std::int64_t shownAbundance() { return context().taxa().at(0).abundance(); }
    void editAbundanceTo(const char* text) { type(speciesTable(), 0, 2, text); }
    QPushButton& stripButton() { return child<QPushButton>("messageActionButton"); }
    bool waitForWindows(std::size_t count) {
        return waitUntil([this, count] {
            sendDeletions();
            return windows->windows().size() == count && documents->documents().size() == count;
        });
    }
    void startAgainWith(const QStringList& files) {
        endProgram();
        startProgram(files);
        ASSERT_TRUE(waitUntil([this] { return context().censusCount() == 1; }));
    }
};

TEST_F(DocumentsTest, SavingAsksForAPlaceOnceAndThenSavesItself) {
    EXPECT_EQ(window->windowTitle(), "Untitled[*]");
    openProject();
    EXPECT_EQ(savePanel.suggestions, QStringList{"Untitled"});
    EXPECT_EQ(window->windowTitle(), "moss[*]");
    EXPECT_FALSE(window->isWindowModified());
    editAbundanceTo("7");
    EXPECT_TRUE(window->isWindowModified());
    ASSERT_TRUE(waitUntilSaved());
    EXPECT_FALSE(window->isWindowModified());
    EXPECT_EQ(abundanceIn(path("moss.zorvel")), 7);
    EXPECT_EQ(savePanel.suggestions.size(), 1);
    trigger("undo");
    ASSERT_TRUE(waitUntilSaved());
    EXPECT_EQ(abundanceIn(path("moss.zorvel")), 5);
}

TEST_F(DocumentsTest, AFileIsReplacedOnlyIfTheUserSaysSo) {
    const QString other = write("other.zorvel", "something else");
    trigger("addCensusMenuItemTapped");
    savePanel.answer = path("other");
    alerts.answers = {"Cancel"};
    trigger("saveDocumentAs");
    EXPECT_EQ(alerts.asked, QStringList{"Replace “other.zorvel”?"});
    EXPECT_EQ(QFileInfo(other).size(), 14);
    EXPECT_TRUE(window->document().isUntitled());
    alerts.answers = {"Replace"};
    trigger("saveDocumentAs");
    ASSERT_TRUE(waitUntil([this] { return !window->document().isUntitled(); }));
    EXPECT_GT(QFileInfo(other).size(), 14);
    savePanel.answer = path("no/such/folder/x");
    trigger("saveDocumentAs");
    ASSERT_TRUE(waitUntil([this] { return !alerts.warnings.isEmpty(); }));
    EXPECT_TRUE(alerts.warnings[0].contains("x.zorvel"));
}

TEST_F(DocumentsTest, AFailureToSaveIsToldOnceAndStandsUntilSaveAsHelps) {
    loseTheFile();
    EXPECT_TRUE(messages()[0].startsWith("moss: ")) << messages()[0].toStdString();
    editAbundanceTo("9");
    processEventsFor(700);
    const QStringList told = messages();
    EXPECT_EQ(told.size(), 1);
    for (int i = 0; i < 6; ++i) strip().addMessage("done", MessageStrip::Tone::news);
    strip().dismiss();
    EXPECT_EQ(messages(), told);
    EXPECT_FALSE(child<QToolButton>("dismissMessageButton").isVisible());
    EXPECT_TRUE(alerts.asked.isEmpty());
    EXPECT_TRUE(window->isWindowModified());
    savePanel.answer = path("moss2");
    QTest::mouseClick(&stripButton(), Qt::LeftButton);
    ASSERT_TRUE(waitUntil([this] { return messages().isEmpty(); }));
    EXPECT_EQ(window->windowTitle(), "moss2[*]");
    EXPECT_FALSE(strip().isVisible());
    EXPECT_EQ(abundanceIn(path("moss2.zorvel")), 9);
}

TEST_F(DocumentsTest, ClosingAnUntitledProjectAsks) {
    windows->openUntitled();
    trigger("addCensusMenuItemTapped");
    QTest::keyClicks(censusTable().openEditor(), "North");
    alerts.answers = {"Cancel"};
    EXPECT_FALSE(window->close());
    EXPECT_EQ(records(), std::vector<std::string>{"North"});  // stored first
    savePanel.answer = path("north");
    alerts.answers = {"Save..."};
    EXPECT_FALSE(window->close());  // not yet
    ASSERT_TRUE(waitForWindows(1));
    EXPECT_TRUE(QFileInfo::exists(path("north.zorvel")));
    window = windows->windows().front();
    trigger("addCensusMenuItemTapped");
    alerts.answers = {"Discard"};
    EXPECT_TRUE(window->close());
    ASSERT_TRUE(waitForWindows(0));
    ASSERT_TRUE(
        waitUntil([this] { return QDir(path("untitled")).entryList(QDir::Files).isEmpty(); }));
    // One without edits closes in silence.
    window = &windows->openUntitled();
    open(exampleFile);
    EXPECT_TRUE(window->close());
    EXPECT_EQ(alerts.asked.size(), 3);
}

TEST_F(DocumentsTest, QuittingAsksNothingAndUntitledProjectsComeBack) {
    trigger("addCensusMenuItemTapped");
    QTest::keyClicks(censusTable().openEditor(), "North");
    windows->openUntitled();
    EXPECT_TRUE(windows->quit());
    EXPECT_TRUE(alerts.asked.isEmpty());
    sendDeletions();
    startAgainWith({});
    EXPECT_EQ(records(), std::vector<std::string>{"North"});
    EXPECT_EQ(windows->windows().size(), 1u);  // it took the place of the empty one
    EXPECT_TRUE(window->document().isUntitled());
}

TEST_F(DocumentsTest, ClosingAndQuittingAskAboutWhatCouldNotBeSaved) {
    windows->openUntitled();
    loseTheFile();
    alerts.answers = {"Cancel"};
    EXPECT_FALSE(window->close());
    alerts.answers = {"Cancel"};
    EXPECT_FALSE(windows->quit());
    EXPECT_FALSE(window->isHidden());
    // Nor does Save As let the program quit if it is cancelled or fails.
    for (const char* name : {"", "no/such/folder/x"}) {
        alerts.answers = {"Save As..."};
        savePanel.answer = *name == '\0' ? QString() : path(name);
        EXPECT_FALSE(windows->quit()) << name;
        EXPECT_FALSE(window->isHidden()) << name;
        EXPECT_EQ(alerts.warnings.size(), *name == '\0' ? 0 : 1);
    }
    savePanel.answer = path("rescued");
    alerts.answers = {"Save As..."};
    EXPECT_FALSE(window->close());  // not yet
    ASSERT_TRUE(waitForWindows(1));
    EXPECT_EQ(abundanceIn(path("rescued.zorvel")), 8);
    EXPECT_EQ(alerts.asked.size(), 5);
}

TEST_F(DocumentsTest, QuittingSavesElsewhere) {
    loseTheFile();
    alerts.answers = {"Save As..."};
    savePanel.answer = path("rescued");
    EXPECT_TRUE(windows->quit());
    EXPECT_EQ(abundanceIn(path("rescued.zorvel")), 8);
}

TEST_F(DocumentsTest, OneFileIsOneWindow) {
    openProject();
    MainWindowController& other = windows->openUntitled();
    for (const bool isOpen : {true, false}) {
        windows->openFiles({path("moss.zorvel")}, &other);
        windows->openFiles({path("moss.zorvel")}, &other);
        ASSERT_TRUE(waitUntil([&] { return !other.mainView().isInProgress(); }));
        EXPECT_EQ(windows->windows().size(), isOpen ? 2u : 1u);
        EXPECT_EQ(windows->isFree(other), isOpen);
        if (isOpen) window->close();
        ASSERT_TRUE(waitForWindows(1));
    }
    window = &other;
    EXPECT_EQ(window->windowTitle(), "moss[*]");
    EXPECT_EQ(shownAbundance(), 5);
    EXPECT_EQ(censusTable().selectedRows(), std::vector<int>{0});
}

TEST_F(DocumentsTest, RevertAndBackupsGoBackToTheOpening) {
    openProject();
    for (const char* abundance : {"6", "8"}) {
        startAgainWith({path("moss.zorvel")});
        editAbundanceTo(abundance);
        ASSERT_TRUE(waitUntilSaved());
    }
    alerts.answers = {"Cancel", "Revert"};
    trigger("revertToOpening");
    EXPECT_EQ(shownAbundance(), 8);
    trigger("revertToOpening");
    EXPECT_EQ(shownAbundance(), 6);
    ASSERT_TRUE(waitUntil([this] { return cell(speciesTable(), 0, 2) == "6"; }));
    trigger("undo");
    EXPECT_EQ(shownAbundance(), 8);
    trigger("browseBackups");
    auto& openCopy = child<QPushButton>("openCopyButton");
    EXPECT_FALSE(openCopy.isEnabled());  // they are looked for in the background
    ASSERT_TRUE(waitUntil([&] { return openCopy.isEnabled(); }));
    EXPECT_EQ(child<QTreeWidget>("backupsList").topLevelItemCount(), 2);  // the newer one first
    openCopy.click();
    ASSERT_TRUE(waitForWindows(2));
    EXPECT_EQ(shownAbundance(), 8);
    window = windows->windows().back();
    EXPECT_EQ(shownAbundance(), 6);
    EXPECT_TRUE(window->document().isUntitled());
}

TEST_F(DocumentsTest, ADuplicateIsAnUntitledProjectOfItsOwn) {
    openProject();
    trigger("duplicateDocument");
    ASSERT_EQ(windows->windows().size(), 2u);
    window = windows->windows().back();
    EXPECT_EQ(window->windowTitle(), "moss (untitled)[*]");
    editAbundanceTo("8");
    ASSERT_TRUE(waitUntilSaved());
    EXPECT_EQ(abundanceIn(path("moss.zorvel")), 5);
    auto& menu = child<QMenu>("recentMenu");
    emit menu.aboutToShow();
    EXPECT_EQ(menu.actions().value(0)->text(), "moss.zorvel");
    menu.findChild<QAction*>("clearRecentDocuments")->trigger();
    emit menu.aboutToShow();
    EXPECT_EQ(menu.actions().size(), 2);  // a separator and the command
}

}  // namespace
}  // namespace zorvel
