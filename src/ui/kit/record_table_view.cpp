#include "ui/kit/record_table_view.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QEvent>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QScrollBar>
#include <QStringList>
#include <algorithm>

#include "ui/kit/look.h"

namespace zorvel {

RecordTableView::RecordTableView(QWidget* parent) : QTableView(parent) {
    setFrameShape(QFrame::NoFrame);
    setShowGrid(false);
    setAlternatingRowColors(true);
    setWordWrap(false);
    setSelectionBehavior(SelectRows);
    setSelectionMode(ExtendedSelection);
    setEditTriggers(NoEditTriggers);
    setTabKeyNavigation(false);
    setHorizontalScrollMode(ScrollPerPixel);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setCornerButtonEnabled(false);
    setSortingEnabled(true);
    verticalHeader()->hide();
    verticalHeader()->setMinimumSectionSize(1);
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setSortIndicatorClearable(true);
    horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
    horizontalHeader()->setSectionsMovable(false);
    horizontalHeader()->setMinimumSectionSize(36);
    fitRows();
    // What was selected stays in sight in the new order.
    connect(
        horizontalHeader(), &QHeaderView::sortIndicatorChanged, this,
        [this] { scrollTo(currentIndex()); }, Qt::QueuedConnection);
}

void RecordTableView::setEmptyText(const QString& text) {
    emptyText_ = text;
    viewport()->update();
}

void RecordTableView::paintEvent(QPaintEvent* event) {
    QTableView::paintEvent(event);
    if (model() == nullptr || model()->rowCount() > 0 || emptyText_.isEmpty()) return;
    QPainter painter(viewport());
    painter.setPen(lookColors(palette()).secondary);
    painter.drawText(viewport()->rect().adjusted(16, 16, -16, -16),
                     Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, emptyText_);
}

QString RecordTableView::selectedText() const {
    if (selectionModel() == nullptr) return {};
    QModelIndexList rows = selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end());
    QStringList lines;
    lines.reserve(rows.size());
    for (const QModelIndex& row : rows) {
        QStringList cells;
        for (int column = 0; column < model()->columnCount(); ++column) {
            const QModelIndex cell = row.siblingAtColumn(column);
            const QVariant text = cell.data(Qt::DisplayRole);
            if (text.isValid()) cells.append(text.toString());
        }
        lines.append(cells.join('\t'));
    }
    return lines.join('\n');
}

void RecordTableView::copySelection() const {
    const QString text = selectedText();
    if (!text.isEmpty()) QApplication::clipboard()->setText(text);
}

void RecordTableView::initViewItemOption(QStyleOptionViewItem* option) const {
    QTableView::initViewItemOption(option);
    option->state.setFlag(QStyle::State_Active, hasFocus() && isActiveWindow());
}

void RecordTableView::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy)) {
        copySelection();
        return;
    }
    QTableView::keyPressEvent(event);
}

void RecordTableView::changeEvent(QEvent* event) {
    QTableView::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) fitRows();
}

void RecordTableView::contextMenuEvent(QContextMenuEvent* event) {
    QMenu menu(this);
    QAction* copy = menu.addAction(tr("&Copy"), this, &RecordTableView::copySelection);
    copy->setShortcut(QKeySequence::Copy);
    copy->setEnabled(selectionModel() != nullptr && selectionModel()->hasSelection());
    QAction* all = menu.addAction(tr("Select &All"), this, &RecordTableView::selectAll);
    all->setShortcut(QKeySequence::SelectAll);
    menu.exec(event->globalPos());
}

void RecordTableView::fitRows() {
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 12);
}

}  // namespace zorvel
