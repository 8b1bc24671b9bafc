// How the main view follows the records: every change arrives here, once per turn of the event
// loop.
#include <QItemSelectionModel>
#include <QScrollBar>
#include <QTimer>
#include <algorithm>

#include "ui/main/census_table_model.h"
#include "ui/main/main_view_controller.h"
#include "ui/main/species_table_model.h"
#include "ui_main_view.h"

namespace zorvel {

namespace {

// If undo changes more records than this, only the first is selected.
constexpr std::size_t revealedAtMost = 10'000;

std::vector<RecordId> changedTaxa(const CensusChange& change) {
    std::vector<RecordId> taxa;
    forEachTaxonChange(change.before.get(), change.after.get(),
                       [&](const TaxonRecord* /*before*/, const TaxonRecord* after) {
                           if (after) taxa.push_back(after->id);
                       });
    return taxa;
}

}  // namespace

// A reset of a model clears its table's selection and scroll position, so they are restored.
void MainViewController::keepThroughReset(RecordTableView* table, OrderedTableModel* model) {
    struct Kept {
        std::vector<RecordId> selected;
        int place = 0;
    };
    auto kept = std::make_shared<Kept>();
    connect(model, &OrderedTableModel::rowsAboutToBeReplaced, this, [=] {
        table->commitEditing();
        *kept = {model->idsAt(table->selectedRows()), table->verticalScrollBar()->value()};
    });
    connect(model, &OrderedTableModel::rowsReplaced, this, [=] {
        table->selectRows(model->rowsOf(kept->selected));
        table->verticalScrollBar()->setValue(kept->place);
    });
}

void MainViewController::recordsDidChange(const ChangeSet& changes) {
    const std::vector<int> selected = ui_->censusTable->selectedRows();
    for (const CensusChange& change : changes) {
        if (change.census == shownCensus_ && change.before && change.after) {
            shownCensusDidChange(change);
        }
    }
    censusModel_->recordsDidChange(changes);
    // If the selected censuses were deleted, the one in their place is selected.
    if (!selected.empty() && ui_->censusTable->selectedRows().empty() &&
        censusModel_->rowCount() > 0) {
        ui_->censusTable->selectRows({std::min(selected.front(), censusModel_->rowCount() - 1)});
    }
    if (ui_->censusTable->selectedRows().empty() && shownCensus_) tableViewSelectionDidChange();
    showCensusCount();
    refreshSpeciesControls();
    if (revealing_) revealChanges(changes);
    QTimer::singleShot(0, this, &MainViewController::learnNames);
}

// A few names per turn of the event loop: many new taxa take long.
void MainViewController::learnNames() {
    if (taxonFormatter_.learnSome()) QTimer::singleShot(0, this, &MainViewController::learnNames);
}

void MainViewController::shownCensusDidChange(const CensusChange& change) {
    speciesModel_->blockDidChange(change.after);
    const std::optional<Census> census = context().census(change.census);
    if (change.before->attributes.name != change.after->attributes.name) showSpeciesHeading(census);
    ui_->detailsPane->showCensus(census);
    showSpeciesCount();
    refreshMetrics();
}

// Selects the censuses that came back or changed, and in a changed one its taxa that did.
void MainViewController::revealChanges(const ChangeSet& changes) {
    std::vector<RecordId> there;
    for (const CensusChange& change : changes) {
        if (change.after) there.push_back(change.census);
    }
    if (there.empty()) return;
    if (there.size() > revealedAtMost) there.erase(there.begin() + 1, there.end());
    const bool shown = there.size() == 1 && shownCensus_ == there.front();
    if (!shown) ui_->censusTable->selectRows(censusModel_->rowsOf(there));
    if (changes.size() != 1 || changes.front().inserted()) return;
    std::vector<RecordId> taxa = changedTaxa(changes.front());
    if (taxa.size() > revealedAtMost) taxa.erase(taxa.begin() + 1, taxa.end());
    const std::vector<int> rows = speciesModel_->rowsOf(taxa);
    if (!rows.empty()) ui_->speciesTable->selectRows(rows);
}

}  // namespace zorvel
