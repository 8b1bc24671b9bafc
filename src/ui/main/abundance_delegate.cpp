#include "ui/main/abundance_delegate.h"

#include <QCoreApplication>
#include <QPainter>
#include <algorithm>

#include "model/typed_values.h"
#include "ui/kit/look.h"
#include "ui/main/species_table_model.h"
#include "ui/main/table_text_fields.h"

namespace zorvel {

namespace {
constexpr int numberRoom = 76;    // pixels at the right end kept free of the bar
constexpr double leastRoom = 24;  // for the longest bar
constexpr double barHeight = 8;
}  // namespace

QString abundanceProblem(const QString& text) {
    const Typed<std::int64_t> abundance = parseTypedAbundance(text.toStdString());
    if (abundance) return {};
    return QCoreApplication::translate("TypedValues", abundance.problem());
}

AbundanceDelegate::AbundanceDelegate(QObject* parent)
    : TextFieldDelegate(
          [](QWidget* table) {
              auto* field = new SpeciesTableTextField("abundance", table);
              field->setCheck(abundanceProblem);
              return field;
          },
          parent) {}

void AbundanceDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const {
    QStyledItemDelegate::paint(painter, option, index);
    const double share = index.data(SpeciesTableModel::shareRole).toDouble();
    const double room = option.rect.width() - numberRoom - 12;
    const QString number = index.data(Qt::DisplayRole).toString();
    if (share <= 0 || room < leastRoom ||
        option.fontMetrics.horizontalAdvance(number) > numberRoom - 16)
        return;

    const LookColors& colors = lookColors(option.palette);
    const bool strong =
        (option.state & QStyle::State_Selected) != 0 && (option.state & QStyle::State_Active) != 0;
    QColor fill = strong ? colors.selectionText : colors.bar;
    if (strong) fill.setAlphaF(0.35F);
    const double width = std::max(2.0, room * share);
    const QRectF bar(option.rect.x() + 12, option.rect.center().y() - barHeight / 2 + 0.5, width,
                     barHeight);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(fill);
    painter->drawRoundedRect(bar, 2, 2);
    painter->restore();
}

}  // namespace zorvel
