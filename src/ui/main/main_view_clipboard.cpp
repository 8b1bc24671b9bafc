// How the main view moves rows by way of the clipboard.
#include <QApplication>
#include <QClipboard>
#include <QMimeData>

#include "store/undo_step.h"
#include "ui/main/census_table_model.h"
#include "ui/main/clipboard_rows.h"
#include "ui/main/main_view_controller.h"
#include "ui/main/species_table_model.h"
#include "ui_main_view.h"

namespace zorvel {

namespace {

const char pasteMessage[] = "paste";  // name of the message in the strip

}  // namespace

void MainViewController::cutRows(RecordTableView& table) {
    if (!commitEditing() || !table.copySelection()) return;
    const UndoStep step(document_.objectContext(), "Cut");
    &table == ui_->censusTable ? deleteCensusRows() : deleteSpeciesRows();
}

void MainViewController::pasteRows(RecordTableView& table) {
    if (!commitEditing()) return;
    ui_->messageStrip->withdraw(pasteMessage);
    ObjectContext& context = document_.objectContext();
    const QMimeData nothing;
    const QMimeData* held = QApplication::clipboard()->mimeData();
    if (held == nullptr) held = &nothing;
    const bool censuses = &table == ui_->censusTable;
    const PasteOutcome outcome = censuses ? pasteCensusRows(context, *held)
                                          : pasteSpeciesRows(context, selectedCensus(), *held);
    if (!outcome.problem.isEmpty()) {
        ui_->messageStrip->setMessage(pasteMessage, outcome.problem);
        return;
    }
    context.announceChanges();
    const std::vector<int> rows = censuses ? censusModel_->rowsOfCensuses(outcome.records)
                                           : speciesModel_->rowsOfTaxa(outcome.records);
    if (!rows.empty()) table.selectRows(rows);
    table.setFocus();
}

}  // namespace zorvel
