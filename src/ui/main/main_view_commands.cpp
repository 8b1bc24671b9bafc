// The commands of the main view. Each is one edit of the model, announced at once, so that the
// tables show it when the command returns.
#include <QGuiApplication>
#include <QInputMethod>
#include <QKeyEvent>
#include <algorithm>

#include "model/edits.h"
#include "store/object_context.h"
#include "ui/kit/glyphs.h"
#include "ui/main/census_table_model.h"
#include "ui/main/clipboard_rows.h"
#include "ui/main/main_view_controller.h"
#include "ui/main/record_tables.h"
#include "ui/main/species_table_model.h"
#include "ui_main_view.h"

namespace zorvel {

namespace {

// Names of messages in the strip.
const char noCensusMessage[] = "noCensus";
const char pasteMessage[] = "paste";

}  // namespace

void MainViewController::addCensusRow() {
    if (!commitEditing()) return;
    const Census census = addCensus(context());
    context().announceChanges();
    const int row = censusModel_->rowOf(census.id());
    ui_->censusTable->selectRows({row});
    ui_->censusTable->beginEditing(censusModel_->index(row, CensusTableModel::nameColumn));
}

void MainViewController::deleteCensusRows() {
    if (!commitEditing()) return;
    const std::vector<Census> censuses = selectedCensuses();
    if (censuses.empty()) return;
    deleteCensuses(context(), censuses);
    context().announceChanges();
}

void MainViewController::addSpeciesRow() {
    if (!commitEditing()) return;
    const std::optional<Census> census = selectedCensus();
    if (!census) {
        ui_->messageStrip->setMessage(noCensusMessage,
                                      "No species was added: select the census that it "
                                      "belongs to first.");
        return;
    }
    ui_->messageStrip->withdraw(noCensusMessage);
    const Zorvel taxon = addTaxon(context(), *census);
    context().announceChanges();
    const int row = speciesModel_->rowOf(taxon.id());
    if (row < 0) return;
    ui_->speciesTable->selectRows({row});
    ui_->speciesTable->beginEditing(speciesModel_->index(row, SpeciesTableModel::nameColumn));
}

// The row that takes the place of the deleted ones is selected.
void MainViewController::deleteSpeciesRows() {
    if (!commitEditing()) return;
    const std::vector<int> rows = ui_->speciesTable->selectedRows();
    if (rows.empty()) return;
    deleteTaxa(context(), speciesModel_->taxaAt(rows));
    context().announceChanges();
    const int last = speciesModel_->rowCount() - 1;
    if (last >= 0) ui_->speciesTable->selectRows({std::min(rows.front(), last)});
}

// All get the opposite of the first selected row's state.
void MainViewController::toggleInclude() {
    const std::vector<int> rows = ui_->speciesTable->selectedRows();
    if (rows.empty()) return;
    const QModelIndex first = speciesModel_->index(rows.front(), SpeciesTableModel::includeColumn);
    const bool included = first.data(Qt::CheckStateRole).toInt() == Qt::Checked;
    editInclude(context(), speciesModel_->taxaAt(rows), !included);
    context().announceChanges();
}

void MainViewController::copyAllMetrics() {
    ui_->metricsPanel->copyAll();
}

bool MainViewController::canDeleteCensus() const {
    return !ui_->censusTable->selectedRows().empty();
}

bool MainViewController::canAddSpecies() const {
    return context().censusCount() > 0;
}

bool MainViewController::canDeleteSpecies() const {
    return !ui_->speciesTable->selectedRows().empty();
}

void MainViewController::refreshSpeciesControls() {
    ui_->removeCensusButton->setEnabled(canDeleteCensus());
    for (QToolButton* control : {ui_->addSpeciesButton, ui_->removeSpeciesButton,
                                 static_cast<QToolButton*>(ui_->speciesPopUpButton)}) {
        control->setEnabled(canAddSpecies());
    }
}

void MainViewController::setUpPullDowns() {
    const auto add = [this](PullDownButton* button, const char* name, const QString& title,
                            void (MainViewController::*command)()) {
        connect(button->addItem(name, title), &QAction::triggered, this, command);
    };
    PullDownButton* census = ui_->censusPopUpButton;
    add(census, "addCensus", "Add census", &MainViewController::addCensusRow);
    add(census, "deleteCensus", "Delete census", &MainViewController::deleteCensusRows);
    add(census, "sampleBasedRarefaction", "Sample-based rarefaction",
        &MainViewController::sampleBasedRarefaction);
    add(census, "calculateProjectWideMetrics", "Project-wide metrics",
        &MainViewController::calculateProjectWideMetrics);
    add(census, "diversityAtEqualCoverage", "Diversity at equal coverage",
        &MainViewController::diversityAtEqualCoverage);
    PullDownButton* species = ui_->speciesPopUpButton;
    add(species, "addSpecies", "Add species", &MainViewController::addSpeciesRow);
    add(species, "deleteSpecies", "Delete species", &MainViewController::deleteSpeciesRows);
    add(species, "individualBasedRarefaction", "Individual-based rarefaction",
        &MainViewController::individualBasedRarefaction);
}

void MainViewController::undoOrRedo(void (ObjectContext::*step)()) {
    if (!commitEditing()) return;
    context().announceChanges();
    (context().*step)();
    revealing_ = true;
    context().announceChanges();
    revealing_ = false;
}

bool MainViewController::commitEditing() {
    QGuiApplication::inputMethod()->commit();  // text still being composed counts as typed
    for (RecordTableView* table : tables()) {
        TableTextField* field = table->openEditor();
        if (field != nullptr && !field->problem().isEmpty()) {
            field->setFocus();
            field->tellProblem();
            return false;
        }
        table->commitEditing();
    }
    ui_->detailsPane->commit();
    return true;
}

void MainViewController::endEditing() {
    QGuiApplication::inputMethod()->commit();
    ui_->censusTable->commitEditing();
    ui_->speciesTable->commitEditing();
    ui_->detailsPane->showCensus(std::nullopt);
}

void MainViewController::storeDrafts(ObjectContext& copy) const {
    ui_->detailsPane->storeDrafts(copy);
    const auto typedIn = [](const RecordTableView* table) {
        const TableTextField* field = table->openEditor();
        return field != nullptr && field->isModified() ? field : nullptr;
    };
    if (const TableTextField* field = typedIn(ui_->censusTable)) {
        const auto census = copy.census(censusModel_->idAt(ui_->censusTable->editedCell().row()));
        if (census) editName(copy, *census, field->typedText().toStdString());
    }
    const std::optional<Census> shown = shownCensus_ ? copy.census(*shownCensus_) : std::nullopt;
    if (const TableTextField* field = typedIn(ui_->speciesTable); field && shown) {
        const QModelIndex cell = ui_->speciesTable->editedCell();
        const auto taxon = shown->taxon(speciesModel_->idAt(cell.row()));
        if (taxon) {
            SpeciesTableModel::storeText(copy, *taxon, cell.column(), field->typedText());
        }
    }
}

bool MainViewController::readyToClose() {
    if (!commitEditing()) return false;
    if (ui_->detailsPane->commit()) return true;
    ui_->detailsPane->tellProblems();
    return false;
}

void MainViewController::cutRows(RecordTableView& table) {
    if (!commitEditing() || !table.copySelection()) return;
    const UndoStep step(context(), "Cut");
    &table == ui_->censusTable ? deleteCensusRows() : deleteSpeciesRows();
}

void MainViewController::pasteRows(RecordTableView& table) {
    if (!commitEditing()) return;
    ui_->messageStrip->withdraw(pasteMessage);
    const QMimeData& held = clipboardData();
    const bool censuses = &table == ui_->censusTable;
    // Names, or names and abundances.
    if (const auto text = tableText(held, censuses ? 1 : 2)) {
        return emit tableGiven("the clipboard", *text);
    }
    const PasteOutcome outcome = censuses ? pasteCensusRows(context(), held)
                                          : pasteSpeciesRows(context(), selectedCensus(), held);
    if (!outcome) {
        return ui_->messageStrip->setMessage(pasteMessage,
                                             "Nothing was pasted: " + outcome.problem());
    }
    context().announceChanges();
    const std::vector<int> rows =
        censuses ? censusModel_->rowsOf(outcome.value()) : speciesModel_->rowsOf(outcome.value());
    if (!rows.empty()) table.selectRows(rows);
    table.setFocus();
}

void MainViewController::pasteTable() {
    if (const auto text = tableText(clipboardData(), 1)) emit tableGiven("the clipboard", *text);
}

void MainViewController::setUpSearch() {
    ui_->searchBar->addAction(glyphIcon(Glyph::search), QLineEdit::LeadingPosition);
    connect(ui_->searchBar, &QLineEdit::textChanged, this, &MainViewController::filterSpecies);
    ui_->searchBar->installEventFilter(this);
}

// Escape clears the field, and leaves it if it is empty; Down and Return go to the species found.
bool MainViewController::eventFilter(QObject* object, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return QWidget::eventFilter(object, event);
    switch (static_cast<QKeyEvent*>(event)->key()) {
        case Qt::Key_Escape:
            if (!ui_->searchBar->text().isEmpty()) {
                ui_->searchBar->clear();
                return true;
            }
            break;
        case Qt::Key_Down:
        case Qt::Key_Return:
        case Qt::Key_Enter:
            if (speciesModel_->rowCount() > 0) ui_->speciesTable->selectRows({0});
            break;
        default:
            return QWidget::eventFilter(object, event);
    }
    ui_->speciesTable->setFocus();
    return true;
}

void MainViewController::findSpecies() {
    ui_->searchBar->setFocus(Qt::ShortcutFocusReason);
    ui_->searchBar->selectAll();
}

// The selection stays on the species that are still shown.
void MainViewController::filterSpecies(const QString& text) {
    ui_->speciesTable->commitEditing();
    const std::vector<RecordId> selected = speciesModel_->idsAt(ui_->speciesTable->selectedRows());
    speciesModel_->setFilter(text);
    const std::vector<int> rows = speciesModel_->rowsOf(selected);
    if (!rows.empty()) ui_->speciesTable->selectRows(rows);
    showSpeciesCount();
}

}  // namespace zorvel
