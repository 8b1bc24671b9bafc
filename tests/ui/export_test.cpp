// Exports from the menu command to the file on the disk, beside what the command-line tool writes.
#include <sys/stat.h>

#include <QProcess>
#include <QPushButton>
#include <utility>
#include <vector>

#include "app/exports.h"
#include "support/import_censuses.h"
#include "ui/window_fixture.h"

namespace zorvel {
namespace {

struct ExportKind {
    const char* command;
    QString progress;
    QString suggestion;
    QStringList toolArguments;
};

const ExportKind matrixExport = {"exportCensusMatrixMenuItemTapped",
                                 "preparing census matrix export...",
                                 "Untitled census matrix",
                                 {"matrix"}};
const ExportKind metricsExport = {"exportMetricsMenuItemTapped",
                                  "preparing metrics export...",
                                  "Untitled metrics",
                                  {"metrics", "--seed", "11"}};
const ExportKind longTableExport = {"exportLongTableMenuItemTapped",
                                    "preparing long table export...",
                                    "Untitled long table",
                                    {"long-table"}};

const ExportKind diversityExport = {"exportDiversityTableMenuItemTapped",
                                    "preparing diversity table export...",
                                    "Untitled diversity table",
                                    {"diversity", "--at-coverage", "common"}};

class ExportTest : public WindowTest {
  protected:
    void SetUp() override {
        WindowTest::SetUp();
        savePanel.answer = folder.filePath("out.csv");
    }
    void addNamed(const char* name, const std::vector<std::pair<const char*, int>>& taxa) {
        MockCensus census;
        census.name = name;
        for (const auto& [taxon, abundance] : taxa) census.taxa.push_back({abundance, taxon});
        importCensuses(context(), {census});
        context().announceChanges();
    }
    void exportNow(const ExportKind& kind) {
        trigger(kind.command);
        ASSERT_TRUE(waitUntil([this] { return isIdle(); }));
    }
    QByteArray exported() {
        QFile file(savePanel.answer);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
    }
    std::string said() { return messages().join(" | ").toStdString(); }
    QByteArray toolOutput(QStringList arguments, const QString& file) {
        QProcess tool;
        arguments.insert(1, file);
        tool.start(ZORVEL_CLI, arguments);
        EXPECT_TRUE(tool.waitForFinished());
        EXPECT_EQ(tool.exitCode(), 0) << tool.readAllStandardError().toStdString();
        return tool.readAllStandardOutput();
    }
};

TEST_F(ExportTest, FilesEqualThoseOfTheTool) {
    open(exampleFile);
    for (const ExportKind& kind : {matrixExport, metricsExport, longTableExport, diversityExport}) {
        drainJobs();
        trigger(kind.command);
        EXPECT_EQ(label("progressLabel"), kind.progress.toStdString());
        EXPECT_TRUE(waitUntil([this] { return isIdle(); }));
        EXPECT_EQ(label("progressLabel"), "");
        const QByteArray expected = toolOutput(kind.toolArguments, exampleFile);
        EXPECT_GT(expected.size(), 1000);
        EXPECT_TRUE(exported() == expected) << kind.command;
        EXPECT_EQ(savePanel.ending, ".csv");
    }
    EXPECT_EQ(
        said(),
        "Exported 70 censuses to out.csv. | Exported 70 censuses to out.csv. The SQS of one "
        "census, for which there is no estimate, is written as 0.0. | Exported 70 censuses to "
        "out.csv. | Exported 70 censuses to out.csv.");
}

TEST_F(ExportTest, SmallProjects) {
    const struct {
        ExportKind kind;
        std::vector<std::pair<const char*, std::vector<std::pair<const char*, int>>>> censuses;
        QByteArray text;
        std::string message;
    } cases[] = {
        {matrixExport, {}, " \n", "Exported 0 censuses to out.csv."},
        {metricsExport,
         {},
         " , Abundance, Richness, Chao-1, alroySQS, Shannon's H, Fisher's alpha, Pielou's J, "
         "Simpson's D, Buzas-Gibson E\n",
         "Exported 0 censuses to out.csv."},
        {matrixExport,
         {{"North", {{"Abies", 3}, {"Abies", 5}}}, {"South", {{"Larix", 2}}}, {"North", {}}},
         " , Abies, Larix\nNorth,5,0\nSouth,0,2\nNorth,0,0\n",
         "Exported 3 censuses to out.csv. One census has the name of an earlier one: the census "
         "matrix holds its species in the row of that one, and its own row stays empty. One "
         "species has the name of a later one of its census: the census matrix uses only the later "
         "one, and the pooled values add them up."},
        {metricsExport,
         {{"bare", {}}},
         " , Abundance, Richness, Chao-1, alroySQS, Shannon's H, Fisher's alpha, Pielou's J, "
         "Simpson's D, Buzas-Gibson E\nbare, 0, 0, -, 0.0, 0.0, 0.0, 0.0, 0.0, -\n",
         "Exported one census to out.csv. The SQS of one census, for which there is no estimate, "
         "is written as 0.0."},
        {diversityExport,
         {{"bare, it is", {{"Abies", 1}}}},
         "census,coverage,sampleSize,method,q0,q0lower95limit,q0upper95limit,q0lower99limit,"
         "q0upper99limit,q1,q1lower95limit,q1upper95limit,q1lower99limit,q1upper99limit,q2,"
         "q2lower95limit,q2upper95limit,q2lower99limit,q2upper99limit\n"
         "\"bare, it is\",-,-,-,-,-,-,-,-,-,-,-,-,-,-,-,-,-,-\n",
         "Exported one census to out.csv. No census has the two specimens that coverage needs: the "
         "table has no values."},
    };
    for (const auto& c : cases) {
        window = &windows->openUntitled();
        for (const auto& [name, taxa] : c.censuses) addNamed(name, taxa);
        exportNow(c.kind);
        EXPECT_EQ(exported().toStdString(), c.text.toStdString());
        EXPECT_EQ(said(), c.message);
    }
}

TEST_F(ExportTest, IsOfTheProjectAtTheCommand) {
    addNamed("North", {{"Abies", 3}});
    QTest::keyClicks(&edit(censusTable(), 0, 0), "East");
    holdJobs();
    trigger(matrixExport.command);  // stores what is typed
    addNamed("South", {{"Larix", 2}});
    releaseJobs();
    ASSERT_TRUE(waitUntil([this] { return isIdle(); }));
    EXPECT_EQ(exported(), " , Abies\nEast,3\n");
    savePanel.answer.clear();
    exportNow(metricsExport);  // cancelled
    EXPECT_EQ(messages(), QStringList{"Exported one census to out.csv."});
}

TEST_F(ExportTest, AnAlertReportsAFileThatCannotBeWritten) {
    savePanel.answer = folder.filePath("no/such/folder/out.csv");
    exportNow(matrixExport);
    EXPECT_EQ(alerts.warnings,
              QStringList{"“out.csv” could not be written: No such file or directory"});
    EXPECT_EQ(said(), "");
}

TEST_F(ExportTest, SeveralCanRunAndEachCanBeCancelled) {
    holdJobs();
    trigger(matrixExport.command);
    trigger(metricsExport.command);
    child<QPushButton>("cancelProgressButton").click();
    EXPECT_EQ(label("progressLabel"), matrixExport.progress.toStdString());
    releaseJobs();
    ASSERT_TRUE(waitUntil([this] { return isIdle(); }));
    drainJobs();
    EXPECT_EQ(savePanel.suggestions, QStringList{matrixExport.suggestion});
}

TEST_F(ExportTest, OutlivesItsWindow) {
    addNamed("North", {{"Abies", 3}});
    MainWindowController& other = windows->openUntitled();
    holdJobs();
    trigger(matrixExport.command);
    alerts.answers = {"Discard"};
    window->close();
    sendDeletions();
    releaseJobs();
    window = &other;
    ASSERT_TRUE(waitUntil([this] { return !said().empty(); }));
    EXPECT_EQ(said(), "Exported one census to out.csv.");
    EXPECT_EQ(exported(), " , Abies\nNorth,3\n");
}

TEST_F(ExportTest, ClosingAndQuittingAskWhileOneIsPrepared) {
    for (const bool byClosing : {false, true}) {
        alerts.asked.clear();
        holdJobs();
        trigger(matrixExport.command);
        alerts.answers = {"Cancel"};
        EXPECT_FALSE(byClosing ? window->close() : windows->quit());
        EXPECT_EQ(alerts.asked, QStringList{"An export is still being prepared"});
        releaseJobs();
        ASSERT_TRUE(waitUntil([this] { return isIdle(); }));
        EXPECT_EQ(exported(), " \n");
    }
    holdJobs();
    trigger(matrixExport.command);
    savePanel.suggestions.clear();
    alerts.answers = {"Quit Anyway"};
    EXPECT_TRUE(windows->quit());
    releaseJobs();
    drainJobs();
    EXPECT_EQ(savePanel.suggestions, QStringList());
}

TEST_F(ExportTest, QuittingWaitsForTheFile) {
    addNamed("North", {{"Abies", 3}});
    exportNow(matrixExport);
    savePanel.answer = folder.filePath("later.csv");
    trigger(matrixExport.command);
    ASSERT_TRUE(waitUntil([this] { return savePanel.suggestions.size() == 2; }));
    alerts.answers = {"Discard"};
    windows->quit();
    EXPECT_EQ(exported(), " , Abies\nNorth,3\n");
}

// A pipe that nobody reads.
TEST_F(ExportTest, QuittingAsksWhereAFileIsNotWrittenInTime) {
    ASSERT_EQ(mkfifo(savePanel.answer.toUtf8().constData(), 0600), 0);
    trigger(matrixExport.command);
    ASSERT_TRUE(waitUntil([this] { return savePanel.suggestions.size() == 1; }));
    alerts.answers = {"Cancel"};
    EXPECT_FALSE(windows->quit());
    EXPECT_EQ(alerts.asked, QStringList{"A file is still being written"});
    EXPECT_EQ(exported(), " \n");
    EXPECT_TRUE(waitUntil([this] { return isIdle(); }));
}

TEST_F(ExportTest, WithoutAWindowALineTellsWhy) {
    windows->exports().start(Exports::censusMatrix, nullptr);
    windows->exports().start(Exports::metrics, nullptr);
    EXPECT_EQ(console,
              (std::vector<std::string>{
                  "WARNING: Could not obtain document/window/view for census matrix export",
                  "WARNING: Could not obtain document/window/view for metrics matrix export"}));
}

class SpeciesListTest : public ExportTest {
  protected:
    void import(const QByteArray& text) {
        panel.answer = QStringList{write("names.txt", text)};
        strip().dismiss();
        trigger("importSpeciesListMenuItemTapped");
        ASSERT_TRUE(waitUntil([this] { return isIdle() && !said().empty(); }));
    }
    std::string completed(std::string typed) {
        std::optional<TextRange> proposed = TextRange{typed.size(), 0};
        window->mainView().taxonFormatter().isPartialStringValid(typed, proposed, "",
                                                                 {typed.size() - 1, 0});
        return typed;
    }
};

TEST_F(SpeciesListTest, MessagesTellWhatIsNew) {
    addNamed("North", {{"Abies alba", 3}});
    const std::uint64_t revision = context().revision();
    const struct {
        QByteArray text;
        std::string message;
    } cases[] = {
        {"Larix",
         "Added one name from names.txt, to complete species names until this window is "
         "closed."},
        {"Picea,Pinus\nPicea\tAbies alba",
         "Added 2 names from names.txt, to complete species names until this window is closed; one "
         "was known already."},
        {"Larix", "The one name in names.txt was known already."},
        {"Larix\nPicea\nPicea", "All 2 names in names.txt were known already."},
        {",\n\t,", "There are no names in names.txt."},
        {"Taxus,Larix,Picea",
         "Added one name from names.txt, to complete species names until this window is closed; 2 "
         "were known already."},
    };
    for (const auto& c : cases) {
        import(c.text);
        EXPECT_EQ(said(), c.message);
    }
    EXPECT_EQ(context().revision(), revision);
}

// Also when an opened project takes over the window, which was free.
TEST_F(SpeciesListTest, ItsNamesCompleteAsLongAsTheWindowIsOpen) {
    import("Picea abies\nPicea omorika");
    const QStringList news = messages();
    open(write("counts.csv", ",Abies alba,Larix\nNorth,1,2\n"));
    EXPECT_EQ(windows->windows().size(), 1U);
    EXPECT_EQ(context().censusCount(), 1U);
    for (const auto& [typed, completion] :
         {std::pair("Picea o", "Picea omorika"), {"Ab", "Abies alba"}, {"picea", "picea"}}) {
        EXPECT_EQ(completed(typed), completion);
    }
    EXPECT_EQ(messages(), news);
    EXPECT_EQ(strip().tone(), MessageStrip::Tone::news);
    TableTextField& field = edit(speciesTable(), 0, 1);
    QTest::keyClicks(&field, "Pic");
    EXPECT_EQ(field.text(), "Picea abies");
}

TEST_F(SpeciesListTest, WithoutATextOneLineIsWrittenUnlessThePanelWasCancelled) {
    trigger("importSpeciesListMenuItemTapped");
    EXPECT_TRUE(console.empty());
    EXPECT_EQ(said(), "");
    import("");
    EXPECT_EQ(console, std::vector<std::string>{"WARNING: no names found"});
    EXPECT_EQ(said(), "names.txt is empty.");
}

}  // namespace
}  // namespace zorvel
