// The selected census for paper.
#include <QStringList>

#include "ui/kit/metric_sheet.h"
#include "ui/kit/printed_sheet.h"
#include "ui/main/details_view.h"
#include "ui/main/main_view_controller.h"
#include "ui/main/species_table_model.h"
#include "ui_main_view.h"

namespace zorvel {

namespace {

const char noCensusToPrint[] = "noCensusToPrint";  // name of the message in the strip

QStringList detailLines(const Census& census, const QString& project) {
    QStringList lines;
    if (!project.isEmpty()) lines.append(QString("Project: %1").arg(project));
    // Both are 0 if no place was entered.
    if (census.latitude() != 0 || census.longitude() != 0) {
        lines.append(
            QString("Latitude %1, longitude %2").arg(latitudeText(census), longitudeText(census)));
    }
    if (const QString date = dateText(census); !date.isEmpty()) {
        lines.append(QString("Date: %1").arg(date));
    }
    lines.append("The metrics are those of the included species.");
    return lines;
}

QStringList speciesCells(const SpeciesTableModel& species, int row) {
    const auto text = [&](int column, int role) { return species.index(row, column).data(role); };
    const bool included =
        text(SpeciesTableModel::includeColumn, Qt::CheckStateRole).toInt() == Qt::Checked;
    return {text(SpeciesTableModel::nameColumn, Qt::DisplayRole).toString(),
            text(SpeciesTableModel::abundanceColumn, Qt::DisplayRole).toString(),
            included ? "yes" : "no"};
}

// A copy of the rows: the table may change while a panel is open.
PrintedTable printedSpecies(const SpeciesTableModel& species) {
    QList<QStringList> rows;
    for (int row = 0; row < species.rowCount(); ++row) rows.append(speciesCells(species, row));
    const auto all = static_cast<qlonglong>(species.taxonCount());
    const QString heading =
        rows.size() == all ? QString("Species (%L1)").arg(all)
                           : QString("Species (those found: %L1 of %L2)").arg(rows.size()).arg(all);
    return {heading, {{"Name", 5, false}, {"Abundance", 1.5, true}, {"Included", 1, false}}, rows};
}

}  // namespace

std::optional<PrintedSheet> MainViewController::printedCensus() {
    if (!commitEditing()) return std::nullopt;
    const std::optional<Census> census = selectedCensus();
    if (!census) {
        ui_->messageStrip->setMessage(
            noCensusToPrint, "Nothing was printed: select the census to be printed first.");
        return std::nullopt;
    }
    ui_->messageStrip->withdraw(noCensusToPrint);
    PrintedSheet sheet;
    sheet.title = shownName(census->name());
    sheet.lines = detailLines(*census, projectName_);
    sheet.tables = printedMetrics(ui_->metricsPanel->lines());
    if (!sheet.tables.isEmpty()) sheet.tables.front().heading = "Metrics";
    sheet.tables.append(printedSpecies(*speciesModel_));
    return sheet;
}

}  // namespace zorvel
