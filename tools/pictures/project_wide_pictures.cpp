#include "tools/pictures/analysis_pictures.h"

#include <QApplication>
#include <QFile>
#include <QKeyEvent>
#include <QPushButton>
#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "interchange/parsers.h"
#include "metrics/random_source.h"
#include "platform/job_queue.h"
#include "tests/support/wait_until.h"
#include "ui/analysis/project_wide_metrics_window_controller.h"

namespace zorvel {

namespace {

ProjectWideInputs inputsOf(const std::vector<CountsVector>& rows, const QString& project) {
    ProjectWideInputs inputs;
    inputs.project = project;
    const std::size_t names = rows.front().size();
    std::vector<SparseCounts::Column> columns;
    for (std::size_t i = 0; i < names; ++i) {
        columns.push_back(static_cast<SparseCounts::Column>(i));
    }
    inputs.countsVector = CountsVector(names, 0);
    inputs.countsMatrix = SparseCounts(names);
    for (const CountsVector& row : rows) {
        inputs.countsMatrix->addRow(columns, row);
        for (std::size_t i = 0; i < names; ++i) (*inputs.countsVector)[i] += row[i];
    }
    return inputs;
}

ProjectWideInputs exampleInputs() {
    QFile file(ZORVEL_SOURCE_DIR "/examples/oribatid-mites.csv");
    if (!file.open(QIODevice::ReadOnly)) return {};
    const auto censuses = parseCensusMatrix(file.readAll().toStdString()).value;
    if (!censuses) return {};
    std::vector<SharedText> names;
    for (const MockCensus& census : *censuses) {
        for (const MockTaxon& taxon : census.taxa) {
            if (std::find(names.begin(), names.end(), taxon.name) == names.end()) {
                names.push_back(taxon.name);
            }
        }
    }
    std::vector<CountsVector> rows;
    for (const MockCensus& census : *censuses) {
        CountsVector row(names.size(), 0);
        for (const MockTaxon& taxon : census.taxa) {
            const auto place = std::find(names.begin(), names.end(), taxon.name) - names.begin();
            row[static_cast<std::size_t>(place)] = taxon.abundance;
        }
        rows.push_back(std::move(row));
    }
    return inputsOf(rows, "oribatid-mites");
}

// explained: the field whose explanation is open; null for none.
void takeFilled(const QString& path, ProjectWideInputs inputs, const char* explained = nullptr) {
    JobQueue jobs;
    ProjectWideMetricsWindowController window(jobs,
                                              [] { return std::make_unique<SeededRandom>(1); });
    window.viewController().setInputs(std::move(inputs));
    window.show();
    waitUntil([&] { return window.findChild<QPushButton*>("printMetrics")->isEnabled(); });
    if (explained != nullptr) {
        auto* field = window.findChild<QWidget*>(explained);
        field->setFocus();
        QKeyEvent press(QEvent::KeyPress, Qt::Key_F1, Qt::NoModifier);
        QApplication::sendEvent(field, &press);
    }
    QCoreApplication::processEvents();
    window.grab().save(path);
}

void takeWaiting(const QString& path) {
    JobQueue jobs;
    ProjectWideMetricsWindowController window(jobs,
                                              [] { return std::make_unique<SeededRandom>(1); });
    window.show();
    QCoreApplication::processEvents();
    window.grab().save(path);
}

}  // namespace

void takeProjectWidePictures(const QString& folder, const QString& look) {
    const auto path = [&](const char* state) {
        return QString("%1/project-wide-%2%3.png").arg(folder, state, look);
    };
    takeFilled(path(""), exampleInputs());
    takeFilled(path("explanation-"), exampleInputs(), "averageChaoOneValueTextField");
    takeWaiting(path("waiting-"));
    ProjectWideInputs few = inputsOf({{4, 1}, {2, 1}, {1, 1}}, "moss");
    few.note =
        "One census has the name of an earlier one: the census matrix holds its species in "
        "the row of that one, and its own row stays empty.";
    takeFilled(path("notes-"), std::move(few), "alroySqsValueTextField");
    ProjectWideInputs none;
    none.project = "moss";
    takeFilled(path("empty-"), std::move(none));
}

}  // namespace zorvel
