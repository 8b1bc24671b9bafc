// Curves of diversity as numbers, and the window that shows them.
#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QMimeData>
#include <QPushButton>
#include <QTableView>
#include <QTest>
#include <memory>

#include "platform/job_queue.h"
#include "platform/preferences.h"
#include "platform/settings.h"
#include "tests/support/wait_until.h"
#include "ui/analysis/curves_view.h"
#include "ui/analysis/diversity_tables.h"
#include "ui/analysis/diversity_window_controller.h"
#include "ui/fake_panels.h"
#include "ui/kit/popover.h"
#include "ui/kit/small_widgets.h"

namespace zorvel {
namespace {

TEST(CurvesPlot, LabelsDoNotOverlapAndStayNearTheirCurves) {
    const struct {
        std::vector<double> wanted;
        std::vector<double> heights;
    } rows[] = {
        {{50}, {50}},
        {{50, 80}, {50, 80}},
        {{52, 50}, {56, 46}},  // apart by 10, around their middle
        {{50, 50, 50}, {40, 50, 60}},
        {{2, 3}, {5, 15}},             // not above the top
        {{99, 98, 60}, {95, 85, 60}},  // nor below the bottom
        {{50, 58, 30, 39}, {49, 59, 29.5, 39}},
    };
    for (const auto& row : rows) {
        const std::vector<double> heights = spreadLabels(row.wanted, 10, 0, 100);
        ASSERT_EQ(heights.size(), row.heights.size());
        for (std::size_t i = 0; i < heights.size(); ++i) {
            EXPECT_NEAR(heights[i], row.heights[i], 0.6) << i;
            for (std::size_t j = 0; j < i; ++j) {
                EXPECT_GE(std::abs(heights[i] - heights[j]), 10 - 1e-9);
            }
        }
    }
}

TEST(CurvesPlot, TicksHaveTheDecimalsOfTheirStep) {
    const struct {
        double end;
        const char* labels;
    } rows[] = {
        {1, "0.0 0.2 0.4 0.6 0.8 1.0 "},
        {0.05, "0.00 0.01 0.02 0.03 0.04 0.05 "},
        {2, "0.0 0.5 1.0 1.5 2.0 "},
        {537, "0 100 200 300 400 500 "},
        {1e9, "0 2e+08 4e+08 6e+08 8e+08 1e+09 "},
    };
    for (const auto& row : rows) {
        QString labels;
        for (const AxisTick& tick : axisTicks(row.end)) labels += tick.label + ' ';
        EXPECT_EQ(labels.toStdString(), row.labels);
    }
}

DiversitySubject census(const char* name, const CountsVector& counts) {
    return {name, abundanceFrequencies(counts)};
}

const CountsVector poor{30, 12, 4, 2, 1};
const CountsVector rich{9, 8, 7, 5, 4, 3, 2, 2, 1, 1, 1, 1};

TEST(DiversityCurves, AreSolidToTheSampleAndDashedBeyondIt) {
    std::vector<DiversityCurve> curves{diversityCurve(census("Poor", poor)),
                                       diversityCurve(census("One", {1})),
                                       diversityCurve(census("Rich", rich))};
    for (DiversityCurve& curve : curves) curve.errors = errorsOf(curve, {});
    for (const DiversityAcross across :
         {DiversityAcross::sizes, DiversityAcross::coverage, DiversityAcross::orders}) {
        for (std::size_t order = 0; order < kHillOrders; ++order) {
            const std::vector<PlotCurve> plots =
                plotCurves(curves, {order, across}, ConfidenceLevel::percent95);
            ASSERT_EQ(plots.size(), 2U) << "a single specimen has no curve";
            EXPECT_EQ(plots[1].label, "Rich");
            EXPECT_NE(plots[0].color, plots[1].color);
            EXPECT_NE(plots[0].marker, plots[1].marker);
            for (const PlotCurve& plot : plots) {
                ASSERT_FALSE(plot.known.isEmpty());
                ASSERT_FALSE(plot.predicted.isEmpty());
                EXPECT_FALSE(plot.lower.isEmpty());
                if (across == DiversityAcross::orders) continue;
                EXPECT_EQ(plot.known.last(), plot.predicted.first());
                EXPECT_EQ(plot.known.last(), *plot.own);
                const std::optional<double> low = valueAt(plot.lower, plot.own->x());
                const std::optional<double> high = valueAt(plot.upper, plot.own->x());
                ASSERT_TRUE(low && high);
                EXPECT_LT(*low, plot.own->y());
                EXPECT_LT(plot.own->y(), *high);
            }
        }
    }
    const PlotCurve first = plotCurves(curves, {0, DiversityAcross::sizes}, {}).front();
    EXPECT_EQ(*first.own, QPointF(49, 5));
    EXPECT_EQ(first.predicted.last().x(), 98);
    const CommonCoverage common = *commonCoverage(curves);
    EXPECT_EQ(common.limitedBy, 2U);
    EXPECT_EQ(common.coverage, *curves[2].estimator.coverageAtTwice());
}

class DiversityWindowTest : public ::testing::Test {
  protected:
    void SetUp() override {
        clearSettings();
        Preferences().initializePreferences();
        inputs.project = "Meadow";
        const FrequencyCounts incidence = incidenceFrequencies(CountsVector{5, 3, 2, 1, 1}, 5);
        inputs.groups = {
            {"Selected censuses",
             {census("Poor", poor), census("Rich, wet", rich), census("One", {1})}},
            {"All pooled", {census("All pooled", rich)}},
            {"Over the censuses", {{"Over the censuses", incidence}}},
        };
        openWindow({});
    }
    void openWindow(const DiversityChoice& choice) {
        window = std::make_unique<DiversityWindowController>(
            *jobs, Panels{openPanel, savePanel, alerts}, choice);
        window->show();
        window->viewController().setInputs(inputs);
        ASSERT_TRUE(waitForLimits());
    }
    void TearDown() override {
        window.reset();
        jobs.reset();
    }

