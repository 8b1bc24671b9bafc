#include "ui/main/main_view_controller.h"

#include <QAction>
#include <QDataStream>
#include <QEvent>
#include <QHeaderView>
#include <QIODevice>
#include <QIcon>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <initializer_list>
#include <utility>

#include "ui/kit/glyphs.h"
#include "ui/kit/look.h"
#include "ui/kit/shown_text.h"
#include "ui/main/abundance_delegate.h"
#include "ui/main/analysis_commands.h"
#include "ui/main/census_table_model.h"
#include "ui/main/details_field.h"
#include "ui/main/details_notes.h"
#include "ui/main/shared_name_texts.h"
#include "ui/main/species_table_model.h"
#include "ui/main/table_columns.h"
#include "ui/main/table_text_fields.h"
#include "ui/main/text_field_delegate.h"
#include "ui_main_view.h"

namespace zorvel {

namespace {

QString progressName(MainView::ProgressId progress) {
    return QString("progress %1").arg(progress);
}

// The first number is the richness, as in the metrics.
QString speciesCountText(int all, const SpeciesTableModel& species) {
    const int excluded = species.excludedCount();
    const int absent = species.absentCount();
    QString text = MainViewController::tr("%L1 species").arg(all - excluded - absent);
    if (excluded > 0) text += MainViewController::tr(", %L1 excluded").arg(excluded);
    if (absent > 0) text += MainViewController::tr(", %L1 absent").arg(absent);
    return text;
}

}  // namespace

MainViewController::MainViewController(DiversityDocument& document, JobQueue& jobs,
                                       RandomSourceMaker makeRandom, const Panels& panels,
                                       QWidget* parent)
    : QWidget(parent),
      document_(document),
      ui_(std::make_unique<Ui::MainView>()),
      analyses_(new AnalysisCommands(*this, document, jobs, makeRandom, panels)),
      censusModel_(new CensusTableModel(document.objectContext(), this)),
      speciesModel_(new SpeciesTableModel(document.objectContext(), this)),
      observer_(document.objectContext().addObserver(
          [this](const ChangeSet& changes) { recordsDidChange(changes); })) {
    ui_->setupUi(this);
    ui_->metricsPanel->setServices(jobs, std::move(makeRandom));
    setUpCensusTable();
    setUpSpeciesTable();
    setUpDetails();
    hearOfEndsOfEditing();
    setUpSearch();
    keepThroughReset();
    setUpButtons();
    setUpPullDowns();
    setUpTexts();
    setUpSplitters();
    showProgress();
    showCensusCount();
    refreshSpeciesControls();
}

MainViewController::~MainViewController() {
    if (document_.documentMainViewController() == this) document_.forgetMainView();
    document_.objectContext().removeObserver(observer_);
}

void MainViewController::setUpSplitters() {
    ui_->splitter->setSizes({250, 470, 304});
    ui_->splitter->setStretchFactor(0, 0);
    ui_->splitter->setStretchFactor(1, 1);
    ui_->splitter->setStretchFactor(2, 0);
    ui_->censusSplitter->setSizes({480, 170});
    ui_->censusSplitter->setStretchFactor(0, 1);
    ui_->censusSplitter->setStretchFactor(1, 0);
}

void MainViewController::setUpButtons() {
    for (QToolButton* button : {ui_->addCensusButton, ui_->addSpeciesButton}) {
        button->setIcon(glyphIcon(Glyph::plus));
    }
    for (QToolButton* button : {ui_->removeCensusButton, ui_->removeSpeciesButton}) {
        button->setIcon(glyphIcon(Glyph::minus));
    }
    connect(ui_->cancelProgressButton, &QPushButton::clicked, this,
            &MainViewController::cancelProgress);
    connect(ui_->openButton, &QPushButton::clicked, this, &MainViewController::openRequested);
    connect(ui_->addFirstCensusButton, &QPushButton::clicked, this,
            &MainViewController::addCensusRow);
    connect(ui_->addCensusButton, &QToolButton::clicked, this, &MainViewController::addCensusRow);
    connect(ui_->removeCensusButton, &QToolButton::clicked, this,
            &MainViewController::deleteCensusRows);
    connect(ui_->addSpeciesButton, &QToolButton::clicked, this, &MainViewController::addSpeciesRow);
    connect(ui_->removeSpeciesButton, &QToolButton::clicked, this,
            &MainViewController::deleteSpeciesRows);
    connect(ui_->censusTable, &RecordTableView::deleteRequested, this,
            &MainViewController::deleteCensusRows);
    connect(ui_->speciesTable, &RecordTableView::deleteRequested, this,
            &MainViewController::deleteSpeciesRows);
    for (RecordTableView* table : {static_cast<RecordTableView*>(ui_->censusTable),
                                   static_cast<RecordTableView*>(ui_->speciesTable)}) {
        connect(table, &RecordTableView::cutRequested, this, [this, table] { cutRows(*table); });
        connect(table, &RecordTableView::copyRefused, this, [this] {
            showMessage(tr("Nothing was copied: it is too much to be pasted; select fewer rows."));
        });
        connect(table, &RecordTableView::pasteRequested, this,
                [this, table] { pasteRows(*table); });
    }
    connect(ui_->speciesTable, &SpeciesTableView::includeToggleRequested, this,
            &MainViewController::toggleInclude);
    connect(ui_->censusTable, &RecordTableView::addRowRequested, this,
            [this] { document_.addCensus(); });
    connect(ui_->speciesTable, &RecordTableView::addRowRequested, this,
            [this] { document_.addSpecies(); });
}

void MainViewController::setUpCensusTable() {
    ui_->censusTable->setModel(censusModel_);
    auto* names = new TextFieldDelegate(
        [](QWidget* table) { return new CensusTableTextField(table); }, ui_->censusTable);
    ui_->censusTable->setItemDelegateForColumn(CensusTableModel::nameColumn, names);
    censusColumns_ = new TableColumns(*ui_->censusTable, CensusTableModel::nameColumn, {150, 92});
    connect(ui_->censusTable->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &MainViewController::tableViewSelectionDidChange);
    // Another order may put another of the selected censuses on top.
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
                emit textRefused(tr("\u201c%1\u201d was not stored: %2").arg(text, reason));
            });
    connect(ui_->speciesTable->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &MainViewController::refreshSpeciesControls);
    speciesColumns_ =
        new TableColumns(*ui_->speciesTable, SpeciesTableModel::nameColumn, {40, 230, 200});
}

