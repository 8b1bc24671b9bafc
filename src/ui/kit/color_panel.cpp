#include "ui/kit/color_panel.h"

#include <QColorDialog>
#include <utility>

namespace zorvel {

void DesktopColorPanel::chooseColor(QWidget* parent, const QString& title, const QColor& initial,
                                    Chosen chosen) {
    auto* panel = new QColorDialog(initial, parent);
    panel->setAttribute(Qt::WA_DeleteOnClose);
    panel->setOption(QColorDialog::ShowAlphaChannel);
    panel->setWindowTitle(title);
    QObject::connect(panel, &QColorDialog::colorSelected, panel, std::move(chosen));
    panel->open();
}

}  // namespace zorvel
