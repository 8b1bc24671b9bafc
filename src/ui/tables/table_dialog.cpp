#include "ui/tables/table_dialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSplitter>
#include <QTableView>
#include <QTableWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "tables/texts.h"
#include "ui/kit/glyphs.h"
#include "ui/kit/look.h"
#include "ui/kit/look_style.h"
#include "ui/kit/shown_text.h"
#include "ui/kit/small_widgets.h"
#include "ui/kit/window_placement.h"
#include "ui/tables/role_header.h"
#include "ui/tables/sample_model.h"
#include "ui/tables/table_texts.h"

namespace zorvel {

namespace {

constexpr QSize wantedSize{900, 600};
constexpr QSize leastSize{560, 400};
constexpr QSize roomyFrom{760, 520};  // below it the options fold
constexpr int remarksHeight = 110;
constexpr int widestColumn = 30;  // characters
constexpr int cellMargins = 36;
constexpr int signSize = 14;
constexpr int partsMargin = 5;
constexpr int remarkPlace = Qt::UserRole;  // of a problem, from 0

QString counted(std::size_t count, const QString& one, const QString& many) {
    return count == 1 ? one : many.arg(QLocale().toString(qulonglong{count}));
}

QTableWidgetItem* cellItem(const QString& text, Qt::Alignment alignment) {
    auto* item = new QTableWidgetItem(text);
    item->setTextAlignment(alignment | Qt::AlignVCenter);
    return item;
}

QPushButton* smallButton(const QString& title, const char* name) {
    auto* button = new QPushButton(title);
    button->setObjectName(name);
    button->setAutoDefault(false);
    return button;
}

void fitRows(QHeaderView& header) {
    const int height = header.fontMetrics().height() + 8;
    header.setMinimumSectionSize(height);
    header.setDefaultSectionSize(height);
    header.setSectionResizeMode(QHeaderView::Fixed);
}

// A caption above a part, whose letter leads there.
QLabel* captionOf(QWidget* part, const QString& text) {
    auto* label = new QLabel(text);
    label->setBuddy(part);
    label->setForegroundRole(secondaryText);
    return label;
}

}  // namespace

TableDialog::TableDialog(const QString& name, std::shared_ptr<const TableInput> input,
                         JobQueue& jobs, QWidget* parent)
    : QDialog(parent), input_(std::move(input)), sheet_(input_->first), jobs_(jobs) {
    setObjectName("tableDialog");
    setWindowTitle("Import Table");
    setWindowModality(Qt::WindowModal);
    setSizeGripEnabled(true);
    setMinimumSize(leastSize);
    resizeToFit(*this, wantedSize);
    addParts(name);
    foldOptions();
    sample_->setFocus();
    update();
}

void TableDialog::addParts(const QString& name) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(16, 14, 16, 12);
    column->setSpacing(10);
    auto* heading = new QHBoxLayout;
    column->addLayout(heading);
    name_ = new ElidedLabel;
    name_->setText(oneLine(name));
    name_->setFont(scaledFont(font(), 1.1, true));
    heading->addWidget(name_, 1);
    if (input_->sheets.size() > 1) addSheets(*heading);
    optionsButton_ = smallButton("&Options...", "tableOptionsButton");
    optionsButton_->setCheckable(true);
    heading->addWidget(optionsButton_);
    options_ = new TableOptions;
    options_->setObjectName("tableOptions");
    column->addWidget(options_);
    connect(optionsButton_, &QPushButton::toggled, this, &TableDialog::foldOptions);
    connect(options_, &TableOptions::corrected, this, &TableDialog::correct);

    doubts_ = new QWidget;
    new QVBoxLayout(doubts_);
    doubts_->layout()->setContentsMargins(0, 0, 0, 0);
    column->addWidget(doubts_);

    auto* splitter = new QSplitter(Qt::Horizontal);
    splitter->setChildrenCollapsible(false);
    splitter->addWidget(makeSample());
    splitter->addWidget(makeCensuses());
    splitter->setStretchFactor(0, 3);
    splitter->setStretchFactor(1, 1);
    splitter->setSizes({570, 290});
    column->addWidget(splitter, 1);

    understood_ = new WrappedLabel;
    understood_->setObjectName("tableUnderstood");
    understood_->setText("Looking at the table...");
    column->addWidget(understood_);
    addRemarks(*column);
    addButtons(*column);
}

