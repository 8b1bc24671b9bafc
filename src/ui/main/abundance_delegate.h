// Paints an abundance as its number, with a faint bar for its share of the census's largest.
#pragma once

#include <QStyledItemDelegate>

namespace zorvel {

class AbundanceDelegate : public QStyledItemDelegate {
    Q_OBJECT
  public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
};

}  // namespace zorvel
