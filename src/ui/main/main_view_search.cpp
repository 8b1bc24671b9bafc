// How the main view searches the species of the selected census.
#include <algorithm>

#include "ui/kit/glyphs.h"
#include "ui/main/main_view_controller.h"
#include "ui/main/species_table_model.h"
#include "ui_main_view.h"

namespace zorvel {

void MainViewController::setUpSearch() {
    ui_->searchBar->addAction(glyphIcon(Glyph::search), QLineEdit::LeadingPosition);
    connect(ui_->searchBar, &QLineEdit::textChanged, this, &MainViewController::filterSpecies);
    connect(ui_->searchBar, &SearchField::leaveRequested, this, [this](bool first) {
        if (first && speciesModel_->rowCount() > 0) ui_->speciesTable->selectRows({0});
        ui_->speciesTable->setFocus();
    });
}

void MainViewController::findSpecies() {
    ui_->searchBar->setFocus(Qt::ShortcutFocusReason);
    ui_->searchBar->selectAll();
}

// The selection stays on the species that are still shown.
void MainViewController::filterSpecies(const QString& text) {
    ui_->speciesTable->commitEditing();
    std::vector<RecordId> selected;
    for (const int row : ui_->speciesTable->selectedRows()) {
        selected.push_back(speciesModel_->taxonAt(row));
    }
    std::sort(selected.begin(), selected.end());
    speciesModel_->setFilter(text);
    const std::vector<int> rows = speciesModel_->rowsOfTaxa(selected);
    if (!rows.empty()) ui_->speciesTable->selectRows(rows);
    showSpeciesCount();
}

}  // namespace zorvel
