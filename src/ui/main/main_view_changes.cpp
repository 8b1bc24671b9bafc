// How the main view follows the records: every change comes here once a turn, whoever made it.
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

// More records than this are not selected after undo; the first of them comes into sight.
constexpr std::size_t revealedAtMost = 10'000;

std::vector<RecordId> idsAt(const std::vector<int>& rows, const SpeciesTableModel& model) {
    std::vector<RecordId> ids;
    ids.reserve(rows.size());
    for (const int row : rows) ids.push_back(model.taxonAt(row));
    std::sort(ids.begin(), ids.end());
    return ids;
}

std::vector<RecordId> idsAt(const std::vector<int>& rows, const CensusTableModel& model) {
    std::vector<RecordId> ids;
    ids.reserve(rows.size());
    for (const int row : rows) ids.push_back(model.idAt(row));
    std::sort(ids.begin(), ids.end());
    return ids;
}

bool sameText(const std::optional<SharedText>& a, const std::optional<SharedText>& b) {
    return a == b;
}

std::vector<RecordId> changedTaxa(const CensusChange& change) {
    std::vector<RecordId> taxa;
    forEachTaxonChange(change.before.get(), change.after.get(),
                       [&](const TaxonRecord* /*before*/, const TaxonRecord* after) {
                           if (after) taxa.push_back(after->id);
                       });
    return taxa;
}

}  // namespace

// A reset of a model takes selection and place of its table with it, so they are put back.
void MainViewController::keepThroughReset() {
    struct Kept {
        std::vector<RecordId> selected;
        int place = 0;
    };
    const auto keep = [this](RecordTableView* table, auto* model, auto rowsOf) {
        auto kept = std::make_shared<Kept>();
        connect(model, &OrderedTableModel::rowsAboutToBeReplaced, this, [=] {
            table->commitEditing();
            *kept = {idsAt(table->selectedRows(), *model), table->verticalScrollBar()->value()};
        });
        connect(model, &OrderedTableModel::rowsReplaced, this, [=] {
            table->selectRows((model->*rowsOf)(kept->selected));
            table->verticalScrollBar()->setValue(kept->place);
        });
    };
    keep(ui_->censusTable, censusModel_, &CensusTableModel::rowsOfCensuses);
    keep(ui_->speciesTable, speciesModel_, &SpeciesTableModel::rowsOfTaxa);
}

void MainViewController::recordsDidChange(const ChangeSet& changes) {
    const std::vector<int> selected = ui_->censusTable->selectedRows();
    for (const CensusChange& change : changes) {
        if (change.census == shownCensus_ && change.before && change.after) {
            shownCensusDidChange(change);
        }
    }
    censusModel_->recordsDidChange(changes);
    // Where the selected censuses have gone, the one that takes their place is selected.
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

// The names of many new taxa take longer than a person should wait: a few in each turn.
void MainViewController::learnNames() {
    if (taxonFormatter_.learnSome()) QTimer::singleShot(0, this, &MainViewController::learnNames);
}

void MainViewController::shownCensusDidChange(const CensusChange& change) {
    speciesModel_->blockDidChange(change.after);
    const std::optional<Census> census = document_.objectContext().census(change.census);
    const bool renamed = !sameText(change.before->attributes.name, change.after->attributes.name);
    if (renamed) showSpeciesHeading(census);
    showDetails(census);
    showSpeciesCount();
    refreshMetrics();
}

// A census that came back or changed is selected, and in it the taxa that did. Of what has gone
// there is nothing to show.
void MainViewController::revealChanges(const ChangeSet& changes) {
    std::vector<RecordId> there;
    for (const CensusChange& change : changes) {
        if (change.after) there.push_back(change.census);
    }
    if (there.empty()) return;
    if (there.size() > revealedAtMost) there.erase(there.begin() + 1, there.end());
    const bool shown = there.size() == 1 && shownCensus_ == there.front();
    if (!shown) ui_->censusTable->selectRows(censusModel_->rowsOfCensuses(there));
    if (changes.size() != 1 || changes.front().inserted()) return;
    std::vector<RecordId> taxa = changedTaxa(changes.front());
    if (taxa.size() > revealedAtMost) taxa.erase(taxa.begin() + 1, taxa.end());
    const std::vector<int> rows = speciesModel_->rowsOfTaxa(taxa);
    if (!rows.empty()) ui_->speciesTable->selectRows(rows);
}

}  // namespace zorvel