void TableDialog::addSheets(QHBoxLayout& line) {
    auto* box = new QComboBox;
    box->setObjectName("tableSheetBox");
    for (const TableInput::Sheet& sheet : input_->sheets) {
        box->addItem(oneLine(QString::fromStdString(sheet.name)));
    }
    box->setCurrentIndex(static_cast<int>(sheet_));
    auto* label = new QLabel("Sh&eet:");
    label->setBuddy(box);
    line.addWidget(label);
    line.addWidget(box);
    connect(box, &QComboBox::activated, this, &TableDialog::showSheet);
}

QWidget* TableDialog::makeSample() {
    auto* part = new QWidget;
    auto* column = new QVBoxLayout(part);
    column->setContentsMargins(0, 0, partsMargin, 0);
    column->setSpacing(4);
    sample_ = new QTableView;
    sample_->setObjectName("tableSample");
    sample_->setAccessibleName("First rows of the table");
    model_ = new SampleModel(this);
    roles_ = new RoleHeader(sample_);
    sample_->setModel(model_);
    sample_->setHorizontalHeader(roles_);
    sample_->setSelectionMode(QAbstractItemView::SingleSelection);
    sample_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    sample_->setTabKeyNavigation(false);
    sample_->setWordWrap(false);
    sample_->setCornerButtonEnabled(false);
    sample_->setIconSize({signSize, signSize});
    sample_->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    fitRows(*sample_->verticalHeader());
    sample_->installEventFilter(this);
    sampleLabel_ = captionOf(sample_, "&Sample");
    column->addWidget(sampleLabel_);
    column->addWidget(sample_);
    connect(roles_, &RoleHeader::roleChosen, this, [this](int section, ColumnRole role) {
        const std::size_t place = model_->columnOf(section);
        correct([place, role](TableCorrections& corrections) { corrections.roles[place] = role; });
    });
    return part;
}

QWidget* TableDialog::makeCensuses() {
    auto* part = new QWidget;
    auto* column = new QVBoxLayout(part);
    column->setContentsMargins(partsMargin, 0, 0, 0);
    column->setSpacing(4);
    censuses_ = new QTableWidget(0, 3);
    censuses_->setObjectName("tableCensuses");
    censuses_->setHorizontalHeaderLabels({"Census", "Species", "Individuals"});
    censuses_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    censuses_->setSelectionBehavior(QAbstractItemView::SelectRows);
    censuses_->setSelectionMode(QAbstractItemView::SingleSelection);
    censuses_->setTabKeyNavigation(false);
    censuses_->setWordWrap(false);
    censuses_->setShowGrid(false);
    censuses_->verticalHeader()->hide();
    fitRows(*censuses_->verticalHeader());
    QHeaderView* header = censuses_->horizontalHeader();
    header->setSectionResizeMode(0, QHeaderView::Stretch);
    header->setMinimumSectionSize(70);
    for (const int i : {1, 2}) {
        const QString title = censuses_->horizontalHeaderItem(i)->text();
        censuses_->setColumnWidth(i, fontMetrics().horizontalAdvance(title) + cellMargins);
    }
    censusesLabel_ = captionOf(censuses_, "&Will be read");
    column->addWidget(censusesLabel_);
    column->addWidget(censuses_);
    return part;
}

