// The commands of the main view: each is one edit of the model, announced at once so that the
// tables show it when the command returns.
#include <QGuiApplication>
#include <QInputMethod>

#include "model/edits.h"
#include "ui/main/analysis_commands.h"
#include "ui/main/census_table_model.h"
#include "ui/main/main_view_controller.h"
#include "ui/main/species_table_model.h"
#include "ui/main/table_text_fields.h"
#include "ui_main_view.h"

namespace zorvel {

namespace {
const char noCensusMessage[] = "noCensus";  // name of the message in the strip
}  // namespace

void MainViewController::addCensusRow() {
    if (!commitEditing()) return;
    const Census census = addCensus(document_.objectContext());
    document_.objectContext().announceChanges();
    selectCensus(census.id());
    const int row = censusModel_->rowOfCensus(census.id());
    ui_->censusTable->beginEditing(censusModel_->index(row, CensusTableModel::nameColumn));
}

void MainViewController::selectCensus(RecordId census) {
    const int row = censusModel_->rowOfCensus(census);
    if (row >= 0) ui_->censusTable->selectRows({row});
}

void MainViewController::deleteCensusRows() {
    if (!commitEditing()) return;
    const std::vector<Census> censuses = selectedCensuses();
    if (censuses.empty()) return;
    deleteCensuses(document_.objectContext(), censuses);
    document_.objectContext().announceChanges();
}

void MainViewController::addSpeciesRow() {
    if (!commitEditing()) return;
    const std::optional<Census> census = selectedCensus();
    if (!census) {
        ui_->messageStrip->setMessage(noCensusMessage,
                                      tr("No species was added: select the census that it "
                                         "belongs to first."));
        return;
    }
    ui_->messageStrip->withdraw(noCensusMessage);
    const Zorvel taxon = addTaxon(document_.objectContext(), *census);
    document_.objectContext().announceChanges();
    const int row = speciesModel_->rowOfTaxon(taxon.id());
    if (row < 0) return;
    ui_->speciesTable->selectRows({row});
    ui_->speciesTable->beginEditing(speciesModel_->index(row, SpeciesTableModel::nameColumn));
}

// The row that takes the place of the deleted ones is selected.
void MainViewController::deleteSpeciesRows() {
    if (!commitEditing()) return;
    const std::vector<int> rows = ui_->speciesTable->selectedRows();
    if (rows.empty()) return;
    deleteTaxa(document_.objectContext(), speciesModel_->taxaAt(rows));
    document_.objectContext().announceChanges();
    const int last = speciesModel_->rowCount() - 1;
    if (last >= 0) ui_->speciesTable->selectRows({std::min(rows.front(), last)});
}

// The first of the selected rows tells which way.
void MainViewController::toggleInclude() {
    const std::vector<int> rows = ui_->speciesTable->selectedRows();
    if (rows.empty()) return;
    const QModelIndex first = speciesModel_->index(rows.front(), SpeciesTableModel::includeColumn);
    const bool included = first.data(Qt::CheckStateRole).toInt() == Qt::Checked;
    editInclude(document_.objectContext(), speciesModel_->taxaAt(rows), !included);
    document_.objectContext().announceChanges();
}

void MainViewController::copyAllMetrics() {
    ui_->metricsPanel->copyAll();
}

void MainViewController::calculateProjectWideMetrics() {
    runAnalysis(Analysis::projectWideMetrics);
}

void MainViewController::individualBasedRarefaction() {
    runAnalysis(Analysis::individualBasedRarefaction);
}

void MainViewController::sampleBasedRarefaction() {
    runAnalysis(Analysis::sampleBasedRarefaction);
}

void MainViewController::runAnalysis(Analysis analysis) {
    if (commitEditing()) analyses_->run(analysis);
}

void MainViewController::setProjectName(const QString& name) {
    analyses_->setProjectName(name);
}

ProjectWideMetricsWindowController* MainViewController::projectWideMetricsWindowController() const {
    return analyses_->projectWideMetricsWindowController();
}

RarefactionWindowController* MainViewController::rarefactionWindowController() const {
    return analyses_->rarefactionWindowController();
}

bool MainViewController::canDeleteCensus() const {
    return !ui_->censusTable->selectedRows().empty();
}

bool MainViewController::canAddSpecies() const {
    return document_.objectContext().censusCount() > 0;
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
    add(census, "addCensus", tr("Add census"), &MainViewController::addCensusRow);
    add(census, "deleteCensus", tr("Delete census"), &MainViewController::deleteCensusRows);
    add(census, "sampleBasedRarefaction", tr("Sample-based rarefaction"),
        &MainViewController::sampleBasedRarefaction);
    add(census, "calculateProjectWideMetrics", tr("Project-wide metrics"),
        &MainViewController::calculateProjectWideMetrics);
    PullDownButton* species = ui_->speciesPopUpButton;
    add(species, "addSpecies", tr("Add species"), &MainViewController::addSpeciesRow);
    add(species, "deleteSpecies", tr("Delete species"), &MainViewController::deleteSpeciesRows);
    add(species, "individualBasedRarefaction", tr("Individual-based rarefaction"),
        &MainViewController::individualBasedRarefaction);
}

void MainViewController::undo() {
    travel(&ObjectContext::undo);
}

void MainViewController::redo() {
    travel(&ObjectContext::redo);
}

void MainViewController::travel(void (ObjectContext::*step)()) {
    if (!commitEditing()) return;
    ObjectContext& context = document_.objectContext();
    context.announceChanges();
    (context.*step)();
    revealing_ = true;
    context.announceChanges();
    revealing_ = false;
}

bool MainViewController::commitEditing() {
    QGuiApplication::inputMethod()->commit();  // what is still being composed is typed, too
    for (RecordTableView* table : {static_cast<RecordTableView*>(ui_->censusTable),
                                   static_cast<RecordTableView*>(ui_->speciesTable)}) {
        auto* field = qobject_cast<TableTextField*>(table->openEditor());
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
        const auto* field = qobject_cast<TableTextField*>(table->openEditor());
        return field != nullptr && field->isModified() ? field : nullptr;
    };
    if (const TableTextField* field = typedIn(ui_->censusTable)) {
        const auto census = copy.census(censusModel_->idAt(ui_->censusTable->editedCell().row()));
        if (census) editName(copy, *census, field->typedText().toStdString());
    }
    const std::optional<Census> shown = shownCensus_ ? copy.census(*shownCensus_) : std::nullopt;
    if (const TableTextField* field = typedIn(ui_->speciesTable); field && shown) {
        const QModelIndex cell = ui_->speciesTable->editedCell();
        const auto taxon = shown->taxon(speciesModel_->taxonAt(cell.row()));
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

}  // namespace zorvel