    template <class Widget>
    Widget& find(const char* name) {
        return *window->findChild<Widget*>(name);
    }
    QString cell(int row, int column) {
        return find<QTableView>("diversityTable").model()->index(row, column).data().toString();
    }
    bool waitForLimits() {
        return waitUntil([this] { return !find<Spinner>("progressIndicator").isAnimated(); });
    }
    // What F1 tells in the widget that has the focus.
    QString explanation(QWidget& focus) {
        focus.setFocus();
        QTest::keyClick(window->windowHandle(), Qt::Key_F1);
        auto* popover = window->findChild<Popover*>();
        QString told = popover != nullptr && popover->isVisible() ? popover->accessibleName()
                                                                  : QString("nothing");
        QTest::keyClick(window->windowHandle(), Qt::Key_Escape);
        EXPECT_TRUE(focus.hasFocus());
        return told;
    }
    QString explanationOfCell(int row, int column) {
        auto& table = find<QTableView>("diversityTable");
        table.setCurrentIndex(table.model()->index(row, column));
        return explanation(table);
    }
    CurvesView& view() { return find<CurvesView>("curvesView"); }
    QString readout() { return find<QLabel>("plotReadout").text(); }
    void choose(const char* box, int row) {
        find<QComboBox>(box).setCurrentIndex(row);
        QApplication::processEvents();
    }

