#include "ui/main/main_view_controller.h"

#include <QAction>
#include <QDataStream>
#include <QEvent>
#include <QHeaderView>
#include <QIODevice>
#include <QIcon>
#include <QItemSelectionModel>
#include <QShortcut>
#include <algorithm>
#include <utility>

#include "ui/kit/glyphs.h"
#include "ui/kit/look.h"
#include "ui/main/abundance_delegate.h"
#include "ui/main/census_details.h"
#include "ui/main/census_table_model.h"
#include "ui/main/species_table_model.h"
#include "ui_main_view.h"

namespace zorvel {

MainViewController::MainViewController(const DiversityDocument& document, JobQueue& jobs,
                                       RandomSourceMaker makeRandom, QWidget* parent)
    : QWidget(parent),
      document_(document),
      ui_(std::make_unique<Ui::MainView>()),
      censusModel_(new CensusTableModel(document.objectContext(), this)),
      speciesModel_(new SpeciesTableModel(this)) {
    ui_->setupUi(this);
    ui_->metricsPanel->setServices(jobs, std::move(makeRandom));
    setUpTables();
    setUpTexts();
    ui_->splitter->setSizes({250, 470, 304});
    ui_->splitter->setStretchFactor(0, 0);
    ui_->splitter->setStretchFactor(1, 1);
    ui_->splitter->setStretchFactor(2, 0);
    ui_->censusSplitter->setSizes({480, 170});
    ui_->censusSplitter->setStretchFactor(0, 1);
    ui_->censusSplitter->setStretchFactor(1, 0);
    connect(ui_->openButton, &QPushButton::clicked, this, &MainViewController::openRequested);
    stopProgress();
    showRightPage();
}

MainViewController::~MainViewController() = default;

void MainViewController::setUpTables() {
    ui_->censusTable->setModel(censusModel_);
    QHeaderView* censusHeader = ui_->censusTable->horizontalHeader();
    censusHeader->setSectionResizeMode(CensusTableModel::nameColumn, QHeaderView::Stretch);
    censusHeader->setSectionResizeMode(CensusTableModel::speciesColumn, QHeaderView::Fixed);
    ui_->censusTable->setColumnWidth(CensusTableModel::speciesColumn, 92);
    connect(ui_->censusTable->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &MainViewController::tableViewSelectionDidChange);
    // Another order may put another of the selected censuses on top.
    connect(censusModel_, &CensusTableModel::layoutChanged, this,
            &MainViewController::tableViewSelectionDidChange, Qt::QueuedConnection);

    ui_->speciesTable->setModel(speciesModel_);
    ui_->speciesTable->setItemDelegateForColumn(SpeciesTableModel::abundanceColumn,
                                                new AbundanceDelegate(ui_->speciesTable));
    QHeaderView* speciesHeader = ui_->speciesTable->horizontalHeader();
    speciesHeader->setSectionResizeMode(SpeciesTableModel::includeColumn, QHeaderView::Fixed);
    speciesHeader->setSectionResizeMode(SpeciesTableModel::nameColumn, QHeaderView::Stretch);
    speciesHeader->setSectionResizeMode(SpeciesTableModel::abundanceColumn, QHeaderView::Fixed);
    ui_->speciesTable->setColumnWidth(SpeciesTableModel::includeColumn, 40);
    ui_->speciesTable->setColumnWidth(SpeciesTableModel::abundanceColumn, 200);

    ui_->searchBar->addAction(glyphIcon(Glyph::search), QLineEdit::LeadingPosition);
    connect(ui_->searchBar, &QLineEdit::textChanged, this, &MainViewController::filterSpecies);
    connect(new QShortcut(QKeySequence::Find, this), &QShortcut::activated, this, [this] {
        ui_->searchBar->setFocus(Qt::ShortcutFocusReason);
        ui_->searchBar->selectAll();
    });
}

void MainViewController::setUpTexts() {
    for (QLabel* heading : {ui_->censusHeading, ui_->speciesHeading}) {
        heading->setFont(scaledFont(font(), 1.1, true));
    }
    ui_->emptyHeading->setFont(scaledFont(font(), 1.6, true));
    ui_->emptyIcon->setPixmap(windowIcon().pixmap(96, 96));
    for (ValueField* value :
         {ui_->latitudeValueTextField, ui_->longitudeValueTextField, ui_->dateValueTextField}) {
        value->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    }
    ui_->notesTextView->document()->setDocumentMargin(0);
    ui_->notesTextView->viewport()->setAutoFillBackground(false);
    showSecondaryTexts();
}

// Labels that say less than what stands beside them take the quieter colour.
void MainViewController::showSecondaryTexts() {
    QPalette quiet;
    quiet.setColor(QPalette::WindowText, lookColors(QPalette()).secondary);
    for (QLabel* label :
         {ui_->censusCountLabel, ui_->speciesCountLabel, ui_->emptyText, ui_->progressLabel,
          ui_->latitudeLabel, ui_->longitudeLabel, ui_->dateLabel, ui_->notesLabel}) {
        label->setPalette(quiet);
    }
}

void MainViewController::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) showSecondaryTexts();
}

