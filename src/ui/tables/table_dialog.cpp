#include "ui/tables/table_dialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QSplitter>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "ui/kit/look.h"
#include "ui/kit/shown_text.h"
#include "ui/kit/small_widgets.h"
#include "ui/kit/window_placement.h"
#include "ui/tables/census_list.h"
#include "ui/tables/sample_view.h"
#include "ui/tables/table_doubts.h"
#include "ui/tables/table_options.h"
#include "ui/tables/table_remarks.h"

namespace zorvel {

namespace {

constexpr QSize wantedSize{900, 600};
constexpr QSize leastSize{560, 400};
constexpr QSize roomyFrom{760, 440};  // below it the options fold

}  // namespace

TableDialog::TableDialog(const QString& name, std::shared_ptr<const TableInput> input,
                         JobQueue& jobs, QWidget* parent)
    : QDialog(parent), input_(std::move(input)), sheet_(input_->first), jobs_(jobs) {
    setObjectName("tableDialog");
    setWindowTitle("Table Preview");
    setWindowModality(Qt::WindowModal);
    setSizeGripEnabled(true);
    setMinimumSize(leastSize);
    resizeToFit(*this, wantedSize);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(16, 14, 16, 12);
    column->setSpacing(10);
    addHeading(*column, name);
    doubts_ = new TableDoubts;
    doubts_->setVisible(false);
    column->addWidget(doubts_);
    auto* splitter = new QSplitter(Qt::Horizontal);
    splitter->setChildrenCollapsible(false);
    splitter->addWidget(makeSample());
    censuses_ = new CensusList;
    splitter->addWidget(censuses_);
    splitter->setStretchFactor(0, 3);
    splitter->setStretchFactor(1, 1);
    splitter->setSizes({612, 256});
    column->addWidget(splitter, 1);
    understood_ = new WrappedLabel;
    understood_->setObjectName("tableUnderstood");
    column->addWidget(understood_);
    remarks_ = new TableRemarksList;
    remarks_->setVisible(false);
    column->addWidget(remarks_);
    addButtons(*column);
    connect(options_, &TableOptions::corrected, this, &TableDialog::correct);
    connect(doubts_, &TableDoubts::corrected, this, &TableDialog::correct);
    connect(remarks_, &TableRemarksList::corrected, this, &TableDialog::correct);
    connect(remarks_, &TableRemarksList::problemChosen, this,
            [this](const TableRemark& problem, bool activated) {
                sample_->goTo(problem);
                if (activated) sample_->setFocus();
            });
    foldOptions();
    sample_->setFocus();
    showSheet(static_cast<int>(sheet_));
}

// Cancelled while a table is read: its job ends at the next row.
TableDialog::~TableDialog() {
    stop_.request_stop();
}

// The name, the sheets and the options.
void TableDialog::addHeading(QVBoxLayout& column, const QString& name) {
    heading_ = new QWidget;
    auto* part = new QVBoxLayout(heading_);
    part->setContentsMargins(0, 0, 0, 0);
    part->setSpacing(10);
    auto* line = new QHBoxLayout;
    part->addLayout(line);
    auto* label = new ElidedLabel;
    label->setText(oneLine(name));
    label->setFont(scaledFont(font(), 1.1));
    line->addWidget(label, 1);
    if (input_->sheets.size() > 1) addSheets(*line);
    optionsButton_ = new QPushButton("&Options...");
    optionsButton_->setObjectName("tableOptionsButton");
    optionsButton_->setAutoDefault(false);
    optionsButton_->setCheckable(true);
    line->addWidget(optionsButton_);
    options_ = new TableOptions;
    options_->setObjectName("tableOptions");
    part->addWidget(options_);
    column.addWidget(heading_);
    connect(optionsButton_, &QPushButton::toggled, this, &TableDialog::foldOptions);
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
    column->setContentsMargins(0, 0, 5, 0);
    column->setSpacing(4);
    sample_ = new SampleView;
    sample_->setObjectName("tableSample");
    sampleLabel_ = new QLabel("&Sample");
    sampleLabel_->setBuddy(sample_);
    sampleLabel_->setForegroundRole(secondaryText);
    column->addWidget(sampleLabel_);
    column->addWidget(sample_);
    connect(sample_, &SampleView::roleChosen, this, [this](std::size_t place, ColumnRole role) {
        correct([place, role](TableCorrections& corrections) { corrections.roles[place] = role; });
    });
    return part;
}

void TableDialog::addButtons(QVBoxLayout& column) {
    buttons_ = new QDialogButtonBox;
    import_ = buttons_->addButton("&Import", QDialogButtonBox::AcceptRole);
    import_->setObjectName("tableImportButton");
    import_->setProperty(primaryButtonProperty, true);
    for (QPushButton* button : {import_, buttons_->addButton(QDialogButtonBox::Cancel)}) {
        button->setAutoDefault(false);
    }
    connect(buttons_, &QDialogButtonBox::accepted, this, &TableDialog::import);
    connect(buttons_, &QDialogButtonBox::rejected, this, &TableDialog::reject);
    column.addWidget(buttons_);
}

void TableDialog::offerSkip() {
    QPushButton* skip = buttons_->addButton("Skip to Ne&xt File", QDialogButtonBox::ActionRole);
    skip->setObjectName("tableSkipButton");
    skip->setAutoDefault(false);
    connect(skip, &QPushButton::clicked, this, [this] { done(skipped); });
}

// As it would be shown first.
void TableDialog::showSheet(int sheet) {
    sheet_ = static_cast<std::size_t>(sheet);
    corrections_ = {};
    others_.clear();
    header_.reset();
    setCorrectable(false);
    understood_->setText("Looking at the table...");
    update();
}

// Not before the first preview of a sheet: what is shown until then is another one, or nothing.
void TableDialog::setCorrectable(bool correctable) {
    options_->setEnabled(correctable);
    doubts_->setEnabled(correctable);
    sample_->horizontalHeader()->setEnabled(correctable);
    remarks_->setEnabled(correctable);
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
    if (running_) {
        stop_.request_stop();
        return;
    }
    running_ = true;
    stop_ = std::stop_source();
    showImportButton();
    jobs_.start(
        this,
        [input = input_, sheet = sheet_, corrections = corrections_, others = others_,
         stop = stop_.get_token()] {
            return std::make_shared<const TablePreview>(
                previewTable(*input, sheet, corrections, others, stop));
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
    const QPointer<QWidget> before = focusWidget();
    setCorrectable(true);
    sample_->showPreview(preview_);
    sampleLabel_->setText(preview_->whole
                              ? QString("&Sample")
                              : QString("&Sample: the first %L1 rows; the import reads all of them")
                                    .arg(TableSample::mostRows));
    options_->showReading(preview_->reading, preview_->sheet.empty());
    understood_->setText(
        preview_->failure.empty()
            ? "Understood: " + oneLine(QString::fromStdString(understoodText(*preview_))) + '.'
            : "The table " + oneLine(QString::fromStdString(preview_->failure)) + '.');
    doubts_->showPreview(*preview_);
    censuses_->showPreview(*preview_);
    remarks_->showPreview(preview_);
    showImportButton();
    // An answered question and the commands of a settled problem are gone.
    if (!before || !before->isVisible() || !before->isEnabled()) moveFocus();
}

void TableDialog::moveFocus() {
    if (!preview_->doubts.empty()) {
        doubts_->takeFocus();
    } else if (preview_->problems.count > 0) {
        remarks_->setFocus();
    } else {
        sample_->setFocus();
    }
}

bool TableDialog::canImport() const {
    return preview_ && !running_ && preview_->failure.empty() && preview_->problems.count == 0 &&
           preview_->doubts.empty() && preview_->censusCount > 0;
}

void TableDialog::showImportButton() {
    import_->setEnabled(canImport());
    if (!preview_) return;
    import_->setText(preview_->whole ? countText(preview_->censusCount, "&Import 1 Census",
                                                 "&Import %1 Censuses")
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
    for (QWidget* each : {heading_, static_cast<QWidget*>(doubts_), static_cast<QWidget*>(sample_),
                          static_cast<QWidget*>(censuses_), static_cast<QWidget*>(remarks_),
                          static_cast<QWidget*>(buttons_)}) {
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
        if (region->focusPolicy() == Qt::NoFocus && region->focusProxy() == nullptr) {
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

}  // namespace zorvel
