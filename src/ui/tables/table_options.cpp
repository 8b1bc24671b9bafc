#include "ui/tables/table_options.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "tables/rule_names.h"
#include "tables/texts.h"

namespace zorvel {

namespace {

constexpr int listsPerLine = 3;
constexpr int listsOfText = 2;  // the first of the rules, in a line of their own

// Columns mean something else from now on.
void beginAnew(TableCorrections& corrections) {
    corrections.roles.clear();
    corrections.leftOutRows.clear();
    corrections.choices.firstRow.reset();
    corrections.choices.headerRows.reset();
}

}  // namespace

TableOptions::TableOptions(QWidget* parent) : QWidget(parent) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(8);
    auto* line = new QHBoxLayout;
    line->setSpacing(8);
    column->addLayout(line);
    auto* layouts = new QGridLayout;
    line->addLayout(layouts);
    addList(
        *layouts, 0, "&Censuses:", "tableLayoutBox",
        {{"In rows", static_cast<int>(TableLayout::censusRows)},
         {"In columns", static_cast<int>(TableLayout::speciesRows)},
         {"One row for each record", static_cast<int>(TableLayout::records)}},
        [](const TableReading& reading) { return static_cast<int>(reading.layout); },
        [](TableCorrections& corrections, int value) {
            corrections.choices.layout = static_cast<TableLayout>(value);
            corrections.roles.clear();
        });
    firstRow_ = addNumber("tableFirstRowBox", 1, 1000,
                          [](TableCorrections& corrections, std::size_t value) {
                              corrections.choices.firstRow = value;
                          });
    headerRows_ = addNumber("tableHeaderRowsBox", 0, 12,
                            [](TableCorrections& corrections, std::size_t value) {
                                corrections.choices.headerRows = value;
                            });
    for (const auto& [title, box] :
         {std::pair("&First row:", firstRow_), std::pair("&Header rows:", headerRows_)}) {
        auto* label = new QLabel(title);
        label->setBuddy(box);
        line->addSpacing(8);
        line->addWidget(label);
        line->addWidget(box);
    }
    line->addStretch();
    more_ = new QPushButton("&More...");
    more_->setObjectName("tableMoreButton");
    more_->setAutoDefault(false);
    more_->setCheckable(true);
    line->addWidget(more_);
    rules_ = new QWidget;
    rules_->setObjectName("tableRules");
    auto* scroll = new QScrollArea;  // in a small window not all of them have room
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);
    scroll->setMinimumHeight(80);
    scroll->setWidget(rules_);
    scroll->setVisible(false);
    scroll->viewport()->setAutoFillBackground(false);
    rules_->setAutoFillBackground(false);
    column->addWidget(scroll);
    connect(more_, &QPushButton::toggled, scroll, &QWidget::setVisible);
    auto* grid = new QGridLayout(rules_);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(8);
    grid->setVerticalSpacing(6);
    addMarks(*grid);
    addRules(*grid);
}

QSpinBox* TableOptions::addNumber(const char* name, int least, int most,
                                  std::function<void(TableCorrections&, std::size_t)> set) {
    auto* box = new QSpinBox;
    box->setObjectName(name);
    box->setRange(least, most);
    connect(box, &QSpinBox::valueChanged, this, [this, set = std::move(set)](int value) {
        emit corrected([set, value](TableCorrections& corrections) {
            set(corrections, static_cast<std::size_t>(value));
        });
    });
    return box;
}

void TableOptions::addList(QGridLayout& grid, int place, const QString& title, const char* name,
                           const std::vector<Item>& items,
                           std::function<int(const TableReading&)> get,
                           std::function<void(TableCorrections&, int)> set) {
    auto* box = new QComboBox;
    box->setObjectName(name);
    box->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    std::vector<int> values;
    for (const Item& item : items) {
        box->addItem(item.title);
        values.push_back(item.value);
    }
    auto* label = new QLabel(title);
    label->setBuddy(box);
    const int column = 2 * (place % listsPerLine);
    grid.addWidget(label, place / listsPerLine, column, Qt::AlignRight | Qt::AlignVCenter);
    grid.addWidget(box, place / listsPerLine, column + 1);
    connect(box, &QComboBox::activated, this, [this, values, set = std::move(set)](int index) {
        emit corrected([set, value = values[static_cast<std::size_t>(index)]](
                           TableCorrections& corrections) { set(corrections, value); });
    });
    const bool isOfText = grid.parentWidget() == rules_ && place < listsOfText;
    lists_.push_back({label, box, isOfText, std::move(values), std::move(get)});
}