void MainViewController::reloadCensuses() {
    censusModel_->reload();
    ui_->censusCountLabel->setText(tr("%L1").arg(censusModel_->rowCount()));
    shownCensus_.reset();
    tableViewSelectionDidChange();
    showRightPage();
}

void MainViewController::selectFirstCensus() {
    if (censusModel_->rowCount() == 0) return;
    ui_->censusTable->selectRow(0);
    ui_->censusTable->setFocus();
}

void MainViewController::showRightPage() {
    const bool empty = censusModel_->rowCount() == 0;
    ui_->pages->setCurrentWidget(empty ? ui_->emptyPage : ui_->projectPage);
    for (QWidget* part :
         {static_cast<QWidget*>(ui_->emptyIcon), static_cast<QWidget*>(ui_->emptyHeading),
          static_cast<QWidget*>(ui_->emptyText), static_cast<QWidget*>(ui_->openButton)}) {
        part->setVisible(!isInProgress());
    }
}

std::optional<Census> MainViewController::selectedCensus() const {
    const QModelIndexList rows = ui_->censusTable->selectionModel()->selectedRows();
    if (rows.isEmpty()) return std::nullopt;
    const auto byRow = [](const QModelIndex& a, const QModelIndex& b) { return a.row() < b.row(); };
    return censusModel_->censusAt(std::min_element(rows.begin(), rows.end(), byRow)->row());
}

void MainViewController::tableViewSelectionDidChange() {
    const std::optional<Census> census = selectedCensus();
    const std::optional<RecordId> id = census ? std::optional(census->id()) : std::nullopt;
    if (id && id == shownCensus_) return;
    shownCensus_ = id;
    showSpecies(census);
    showDetails(census);
    refreshMetrics();
}

void MainViewController::refreshMetrics() {
    if (const std::optional<Census> census = selectedCensus()) {
        ui_->metricsPanel->refresh(shownName(census->name()), includedCountsVector(*census));
    }
}

void MainViewController::showSpecies(const std::optional<Census>& census) {
    speciesModel_->setCensus(census ? census->block() : nullptr);
    ui_->speciesTable->scrollToTop();
    ui_->speciesHeading->setText(census ? tr("Species of %1").arg(shownName(census->name()))
                                        : tr("Species"));
    ui_->speciesHeading->setToolTip(ui_->speciesHeading->text());
    showSpeciesCount();
}

void MainViewController::showDetails(const std::optional<Census>& census) {
    const CensusDetails details = census ? censusDetails(*census) : CensusDetails{};
    ui_->latitudeValueTextField->setText(details.latitude);
    ui_->longitudeValueTextField->setText(details.longitude);
    ui_->dateValueTextField->setText(details.date);
    ui_->notesTextView->setPlainText(details.notes);
}

void MainViewController::showSpeciesCount() {
    const auto all = static_cast<int>(speciesModel_->taxonCount());
    const int shown = speciesModel_->rowCount();
    ui_->speciesTable->setEmptyText(all == 0 ? tr("No species") : tr("No species of that name"));
    ui_->speciesCountLabel->setText(shown == all ? tr("%L1").arg(all)
                                                 : tr("%L1 of %L2").arg(shown).arg(all));
}

// The selection stays on the species that are still shown.
void MainViewController::filterSpecies(const QString& text) {
    QItemSelectionModel* selection = ui_->speciesTable->selectionModel();
    std::vector<RecordId> selected;
    for (const QModelIndex& row : selection->selectedRows()) {
        selected.push_back(speciesModel_->taxonAt(row.row()));
    }
    speciesModel_->setFilter(text);
    std::sort(selected.begin(), selected.end());
    QItemSelection kept;
    for (int row = 0; row < speciesModel_->rowCount() && !selected.empty(); ++row) {
        if (!std::binary_search(selected.begin(), selected.end(), speciesModel_->taxonAt(row))) {
            continue;
        }
        const QModelIndex index = speciesModel_->index(row, 0);
        kept.select(index, index);
    }
    selection->select(kept, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    showSpeciesCount();
}

void MainViewController::startProgress(const QString& text) {
    ui_->progressIndicator->startAnimation();
    ui_->progressLabel->setText(text);
    ui_->progressRow->show();
    showRightPage();
}

void MainViewController::stopProgress() {
    ui_->progressIndicator->stopAnimation();
    ui_->progressLabel->clear();
    ui_->progressRow->hide();
    showRightPage();
}

bool MainViewController::isInProgress() const {
    return ui_->progressIndicator->isAnimated();
}

void MainViewController::showMessage(const QString& message) {
    ui_->messageStrip->addMessage(message);
}

QByteArray MainViewController::saveLayout() const {
    QByteArray state;
    QDataStream stream(&state, QIODevice::WriteOnly);
    stream << ui_->splitter->saveState() << ui_->censusSplitter->saveState();
    return state;
}

void MainViewController::restoreLayout(const QByteArray& state) {
    QByteArray columns;
    QByteArray rows;
    QDataStream stream(state);
    stream >> columns >> rows;
    if (!columns.isEmpty()) ui_->splitter->restoreState(columns);
    if (!rows.isEmpty()) ui_->censusSplitter->restoreState(rows);
}

}  // namespace zorvel