void TableDialog::addRemarks(QVBoxLayout& column) {
    remarksPart_ = new QWidget;
    auto* part = new QVBoxLayout(remarksPart_);
    part->setContentsMargins(0, 0, 0, 0);
    part->setSpacing(4);
    remarks_ = new QListWidget;
    remarks_->setObjectName("tableRemarks");
    remarks_->setMaximumHeight(remarksHeight);
    remarks_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    remarks_->setUniformItemSizes(true);
    remarks_->setIconSize({signSize, signSize});
    remarksLabel_ = captionOf(remarks_, "Pro&blems");
    leaveOutRow_ = smallButton("Leave Out &Row", "tableLeaveOutRow");
    leaveOutColumn_ = smallButton("Leave Out Col&umn", "tableLeaveOutColumn");
    takeAsZero_ = smallButton("Take as &0", "tableTakeAsZero");
    auto* line = new QHBoxLayout;
    line->addWidget(remarksLabel_, 1);
    for (QPushButton* button : {leaveOutRow_, leaveOutColumn_, takeAsZero_}) {
        line->addWidget(button);
    }
    part->addLayout(line);
    part->addWidget(remarks_);
    column.addWidget(remarksPart_);
    connect(remarks_, &QListWidget::itemActivated, this, &TableDialog::jumpToProblem);
    connect(remarks_, &QListWidget::itemClicked, this, [this] {
        if (const TableRemark* problem = currentProblem()) {
            sample_->setCurrentIndex(model_->indexOf(*problem));
        }
    });
    connect(remarks_, &QListWidget::currentRowChanged, this, &TableDialog::showRemarkCommands);
    connect(leaveOutRow_, &QPushButton::clicked, this, [this] {
        const TableRemark* problem = currentProblem();
        if (problem == nullptr) return;
        correct([row = problem->row](TableCorrections& corrections) {
            auto& rows = corrections.leftOutRows;
            const auto place = std::lower_bound(rows.begin(), rows.end(), row);
            if (place == rows.end() || *place != row) rows.insert(place, row);
        });
    });
    connect(leaveOutColumn_, &QPushButton::clicked, this, [this] {
        const TableRemark* problem = currentProblem();
        if (problem == nullptr || !problem->column) return;
        correct([place = *problem->column](TableCorrections& corrections) {
            corrections.roles[place] = ColumnRole::ignored;
        });
    });
    connect(takeAsZero_, &QPushButton::clicked, this, [this] {
        const TableRemark* problem = currentProblem();
        if (problem == nullptr || !problem->fault) return;
        correct([fault = *problem->fault](TableCorrections& corrections) {
            corrections.takenAsZero.push_back(fault);
        });
    });
}

void TableDialog::addButtons(QVBoxLayout& column) {
    auto* buttons = new QDialogButtonBox;
    import_ = buttons->addButton("&Import", QDialogButtonBox::AcceptRole);
    import_->setObjectName("tableImportButton");
    import_->setProperty(primaryButtonProperty, true);
    import_->setEnabled(false);
    for (QPushButton* button : {import_, buttons->addButton(QDialogButtonBox::Cancel)}) {
        button->setAutoDefault(false);
    }
    connect(buttons, &QDialogButtonBox::accepted, this, &TableDialog::import);
    connect(buttons, &QDialogButtonBox::rejected, this, &TableDialog::reject);
    column.addWidget(buttons);
}

// As it would be shown first.
void TableDialog::showSheet(int sheet) {
    sheet_ = static_cast<std::size_t>(sheet);
    corrections_ = {};
    others_.clear();
    header_.reset();
    update();
}

void TableDialog::correct(const TableCorrection& correction) {
    correction(corrections_);
    update();
}

void TableDialog::showFound(TableRows rows) {
    others_ = std::move(rows);
    update();
}

void TableDialog::update() {
    outdated_ = running_;
    if (running_) return;
    running_ = true;
    showImportButton();
    jobs_.start(
        this,
        [input = input_, sheet = sheet_, corrections = corrections_, others = others_] {
            return std::make_shared<const TablePreview>(
                previewTable(*input, sheet, corrections, others));
        },
        [this](const std::shared_ptr<const TablePreview>& preview) { take(preview); });
}

void TableDialog::take(const std::shared_ptr<const TablePreview>& preview) {
    running_ = false;
    if (outdated_) return update();
    if (!header_) {
        header_ = preview->header;
        const auto kept = header_->empty() ? std::nullopt : keptCorrections(*header_);
        if (kept) {
            corrections_ = *kept;
            return update();
        }
    }
    preview_ = preview;
    showPreview();
}

void TableDialog::showPreview() {
    const QModelIndex before = sample_->currentIndex();
    roles_->setLayoutOfTable(preview_->reading.layout);
    model_->setPreview(preview_);
    fitColumns();
    const QModelIndex cell = model_->index(std::max(before.row(), 0), std::max(before.column(), 0));
    if (cell.isValid()) sample_->setCurrentIndex(cell);
    sampleLabel_->setText(preview_->whole
                              ? QString("&Sample")
                              : QString("&Sample: the first %L1 rows; the import reads all of them")
                                    .arg(TableSample::mostRows));
    options_->showReading(preview_->reading, preview_->sheet.empty());
    understood_->setText(
        preview_->failure.empty()
            ? "Understood: " + oneLine(QString::fromStdString(understoodText(*preview_))) + '.'
            : "The table " + oneLine(QString::fromStdString(preview_->failure)) + '.');
    showDoubts();
    showCensuses();
    showRemarks();
    showImportButton();
}

