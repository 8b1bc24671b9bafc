#include "tools/pictures/analysis_pictures.h"

#include <QCoreApplication>
#include <QFile>
#include <cstddef>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "interchange/parsers.h"
#include "metrics/rarefaction.h"
#include "model/diversity_document.h"
#include "platform/preferences.h"
#include "tests/support/import_censuses.h"
#include "ui/analysis/rarefaction_view.h"
#include "ui/analysis/rarefaction_view_controller.h"

namespace zorvel {

namespace {

using Curve = std::vector<Rarefaction>;

std::vector<MockCensus> exampleCensuses() {
    QFile file(ZORVEL_SOURCE_DIR "/examples/oribatid-mites.csv");
    if (!file.open(QIODevice::ReadOnly)) return {};
    return parseCensusMatrix(file.readAll().toStdString())
        .value.value_or(std::vector<MockCensus>());
}

CountsVector countsOf(const MockCensus& census) {
    CountsVector counts;
    for (const MockTaxon& taxon : census.taxa) counts.push_back(taxon.abundance);
    return counts;
}

Curve sampleCurveOf(const std::vector<MockCensus>& censuses) {
    DiversityDocument project;
    importCensuses(project.objectContext(), censuses);
    return sharedCalculator().sampleBasedCurve(
        summariseIncidence(buildSparseCounts(project.objectContext()).counts));
}

struct State {
    const char* name;
    RarefactionKind kind;
    Curve curve;
    QString subject;
    int marked = -1;
    double confidence = 0.95;
};

void save(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    if (file.open(QIODevice::WriteOnly)) file.write(bytes);
}

void take(const State& state, const QString& folder, const QString& name, JobQueue& jobs,
          const Panels& panels) {
    Preferences().setConfidence(state.confidence);
    RarefactionWindowController window(state.kind, jobs, panels);
    RarefactionViewController& controller = window.viewController();
    controller.setRarefactionData(state.curve, state.subject);
    window.show();
    QCoreApplication::processEvents();
    controller.rarefactionView().markPoint(state.marked);
    QCoreApplication::processEvents();
    const QString path = folder + "/rarefaction-" + state.name;
    window.grab().save(path + "-" + name + ".png");
    save(path + "-page.pdf", pdfOf(controller.drawing()));
    save(path + "-image.svg", svgOf(controller.figure(), 16));
    save(path + "-image.png", pngOf(imageOf(controller.figure(), 16, 300)));
    Preferences().setConfidence(0.95);
}

}  // namespace

void takeRarefactionPictures(const QString& folder, const QString& name, JobQueue& jobs,
                             const Panels& panels) {
    const std::vector<MockCensus> censuses = exampleCensuses();
    if (censuses.size() < 10) return;
    const Curve one = sharedCalculator().individualBasedCurve(countsOf(censuses.front()));
    const Curve all = sampleCurveOf(censuses);
    const Curve ten = sampleCurveOf({censuses.begin(), censuses.begin() + 10});
    Curve gap = ten;
    for (std::size_t i = gap.size() / 3; i < gap.size() / 2; ++i) {
        gap[i].lower95 = gap[i].upper95 = std::numeric_limits<double>::quiet_NaN();
    }
    const QString census = QString::fromStdString(censuses.front().name);
    const QString project = QStringLiteral("oribatid-mites");
    using Kind = RarefactionKind;
    const int middle = static_cast<int>(one.size()) / 2;
    const State states[] = {
        {"individuals", Kind::individualBased, one, census},
        {"samples", Kind::sampleBased, all, project},
        {"ten-samples", Kind::sampleBased, ten, project},
        {"99", Kind::sampleBased, ten, project, -1, 0.99},
        {"marked", Kind::individualBased, one, census, middle},
        {"gap", Kind::sampleBased, gap, project},
        {"few", Kind::sampleBased, Curve(all.begin(), all.begin() + 2), project},
        {"no-level", Kind::sampleBased, ten, project, 5, 0.9},
    };
    for (const State& state : states) take(state, folder, name, jobs, panels);
}

}  // namespace zorvel
