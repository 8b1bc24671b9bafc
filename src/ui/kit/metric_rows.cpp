#include "ui/kit/metric_rows.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QMouseEvent>
#include <QScrollArea>
#include <algorithm>
#include <cstdlib>
#include <utility>

#include "ui/kit/value_field.h"

namespace zorvel {

MetricRows::MetricRows(Rows rows, QWidget* panel)
    : QObject(panel), rows_(std::move(rows)), panel_(panel) {
    for (const CaptionedValue& row : rows_) {
        row.value->installEventFilter(this);
        row.caption->installEventFilter(this);
        row.caption->setBuddy(row.value);
        row.caption->parentWidget()->removeEventFilter(this);
        row.caption->parentWidget()->installEventFilter(this);
    }
}

QRect MetricRows::placeIn(const QWidget& widget, const CaptionedValue& row) {
    const auto rectOf = [&widget](const QWidget* part) {
        return QRect(part->mapTo(&widget, QPoint()), part->size());
    };
    const QRect both = rectOf(row.caption).united(rectOf(row.value));
    const QRect card = rectOf(row.caption->parentWidget());
    return {card.left(), both.top(), card.width(), both.height()};
}

// The row that the widget belongs to, or else the one that is nearest to a place in its card.
int MetricRows::rowAt(const QWidget* widget, const QPoint& place) const {
    const auto own = std::find_if(rows_.begin(), rows_.end(), [widget](const CaptionedValue& row) {
        return row.value == widget || row.caption == widget;
    });
    if (own != rows_.end()) return static_cast<int>(own - rows_.begin());
    int nearest = -1;
    int distance = 0;
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        if (rows_[i].caption->parentWidget() != widget) continue;
        const int away = std::abs(placeIn(*widget, rows_[i]).center().y() - place.y());
        if (nearest >= 0 && away >= distance) continue;
        nearest = static_cast<int>(i);
        distance = away;
    }
    return nearest;
}

bool MetricRows::eventFilter(QObject* watched, QEvent* event) {
    const auto* widget = static_cast<const QWidget*>(watched);
    const bool isValue = qobject_cast<const ValueField*>(watched) != nullptr;
    switch (event->type()) {
        case QEvent::ShortcutOverride:
            // Explaining a value comes before what else the key does in the window.
            if (isValue && static_cast<QKeyEvent*>(event)->key() == Qt::Key_F1) event->accept();
            return false;
        case QEvent::KeyPress:
            return isValue && keyDidPress(rowAt(widget, {}), *static_cast<QKeyEvent*>(event));
        case QEvent::MouseButtonPress:
            pressed_ = static_cast<QMouseEvent*>(event)->globalPosition().toPoint();
            return false;
        case QEvent::MouseButtonRelease:
            mouseDidRelease(widget, *static_cast<QMouseEvent*>(event));
            return !isValue;  // or else the card would hear of a caption's click as well
        case QEvent::ContextMenu: {
            const auto* menu = static_cast<QContextMenuEvent*>(event);
            showMenu(rowAt(widget, menu->pos()), menu->globalPos());
            return true;
        }
        default:
            return false;
    }
}

bool MetricRows::keyDidPress(int row, const QKeyEvent& event) {
    const int last = static_cast<int>(rows_.size()) - 1;
    switch (event.key()) {
        case Qt::Key_Up:
            focusRow(std::max(row - 1, 0));
            return true;
        case Qt::Key_Down:
            focusRow(std::min(row + 1, last));
            return true;
        case Qt::Key_F1:
            emit explanationRequested(row);
            return true;
        default:
            return false;
    }
}

void MetricRows::focusRow(int row) {
    QWidget* value = rows_[static_cast<std::size_t>(row)].value;
    value->setFocus(Qt::TabFocusReason);
    for (QWidget* outer = panel_->parentWidget(); outer; outer = outer->parentWidget()) {
        if (auto* scroll = qobject_cast<QScrollArea*>(outer)) scroll->ensureWidgetVisible(value);
    }
}

// A drag selects digits and asks nothing.
void MetricRows::mouseDidRelease(const QWidget* widget, const QMouseEvent& event) {
    const QPoint way = event.globalPosition().toPoint() - pressed_;
    const int row = rowAt(widget, event.position().toPoint());
    if (row < 0 || event.button() != Qt::LeftButton ||
        way.manhattanLength() >= QApplication::startDragDistance()) {
        return;
    }
    ValueField* value = rows_[static_cast<std::size_t>(row)].value;
    if (value->hasSelectedText() && value == widget) return;
    value->setFocus(Qt::MouseFocusReason);
    emit explanationRequested(row);
}

void MetricRows::showMenu(int row, const QPoint& place) {
    if (row < 0) return;
    auto* menu = new QMenu(panel_);
    menu->setObjectName("metricsMenu");
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const ValueField* value = rows_[static_cast<std::size_t>(row)].value;
    QAction* explain =
        menu->addAction(tr("&Explain"), this, [this, row] { emit explanationRequested(row); });
    explain->setShortcut(Qt::Key_F1);
    QAction* copy = menu->addAction(tr("&Copy"), value, [=] { value->copyValue(); });
    copy->setShortcut(QKeySequence::Copy);
    copy->setEnabled(!value->text().isEmpty());
    menu->addAction(tr("Copy &All Metrics"), this, &MetricRows::copyAllRequested);
    menu->popup(place);
}

}  // namespace zorvel