void TableOptions::addMarks(QGridLayout& grid) {
    std::vector<Item> separators;
    for (const SeparatorName& each : separatorNames()) {
        QString title = each.plural;
        title[0] = title[0].toUpper();
        separators.push_back({title, each.separator});
    }
    addList(
        grid, 0, "Se&parator:", "tableSeparatorBox", separators,
        [](const TableReading& reading) { return int{reading.form.separator}; },
        [](TableCorrections& corrections, int value) {
            beginAnew(corrections);
            corrections.choices.separator = static_cast<char>(value);
        });
    std::vector<Item> encodings;
    for (const TableEncoding each :
         {TableEncoding::utf8, TableEncoding::windows1252, TableEncoding::windows1250,
          TableEncoding::utf16LittleEndian, TableEncoding::utf16BigEndian}) {
        encodings.push_back({ruleName(encodingNames, each), static_cast<int>(each)});
    }
    addList(
        grid, 1, "&Encoding:", "tableEncodingBox", encodings,
        [](const TableReading& reading) { return static_cast<int>(reading.form.encoding); },
        [](TableCorrections& corrections, int value) {
            corrections.choices.encoding = static_cast<TableEncoding>(value);
        });
    presence_ = new QCheckBox("Presence onl&y: each mark is 1");
    presence_->setObjectName("tablePresenceBox");
    grid.addWidget(presence_, 0, 4, 1, 2);
    connect(presence_, &QCheckBox::clicked, this, [this](bool checked) {
        emit corrected(
            [checked](TableCorrections& corrections) { corrections.presence = checked; });
    });
    addList(
        grid, 3, "&Dates:", "tableDatesBox",
        {{"Unknown", static_cast<int>(DateOrder::unknown)},
         {"Day first", static_cast<int>(DateOrder::dayFirst)},
         {"Month first", static_cast<int>(DateOrder::monthFirst)}},
        [](const TableReading& reading) { return static_cast<int>(reading.dateOrder); },
        [](TableCorrections& corrections, int value) {
            corrections.dateOrder = static_cast<DateOrder>(value);
        });
    addList(
        grid, 4, "Decimal mar&k:", "tableDecimalBox", {{"Point", '.'}, {"Comma", ','}},
        [](const TableReading& reading) { return int{reading.decimalMark}; },
        [](TableCorrections& corrections, int value) {
            corrections.decimalMark = static_cast<char>(value);
        });
    addList(
        grid, 5, "&Thousands mark:", "tableThousandsBox",
        {{"None", 0}, {"Point", '.'}, {"Comma", ','}, {"Space", ' '}, {"Apostrophe", '\''}},
        [](const TableReading& reading) { return int{reading.thousandsMark}; },
        [](TableCorrections& corrections, int value) {
            corrections.thousandsMark = static_cast<char>(value);
        });
}

void TableOptions::addRules(QGridLayout& grid) {
    addList(
        grid, 6, "&NA and ?:", "tableMissingBox",
        {{"0", static_cast<int>(MissingRule::zero)},
         {"A problem", static_cast<int>(MissingRule::problem)},
         {"Census left out", static_cast<int>(MissingRule::leaveOut)}},
        [](const TableReading& reading) { return static_cast<int>(reading.missing); },
        [](TableCorrections& corrections, int value) {
            corrections.missing = static_cast<MissingRule>(value);
        });
    addList(
        grid, 7, "Fr&actions:", "tableFractionsBox",
        {{"A problem", static_cast<int>(FractionRule::problem)},
         {"Rounded", static_cast<int>(FractionRule::round)}},
        [](const TableReading& reading) { return static_cast<int>(reading.fractions); },
        [](TableCorrections& corrections, int value) {
            corrections.fractions = static_cast<FractionRule>(value);
        });
    addList(
        grid, 8, "Species &given twice:", "tableSameSpeciesBox",
        {{"Summed", static_cast<int>(SameRule::sum)},
         {"Kept apart", static_cast<int>(SameRule::apart)}},
        [](const TableReading& reading) { return static_cast<int>(reading.sameSpecies); },
        [](TableCorrections& corrections, int value) {
            corrections.sameSpecies = static_cast<SameRule>(value);
        });
    addList(
        grid, 9, "Census of se&veral rows:", "tableSameCensusBox",
        {{"Kept apart", static_cast<int>(SameRule::apart)},
         {"One census", static_cast<int>(SameRule::sum)}},
        [](const TableReading& reading) { return static_cast<int>(reading.sameCensus); },
        [](TableCorrections& corrections, int value) {
            corrections.sameCensus = static_cast<SameRule>(value);
        });
    addList(
        grid, 10, "Name&less census:", "tableUnnamedBox",
        {{"A problem", static_cast<int>(UnnamedRule::problem)},
         {"“row 7”", static_cast<int>(UnnamedRule::rowNumber)},
         {"As above", static_cast<int>(UnnamedRule::above)}},
        [](const TableReading& reading) { return static_cast<int>(reading.unnamed); },
        [](TableCorrections& corrections, int value) {
            corrections.unnamed = static_cast<UnnamedRule>(value);
        });
    addList(
        grid, 11, "Headers M, F, &juv.:", "tableStagesBox",
        {{"Added", static_cast<int>(SameRule::sum)},
         {"Kept apart", static_cast<int>(SameRule::apart)}},
        [](const TableReading& reading) { return static_cast<int>(reading.sameStages); },
        [](TableCorrections& corrections, int value) {
            corrections.sameStages = static_cast<SameRule>(value);
        });
    grid.setColumnStretch(2 * listsPerLine, 1);
}

void TableOptions::showReading(const TableReading& reading, bool isText) {
    for (const List& list : lists_) {
        list.label->setVisible(isText || !list.isOfText);
        list.box->setVisible(isText || !list.isOfText);
        const auto found = std::find(list.values.begin(), list.values.end(), list.get(reading));
        list.box->setCurrentIndex(
            found == list.values.end() ? -1 : static_cast<int>(found - list.values.begin()));
    }
    const QSignalBlocker first(firstRow_);
    const QSignalBlocker header(headerRows_);
    firstRow_->setValue(static_cast<int>(reading.firstRow));
    headerRows_->setValue(static_cast<int>(reading.headerRows.size()));
    headerRows_->setEnabled(reading.layout != TableLayout::records);
    presence_->setChecked(reading.presence);
}

}  // namespace zorvel
