#include "ui/tables/sample_view.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <algorithm>
#include <string>

#include "ui/kit/shown_text.h"
#include "ui/tables/role_header.h"
#include "ui/tables/sample_model.h"

namespace zorvel {

namespace {

constexpr int problemSignSize = 14;

// The longest text of a column, as far as their lengths tell.
const std::string* longestCell(const TablePreview& preview, std::size_t column,
                               TablePreview::RowState state) {
    const std::string* longest = nullptr;
    for (const TablePreview::Row& row : preview.rows) {
        const std::string& cell = row.cells[column];
        if (row.state == state && (longest == nullptr || cell.size() > longest->size())) {
            longest = &cell;
        }
    }
    return longest;
}

}  // namespace

SampleView::SampleView(QWidget* parent)
    : QTableView(parent), model_(new SampleModel(this)), roles_(new RoleHeader(this)) {
    setAccessibleName("First rows of the table");
    setModel(model_);
    setHorizontalHeader(roles_);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setTabKeyNavigation(false);
    setWordWrap(false);
    setCornerButtonEnabled(false);
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setMinimumSectionSize(fontMetrics().height() + 8);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 8);
    setIconSize({problemSignSize, problemSignSize});
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    connect(roles_, &RoleHeader::roleChosen, this, [this](int section, ColumnRole role) {
        emit roleChosen(model_->columnOf(section), role);
    });
}

void SampleView::showPreview(const std::shared_ptr<const TablePreview>& preview) {
    const QModelIndex before = currentIndex();
    const auto isRead = [](const TablePreview::Row& each) {
        return each.state != TablePreview::RowState::leftOut;
    };
    const auto& rows = preview->rows;
    const auto first = std::find_if(rows.begin(), rows.end(), isRead) - rows.begin();
    const int row = before.isValid() ? before.row() : static_cast<int>(first);
    const int column = std::max(before.column(), 0);
    roles_->setLayoutOfTable(preview->reading.layout);
    model_->setPreview(preview);
    fitColumns(*preview);
    const QModelIndex cell = model_->index(row, column);
    if (cell.isValid()) setCurrentIndex(cell);
}

void SampleView::goTo(const TableRemark& problem) {
    const QModelIndex cell = model_->indexOf(problem);
    if (cell.isValid()) setCurrentIndex(cell);
}

void SampleView::fitColumns(const TablePreview& preview) {
    constexpr int widest = 30;  // characters
    constexpr int margins = 26;
    QFont bold = font();
    bold.setBold(true);
    const QFontMetrics ofHeaders(bold);
    const int most = widest * fontMetrics().averageCharWidth();
    for (int section = 0; section < model_->columnCount(); ++section) {
        int width = 0;
        const auto add = [&](TablePreview::RowState state, const QFontMetrics& metrics) {
            const std::string* cell =
                longestCell(preview, static_cast<std::size_t>(section), state);
            if (cell == nullptr) return;
            const QString text = oneLine(QString::fromStdString(*cell));
            width = std::max(width, metrics.horizontalAdvance(text));
        };
        add(TablePreview::RowState::read, fontMetrics());
        add(TablePreview::RowState::header, ofHeaders);
        width = std::min(width, most) + margins;
        if (preview.problemsOfColumn.contains(model_->columnOf(section))) {
            width += 3 * problemSignSize;
        }
        setColumnWidth(section, std::max(roles_->roleWidth(section), width));
    }
}

void SampleView::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Space) return QTableView::keyPressEvent(event);
    if (roles_->isEnabled()) roles_->openRoles(currentIndex().column());
}

}  // namespace zorvel
