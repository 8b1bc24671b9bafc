// The windows of analyses as the main window opens them, and how they and the projects go.
#include <QComboBox>
#include <QDir>
#include <QDoubleSpinBox>
#include <QPointer>
#include <QTableView>
#include <QTimer>
#include <algorithm>

#include "interchange/writers.h"
#include "model/edits.h"
#include "ui/analysis/project_wide_metrics_window_controller.h"
#include "ui/analysis/rarefaction_view_controller.h"
#include "ui/main/record_names.h"
#include "ui/window_fixture.h"

namespace zorvel {
namespace {

class AnalysisWindowsTest : public WindowTest {
  protected:
    void SetUp() override {
        WindowTest::SetUp();
        open(exampleFile);
        drainJobs();
    }
    MainViewController& view() { return window->mainView(); }
    RarefactionWindowController* curve() { return view().rarefactionWindowController(); }
    ProjectWideMetricsWindowController* wide() {
        return view().projectWideMetricsWindowController();
    }
    RarefactionWindowController* openCurve() {
        trigger("sampleBasedRarefaction");
        EXPECT_TRUE(waitUntil([this] { return curve() != nullptr && curve()->isVisible(); }));
        return curve();
    }
    bool waitUntilGone(const QPointer<QWidget>& gone) {
        return waitUntil([&] {
            sendDeletions();
            return gone.isNull();
        });
    }

