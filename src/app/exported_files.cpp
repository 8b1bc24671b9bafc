#include "app/exported_files.h"

#include <QCoreApplication>
#include <algorithm>
#include <memory>
#include <string>

#include "interchange/writers.h"
#include "model/metrics_table.h"
#include "ui/main/shared_name_texts.h"

namespace zorvel {

namespace {

QString tr(const char* text) {
    return QCoreApplication::translate("Exports", text);
}

// Where SQS has no estimate its cell holds what no estimate can be.
QString withoutSqsNote(const MetricsTable& table) {
    constexpr std::size_t sqsColumn = 3;
    const auto missing = std::count_if(table.rows.begin(), table.rows.end(),
                                       [](const MetricRow& row) { return row[sqsColumn] == 0; });
    if (missing == 0) return {};
    if (missing == 1) {
        return tr("The SQS of one census, for which there is no estimate, stands as 0.0.");
    }
    return tr("The SQS of %L1 censuses, for which there is no estimate, stands as 0.0.")
        .arg(qlonglong{missing});
}

}  // namespace

ExportedFile exportedMatrix(const ObjectContext& project) {
    const auto counts = std::make_shared<const SparseCountsResult>(buildSparseCounts(project));
    ExportedFile file;
    file.censuses = counts->censusNames.size();
    file.note = matrixNote(*counts);
    file.produce = [counts](const ByteSink& sink) {
        writeCensusMatrix(counts->counts, counts->taxonNames, counts->censusNames, sink);
    };
    return file;
}

std::optional<ExportedFile> exportedMetrics(const ObjectContext& project,
                                            const RandomSourceMaker& makeRandom,
                                            const std::atomic<bool>& cancelled) {
    const std::optional<MetricsTable> table =
        buildMetricsTable(project.censuses(), makeRandom, [&cancelled] { return !cancelled; });
    if (!table) return std::nullopt;
    const auto text = std::make_shared<const std::string>(
        writeMetricsTable(table->rows, table->columnTitles, table->censusNames));
    ExportedFile file;
    file.censuses = table->rows.size();
    file.note = withoutSqsNote(*table);
    file.produce = [text](const ByteSink& sink) { sink(*text); };
    return file;
}

}  // namespace zorvel
