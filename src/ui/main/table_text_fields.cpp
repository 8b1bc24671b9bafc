#include "ui/main/table_text_fields.h"

#include <QToolTip>

namespace zorvel {

TableTextField::TableTextField(QWidget* parent) : QLineEdit(parent) {
    setAutoFillBackground(true);
    connect(this, &QLineEdit::textEdited, this, [this] {
        QToolTip::hideText();
        setAccessibleDescription({});
    });
}

QString TableTextField::problem() const {
    return check_ && isModified() ? check_(text()) : QString();
}

void TableTextField::tellProblem() {
    const QString reason = problem();
    setAccessibleDescription(reason);
    QToolTip::showText(mapToGlobal(QPoint(0, height() / 2)), reason, this);
}

CensusTableTextField::CensusTableTextField(QWidget* parent) : TableTextField(parent) {
    setAccessibleName(tr("Name of the census"));
}

SpeciesTableTextField::SpeciesTableTextField(const QString& identifier, QWidget* parent)
    : TableTextField(parent), identifier_(identifier) {
    const bool name = identifier == "name";
    setAccessibleName(name ? tr("Name of the species") : tr("Abundance"));
    if (!name) setAlignment(Qt::AlignRight | Qt::AlignVCenter);
}

}  // namespace zorvel
