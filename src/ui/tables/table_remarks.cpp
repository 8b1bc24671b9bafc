#include "ui/tables/table_remarks.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "ui/kit/glyphs.h"
#include "ui/kit/look.h"
#include "ui/kit/shown_text.h"
#include "ui/tables/table_texts.h"

namespace zorvel {

namespace {

constexpr int tallestList = 110;
constexpr int remarkSignSize = 14;
constexpr int remarkPlace = Qt::UserRole;  // of a problem, from 0

void leaveOutRow(TableCorrections& corrections, const TableRemark& problem) {
    auto& rows = corrections.leftOutRows;
    const auto place = std::lower_bound(rows.begin(), rows.end(), problem.row);
    if (place == rows.end() || *place != problem.row) rows.insert(place, problem.row);
}

void ignoreColumn(TableCorrections& corrections, const TableRemark& problem) {
    if (problem.column) corrections.roles[*problem.column] = ColumnRole::ignored;
}

void takeAsZero(TableCorrections& corrections, const TableRemark& problem) {
    if (problem.fault) corrections.takenAsZero.push_back(*problem.fault);
}

}  // namespace

TableRemarksList::TableRemarksList(QWidget* parent)
    : QWidget(parent),
      label_(new QLabel),
      list_(new QListWidget),
      leaveOutRow_(new QPushButton),
      ignoreColumn_(new QPushButton),
      takeAsZero_(new QPushButton) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(4);
    auto* line = new QHBoxLayout;
    column->addLayout(line);
    column->addWidget(list_);
    label_->setBuddy(list_);
    label_->setForegroundRole(secondaryText);
    line->addWidget(label_, 1);
    leaveOutRow_->setObjectName("tableLeaveOutRow");
    ignoreColumn_->setObjectName("tableIgnoreColumn");
    takeAsZero_->setObjectName("tableTakeAsZero");
    for (QPushButton* button : {leaveOutRow_, ignoreColumn_, takeAsZero_}) {
        button->setAutoDefault(false);
        line->addWidget(button);
    }
    list_->setObjectName("tableRemarks");
    list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list_->setUniformItemSizes(true);
    list_->setIconSize({remarkSignSize, remarkSignSize});
    setFocusProxy(list_);
    connect(list_, &QListWidget::itemActivated, this, [this] { choose(true); });
    connect(list_, &QListWidget::itemClicked, this, [this] { choose(false); });
    connect(list_, &QListWidget::currentRowChanged, this, &TableRemarksList::showCommands);
    connect(leaveOutRow_, &QPushButton::clicked, this, [this] { correctCurrent(leaveOutRow); });
    connect(ignoreColumn_, &QPushButton::clicked, this, [this] { correctCurrent(ignoreColumn); });
    connect(takeAsZero_, &QPushButton::clicked, this, [this] { correctCurrent(takeAsZero); });
}

void TableRemarksList::showPreview(std::shared_ptr<const TablePreview> preview) {
    preview_ = std::move(preview);
    const int before = std::max(list_->currentRow(), 0);
    list_->clear();
    const TableRemarks& problems = preview_->problems;
    const auto add = [this](const QString& text, Glyph glyph, QColor LookColors::*ink) {
        return new QListWidgetItem(glyphIcon(glyph, ink), oneLine(text), list_);
    };
    for (std::size_t i = 0; i < problems.kept.size(); ++i) {
        const QString text = QString::fromStdString(remarkText(problems.kept[i]));
        add(text, Glyph::warning, &LookColors::problem)->setData(remarkPlace, static_cast<int>(i));
    }
    if (problems.count > problems.kept.size()) {
        add(countText(problems.count - problems.kept.size(), "and 1 problem more",
                      "and %1 problems more"),
            Glyph::warning, &LookColors::problem);
    }
    for (const std::string& notice : preview_->notices) {
        QString text = QString::fromStdString(notice);
        text[0] = text[0].toUpper();
        add(text, Glyph::information, &LookColors::secondary);
    }
    const int height = list_->sizeHintForRow(0) * list_->count() + 2 * list_->frameWidth();
    list_->setFixedHeight(std::min(height, tallestList));
    setVisible(list_->count() > 0);
    label_->setText(problems.count > 0
                        ? countText(problems.count, "1 pro&blem", "%1 pro&blems")
                        : countText(preview_->notices.size(), "No pro&blems, 1 notice",
                                    "No pro&blems, %1 notices"));
    if (problems.count > 0) list_->setCurrentRow(std::min(before, list_->count() - 1));
    showCommands();
}

const TableRemark* TableRemarksList::currentProblem() const {
    const QListWidgetItem* item = list_->currentItem();
    if (item == nullptr || !item->data(remarkPlace).isValid()) return nullptr;
    return &preview_->problems.kept[static_cast<std::size_t>(item->data(remarkPlace).toInt())];
}

void TableRemarksList::choose(bool activated) {
    if (const TableRemark* problem = currentProblem()) emit problemChosen(*problem, activated);
}

void TableRemarksList::correctCurrent(void (*correct)(TableCorrections& corrections,
                                                      const TableRemark& problem)) {
    const TableRemark* problem = currentProblem();
    if (problem == nullptr) return;
    emit corrected([correct, problem = *problem](TableCorrections& corrections) {
        correct(corrections, problem);
    });
}

void TableRemarksList::showCommands() {
    const TableRemark* problem = currentProblem();
    leaveOutRow_->setVisible(problem != nullptr &&
                             problem->row >= preview_->reading.firstDataRow());
    ignoreColumn_->setVisible(problem != nullptr && problem->column);
    takeAsZero_->setVisible(problem != nullptr && problem->fault);
    if (problem == nullptr) return;
    leaveOutRow_->setText(QString("Leave Out &Row %1").arg(problem->row));
    if (problem->fault) takeAsZero_->setText(zeroCaption(*problem->fault));
    if (!problem->column) return;
    ignoreColumn_->setText(
        QString("Ignore Col&umn %1").arg(QString::fromStdString(columnLetters(*problem->column))));
}

}  // namespace zorvel
