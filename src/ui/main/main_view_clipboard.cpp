// How the main view moves rows by way of the clipboard.
#include <QApplication>
#include <QClipboard>

#include "store/undo_step.h"
#include "ui/main/census_table_model.h"
#include "ui/main/main_view_controller.h"
#include "ui/main/pasting.h"
#include "ui/main/species_table_model.h"
#include "ui_main_view.h"

namespace zorvel {

namespace {

const char pasteMessage[] = "paste";  // name of the message in the strip

// Of rows scattered over a sorted table no more than this many are selected: each is a range of its
// own, and a view takes long over many.
constexpr std::size_t scatteredAtMost = 2000;

void reveal(RecordTableView& table, std::vector<int> rows) {
    if (rows.empty()) return;
    const auto span = static_cast<std::size_t>(rows.back() - rows.front()) + 1;
    if (span != rows.size() && rows.size() > scatteredAtMost) rows.resize(1);
    table.selectRows(rows);
}

}  // namespace

void MainViewController::cutRows(const RecordTableView& table) {
    if (!commitEditing() || table.selectedRows().empty()) return;
    table.copySelection();
    const UndoStep step(document_.objectContext(), "Cut");
    &table == ui_->censusTable ? deleteCensusRows() : deleteSpeciesRows();
}

void MainViewController::pasteRows(RecordTableView& table) {
    if (!commitEditing()) return;
    ui_->messageStrip->withdraw(pasteMessage);
    ObjectContext& context = document_.objectContext();
    const QString text = QApplication::clipboard()->text();
    const bool censuses = &table == ui_->censusTable;
    const PasteOutcome outcome = censuses ? pasteCensusRows(context, text)
                                          : pasteSpeciesRows(context, selectedCensus(), text);
    if (!outcome.problem.isEmpty()) {
        ui_->messageStrip->setMessage(pasteMessage, outcome.problem);
        return;
    }
    context.announceChanges();
    reveal(table, censuses ? censusModel_->rowsOfCensuses(outcome.records)
                           : speciesModel_->rowsOfTaxa(outcome.records));
}

}  // namespace zorvel