void TableDialog::fitColumns() {
    const int character = fontMetrics().averageCharWidth();
    for (int column = 0; column < model_->columnCount(); ++column) {
        std::size_t longest = 0;
        for (const TablePreview::Row& row : preview_->rows) {
            if (row.state == TablePreview::RowState::leftOut) continue;
            longest = std::max(longest, row.cells[static_cast<std::size_t>(column)].size());
        }
        const bool hasSigns = preview_->problemsOfColumn.contains(model_->columnOf(column));
        const int room = cellMargins + (hasSigns ? 2 * signSize : 0);
        const int width = std::min(static_cast<int>(longest), widestColumn) * character + room;
        sample_->setColumnWidth(column, std::max(roles_->minimumSectionSize(), width));
    }
}

void TableDialog::showDoubts() {
    while (QLayoutItem* item = doubts_->layout()->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    for (const TableDoubt doubt : preview_->doubts) {
        const DoubtQuestion question = questionOf(doubt, preview_->reading);
        auto* part = new QWidget;
        auto* line = new QHBoxLayout(part);
        line->setContentsMargins(0, 0, 0, 0);
        auto* label = new QLabel(question.text);
        label->setForegroundRole(problemText);
        label->setWordWrap(true);
        line->addWidget(label, 1);
        for (const DoubtAnswer& answer : question.answers) {
            auto* button = smallButton(answer.title, "tableDoubtAnswer");
            button->setAccessibleDescription(question.text);
            connect(button, &QPushButton::clicked, this,
                    [this, correction = answer.correct] { correct(correction); });
            line->addWidget(button);
        }
        doubts_->layout()->addWidget(part);
    }
    doubts_->setVisible(!preview_->doubts.empty());
}

void TableDialog::showCensuses() {
    const auto& censuses = preview_->censuses;
    censuses_->setRowCount(static_cast<int>(censuses.size()));
    for (int row = 0; row < censuses_->rowCount(); ++row) {
        const TablePreview::Census& census = censuses[static_cast<std::size_t>(row)];
        censuses_->setItem(row, 0,
                           cellItem(oneLine(QString::fromStdString(census.name)), Qt::AlignLeft));
        censuses_->setItem(
            row, 1, cellItem(QString("%L1").arg(qulonglong{census.species}), Qt::AlignRight));
        censuses_->setItem(
            row, 2, cellItem(QString("%L1").arg(qlonglong{census.individuals}), Qt::AlignRight));
    }
    const std::size_t more = preview_->censusCount - censuses.size();
    censusesLabel_->setText(more == 0 ? QString("&Will be read")
                                      : QString("&Will be read: the first %L1 of %L2%3")
                                            .arg(qulonglong{censuses.size()})
                                            .arg(qulonglong{preview_->censusCount})
                                            .arg(preview_->whole ? "" : " or more"));
}

void TableDialog::showRemarks() {
    remarks_->clear();
    const TableRemarks& problems = preview_->problems;
    const auto add = [this](const QString& text, Glyph glyph, QColor LookColors::*ink) {
        return new QListWidgetItem(glyphIcon(glyph, ink), oneLine(text), remarks_);
    };
    for (std::size_t i = 0; i < problems.kept.size(); ++i) {
        const QString text = QString::fromStdString(remarkText(problems.kept[i]));
        add(text, Glyph::warning, &LookColors::problem)->setData(remarkPlace, static_cast<int>(i));
    }
    if (problems.count > problems.kept.size()) {
        add(counted(problems.count - problems.kept.size(), "and 1 problem more",
                    "and %1 problems more"),
            Glyph::warning, &LookColors::problem);
    }
    for (const std::string& notice : preview_->notices) {
        add(QString::fromStdString(notice), Glyph::information, &LookColors::secondary);
    }
    remarksPart_->setVisible(remarks_->count() > 0);
    remarksLabel_->setText(problems.count == 0
                               ? QString("No&tices")
                               : counted(problems.count, "1 pro&blem", "%1 pro&blems"));
    if (problems.count > 0) remarks_->setCurrentRow(0);
    showRemarkCommands();
}

const TableRemark* TableDialog::currentProblem() const {
    const QListWidgetItem* item = remarks_->currentItem();
    if (item == nullptr || !item->data(remarkPlace).isValid()) return nullptr;
    return &preview_->problems.kept[static_cast<std::size_t>(item->data(remarkPlace).toInt())];
}

void TableDialog::showRemarkCommands() {
    const TableRemark* problem = currentProblem();
    leaveOutRow_->setVisible(problem != nullptr &&
                             problem->row >= preview_->reading.firstDataRow());
    leaveOutColumn_->setVisible(problem != nullptr && problem->column);
    takeAsZero_->setVisible(problem != nullptr && problem->fault);
    if (problem == nullptr) return;
    leaveOutRow_->setText(QString("Leave Out &Row %1").arg(problem->row));
    if (problem->fault) takeAsZero_->setText(zeroCaption(*problem->fault));
    if (!problem->column) return;
    leaveOutColumn_->setText(QString("Leave Out Col&umn %1")
                                 .arg(QString::fromStdString(columnLetters(*problem->column))));
}

void TableDialog::jumpToProblem() {
    const TableRemark* problem = currentProblem();
    const QModelIndex cell = problem != nullptr ? model_->indexOf(*problem) : QModelIndex();
    if (!cell.isValid()) return;
    sample_->setCurrentIndex(cell);
    sample_->scrollTo(cell, QAbstractItemView::PositionAtCenter);
    sample_->setFocus();
}

bool TableDialog::canImport() const {
    return preview_ && !running_ && preview_->failure.empty() && preview_->problems.count == 0 &&
           preview_->doubts.empty() && preview_->censusCount > 0;
}

void TableDialog::showImportButton() {
    import_->setEnabled(canImport());
    if (!preview_) return;
    import_->setText(preview_->whole
                         ? counted(preview_->censusCount, "&Import 1 Census", "&Import %1 Censuses")
                         : QString("&Import All Rows"));
}

void TableDialog::import() {
    if (!canImport()) return;
    if (header_ && !header_->empty()) keepCorrections(*header_, corrections_);
    accept();
}

void TableDialog::foldOptions() {
    const bool roomy = width() >= roomyFrom.width() && height() >= roomyFrom.height();
    optionsButton_->setVisible(!roomy);
    options_->setVisible(roomy || optionsButton_->isChecked());
}

void TableDialog::resizeEvent(QResizeEvent* event) {
    QDialog::resizeEvent(event);
    foldOptions();
}

void TableDialog::goToNextRegion(bool forwards) {
    QList<QWidget*> regions;
    for (QWidget* each : {static_cast<QWidget*>(options_), doubts_, static_cast<QWidget*>(sample_),
                          static_cast<QWidget*>(censuses_), static_cast<QWidget*>(remarks_),
                          import_->parentWidget()}) {
        if (each->isVisible()) regions.append(each);
    }
    const auto holdsFocus = [this](QWidget* region) {
        return region == focusWidget() || region->isAncestorOf(focusWidget());
    };
    const auto here = std::find_if(regions.begin(), regions.end(), holdsFocus) - regions.begin();
    const auto count = regions.size();
    for (qsizetype step = 1; step <= count; ++step) {
        const qsizetype next = (here % count + (forwards ? step : count - step)) % count;
        QWidget* region = regions[next];
        if (region->focusPolicy() == Qt::NoFocus) {
            const QList<QWidget*> inside = region->findChildren<QWidget*>();
            const auto first = std::find_if(inside.begin(), inside.end(), [](QWidget* each) {
                return each->focusPolicy() != Qt::NoFocus && each->isVisible() && each->isEnabled();
            });
            if (first == inside.end()) continue;
            region = *first;
        }
        return region->setFocus(Qt::TabFocusReason);
    }
}

void TableDialog::keyPressEvent(QKeyEvent* event) {
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (event->key() == Qt::Key_F6) {
        goToNextRegion(!event->modifiers().testFlag(Qt::ShiftModifier));
    } else if (isReturn && event->modifiers().testFlag(Qt::ControlModifier)) {
        import();
    } else if (isReturn) {
        auto* button = qobject_cast<QAbstractButton*>(focusWidget());
        if (button != nullptr) button->click();
    } else {
        QDialog::keyPressEvent(event);
    }
}

bool TableDialog::eventFilter(QObject* watched, QEvent* event) {
    if (watched == sample_ && event->type() == QEvent::KeyPress) {
        const auto& key = static_cast<QKeyEvent&>(*event);
        if (key.key() == Qt::Key_Space) {
            roles_->openRoles(sample_->currentIndex().column());
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

}  // namespace zorvel