void MainViewController::setUpDetails() {
    ui_->detailsPane->setContext(document_.objectContext());
    connect(
        ui_->detailsPane, &DetailsView::textRefused, this,
        [this](const QString& detail, const QString& text, const QString& reason) {
            emit textRefused(tr("%1: \u201c%2\u201d was not stored: %3").arg(detail, text, reason));
        });
    connect(this, &MainViewController::textRefused, this, &MainViewController::showMessage);
}

// Queued: the record is changed by then, and a window that is about to go hears of none.
void MainViewController::hearOfEndsOfEditing() {
    const auto hear = [this](auto* field, auto signal) {
        connect(field, signal, this, &MainViewController::editingDidEnd, Qt::QueuedConnection);
    };
    for (auto* cells : findChildren<TextFieldDelegate*>()) {
        hear(cells, &TextFieldDelegate::closeEditor);
    }
    for (auto* detail : findChildren<DetailsField*>()) hear(detail, &DetailsField::commitRequested);
    for (auto* notes : findChildren<DetailsNotes*>()) hear(notes, &DetailsNotes::commitRequested);
    for (auto* table : findChildren<RecordTableView*>()) {
        connect(table, &RecordTableView::textTyped, this, &MainViewController::textTyped);
    }
    connect(ui_->detailsPane, &DetailsView::textTyped, this, &MainViewController::textTyped);
}

void MainViewController::setUpTexts() {
    ui_->censusHeading->setFont(scaledFont(font(), 1.1, true));
    ui_->speciesHeading->setFont(scaledFont(font(), 1.1, true));
    ui_->sharedNamesLabel->setContentsMargins(0, 0, 12, 8);
    ui_->emptyHeading->setFont(scaledFont(font(), 1.6, true));
    ui_->emptyIcon->setPixmap(windowIcon().pixmap(96, 96));
    showSecondaryTexts();
}

// Labels that say less than what stands beside them take the quieter colour.
void MainViewController::showSecondaryTexts() {
    QPalette quiet;
    quiet.setColor(QPalette::WindowText, lookColors(QPalette()).secondary);
    for (QLabel* label : std::initializer_list<QLabel*>{
             ui_->censusCountLabel, ui_->speciesCountLabel, ui_->emptyText, ui_->progressLabel,
             ui_->sharedNamesLabel}) {
        label->setPalette(quiet);
    }
}

void MainViewController::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) showSecondaryTexts();
}

void MainViewController::selectFirstCensus() {
    if (censusModel_->rowCount() == 0) return;
    ui_->censusTable->selectRows({0});
    ui_->censusTable->setFocus();
}

