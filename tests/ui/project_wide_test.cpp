#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QGuiApplication>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <memory>
#include <string>
#include <vector>

#include "metrics/random_source.h"
#include "platform/job_queue.h"
#include "platform/preferences.h"
#include "tests/support/wait_until.h"
#include "ui/analysis/project_wide_metrics_window_controller.h"
#include "ui/analysis/project_wide_rows.h"
#include "ui/kit/popover.h"
#include "ui/kit/value_field.h"

namespace zorvel {
namespace {

using Rows = std::vector<CountsVector>;

// Rows as they stand, and their columns summed.
ProjectWideInputs inputsOf(const Rows& rows, const QString& note = {}) {
    ProjectWideInputs inputs;
    inputs.project = "Moor";
    inputs.note = note;
    inputs.countsVector = CountsVector(rows.front().size(), 0);
    inputs.countsMatrix = SparseCounts(rows.front().size());
    std::vector<SparseCounts::Column> columns(rows.front().size());
    for (std::size_t i = 0; i < columns.size(); ++i) {
        columns[i] = static_cast<SparseCounts::Column>(i);
    }
    for (const CountsVector& row : rows) {
        inputs.countsMatrix->addRow(columns, row);
        for (std::size_t i = 0; i < row.size(); ++i) (*inputs.countsVector)[i] += row[i];
    }
    return inputs;
}

const Rows threeCensuses = {{10, 0, 3}, {5, 2, 0}, {1, 1, 1}};
// A larger one, in which every value can be had.
const Rows fullCensuses = {{20, 10, 6, 3, 2, 1, 1, 0},
                           {9, 14, 5, 2, 1, 1, 0, 2},
                           {30, 8, 8, 2, 2, 1, 0, 1},
                           {12, 12, 4, 2, 1, 0, 0, 0}};

class ProjectWideTest : public ::testing::Test {
  protected:
    void SetUp() override {
        Preferences().initializePreferences();
        Preferences().setRarefactionSize(50);
        Preferences().setSqsQuota(0.8);
    }
    void TearDown() override {
        window.reset();
        jobs.reset();
    }
    void fill(ProjectWideInputs inputs) {
        bool filled = false;
        QObject::connect(&window->viewController(), &ProjectWideMetricsViewController::didFill,
                         window.get(), [&filled] { filled = true; });
        window->viewController().setInputs(std::move(inputs));
        window->show();
        ASSERT_TRUE(waitUntil([&filled] { return filled; }));
    }
    ValueField& value(const std::string& name) {
        return *window->findChild<ValueField*>((name + "ValueTextField").c_str());
    }
    std::string text(const std::string& name) { return value(name).text().toStdString(); }
    std::string label(const std::string& name) {
        return window->findChild<QLabel*>(name.c_str())->text().toStdString();
    }
    std::string explain(const std::string& name) {
        value(name).setFocus();
        QTest::keyClick(&value(name), Qt::Key_F1);
        auto* popover = window->findChild<Popover*>();
        if (popover == nullptr || !popover->isVisible()) return "";
        std::string words = popover->accessibleName().toStdString();
        popover->dismiss();
        return words;
    }
    static std::string clipboard() { return QGuiApplication::clipboard()->text().toStdString(); }

