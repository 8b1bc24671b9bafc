// Imports as the user starts them: by the menu, by a drop, by names on the command line.
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QPushButton>
#include <QTimer>

#include "app/file_kinds.h"
#include "app/imports.h"
#include "ui/kit/panels.h"
#include "ui/window_fixture.h"

namespace zorvel {
namespace {

const char phoneFile[] =
    "\"Name\",\"Date\",\"Notes\",\"Latitude\",\"Longitude\",\"Abies\",\"Larix\"\n"
    "\"North\",\"Mar 5, 2016 3:42 PM\",\"wet\",1.5,-2,4,0\n";
const char matrix[] = ",Abies,Larix\nNorth,3,0\nSouth,1,2\n";

class ImportTest : public WindowTest {
  protected:
    int rows() { return censusTable().model()->rowCount(); }
    std::string name(int row) { return cell(censusTable(), row, 0); }

    void import(const char* action, const QString& path) {
        panel.answer = path.isEmpty() ? QStringList() : QStringList{path};
        trigger(action);
        ASSERT_TRUE(waitUntil([this] { return isIdle(); }));
        QCoreApplication::processEvents();  // the table follows in the next turn of the event loop
    }
    void drop(const QStringList& paths) { emit window->filesDropped(paths); }
};

TEST_F(ImportTest, ClosingAndQuittingAskBeforeAnImportIsLost) {
    const QString path = write("file.csv", ",Abies\nNorth,3\n");
    windows->openUntitled();
    for (const bool byClosing : {true, false}) {
        alerts.asked.clear();
        holdJobs();
        panel.answer = {path};
        trigger("importCensusMatrixMenuItemTapped");
        alerts.answers = {"Cancel"};
        EXPECT_FALSE(byClosing ? window->close() : windows->quit());
        EXPECT_EQ(alerts.asked, QStringList{"An import is still running"});
        releaseJobs();
        ASSERT_TRUE(waitUntil([this] { return isIdle(); }));
        EXPECT_EQ(context().censusCount(), byClosing ? 1u : 2u);
    }
    holdJobs();
    trigger("importCensusMatrixMenuItemTapped");
    alerts.answers = {"Close Anyway", "Cancel"};
    EXPECT_FALSE(window->close());  // the untitled project is asked about next
    releaseJobs();
    ASSERT_TRUE(waitUntil([this] { return isIdle(); }));
    EXPECT_EQ(context().censusCount(), 3u) << "the window stays, and so does the import";
}

TEST_F(ImportTest, EveryKindOfFileThroughTheMenu) {
    const struct {
        const char* action;
        QByteArray text;
        int censuses;
        const char* message;
        bool warned;  // that something was left out
    } cases[] = {
        {"importAbundanceListMenuItemTapped", "3 5\n7", 1,
         "Imported 1 census with 3 taxa from file.txt.", false},
        {"importOneCensusMenuItemTapped", "Abies,3\nLarix,2\nPicea,", 1,
         "Imported 1 census with 2 taxa from file.txt. The last line of the file is not finished "
         "and was left out.",
         true},
        {"importCensusMatrixMenuItemTapped",
         ",Abies,Larix\nNorth,3,0\nSouth,1,2\nimported census,1,1\nWest\n", 3,
         "Imported 3 censuses with 3 taxa from file.txt. A row called “imported census” was left "
         "out. A row has fewer values than there are species: the missing ones count as 0.",
         true},
        {"importCensusMatrixMenuItemTapped", ",Abies,Larix\nNorth,0,0\n", 1,
         "Imported 1 census with 0 taxa from file.txt. No census has a taxon: every abundance is "
         "0.",
         true},
        {"importIOSFileMenuItemTapped", phoneFile, 1,
         "Imported 1 census with 1 taxon from file.txt.", false},
        {"importCensusMatrixMenuItemTapped", ",Abies,Larix\nNorth,3,4\nSouth,1,two\n", 0,
         "file.txt could not be read (line 3, cell 3): Not an abundance value, or not an integer: "
         "two",
         true},
    };
    int before = 0;
    for (const auto& test : cases) {
        import(test.action, write("file.txt", test.text));
        EXPECT_EQ(rows(), before + test.censuses) << test.message;
        EXPECT_EQ(messages().last(), test.message);
        EXPECT_EQ(strip().tone() == MessageStrip::Tone::problem, test.warned) << test.message;
        strip().dismiss();
        EXPECT_TRUE(window->mainView().selectedCensuses().empty());
        before = rows();
    }
}

// They would come in as censuses called "North;3;0".
TEST_F(ImportTest, OpenedTextsSayWhyTheyHaveNoTaxa) {
    alerts.chosen = {2, 2};
    open(write("tabs.txt", "\tAbies\tLarix\nNorth\t3\t0\n"));
    ASSERT_EQ(alerts.choices.size(), 1);
    EXPECT_EQ(alerts.choices[0].options[alerts.choices[0].preselected].section('\t', 0, 0),
              "&Table");
    EXPECT_TRUE(messages().last().startsWith(
        "tabs.txt could not be read: the cells seem to be separated by tabs"));
    EXPECT_EQ(rows(), 0);
    open(write("phone.csv", QByteArray(phoneFile).replace("\n", "\r\n")));
    EXPECT_TRUE(messages().last().contains("the lines end in CR LF"));
    open(write("names.csv", "site,Abies,Larix\nNorth\nSouth\n"));
    EXPECT_TRUE(waitUntil([this] {
        return messages().last().contains("No census has a taxon: there are no abundances");
    }));
}

// Where the panel begins, and what it offers.
TEST_F(ImportTest, ThePanelNamesItsPurposeAndBeginsWhereFilesWere) {
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    const QString project = folder.filePath("kept/moss.zorvel");
    const QString used = folder.filePath("used/file.txt");
    for (const char* name : {"kept", "used"}) ASSERT_TRUE(QDir(folder.path()).mkdir(name));
    write("used/file.txt", "3");
    QString title;
    QStringList filters;
    const auto askedIn = [&](QWidget* parent, const QString& chosen) {
        QString shownFolder;
        QTimer::singleShot(0, [&] {
            auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            title = dialog->windowTitle();
            filters = dialog->nameFilters();
            shownFolder = dialog->directory().path();
            if (chosen.isEmpty()) return dialog->reject();
            dialog->selectFile(chosen);
            QMetaObject::invokeMethod(dialog, "accept", Qt::QueuedConnection);
        });
        EXPECT_EQ(OpenPanel().chooseTextFile(parent, "Import Census Matrix"), chosen);
        return shownFolder;
    };
    askedIn(nullptr, used);
    EXPECT_EQ(title, "Import Census Matrix");
    EXPECT_EQ(filters, (QStringList{"Text files (*.txt *.csv)", "All files (*)"}));
    EXPECT_EQ(askedIn(window, {}), folder.filePath("used"));
    saveAs(project);
    EXPECT_EQ(askedIn(window, {}), folder.filePath("kept"));
}

TEST_F(ImportTest, NoTextNoImport) {
    const struct {
        QString path;
        int warnings;
        const char* says;
    } cases[] = {
        {"", 0, ""},
        {write("empty.txt", ""), 0, ""},
        {folder.filePath("missing.csv"), 1,
         "“missing.csv” could not be read: Cannot be opened: No such file"},
        {write("old.csv", "M\xfcller,3\n"), 1, "Latin-1"},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.path.toStdString());
        console.clear();
        alerts.warnings.clear();
        import("importOneCensusMenuItemTapped", test.path);
        EXPECT_EQ(console, std::vector<std::string>{"WARNING: no string obtained from file"});
        ASSERT_EQ(alerts.warnings.size(), test.warnings);
        EXPECT_TRUE(alerts.warnings.join(' ').contains(test.says));
    }
    EXPECT_EQ(messages(), QStringList{"empty.txt is empty."});
    EXPECT_EQ(windows->windows().size(), 1U);
    EXPECT_FALSE(context().canUndo());
}

TEST_F(ImportTest, WithoutAWindowTheFileMakesAProject) {
    runImport(*windows, nullptr, FileKind::matrix);
    EXPECT_EQ(windows->windows().size(), 1U);
    panel.answer = {write("plots.csv", matrix)};
    runImport(*windows, nullptr, FileKind::matrix);
    EXPECT_EQ(windows->windows().size(), 1U);
    ASSERT_TRUE(waitUntil([this] { return windows->windows().size() == 2; }));
    window = windows->windows().back();
    ASSERT_TRUE(waitUntil([this] { return rows() == 2; }));
}

TEST_F(ImportTest, AWindowThatClosesMeanwhileIsNotMissed) {
    MainWindowController& other = windows->openUntitled();
    panel.answer = {write("plots.csv", matrix)};
    runImport(*windows, &other, FileKind::matrix);
    importInto(other.document(), *windows, FileKind::matrix, {"more.csv", matrix});
    other.setCloseQuestion({});
    other.close();
    sendDeletions();
    drainJobs();
    drainJobs();
    EXPECT_EQ(windows->windows().size(), 1U);
    EXPECT_EQ(rows(), 0);
    EXPECT_EQ(console, std::vector<std::string>{"Could not get a diversity document"});
}

TEST_F(ImportTest, CancelAndEscapeGiveUpWhatIsNamed) {
    panel.answer = {write("plots.csv", matrix)};
    holdJobs();
    trigger("importCensusMatrixMenuItemTapped");
    EXPECT_EQ(label("progressLabel"), "reading plots.csv...");
    QPushButton& cancel = child<QPushButton>("cancelProgressButton");
    ASSERT_TRUE(cancel.isVisible());
    QCoreApplication::processEvents();
    EXPECT_EQ(cancel.width(), cancel.sizeHint().width());
    cancel.click();
    EXPECT_TRUE(isIdle());
    // Of several files cancelling one keeps the others out.
    importFiles(*windows, CommandWindow(window),
                {lookAt(write("one.txt", "3")), lookAt(write("two.txt", "4"))}, window);
    EXPECT_EQ(label("progressLabel"), "reading one.txt...");
    cancel.click();
    EXPECT_TRUE(isIdle());
    EXPECT_EQ(messages(), QStringList{"The import was cancelled. Also not imported: two.txt."});
    importInto(window->document(), *windows, FileKind::matrix, {"plots.csv", matrix});
    importInto(window->document(), *windows, FileKind::list, {"two.txt", "4 5"});
    EXPECT_EQ(label("progressLabel"), "importing abundance list...");
    EXPECT_FALSE(windows->isFree(*window));
    QTest::keyClick(&censusTable(), Qt::Key_Escape);
    releaseJobs();
    ASSERT_TRUE(waitUntil([this] { return isIdle(); }));
    drainJobs();
    EXPECT_EQ(rows(), 2) << "the other import goes on";
    EXPECT_TRUE(messages().contains("The import of two.txt was cancelled. Nothing was stored."));
    EXPECT_FALSE(cancel.isVisible());
    window->mainView().startProgress(QString("other work..."));
    EXPECT_FALSE(cancel.isVisible());
}

TEST_F(ImportTest, DroppedTextsAreImportedInOrderAndAskedAboutOnce) {
    const QString project = folder.filePath("kept.zorvel");
    open(write("kept.csv", ",a,b\nEast,1,2\n"));
    saveAs(project);
    MainWindowController& other = windows->openUntitled();
    window = &other;
    drop({write("b.txt", "Abies,3\n"), write("plots.csv", matrix), project,
          write("a.txt", "Picea,4\nLarix,1\n"), write("list.txt", "7\n8\n9\n")});
    ASSERT_TRUE(waitUntil([this] { return rows() == 5 && isIdle(); }));
    ASSERT_EQ(alerts.choices.size(), 1);
    const Choice& choice = alerts.choices.front();
    EXPECT_EQ(choice.options[choice.preselected].section('\t', 0, 0), "&Single census");
    EXPECT_EQ(choice.excerpt, "Abies,3");
    EXPECT_TRUE(choice.text.contains("2 files")) << choice.text.toStdString();
    EXPECT_EQ(context().undoName(), "Import Abundance List");
    EXPECT_EQ(name(1), "North");
    EXPECT_EQ(context().censuses()[3].taxonCount(), 2U);
    EXPECT_EQ(windows->windows().size(), 2U);
}

TEST_F(ImportTest, TheAnswerDecidesAndCancellingOpensNothing) {
    alerts.chosen = {-1};
    open(write("doubt.csv", "site,oak\nNorth,3\n"));
    EXPECT_TRUE(windows->isFree(*window));
    EXPECT_TRUE(messages().isEmpty());
    alerts.chosen = {1};
    open(folder.filePath("doubt.csv"));
    EXPECT_EQ(console.back(), "WARNING: Census could not be obtained");
    open(folder.filePath("doubt.csv"));
    EXPECT_EQ(name(0), "North");
    EXPECT_EQ(alerts.choices.size(), 3);
}

TEST_F(ImportTest, FirstLinesTellTheKindOrLeaveADoubt) {
    QByteArray large = ",Ä,b\nNorth,1,2\n";
    while (large.size() < 65535) large += "South,1,2\n";
    large.insert(65535, "Ö");
    QByteArray longHeader;
    for (int i = 0; i < 10'000; ++i) longHeader += ",Genus species " + QByteArray::number(i);
    const QByteArray longRow = "\nNorth" + QByteArray(",7").repeated(10'000);
    const struct {
        QByteArray text;
        FileKind guess;
        bool certain;
        bool isTable = false;
    } cases[] = {
        {phoneFile, FileKind::ios, true},
        {"1, 2\n3\n", FileKind::list, true},
        {large, FileKind::matrix, true},
        {longHeader + longRow + longRow + '\n', FileKind::matrix, true},
        {"xx" + QByteArray("ü").repeated(5'000'000), FileKind::matrix, false},
        {QByteArray("1 ").repeated(5'000'000), FileKind::list, true},
        {",a,b\n\nNorth,1,2", FileKind::matrix, true},
        {"Abies,3\nLarix,2\n", FileKind::census, false},
        {"site,oak\nNorth,3\n", FileKind::matrix, false},
        {"site,oak,elm\nNorth,3,many\n", FileKind::matrix, false, true},
        {"Plot;Abies;Larix\nP1;2;3\n", FileKind::matrix, false, true},
        {"species,Plot 1,Plot 2\nAbies alba,1,x\n", FileKind::matrix, false, true},
        {"Count of 2021\n,Abies,Larix\nP1,2,3\n", FileKind::matrix, false, true},
        {"site,oak,elm\nNorth,3\n", FileKind::matrix, false},
        {"site,oak,12\nNorth,3,4\n", FileKind::matrix, false},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.text.left(40).toStdString());
        const KnownFile known = lookAt(write("sample.csv", test.text));
        EXPECT_TRUE(known.isText);
        EXPECT_EQ(known.isTable, test.isTable);
        EXPECT_EQ(known.kind, test.guess);
        EXPECT_EQ(known.certain, test.certain);
        EXPECT_LE(known.firstLines.count('\n'), 5);
    }
    for (const QString& path :
         {folder.filePath("missing.csv"), folder.path(), write("empty", "")}) {
        EXPECT_FALSE(lookAt(path).isText);
    }
    const KnownFile wide = lookAt(write("wide.csv", QByteArray("\xff\xfe\0a", 4)));
    EXPECT_TRUE(wide.isTable && wide.certain) << "UTF-16 is looked at in any case";
}

// What is looked at is what is read, even where another file takes its place meanwhile.
TEST_F(ImportTest, FilesAreOpenedOnce) {
    for (const int extra : {0, 100'000}) {
        const QString path = write("plots.csv", matrix + QByteArray(extra, '\n') + "West,5,6\n");
        const KnownFile known = lookAt(path);
        ASSERT_TRUE(QFile::remove(path));
        importFiles(*windows, CommandWindow(window), {known}, window);
        ASSERT_TRUE(waitUntil([this] { return !messages().isEmpty() && isIdle(); }));
        EXPECT_TRUE(messages().last().startsWith("Imported 3 censuses")) << extra;
    }
}

}  // namespace
}  // namespace zorvel
