#include "ui/tables/census_list.h"

#include <QHeaderView>
#include <QLabel>
#include <QTableWidget>
#include <QVBoxLayout>

#include "ui/kit/look.h"
#include "ui/kit/shown_text.h"

namespace zorvel {

CensusList::CensusList(QWidget* parent)
    : QWidget(parent), label_(new QLabel("&Will be read")), table_(new QTableWidget(0, 3)) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(5, 0, 0, 0);  // beside the sample
    column->setSpacing(4);
    column->addWidget(label_);
    column->addWidget(table_);
    label_->setBuddy(table_);
    label_->setForegroundRole(secondaryText);
    table_->setObjectName("tableCensuses");
    table_->setHorizontalHeaderLabels({"Census", "Species", "Individuals"});
    table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table_->setSelectionBehavior(QAbstractItemView::SelectRows);
    table_->setSelectionMode(QAbstractItemView::SingleSelection);
    table_->setTabKeyNavigation(false);
    table_->setWordWrap(false);
    table_->setShowGrid(false);
    table_->verticalHeader()->hide();
    table_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    table_->verticalHeader()->setMinimumSectionSize(fontMetrics().height() + 8);
    table_->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 8);
    QHeaderView* header = table_->horizontalHeader();
    header->setSectionResizeMode(0, QHeaderView::Stretch);
    header->setMinimumSectionSize(60);
    for (const int i : {1, 2}) {
        constexpr int headerMargins = 32;
        const QString title = table_->horizontalHeaderItem(i)->text();
        table_->setColumnWidth(i, fontMetrics().horizontalAdvance(title) + headerMargins);
    }
    setFocusProxy(table_);
}

void CensusList::showPreview(const TablePreview& preview) {
    table_->setRowCount(static_cast<int>(preview.censuses.size()));
    int row = 0;
    for (const TablePreview::Census& census : preview.censuses) {
        int column = 0;
        const auto add = [&](const QString& text, Qt::Alignment alignment) {
            auto* item = new QTableWidgetItem(text);
            item->setTextAlignment(alignment | Qt::AlignVCenter);
            table_->setItem(row, column++, item);
        };
        add(oneLine(QString::fromStdString(census.name)), Qt::AlignLeft);
        add(QString("%L1").arg(qulonglong{census.species}), Qt::AlignRight);
        add(QString("%L1").arg(qlonglong{census.individuals}), Qt::AlignRight);
        ++row;
    }
    const std::size_t shown = preview.censuses.size();
    label_->setText(shown == preview.censusCount ? QString("&Will be read")
                                                 : QString("&Will be read: the first %L1 of %L2%3")
                                                       .arg(qulonglong{shown})
                                                       .arg(qulonglong{preview.censusCount})
                                                       .arg(preview.whole ? "" : " or more"));
}

}  // namespace zorvel