    // The project can no longer be written to its file.
    void loseTheFile() {
        savePanel.answer = folder.filePath("mites.zorvel");
        trigger("saveDocument");
        ASSERT_TRUE(waitUntil([this] { return !window->document().isUntitled(); }));
        ASSERT_TRUE(waitUntilSaved());
        ASSERT_TRUE(QFile::remove(savePanel.answer));
        trigger("addCensus");
        ASSERT_TRUE(waitUntil([this] { return window->document().problem().has_value(); }));
    }
};

// And the next window of the project begins with what the last one was set to.
TEST_F(AnalysisWindowsTest, DiversityIsOfTheSelectedCensuses) {
    censusTable().selectRows({0, 1});
    const auto openDiversity = [&](int rows) {
        trigger("diversityAtEqualCoverage");
        QPointer<DiversityWindowController> opened = view().diversityWindowController();
        EXPECT_TRUE(waitUntil([&] {
            return opened->findChild<QTableView*>("diversityTable")->model()->rowCount() == rows;
        }));
        return opened;
    };
    const QPointer<DiversityWindowController> first = openDiversity(2);
    EXPECT_EQ(first->findChild<QComboBox*>("ofBox")->count(), 3);
    first->findChild<QComboBox*>("ofBox")->setCurrentIndex(1);
    first->findChild<QDoubleSpinBox*>("coverageField")->setValue(0.75);
    first->close();
    EXPECT_TRUE(waitUntilGone(first.data()));
    const QPointer<DiversityWindowController> next = openDiversity(1);
    EXPECT_EQ(next->findChild<QComboBox*>("ofBox")->currentText(), "All pooled");
    EXPECT_EQ(next->findChild<QDoubleSpinBox*>("coverageField")->value(), 0.75);
    censusTable().clearSelection();
    EXPECT_EQ(openDiversity(1)->findChild<QComboBox*>("ofBox")->itemText(0), "All censuses");
}

TEST_F(AnalysisWindowsTest, CurvesAreOfTheRecordsAsTheyWere) {
    censusTable().selectRows({2});
    drainJobs();
    const Census census = context().censuses()[2];
    editInclude(context(), {census.taxa().front()}, false);
    context().announceChanges();
    const IncidenceSummary incidence = summariseIncidence(buildSparseCounts(context()).counts);
    const struct {
        const char* command;
        const char* title;
        std::string subject;
        std::vector<Rarefaction> expected;
    } cases[] = {
        {"individualBasedRarefaction", "Individual-based Rarefaction", cell(censusTable(), 2, 0),
         sharedCalculator().individualBasedCurve(includedCountsVector(census))},
        {"sampleBasedRarefaction", "Sample-based Rarefaction", "oribatid-mites",
         sharedCalculator().sampleBasedCurve(incidence)},
    };
    holdJobs();
    for (const auto& each : cases) trigger(each.command);
    EXPECT_EQ(label("progressLabel"), "calculating rarefaction...");
    deleteTaxa(context(), census.taxa());
    context().announceChanges();
    censusTable().selectRows({0});
    EXPECT_EQ(curve(), nullptr);
    releaseJobs();
    ASSERT_TRUE(waitUntil([this] { return !view().isInProgress(); }));
    EXPECT_EQ(label("progressLabel"), "");
    QList<RarefactionWindowController*> opened;
    for (QWidget* each : QApplication::topLevelWidgets()) {
        if (auto* plot = qobject_cast<RarefactionWindowController*>(each)) opened.append(plot);
    }
    ASSERT_EQ(opened.size(), 2);
    for (const auto& each : cases) {
        const auto found = std::find_if(opened.begin(), opened.end(), [&](const QWidget* plot) {
            return plot->windowTitle() == each.title && plot->isVisible();
        });
        ASSERT_NE(found, opened.end()) << each.title;
        ASSERT_FALSE(each.expected.empty());
        EXPECT_EQ((*found)->viewController().subject().toStdString(), each.subject);
        EXPECT_EQ(writeRarefactionTable(*(*found)->viewController().rarefactionData()),
                  writeRarefactionTable(each.expected))
            << each.title;
    }
}

TEST_F(AnalysisWindowsTest, WithoutASelectedCensusThereIsNoCurve) {
    censusTable().clearSelection();
    trigger("individualBasedRarefaction");
    EXPECT_FALSE(view().isInProgress());
    drainJobs();
    EXPECT_EQ(curve(), nullptr);
    EXPECT_TRUE(alerts.warnings.isEmpty());
}

TEST_F(AnalysisWindowsTest, TheProjectWideWindowIsThereAtOnce) {
    holdJobs();
    trigger("calculateProjectWideMetrics");
    const QPointer<ProjectWideMetricsWindowController> first = wide();
    ASSERT_NE(first, nullptr);
    EXPECT_TRUE(first->isVisible());
    EXPECT_EQ(label("progressLabel"), "calculating project-wide metrics...");
    trigger("calculateProjectWideMetrics");
    EXPECT_NE(wide(), first);
    first->close();
    ASSERT_TRUE(waitUntilGone(first.data()));
    EXPECT_TRUE(view().isInProgress());
    releaseJobs();
    ASSERT_TRUE(waitUntil([this] { return !view().isInProgress(); }));
    EXPECT_TRUE(wide()->isVisible());
}

TEST_F(AnalysisWindowsTest, TheEndOfOneWorkLeavesTheWordsOfTheOthers) {
    const int import = view().startImportProgress("importing census matrix...", {});
    const int opening = view().startProgress(QString("opening moss..."));
    holdJobs();
    trigger("sampleBasedRarefaction");
    EXPECT_EQ(label("progressLabel"), "calculating rarefaction...");
    view().stopProgress(opening);
    EXPECT_EQ(label("progressLabel"), "calculating rarefaction...");
    view().stopProgress(opening);
    releaseJobs();
    ASSERT_TRUE(waitUntil([this] { return curve() != nullptr; }));
    EXPECT_EQ(label("progressLabel"), "importing census matrix...");
    EXPECT_TRUE(view().isInProgress());
    view().stopProgress(import);
    EXPECT_EQ(label("progressLabel"), "");
    EXPECT_FALSE(view().isInProgress());
}

TEST_F(AnalysisWindowsTest, AProjectMayCloseWhileItsJobsRun) {
    MainWindowController& other = windows->openUntitled();
    holdJobs();
    trigger("individualBasedRarefaction");
    trigger("calculateProjectWideMetrics");
    const QPointer<ProjectWideMetricsWindowController> filling = wide();
    const QPointer<MainWindowController> gone(window);
    EXPECT_TRUE(window->close());
    ASSERT_TRUE(waitUntilGone(gone.data()));
    releaseJobs();
    window = &other;
    drainJobs();
    EXPECT_TRUE(filling->isVisible());
    for (const QWidget* each : QApplication::topLevelWidgets()) {
        EXPECT_FALSE(each->inherits("zorvel::RarefactionWindowController"));
    }
}

// The program ends when its last window of any kind is closed, and not before.
TEST_F(AnalysisWindowsTest, APlotStaysUntilTheUserClosesIt) {
    const QPointer<RarefactionWindowController> plot = openCurve();
    loseTheFile();
    alerts.answers = {"Close Anyway"};  // it is not the last window
    EXPECT_TRUE(window->close());
    sendDeletions();
    EXPECT_TRUE(windows->windows().empty());
    EXPECT_TRUE(plot->isVisible());
    EXPECT_TRUE(plot->testAttribute(Qt::WA_QuitOnClose));
    // What could not be written goes to an untitled project, which closing waits for.
    plot->activateWindow();
    QTest::keySequence(plot.data(), QKeySequence::Close);
    EXPECT_FALSE(QDir(folder.filePath("untitled")).isEmpty());
    ASSERT_TRUE(waitUntilGone(plot.data()));
    for (const QWidget* each : QApplication::topLevelWidgets()) EXPECT_FALSE(each->isVisible());
}

TEST_F(AnalysisWindowsTest, TheLastPlotStaysIfQuittingIsCancelled) {
    const QPointer<RarefactionWindowController> plot = openCurve();
    loseTheFile();
    alerts.answers = {"Cancel"};
    EXPECT_FALSE(windows->quit());
    EXPECT_TRUE(plot->isVisible());
    alerts.answers = {"Quit Anyway"};
    QTest::keyClick(plot.data(), Qt::Key_Q, Qt::ControlModifier);
    EXPECT_TRUE(plot.isNull() || plot->isHidden());
    EXPECT_TRUE(windows->windows().empty());
}

TEST_F(AnalysisWindowsTest, QuittingWaitsForAPlotThatIsBeingSaved) {
    RarefactionViewController& plot = openCurve()->viewController();
    holdJobs();
    savePanel.answer = folder.filePath("plot.pdf");
    plot.savePlot();
    savePanel.answer = folder.filePath("no/such/plot.svg");
    plot.savePlot();
    QTimer::singleShot(700, window, [this] { releaseJobs(); });
    EXPECT_TRUE(windows->quit());
    EXPECT_TRUE(QFile::exists(folder.filePath("plot.pdf")));
    EXPECT_EQ(alerts.warnings.size(), 1);
}

TEST_F(AnalysisWindowsTest, TheEndOfTheProgramTakesItsWindowsAlong) {
    const QPointer<RarefactionWindowController> open = openCurve();
    holdJobs();
    trigger("calculateProjectWideMetrics");
    const QPointer<ProjectWideMetricsWindowController> filling = wide();
    filling->close();  // and its deletion is on its way
    endProgram();
    EXPECT_TRUE(open.isNull());
    EXPECT_TRUE(filling.isNull());
}

TEST(MergedNamesNote, TellsWhatEqualNamesMadeOfTheRecords) {
    EXPECT_EQ(mergedNamesNote({}), "");
    const auto note = [](std::size_t censuses, std::size_t replaced, std::size_t missing) {
        SparseCountsResult counts;
        counts.mergedCensuses = censuses;
        counts.replacedTaxa = replaced;
        counts.taxaInNoRow = missing;
        return mergedNamesNote(counts).toStdString();
    };
    const std::string made =
        " Averages, Chao2 and sample-based rarefaction are made from the census matrix.";
    EXPECT_EQ(
        note(0, 0, 1),
        "One species is not in the census matrix, since it or its census has no name." + made);
    EXPECT_EQ(note(2, 1234, 0),
              "2 censuses have the name of an earlier one: the census matrix holds their species "
              "in the row of that one, and their own rows stay empty. 1,234 species have the name "
              "of a later one of their census: the census matrix uses only the later one, and "
              "the pooled values add them up." +
                  made);
}

}  // namespace
}  // namespace zorvel
