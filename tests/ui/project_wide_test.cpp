#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QGuiApplication>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <cstdlib>
#include <memory>
#include <string>

#include "platform/job_queue.h"
#include "platform/preferences.h"
#include "tests/support/counts_of_rows.h"
#include "tests/support/wait_until.h"
#include "ui/analysis/project_wide_metrics_window_controller.h"
#include "ui/kit/popover.h"
#include "ui/kit/value_field.h"

namespace zorvel {
namespace {

ProjectWideInputs inputsOf(const CountsMatrix& rows, const QString& note = {}) {
    return {{summed(rows), withoutZeros(rows)}, "Moor", note};
}

// Every value can be had of it.
const CountsMatrix fullCensuses = {{20, 10, 6, 3, 2, 1, 1, 0},
                                   {9, 14, 5, 2, 1, 1, 0, 2},
                                   {30, 8, 8, 2, 2, 1, 0, 1},
                                   {12, 12, 4, 2, 1, 0, 0, 0}};

class ProjectWideTest : public ::testing::Test {
  protected:
    void SetUp() override {
        Preferences().initializePreferences();
        Preferences().setRarefactionSize(50);
        Preferences().setSqsQuota(0.8);
        newWindow();
    }
    void TearDown() override {
        window.reset();
        jobs.reset();
    }
    void newWindow() {
        window = std::make_unique<ProjectWideMetricsWindowController>(
            *jobs, [] { return std::make_unique<SeededRandom>(7); });
    }
    void fill(ProjectWideInputs inputs) {
        window->viewController().setInputs(std::move(inputs));
        window->show();
        ASSERT_TRUE(waitUntil(
            [this] { return window->findChild<QPushButton*>("printMetrics")->isEnabled(); }));
    }
    void drainJobs() {
        QObject receiver;
        int drained = 0;
        for (int i = 0; i < 2; ++i)
            jobs->start(
                &receiver, [] { return 0; }, [&drained](int) { ++drained; });
        EXPECT_TRUE(waitUntil([&drained] { return drained == 2; }));
    }
    // As they stand in the window.
    QList<ValueField*> fields() { return window->findChildren<ValueField*>(); }
    ValueField& value(const std::string& name) {
        return *window->findChild<ValueField*>((name + "ValueTextField").c_str());
    }
    std::string text(const std::string& name) { return value(name).text().toStdString(); }
    std::string label(const std::string& name) {
        return window->findChild<QLabel*>(name.c_str())->text().toStdString();
    }
    std::string explain(ValueField& field) {
        field.setFocus();
        QTest::keyClick(&field, Qt::Key_F1);
        auto* popover = window->findChild<Popover*>();
        if (popover == nullptr || !popover->isVisible()) return "";
        std::string words = popover->accessibleName().toStdString();
        popover->dismiss();
        return words;
    }
    std::string copied() {
        QGuiApplication::clipboard()->clear();
        QTest::keyClick(window.get(), Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
        return QGuiApplication::clipboard()->text().toStdString();
    }

    std::unique_ptr<JobQueue> jobs = std::make_unique<JobQueue>(2);
    std::unique_ptr<ProjectWideMetricsWindowController> window;
};

TEST_F(ProjectWideTest, AllValuesAreCopiedUnderTheirGroups) {
    EXPECT_EQ(label("rarefiedRichnessLabel"), "Rarefied richness");
    EXPECT_EQ(label("alroySQSLabel"), "Alroy SQS");
    Preferences().setSqsQuota(0.805);
    fill(inputsOf(fullCensuses, "Two censuses have one name."));
    Preferences().setRarefactionSize(3);
    EXPECT_EQ(label("projectHeading"), "Moor");
    EXPECT_NE(label("projectNotes").find("Two censuses have one name."), std::string::npos);
    EXPECT_EQ(label("rarefiedRichnessLabel"), "Rarefied richness (50)");
    EXPECT_EQ(label("sampleBasedRarefactionLabel"), "Rarefied richness (50)");
    const std::string all = copied();
    // clang-format off
    EXPECT_EQ(all, "Moor\nAll censuses as one sample\nIndividuals\t160\nRichness\t8\nChao1\t-\n"
        "Shannon's H\t1.460\nFisher's alpha\t1.772\nPielou's J\t0.702\nSimpson's D\t0.706\n"
        "Buzas-Gibson's E\t0.538\nRarefied richness (50)\t6.5\nAlroy SQS (quota: 0.81)\t" +
        text("alroySqs") + "\nAverage of the censuses\nAverage abundance\t40.0\n"
        "Average richness\t6.5\nAverage Chao1\t7.6\nAverage Shannon's H\t1.399\n"
        "Average Fisher's alpha\t2.227\nAverage Pielou's J\t0.753\nAverage Simpson's D\t0.700\n"
        "Average Buzas-Gibson's E\t0.634\nAverage rarefied richness (50)\t6.5\n"
        "Average Alroy SQS (quota: 0.81)\t" + text("averageAlroySqs") +
        "\nPresence in censuses (sample-based)\nChao2\t8.4\nRarefied richness (50)\t8.0");
    // clang-format on
    QGuiApplication::clipboard()->clear();
    window->findChild<QPushButton*>("copyAllMetrics")->click();
    EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(), all);
}

// One census without a species, one of a single species, and a name without specimens.
TEST_F(ProjectWideTest, ADashHasAReason) {
    fill(inputsOf({{0, 0, 0}, {7, 0, 0}, {2, 1, 0}}));
    const struct {
        const char* name;
        const char* text;
        const char* words;
    } rows[] = {
        {"chaoOne", "-", "no value without a species of two"},
        {"alroySqs", "", "No value for Moor\n"},
        {"averagePielou", "-", "of a single species: 1 of 3"},
        {"averageAlroySqs", "", "fewer than 11 specimens: 3;"},
        {"chaoTwo", "3.3", "S_all = 3, Q1 = 1, Q2 = 1"},  // 3 + (2/3) 1^2 / (2 x 1)
        {"sampleBasedRarefaction", "2.0", "T = 3, S = 2, t = 50"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(text(row.name), row.text) << row.name;
        const std::string words = explain(value(row.name));
        EXPECT_NE(words.find(row.words), std::string::npos) << words;
    }
    EXPECT_EQ(label("alroySQSLabel"), "Alroy SQS");
    EXPECT_TRUE(value("alroySqs").isStale());
    EXPECT_NE(label("projectNotes").find("at least 11 specimens"), std::string::npos);
    EXPECT_NE(copied().find("\nAlroy SQS (quota: 0.80)\t-\n"), std::string::npos);
}

TEST_F(ProjectWideTest, EachRowExplainsItsOwnMetricBesideItsCaption) {
    CountsMatrix censuses = fullCensuses;
    censuses.push_back(CountsVector(censuses.front().size(), 1));
    fill(inputsOf(censuses));
    EXPECT_NE(label("projectNotes").find("of the 4 of 5 censuses"), std::string::npos);
    value("abundance").setFocus();
    for (const MetricGroup group :
         {MetricGroup::pooled, MetricGroup::averages, MetricGroup::incidence}) {
        for (const ShownMetric& shown : metricsOf(group)) {
            const std::string name = explanationOf(shown).name;
            auto* field = qobject_cast<ValueField*>(QApplication::focusWidget());
            ASSERT_NE(field, nullptr) << name;
            const std::string words = explain(*field);
            const std::string start = name + '\n' + field->text().toStdString();
            EXPECT_EQ(words.rfind(start + " for Moor\n", 0), 0u) << words;
            for (const QLabel* each : field->parentWidget()->findChildren<QLabel*>()) {
                if (each->buddy() != field) continue;
                EXPECT_EQ(field->accessibleName(), each->text());
                const int y = each->geometry().center().y() - field->geometry().center().y();
                EXPECT_LE(std::abs(y), field->scale() > 1 ? 50 : 5) << name;
            }
            field->setFocus();
            QTest::keyClick(field, Qt::Key_Down);
        }
    }
}

// The window is there at once, computes nothing before it appears, and its values come from the top
// of the first group to the last.
TEST_F(ProjectWideTest, ValuesArriveInTheirOrder) {
    window->show();
    EXPECT_TRUE(value("abundance").isPending());
    EXPECT_NE(explain(value("abundance")).find("No value for the project yet"), std::string::npos);
    newWindow();
    QList<ValueField*> order;
    for (ValueField* field : fields()) {
        QObject::connect(field, &QLineEdit::textChanged, window.get(),
                         [&order, field] { order.append(field); });
    }
    window->viewController().setInputs(inputsOf(fullCensuses));
    drainJobs();
    EXPECT_TRUE(order.empty());
    window->show();
    EXPECT_TRUE(waitUntil([&] { return order == fields(); }));
    EXPECT_FALSE(value("sampleBasedRarefaction").isPending());
}

TEST_F(ProjectWideTest, AbsentInputsLeaveTheirGroupsEmpty) {
    ProjectWideInputs none;
    none.project = "Moor";
    fill(none);
    for (const ValueField* field : fields()) {
        EXPECT_EQ(field->text(), "");
        EXPECT_FALSE(field->isPending());
    }
    EXPECT_NE(label("projectSummary").find("could not be read"), std::string::npos);
    newWindow();
    ProjectWideInputs half = inputsOf(fullCensuses);
    half.countsVector.reset();
    fill(half);
    EXPECT_EQ(text("abundance"), "");
    EXPECT_EQ(text("averageAbundance"), "40.0");
}

TEST_F(ProjectWideTest, CaptionsAreWholeInANarrowWindow) {
    fill(inputsOf(fullCensuses));
    for (const int width : {1000, 760, 700, 688, 680}) {
        window->resize(width, 620);
        for (int turn = 0; turn < 5; ++turn) QCoreApplication::processEvents();
        for (const QLabel* caption : window->findChildren<QLabel*>()) {
            if (qobject_cast<ValueField*>(caption->buddy()) == nullptr) continue;
            EXPECT_GE(caption->height(), caption->heightForWidth(caption->width()))
                << width << ' ' << caption->text().toStdString();
            EXPECT_LE(caption->geometry().bottom(), caption->parentWidget()->rect().bottom())
                << width << ' ' << caption->text().toStdString();
        }
    }
}

// At each value that arrives; results that come later are dropped.
TEST_F(ProjectWideTest, TheWindowMayCloseWhileValuesAreComputed) {
    for (qsizetype arrived = 0; arrived < fields().size(); ++arrived) {
        newWindow();
        QObject::connect(fields()[arrived], &QLineEdit::textChanged, window.get(),
                         [this] { window.release()->deleteLater(); });
        window->viewController().setInputs(inputsOf(fullCensuses));
        window->show();
        explain(value("shannon"));
        ASSERT_TRUE(waitUntil([this] { return window == nullptr; })) << arrived;
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        newWindow();
    }
    window->viewController().setInputs(inputsOf(fullCensuses));
    window->show();
    window.reset();
    drainJobs();
}

}  // namespace
}  // namespace zorvel
