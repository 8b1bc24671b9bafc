#include "ui/main/main_view_controller.h"

#include <QAbstractButton>
#include <QDataStream>
#include <QHeaderView>
#include <QIODevice>
#include <QItemSelectionModel>
#include <initializer_list>
#include <utility>

#include "ui/kit/glyphs.h"
#include "ui/kit/look.h"
#include "ui/kit/shown_text.h"
#include "ui/main/census_table_model.h"
#include "ui/main/details_view.h"
#include "ui/main/record_names.h"
#include "ui/main/record_tables.h"
#include "ui/main/species_table_model.h"
#include "ui/main/table_cells.h"
#include "ui_main_view.h"

namespace zorvel {

namespace {

// The first number is the richness, as in the metrics.
QString speciesCountText(int all, const SpeciesTableModel::Totals& totals) {
    QString text = QString("%L1 species").arg(all - totals.excluded - totals.absent);
    if (totals.excluded > 0) text += QString(", %L1 excluded").arg(totals.excluded);
    if (totals.absent > 0) text += QString(", %L1 absent").arg(totals.absent);
    return text;
}

}  // namespace

MainViewController::MainViewController(JobQueue& jobs, RandomSourceMaker makeRandom,
                                       const Panels& panels, QWidget* parent)
    : QWidget(parent),
      jobs_(jobs),
      makeRandom_(std::move(makeRandom)),
      panels_(panels),
      ui_(std::make_unique<Ui::MainView>()),
      censusModel_(new CensusTableModel(this)),
      speciesModel_(new SpeciesTableModel(this)) {
    ui_->setupUi(this);
    ui_->metricsPanel->setServices(jobs_, makeRandom_);
    setUpCensusTable();
    setUpSpeciesTable();
    setUpDetails();
    setUpSearch();
    keepThroughReset(ui_->censusTable, censusModel_);
    keepThroughReset(ui_->speciesTable, speciesModel_);
    setUpButtons();
    setUpPullDowns();
    setUpTexts();
    ui_->splitter->setSizes({250, 470, 304});
    ui_->splitter->setStretchFactor(1, 1);
    ui_->censusSplitter->setSizes({480, 170});
    ui_->censusSplitter->setStretchFactor(0, 1);
}

MainViewController::~MainViewController() {
    leaveDocument();
}

void MainViewController::showDocument(DiversityDocument& document) {
    const TaxonFormatter::Names names = taxonFormatter_.taxonNames();
    ui_->detailsPane->showCensus(std::nullopt);
    leaveDocument();
    document_ = &document;
    document.makeWindowControllers([this] { return this; });
    taxonFormatter_.addTaxonNames(names);
    ui_->searchBar->clear();
    for (RecordTableView* table : tables()) {
        table->horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
    }
    shownCensus_.reset();
    ui_->detailsPane->setContext(context());
    speciesModel_->setContext(context());
    censusModel_->setContext(context());
    observer_ =
        context().addObserver([this](const ChangeSet& changes) { recordsDidChange(changes); });
    showSpeciesHeading(std::nullopt);
    showSpeciesCount();
    showCensusCount();
    showProgress();
    refreshSpeciesControls();
    if (censusModel_->rowCount() == 0) return;
    ui_->censusTable->selectRows({0});
    ui_->censusTable->setFocus();
}

void MainViewController::leaveDocument() {
    if (document_ == nullptr) return;
    if (document_->documentMainViewController() == this) document_->forgetMainView();
    context().removeObserver(observer_);
}

std::array<RecordTableView*, 2> MainViewController::tables() const {
    return {ui_->censusTable, ui_->speciesTable};
}

void MainViewController::setUpButtons() {
    for (QToolButton* button : {ui_->addCensusButton, ui_->addSpeciesButton}) {
        button->setIcon(glyphIcon(Glyph::plus));
    }
    for (QToolButton* button : {ui_->removeCensusButton, ui_->removeSpeciesButton}) {
        button->setIcon(glyphIcon(Glyph::minus));
    }
    const std::pair<QAbstractButton*, void (MainViewController::*)()> commands[] = {
        {ui_->openButton, &MainViewController::openRequested},
        {ui_->cancelProgressButton, &MainViewController::cancelProgress},
        {ui_->addFirstCensusButton, &MainViewController::addCensusRow},
        {ui_->addCensusButton, &MainViewController::addCensusRow},
        {ui_->removeCensusButton, &MainViewController::deleteCensusRows},
        {ui_->addSpeciesButton, &MainViewController::addSpeciesRow},
        {ui_->removeSpeciesButton, &MainViewController::deleteSpeciesRows}};
    for (const auto& [button, command] : commands) {
        connect(button, &QAbstractButton::clicked, this, command);
    }
    connect(ui_->censusTable, &RecordTableView::deleteRequested, this,
            &MainViewController::deleteCensusRows);
    connect(ui_->speciesTable, &RecordTableView::deleteRequested, this,
            &MainViewController::deleteSpeciesRows);
    for (RecordTableView* table : tables()) {
        connect(table, &RecordTableView::cutRequested, this, [this, table] { cutRows(*table); });
        connect(table, &RecordTableView::copyRefused, this, [this] {
            messageStrip().addMessage(
                "Nothing was copied: it is too much to be pasted; select fewer rows.");
        });
        connect(table, &RecordTableView::pasteRequested, this,
                [this, table] { pasteRows(*table); });
        connect(table, &RecordTableView::textTyped, this, &MainViewController::textTyped);
    }
    connect(ui_->speciesTable, &SpeciesTableView::includeToggleRequested, this,
            &MainViewController::toggleInclude);
    connect(ui_->censusTable, &RecordTableView::addRowRequested, this,
            &MainViewController::addCensusRow);
    connect(ui_->speciesTable, &RecordTableView::addRowRequested, this,
            &MainViewController::addSpeciesRow);
}

void MainViewController::setUpCensusTable() {
    ui_->censusTable->setModel(censusModel_);
    auto* names = new TextFieldDelegate(
        [](QWidget* table) { return new CensusTableTextField(table); }, ui_->censusTable);
    ui_->censusTable->setItemDelegateForColumn(CensusTableModel::nameColumn, names);
    censusColumns_ = new TableColumns(*ui_->censusTable, CensusTableModel::nameColumn, {150, 92});
    connect(ui_->censusTable->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &MainViewController::tableViewSelectionDidChange);
    // After sorting, another of the selected censuses may be on top.
    connect(censusModel_, &CensusTableModel::layoutChanged, this,
            &MainViewController::tableViewSelectionDidChange, Qt::QueuedConnection);
}

void MainViewController::setUpSpeciesTable() {
    ui_->speciesTable->setModel(speciesModel_);
    auto* names = new TextFieldDelegate(
        [this](QWidget* table) {
            auto* field = new SpeciesTableTextField("name", table);
            field->setFormatter(taxonFormatter_);
            return field;
        },
        ui_->speciesTable);
    auto* abundances = new AbundanceDelegate(ui_->speciesTable);
    ui_->speciesTable->setItemDelegateForColumn(SpeciesTableModel::nameColumn, names);
    ui_->speciesTable->setItemDelegateForColumn(SpeciesTableModel::abundanceColumn, abundances);
    connect(abundances, &TextFieldDelegate::textRefused, this,
            [this](const QString& text, const QString& reason) {
                emit textRefused(QString("\u201c%1\u201d was not stored: %2").arg(text, reason));
            });
    connect(ui_->speciesTable->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &MainViewController::refreshSpeciesControls);
    speciesColumns_ =
        new TableColumns(*ui_->speciesTable, SpeciesTableModel::nameColumn, {40, 230, 200});
}

void MainViewController::setUpDetails() {
    connect(ui_->detailsPane, &DetailsView::textRefused, this,
            [this](const QString& detail, const QString& text, const QString& reason) {
                emit textRefused(
                    QString("%1: \u201c%2\u201d was not stored: %3").arg(detail, text, reason));
            });
    connect(ui_->detailsPane, &DetailsView::textTyped, this, &MainViewController::textTyped);
    // Queued: a window that is about to close is not refreshed.
    connect(ui_->detailsPane, &DetailsView::editingDidEnd, this, &MainViewController::editingDidEnd,
            Qt::QueuedConnection);
    for (const auto* cells : findChildren<TextFieldDelegate*>()) {
        connect(cells, &TextFieldDelegate::closeEditor, this, &MainViewController::editingDidEnd,
                Qt::QueuedConnection);
    }
    connect(this, &MainViewController::textRefused, this,
            [this](const QString& message) { messageStrip().addMessage(message); });
}

void MainViewController::setUpTexts() {
    ui_->censusHeading->setFont(scaledFont(font(), 1.1));
    ui_->speciesHeading->setFont(scaledFont(font(), 1.1));
    ui_->sharedNamesLabel->setContentsMargins(0, 0, 12, 8);
    ui_->emptyHeading->setFont(scaledFont(font(), 1.6));
    ui_->emptyIcon->setPixmap(windowIcon().pixmap(96, 96));
    for (QLabel* label : std::initializer_list<QLabel*>{
             ui_->censusCountLabel, ui_->speciesCountLabel, ui_->emptyText, ui_->progressLabel,
             ui_->sharedNamesLabel}) {
        label->setForegroundRole(secondaryText);
    }
}

void MainViewController::showRightPage() {
    const bool empty = censusModel_->rowCount() == 0;
    ui_->pages->setCurrentWidget(empty ? ui_->emptyPage : ui_->projectPage);
    for (auto* part : ui_->emptyPage->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
        part->setVisible(!isInProgress());
    }
}

std::optional<Census> MainViewController::selectedCensus() const {
    const std::vector<int> rows = ui_->censusTable->selectedRows();
    return rows.empty() ? std::nullopt : censusModel_->censusAt(rows.front());
}

std::vector<Census> MainViewController::selectedCensuses() const {
    std::vector<Census> censuses;
    for (const int row : ui_->censusTable->selectedRows()) {
        if (const std::optional<Census> census = censusModel_->censusAt(row)) {
            censuses.push_back(*census);
        }
    }
    return censuses;
}

void MainViewController::tableViewSelectionDidChange() {
    const std::optional<Census> census = selectedCensus();
    const std::optional<RecordId> id = census ? std::optional(census->id()) : std::nullopt;
    refreshSpeciesControls();
    if (id && id == shownCensus_) return;
    ui_->speciesTable->commitEditing();
    shownCensus_ = id;
    speciesModel_->setCensus(census ? census->block() : nullptr);
    ui_->speciesTable->scrollToTop();
    showSpeciesHeading(census);
    showSpeciesCount();
    ui_->detailsPane->showCensus(census);
    refreshMetrics();
    refreshSpeciesControls();
}

void MainViewController::refreshMetrics() {
    if (const std::optional<Census> census = selectedCensus()) {
        ui_->metricsPanel->refresh(census->name() ? shownName(census->name()) : "Unnamed census",
                                   includedCountsVector(*census));
    }
}

void MainViewController::showSpeciesHeading(const std::optional<Census>& census) {
    ui_->speciesHeading->setText(!census ? "Species"
                                 : !census->name()
                                     ? "Species of an unnamed census"
                                     : QString("Species of %1").arg(shownName(census->name())));
    ui_->speciesHeading->setToolTip(ui_->speciesHeading->text());
}

void MainViewController::showCensusCount() {
    const auto count = static_cast<std::size_t>(censusModel_->rowCount());
    ui_->censusCountLabel->setText(countText(count, "1 census", "%1 censuses"));
    showRightPage();
}

void MainViewController::showSpeciesCount() {
    const auto all = static_cast<int>(speciesModel_->taxonCount());
    const int shown = speciesModel_->rowCount();
    ui_->speciesTable->setEmptyText(all == 0 ? "No species" : "No species of that name");
    ui_->speciesCountLabel->setText(shown == all
                                        ? speciesCountText(all, speciesModel_->totals())
                                        : QString("%L1 of %L2 species shown").arg(shown).arg(all));
    ui_->speciesCountLabel->setToolTip(ui_->speciesCountLabel->text());
    const QString shared = sharedSpeciesLine(speciesModel_->sharedNames());
    ui_->sharedNamesLabel->setText(shared);
    ui_->sharedNamesLabel->setToolTip(shared.isEmpty() ? QString() : sharedSpeciesReason);
    ui_->sharedNamesLabel->setVisible(!shared.isEmpty());
}

MessageStrip& MainViewController::messageStrip() {
    return *ui_->messageStrip;
}

QByteArray MainViewController::saveLayout() const {
    QByteArray state;
    QDataStream stream(&state, QIODevice::WriteOnly);
    stream << ui_->splitter->saveState() << ui_->censusSplitter->saveState()
           << censusColumns_->widths() << speciesColumns_->widths();
    return state;
}

void MainViewController::restoreLayout(const QByteArray& state) {
    QByteArray columns;
    QByteArray rows;
    QDataStream stream(state);
    QList<int> censusWidths;
    QList<int> speciesWidths;
    stream >> columns >> rows >> censusWidths >> speciesWidths;
    if (!columns.isEmpty()) ui_->splitter->restoreState(columns);
    if (!rows.isEmpty()) ui_->censusSplitter->restoreState(rows);
    censusColumns_->setWidths(censusWidths);
    speciesColumns_->setWidths(speciesWidths);
}

}  // namespace zorvel
