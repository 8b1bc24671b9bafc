// Paints an abundance as its number, with a faint bar for its share of the census's largest, and
// takes whole numbers alone.
#pragma once

#include "ui/main/text_field_delegate.h"

namespace zorvel {

class AbundanceDelegate : public TextFieldDelegate {
    Q_OBJECT
  public:
    explicit AbundanceDelegate(QObject* parent);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
};

// Why a typed text is no abundance, translated; empty where it is one.
QString abundanceProblem(const QString& text);

}  // namespace zorvel