void MainViewController::showRightPage() {
    const bool empty = censusModel_->rowCount() == 0;
    ui_->pages->setCurrentWidget(empty ? ui_->emptyPage : ui_->projectPage);
    for (QWidget* part :
         {static_cast<QWidget*>(ui_->emptyIcon), static_cast<QWidget*>(ui_->emptyHeading),
          static_cast<QWidget*>(ui_->emptyText), static_cast<QWidget*>(ui_->emptyButtons)}) {
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
    showSpecies(census);
    showDetails(census);
    refreshMetrics();
    refreshSpeciesControls();
}

void MainViewController::refreshMetrics() {
    if (const std::optional<Census> census = selectedCensus()) {
        ui_->metricsPanel->refresh(
            census->name() ? shownName(census->name()) : tr("Unnamed census"),
            includedCountsVector(*census));
    }
}

void MainViewController::showSpecies(const std::optional<Census>& census) {
    speciesModel_->setCensus(census ? census->block() : nullptr);
    ui_->speciesTable->scrollToTop();
    showSpeciesHeading(census);
    showSpeciesCount();
}

void MainViewController::showSpeciesHeading(const std::optional<Census>& census) {
    ui_->speciesHeading->setText(!census ? tr("Species")
                                 : !census->name()
                                     ? tr("Species of an unnamed census")
                                     : tr("Species of %1").arg(shownName(census->name())));
    ui_->speciesHeading->setToolTip(ui_->speciesHeading->text());
}

void MainViewController::showCensusCount() {
    const int count = censusModel_->rowCount();
    ui_->censusCountLabel->setText(count == 1 ? tr("1 census") : tr("%L1 censuses").arg(count));
    showRightPage();
}

void MainViewController::showDetails(const std::optional<Census>& census) {
    ui_->detailsPane->showCensus(census);
}

void MainViewController::showSpeciesCount() {
    const auto all = static_cast<int>(speciesModel_->taxonCount());
    const int shown = speciesModel_->rowCount();
    ui_->speciesTable->setEmptyText(all == 0 ? tr("No species") : tr("No species of that name"));
    ui_->speciesCountLabel->setText(shown == all
                                        ? speciesCountText(all, *speciesModel_)
                                        : tr("%L1 of %L2 species shown").arg(shown).arg(all));
    ui_->speciesCountLabel->setToolTip(ui_->speciesCountLabel->text());
    const QString shared = sharedSpeciesLine(speciesModel_->sharedNames());
    ui_->sharedNamesLabel->setText(shared);
    ui_->sharedNamesLabel->setToolTip(shared.isEmpty() ? QString() : sharedSpeciesReason());
    ui_->sharedNamesLabel->setVisible(!shared.isEmpty());
}

void MainViewController::startProgress(const QString& name, const QString& text,
                                       std::function<void()> cancel) {
    running_.start(name, text, std::move(cancel));
    showProgress();
}

void MainViewController::stopProgress(const QString& name) {
    running_.stop(name);
    showProgress();
}

MainView::ProgressId MainViewController::startProgress(std::string_view text,
                                                       std::function<void()> cancel) {
    running_.start(progressName(++lastProgress_),
                   QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())),
                   std::move(cancel), true);
    showProgress();
    return lastProgress_;
}

void MainViewController::stopProgress(ProgressId progress) {
    stopProgress(progressName(progress));
}

bool MainViewController::isInProgressBeside(const QString& name) const {
    return running_.hasOther(name);
}

// What it does may end the work, and with it the function.
void MainViewController::cancelProgress() {
    const std::function<void()> cancel = running_.cancel();
    if (cancel) cancel();
}

// Comes here where nothing that has the focus takes it.
void MainViewController::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Cancel) && running_.cancel()) return cancelProgress();
    QWidget::keyPressEvent(event);
}

void MainViewController::showProgress() {
    const bool runs = !running_.isEmpty();
    if (runs) {
        ui_->progressIndicator->startAnimation();
    } else {
        ui_->progressIndicator->stopAnimation();
    }
    ui_->progressLabel->setText(oneLine(running_.text()));
    ui_->cancelProgressButton->setVisible(running_.cancel() != nullptr);
    ui_->progressRow->setVisible(runs);
    showRightPage();
}

bool MainViewController::isInProgress() const {
    return ui_->progressIndicator->isAnimated();
}

void MainViewController::showMessage(const QString& message) {
    ui_->messageStrip->addMessage(message);
}

void MainViewController::showNews(const QString& message) {
    ui_->messageStrip->addMessage(message, MessageStrip::Tone::news);
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