    std::unique_ptr<JobQueue> jobs = std::make_unique<JobQueue>(2);
    std::unique_ptr<ProjectWideMetricsWindowController> window =
        std::make_unique<ProjectWideMetricsWindowController>(
            *jobs, [] { return std::make_unique<SeededRandom>(7); });
};

TEST_F(ProjectWideTest, ValuesOfSmallProjects) {
    const struct {
        Rows rows;
        std::vector<std::pair<const char*, const char*>> texts;
    } cases[] = {
        {threeCensuses,
         {{"abundance", "23"},
          {"richness", "3"},
          {"rarefiedRichness", "3.0"},
          {"chaoOne", "-"},  // no taxon of two specimens
          {"shannon", "0.822"},
          {"fisher", "0.921"},
          {"averageAbundance", "7.7"},
          {"averageRichness", "2.3"},
          {"averageChaoOne", "-"},
          {"averageRarefiedRichness", "2.3"},
          {"averageShannon", "0.746"},
          {"averageFisher", "0.532"},
          {"averageSimpson", "0.620"},
          {"sampleBasedRarefaction", "3.0"}}},
        // One census without a species, one of a single species, and a name without specimens.
        {{{0, 0, 0}, {7, 0, 0}, {2, 1, 0}},
         {{"abundance", "10"},
          {"richness", "2"},
          {"chaoOne", "-"},
          {"averageAbundance", "3.3"},
          {"averageRichness", "1.0"},
          {"averagePielou", "-"},
          {"averageBuzas", "-"},
          {"chaoTwo", "3.3"},  // 3 + (2/3) 1^2 / (2 x 1)
          {"sampleBasedRarefaction", "2.0"}}},
        // The same taxa everywhere.
        {{{9, 0}, {9, 0}, {9, 0}},
         {{"shannon", "0.0"},
          {"simpson", "0.0"},
          {"pielou", "-"},
          {"averageShannon", "0.0"},
          {"chaoTwo", "-"},
          {"sampleBasedRarefaction", "1.0"}}},
    };
    for (const auto& test : cases) {
        window = std::make_unique<ProjectWideMetricsWindowController>(
            *jobs, [] { return std::make_unique<SeededRandom>(7); });
        fill(inputsOf(test.rows));
        for (const auto& [name, expected] : test.texts) EXPECT_EQ(text(name), expected) << name;
    }
}

TEST_F(ProjectWideTest, EveryValueHasACaptionAndAnExplanation) {
    fill(inputsOf(fullCensuses));
    for (const ProjectWideRow& row : projectWideRows()) {
        auto* field = window->findChild<ValueField*>(row.value);
        auto* caption = window->findChild<QLabel*>(row.label);
        ASSERT_TRUE(field != nullptr && caption != nullptr) << row.value;
        EXPECT_FALSE(field->text().isEmpty()) << row.value;
        EXPECT_EQ(field->accessibleName(), caption->text());
        EXPECT_EQ(caption->buddy(), field);
        const std::string name = field->objectName().remove("ValueTextField").toStdString();
        const std::string words = explain(name);
        for (const std::string& part :
             {std::string(explanationOf(row.explanation)->formula), text(name) + " for Moor"}) {
            EXPECT_NE(words.find(part), std::string::npos) << name << ": " << words;
        }
    }
    EXPECT_EQ(label("projectHeading"), "Moor");
}

TEST_F(ProjectWideTest, CaptionsTellThePreferencesOfTheComputation) {
    EXPECT_EQ(label("rarefiedRichnessLabel"), "Rarefied richness");
    EXPECT_EQ(label("alroySQSLabel"), "Alroy SQS");
    Preferences().setRarefactionSize(3);
    Preferences().setSqsQuota(0.555);
    fill(inputsOf(fullCensuses));
    EXPECT_EQ(label("rarefiedRichnessLabel"), "Rarefied richness (3)");
    EXPECT_EQ(label("sampleBasedRarefactionLabel"), "Rarefied richness (3)");
    EXPECT_EQ(label("alroySQSLabel"), "Alroy SQS (quota: 0.56)");
    Preferences().setRarefactionSize(50);
    EXPECT_EQ(label("rarefiedRichnessLabel"), "Rarefied richness (3)");
}

TEST_F(ProjectWideTest, WithoutSqsTheRestIsFilledAndTheReasonStands) {
    fill(inputsOf({{4, 1}, {2, 1}, {1, 1}}));
    EXPECT_EQ(text("alroySqs"), "");
    EXPECT_EQ(label("alroySQSLabel"), "Alroy SQS");
    EXPECT_TRUE(value("alroySqs").isStale());
    const std::string notes = label("projectNotes");
    EXPECT_NE(notes.find("it needs at least 11 specimens"), std::string::npos) << notes;
    EXPECT_NE(notes.find("fewer than 11 specimens: 3;"), std::string::npos) << notes;
    EXPECT_NE(explain("alroySqs").find("No value for Moor\n"), std::string::npos);
    EXPECT_EQ(text("abundance"), "10");
    EXPECT_EQ(text("sampleBasedRarefaction"), "2.0");
    EXPECT_FALSE(value("averageRichness").isPending());
}

TEST_F(ProjectWideTest, TheAverageOfSqsTellsItsCensuses) {
    CountsMatrix censuses = fullCensuses;
    censuses.push_back(CountsVector(censuses.front().size(), 1));
    fill(inputsOf(censuses));
    EXPECT_NE(text("averageAlroySqs"), "");
    const std::string words = "of the " + std::to_string(fullCensuses.size()) + " of " +
                              std::to_string(censuses.size()) + " censuses";
    EXPECT_NE(label("projectNotes").find(words), std::string::npos) << label("projectNotes");
}

TEST_F(ProjectWideTest, ADashSaysWhichCensusesAreToBlame) {
    fill(inputsOf({{0, 0, 0}, {7, 0, 0}, {1, 0, 0}, {2, 1, 0}}));
    const struct {
        const char* name;
        const char* words;
    } cases[] = {
        {"averageChaoOne", "without a species of two specimens: 3 of 4"},
        {"averagePielou", "of a single species: 2 of 4"},
        {"averageSimpson", "of a single specimen: 1 of 4"},
        {"averageBuzas", "without a species: 1 of 4"},
        {"averageFisher", "no species has 5 specimens: 2 of 4"},
        {"averageRarefiedRichness", "of n specimens or fewer: 4 of 4"},
        {"chaoTwo", "without a species found in exactly two"},
        {"sampleBasedRarefaction", "T = 4, S = 2, t = 50"},
        {"chaoTwo", "T = 4, S_all = 3, Q1 = 1, Q2 = 0"},
    };
    for (const auto& test : cases) {
        const std::string words = explain(test.name);
        EXPECT_NE(words.find(test.words), std::string::npos) << words;
    }
}

// The window is there at once, and its values come from the top of the first group to the last.
TEST_F(ProjectWideTest, ValuesArriveInTheirOrder) {
    window->show();
    EXPECT_TRUE(value("abundance").isPending());
    EXPECT_NE(explain("abundance").find("No value for the project yet"), std::string::npos);
    std::vector<std::string> order;
    std::vector<std::string> expected;
    for (const ProjectWideRow& row : projectWideRows()) {
        expected.emplace_back(row.value);
        QObject::connect(window->findChild<ValueField*>(row.value), &QLineEdit::textChanged,
                         window.get(), [&order, row] { order.emplace_back(row.value); });
    }
    fill(inputsOf(fullCensuses));
    EXPECT_EQ(order, expected);
    EXPECT_FALSE(value("sampleBasedRarefaction").isPending());
}

TEST_F(ProjectWideTest, NothingIsComputedBeforeTheWindowAppears) {
    window->viewController().setInputs(inputsOf(fullCensuses));
    bool drained = false;
    jobs->start(
        window.get(), [] { return 0; }, [&drained](int) { drained = true; });
    ASSERT_TRUE(waitUntil([&drained] { return drained; }));
    EXPECT_EQ(text("abundance"), "");
    window->show();
    EXPECT_TRUE(waitUntil([this] { return !text("sampleBasedRarefaction").empty(); }));
}

TEST_F(ProjectWideTest, AbsentInputsLeaveTheirGroupsEmpty) {
    ProjectWideInputs none;
    none.project = "Moor";
    fill(none);
    for (const ProjectWideRow& row : projectWideRows()) {
        EXPECT_EQ(window->findChild<ValueField*>(row.value)->text(), "");
        EXPECT_FALSE(window->findChild<ValueField*>(row.value)->isPending());
    }
    EXPECT_NE(label("projectSummary").find("could not be read"), std::string::npos);

    window = std::make_unique<ProjectWideMetricsWindowController>(
        *jobs, [] { return std::make_unique<SeededRandom>(7); });
    ProjectWideInputs half = inputsOf(threeCensuses);
    half.countsVector.reset();
    fill(half);
    EXPECT_EQ(text("abundance"), "");
    EXPECT_EQ(text("averageAbundance"), "7.7");
}

// With every step the window may go; a result that comes later finds nobody.
TEST_F(ProjectWideTest, TheWindowMayCloseWhileValuesAreComputed) {
    for (std::size_t arrived = 0; arrived < projectWideRows().size(); ++arrived) {
        window = std::make_unique<ProjectWideMetricsWindowController>(
            *jobs, [] { return std::make_unique<SeededRandom>(7); });
        const char* name = projectWideRows()[arrived].value;
        QObject::connect(window->findChild<ValueField*>(name), &QLineEdit::textChanged,
                         window.get(), [this] { window.release()->deleteLater(); });
        window->viewController().setInputs(inputsOf(fullCensuses));
        window->show();
        explain("shannon");
        ASSERT_TRUE(waitUntil([this] { return window == nullptr; })) << name;
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    window = std::make_unique<ProjectWideMetricsWindowController>(
        *jobs, [] { return std::make_unique<SeededRandom>(7); });
    window->viewController().setInputs(inputsOf(fullCensuses));
    window->show();
    window.reset();
    bool drained = false;
    QObject receiver;
    for (int i = 0; i < 2; ++i) {
        jobs->start(
            &receiver, [] { return 0; }, [&drained](int) { drained = true; });
    }
    EXPECT_TRUE(waitUntil([&drained] { return drained; }));
}

TEST_F(ProjectWideTest, AllValuesAreCopiedUnderTheirGroups) {
    fill(inputsOf({{4, 1}, {2, 1}, {1, 1}}, "Two censuses have one name."));
    EXPECT_NE(label("projectNotes").find("Two censuses have one name."), std::string::npos);
    QTest::keyClick(window.get(), Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
    const std::string copied = clipboard();
    EXPECT_EQ(copied.rfind("Moor\nAll censuses as one sample\nIndividuals\t10\nRichness\t2\n", 0),
              0u)
        << copied;
    for (const char* part :
         {"\nAlroy SQS (quota: 0.80)\t-\nAverage of the censuses\nAverage abundance\t3.3\n",
          "\nPresence in censuses (sample-based)\nChao2\t-\nRarefied richness (50)\t2.0"}) {
        EXPECT_NE(copied.find(part), std::string::npos) << copied;
    }
    QGuiApplication::clipboard()->clear();
    window->findChild<QPushButton*>("copyAllMetrics")->click();
    EXPECT_EQ(clipboard(), copied);
    value("averageRichness").setFocus();
    value("averageRichness").deselect();
    QTest::keyClick(&value("averageRichness"), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(clipboard(), text("averageRichness"));
}

TEST_F(ProjectWideTest, ArrowsGoThroughAllGroups) {
    fill(inputsOf(threeCensuses));
    value("abundance").setFocus();
    for (const ProjectWideRow& row : projectWideRows()) {
        EXPECT_TRUE(window->findChild<ValueField*>(row.value)->hasFocus()) << row.value;
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
    }
}

}  // namespace
}  // namespace zorvel
