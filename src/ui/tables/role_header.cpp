#include "ui/tables/role_header.h"

#include <QActionGroup>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>

#include "ui/kit/glyphs.h"
#include "ui/kit/look.h"
#include "ui/tables/sample_model.h"
#include "ui/tables/table_texts.h"

namespace zorvel {

namespace {

constexpr int roleStripHeight = 3;
constexpr int sectionMargin = 6;
constexpr int chevronSize = 10;
constexpr int chevronGap = 4;

// A square of the role's colour, beside its name.
QIcon swatch(const QColor& color) {
    QPixmap pixmap(12, 12);
    pixmap.fill(color);
    return pixmap;
}

}  // namespace

RoleHeader::RoleHeader(QWidget* parent) : QHeaderView(Qt::Horizontal, parent) {
    setSectionsClickable(true);
    setHighlightSections(true);
    setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    setMinimumSectionSize(60);
    setAccessibleName("Roles of the columns");
}

QSize RoleHeader::sizeHint() const {
    return {QHeaderView::sizeHint().width(), 2 * fontMetrics().height() + 14};
}

int RoleHeader::roleWidth(int section) const {
    const QString caption = model()->headerData(section, orientation(), Qt::DisplayRole).toString();
    const int text = fontMetrics().horizontalAdvance(caption) + 2;  // a width is rounded
    return text + 2 * sectionMargin + chevronGap + chevronSize;
}

void RoleHeader::openRoles(int section) {
    if (section < 0 || section >= count()) return;
    auto* menu = new QMenu(this);
    menu->setObjectName("roleMenu");
    menu->setAttribute(Qt::WA_DeleteOnClose);
    auto* group = new QActionGroup(menu);
    const int current =
        model()->headerData(section, orientation(), SampleModel::columnRoleRole).toInt();
    for (const ColumnRole role : rolesIn(layout_)) {
        QAction* action = menu->addAction(roleCaption(layout_, role));
        action->setIcon(swatch(roleColor(role, palette())));
        action->setCheckable(true);
        action->setActionGroup(group);
        action->setChecked(static_cast<int>(role) == current);
        if (action->isChecked()) menu->setActiveAction(action);
        connect(action, &QAction::triggered, this,
                [this, section, role] { emit roleChosen(section, role); });
    }
    menu->popup(viewport()->mapToGlobal(QPoint(sectionViewportPosition(section), height())));
    for (QAction* action : menu->actions()) {
        if (action->isChecked()) menu->setActiveAction(action);
    }
}

void RoleHeader::paintSection(QPainter* painter, const QRect& rect, int section) const {
    const LookColors& look = lookColors(palette());
    const auto role = static_cast<ColumnRole>(
        model()->headerData(section, orientation(), SampleModel::columnRoleRole).toInt());
    const QString letters =
        model()->headerData(section, orientation(), SampleModel::lettersRole).toString();
    const QString caption = model()->headerData(section, orientation(), Qt::DisplayRole).toString();
    painter->save();
    painter->fillRect(rect, look.raised);
    painter->fillRect(rect, roleTint(role, palette()));
    painter->fillRect(
        QRect(rect.left(), rect.bottom() - roleStripHeight + 1, rect.width(), roleStripHeight),
        roleColor(role, palette()));
    painter->setPen(look.hairline);
    painter->drawLine(rect.topRight(), rect.bottomRight());
    const QRect inside = rect.adjusted(sectionMargin, 2, -sectionMargin, -roleStripHeight - 2);
    const QRect above(inside.left(), inside.top(), inside.width(), inside.height() / 2);
    const QRect below(inside.left(), above.bottom() + 1, inside.width() - chevronSize - chevronGap,
                      inside.height() - above.height());
    painter->setPen(look.secondary);
    painter->drawText(above, Qt::AlignLeft | Qt::AlignVCenter, letters);
    painter->setPen(look.text);
    painter->drawText(below, Qt::AlignLeft | Qt::AlignVCenter,
                      fontMetrics().elidedText(caption, Qt::ElideRight, below.width()));
    paintGlyph(*painter, Glyph::chevronDown,
               QRectF(inside.right() - chevronSize, below.center().y() - chevronSize / 2.0,
                      chevronSize, chevronSize),
               look.secondary);
    painter->restore();
}

// After a drag of an edge the section is not the one that was pressed.
void RoleHeader::mouseReleaseEvent(QMouseEvent* event) {
    const bool isDrag = cursor().shape() == Qt::SplitHCursor;
    QHeaderView::mouseReleaseEvent(event);
    if (event->button() == Qt::LeftButton && !isDrag) {
        openRoles(logicalIndexAt(event->position().toPoint()));
    }
}

}  // namespace zorvel