    FakeOpenPanel openPanel;
    FakeSavePanel savePanel;
    FakeAlerts alerts;
    std::unique_ptr<JobQueue> jobs = std::make_unique<JobQueue>();
    DiversityInputs inputs;
    std::unique_ptr<DiversityWindowController> window;
};

TEST_F(DiversityWindowTest, ComparesAtTheCoverageThatAllReach) {
    const DiversityEstimator estimator(abundanceFrequencies(rich));
    const double common = *estimator.coverageAtTwice();
    EXPECT_NEAR(find<QDoubleSpinBox>("coverageField").value(), common, 1e-4);
    EXPECT_TRUE(
        find<QLabel>("coverageNote").text().contains("limited by Rich, wet (44 specimens)"));
    EXPECT_EQ(cell(1, 0), "Rich, wet");
    EXPECT_EQ(cell(1, 3), "88") << "twice its size";
    EXPECT_EQ(cell(2, 4), "-");
    EXPECT_EQ(cell(2, 7), "A single specimen says nothing about coverage.");
    find<QDoubleSpinBox>("coverageField").setValue(0.8);
    EXPECT_FALSE(find<QPushButton>("saveTableButton").isEnabled()) << "its limits are missing";
    ASSERT_TRUE(waitForLimits());
    EXPECT_TRUE(find<QPushButton>("saveTableButton").isEnabled());
    EXPECT_EQ(find<QLabel>("coverageNote").text(), "");
    const QString expected = QString::number(estimator.atCoverage(0.8)->diversity[0], 'f', 2);
    EXPECT_TRUE(cell(1, 4).startsWith(expected)) << cell(1, 4).toStdString();
    EXPECT_NEAR(*view().plot().line, 0.8, 1e-9);
    QTest::mouseClick(&find<QPushButton>("commonCoverageButton"), Qt::LeftButton);
    EXPECT_NEAR(*view().plot().line, common, 1e-9);
    find<QDoubleSpinBox>("coverageField").setValue(1);
    EXPECT_TRUE(waitUntil(
        [this] { return cell(0, 7).startsWith("This coverage would need more than any"); }));
}

TEST_F(DiversityWindowTest, TheLineIsDraggedAndMovedByKeys) {
    const auto placeOf = [&](double x) {
        const QPointF place = frameOf(view().plot(), view().size())->pointOf({x, 1});
        return place.toPoint();
    };
    QTest::mousePress(&view(), Qt::LeftButton, {}, placeOf(*view().plot().line));
    QTest::mouseMove(&view(), placeOf(0.6));
    QTest::mouseRelease(&view(), Qt::LeftButton, {}, placeOf(0.6));
    EXPECT_NEAR(find<QDoubleSpinBox>("coverageField").value(), 0.6, 0.01);
    const double before = *view().plot().line;
    QTest::keyClick(&view(), Qt::Key_Left, Qt::ShiftModifier);
    EXPECT_LT(*view().plot().line, before);
    EXPECT_GT(*view().plot().line, before - 0.01);
    // A drag snaps to the coverage that all reach, keys pass it.
    const double common = *view().plot().rest;
    QTest::mousePress(&view(), Qt::LeftButton, {}, placeOf(*view().plot().line));
    QTest::mouseMove(&view(), placeOf(common) + QPoint(3, 0));
    QTest::mouseRelease(&view(), Qt::LeftButton, {}, placeOf(common));
    EXPECT_EQ(*view().plot().line, common);
    QTest::keyClick(&view(), Qt::Key_Left, Qt::ShiftModifier);
    EXPECT_LT(*view().plot().line, common);
    QTest::keyClick(&view(), Qt::Key_Left, Qt::ShiftModifier);
    EXPECT_LT(*view().plot().line, common - 0.005);
}

TEST_F(DiversityWindowTest, PointsAreReadOutByKeysAndPointer) {
    choose("acrossBox", 0);
    ASSERT_TRUE(waitUntil([this] { return !view().plot().curves[0].upper.isEmpty(); }));
    QTest::keyClick(&view(), Qt::Key_End);
    EXPECT_TRUE(readout().startsWith("Poor: 5.42 at 98 specimens, 95% limits "))
        << readout().toStdString();
    EXPECT_TRUE(readout().endsWith("predicted"));
    QTest::keyClick(&view(), Qt::Key_Down);
    QTest::keyClick(&view(), Qt::Key_Home);
    EXPECT_EQ(readout().left(15), "Rich, wet: 1.00");
    EXPECT_EQ(view().accessibleDescription(), readout());
    const QPointF own = *view().plot().curves[1].own;
    QTest::mouseMove(&view(), frameOf(view().plot(), view().size())->pointOf(own).toPoint());
    EXPECT_TRUE(readout().startsWith("Rich, wet: 12.00 at 44 specimens, 95% limits "))
        << readout().toStdString();
    QTest::keyClick(&view(), Qt::Key_Escape);
    EXPECT_TRUE(readout().startsWith("Solid:"));
}

TEST_F(DiversityWindowTest, ShowsPooledAndOverTheCensusesToo) {
    choose("ofBox", 1);
    ASSERT_TRUE(waitUntil([this] { return cell(0, 0) == "All pooled"; }));
    EXPECT_EQ(find<QTableView>("diversityTable").model()->rowCount(), 1);
    choose("ofBox", 2);
    ASSERT_TRUE(waitUntil([this] { return cell(0, 0) == "Over the censuses"; }));
    choose("acrossBox", 0);
    EXPECT_EQ(find<QLabel>("widthAxisTitle").text(), "Number of censuses");
    EXPECT_EQ(*view().plot().curves[0].own, QPointF(5, 5));
    const QAbstractItemModel& table = *find<QTableView>("diversityTable").model();
    EXPECT_EQ(table.headerData(1, Qt::Horizontal).toString(), "Censuses");
    choose("acrossBox", 2);
    EXPECT_FALSE(find<QComboBox>("orderBox").isEnabled());
    EXPECT_EQ(view().plot().curves[0].known.last().x(), 2);
    // While others are computed, the curves that are shown keep their words.
    choose("acrossBox", 0);
    find<QComboBox>("ofBox").setCurrentIndex(0);
    choose("orderBox", 1);
    if (view().plot().curves.size() == 1) {
        EXPECT_EQ(find<QLabel>("widthAxisTitle").text(), "Number of censuses");
    }
    ASSERT_TRUE(waitUntil([this] { return view().plot().curves.size() == 2; }));
    EXPECT_EQ(find<QLabel>("widthAxisTitle").text(), "Number of specimens");
}

TEST_F(DiversityWindowTest, OverOrdersTheLimitsAreThoseOfTheEstimate) {
    choose("acrossBox", 2);
    QTest::keyClick(&view(), Qt::Key_Home);
    EXPECT_TRUE(readout().startsWith("Poor: 5.00 at order 0.0, observed; 5.49, estimated, 95% "))
        << readout().toStdString();
    choose("tableBox", 1);
    EXPECT_EQ(cell(0, 1) + cell(0, 4), "observed-");
    EXPECT_EQ(cell(21, 1), "estimated");
    EXPECT_NE(cell(21, 4), "-");
    EXPECT_EQ(find<QTableView>("diversityTable").model()->rowCount(), 2 * 2 * 21);
}

TEST_F(DiversityWindowTest, ValuesAndCurvesExplainThemselves) {
    const QString richness = explanationOfCell(1, 4);
    EXPECT_TRUE(richness.startsWith("Species richness (q = 0)\n")) << richness.toStdString();
    for (const char* part :
         {" for Rich, wet\n", "its value is predicted", "SQS aims at the same", "S = 12, f1 = 4",
          "m = 88", "Limits: 95%: ", "200 simulated samples", "Hill, M. O. (1973)"}) {
        EXPECT_TRUE(richness.contains(part)) << part;
    }
    // Its text is copied as elsewhere, although the keys copy the plot in this window.
    view().setFocus();
    QTest::keyClick(window->windowHandle(), Qt::Key_F1);
    QTest::keyClick(window->windowHandle(), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(window->windowHandle(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_TRUE(QApplication::clipboard()->text().startsWith("Diversity over sample coverage"))
        << QApplication::clipboard()->text().toStdString();
    QTest::keyClick(window->windowHandle(), Qt::Key_Escape);
    EXPECT_TRUE(explanationOfCell(0, 2).contains("(N - 1) f1 / ((N - 1) f1 + 2 f2)"));
    EXPECT_TRUE(explanationOfCell(0, 0).contains("Simpson diversity (q = 2): "));
    const QString missing = explanationOfCell(2, 5);
    EXPECT_TRUE(missing.contains("No value for One\n")) << missing.toStdString();
    EXPECT_TRUE(missing.contains("A single specimen says nothing about coverage."));
    EXPECT_TRUE(explanation(find<QDoubleSpinBox>("coverageField")).contains("Limited by: Rich"));
    QTest::keyClick(&view(), Qt::Key_Home);
    choose("acrossBox", 2);
    EXPECT_FALSE(explanation(view()).contains("Estimates:")) << "no curve is marked";
    QTest::keyClick(&view(), Qt::Key_Home);
    const QString profile = explanation(view());
    EXPECT_TRUE(profile.contains("q = 0: 5.49 (the Chao1 of the panel: 5.00)"))
        << profile.toStdString();
    choose("tableBox", 1);
    EXPECT_TRUE(explanationOfCell(43, 3).contains("Inputs: Rich, wet: N = 44"));
    choose("acrossBox", 0);
    EXPECT_TRUE(explanation(find<QComboBox>("acrossBox")).contains("1.61 here"));
}

TEST_F(DiversityWindowTest, KeepsTheChoiceForTheNextWindow) {
    DiversityChoice kept;
    QObject::connect(&window->viewController(), &DiversityViewController::choiceDidChange,
                     window.get(), [&](const DiversityChoice& choice) { kept = choice; });
    choose("ofBox", 2);
    choose("orderBox", 2);
    choose("acrossBox", 0);
    find<QDoubleSpinBox>("coverageField").setValue(0.7);
    openWindow(kept);
    EXPECT_EQ(find<QComboBox>("ofBox").currentText(), "Over the censuses");
    EXPECT_EQ(find<QComboBox>("orderBox").currentIndex(), 2);
    EXPECT_EQ(find<QLabel>("widthAxisTitle").text(), "Number of censuses");
    EXPECT_EQ(find<QDoubleSpinBox>("coverageField").value(), 0.7);
    inputs.groups.pop_back();
    openWindow(kept);
    EXPECT_EQ(find<QComboBox>("ofBox").currentText(), "Selected censuses");
}

TEST_F(DiversityWindowTest, TablesAreCopiedAndSaved) {
    QTest::keyClick(window.get(), Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
    const QMimeData* copied = QApplication::clipboard()->mimeData();
    EXPECT_TRUE(copied->text().contains("\nRich, wet\t44\t")) << copied->text().toStdString();
    EXPECT_TRUE(copied->data("text/csv").contains("\n\"Rich, wet\",44,"));
    auto& table = find<QTableView>("diversityTable");
    table.setFocus();
    table.setCurrentIndex(table.model()->index(0, 0));
    table.selectionModel()->select(table.model()->index(1, 1), QItemSelectionModel::Select);
    QTest::keyClick(window->windowHandle(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), "Poor\n44");
    choose("tableBox", 1);
    EXPECT_EQ(cell(0, 0), "Poor");
    EXPECT_EQ(cell(0, 3), "1.000");
    view().setFocus();
    QTest::keyClick(window.get(), Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(QApplication::clipboard()->text().startsWith("Curve\tPart\tSample coverage\t"));
    QTest::keyClick(window.get(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_TRUE(QApplication::clipboard()->mimeData()->hasImage());
    EXPECT_FALSE(QApplication::clipboard()->mimeData()->data("application/pdf").isEmpty());
}

TEST_F(DiversityWindowTest, MayCloseWhileItComputes) {
    find<QDoubleSpinBox>("coverageField").setValue(0.5);
    choose("ofBox", 1);
    window.reset();
    QApplication::processEvents();
}

}  // namespace
}  // namespace zorvel
