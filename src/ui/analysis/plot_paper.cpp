#include "ui/analysis/plot_paper.h"

#include <QApplication>
#include <QGridLayout>
#include <QPainter>

#include "ui/kit/look.h"

namespace zorvel {

UpwardLabel::UpwardLabel(const QString& text, QWidget* parent) : QLabel(text, parent) {}

QSize UpwardLabel::sizeHint() const {
    return QLabel::sizeHint().transposed();
}

QSize UpwardLabel::minimumSizeHint() const {
    return QLabel::minimumSizeHint().transposed();
}

void UpwardLabel::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::WindowText));
    painter.translate(0, height());
    painter.rotate(-90);
    painter.drawText(QRect(0, 0, height(), width()), Qt::AlignCenter, text());
}

PlotPaper::PlotPaper(QWidget* plot, const QString& xTitle, const QString& yTitle, QWidget* parent)
    : QFrame(parent) {
    setPalette(lookPalette(ColorScheme::light));
    auto* below = new QLabel(xTitle, this);
    below->setObjectName("sampleSizeAxisTitle");
    below->setAlignment(Qt::AlignCenter);
    auto* beside = new UpwardLabel(yTitle, this);
    beside->setObjectName("richnessAxisTitle");
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(12, 8, 8, 12);
    grid->setSpacing(0);
    grid->addWidget(beside, 0, 0);
    grid->addWidget(plot, 0, 1);
    grid->addWidget(below, 1, 1);
    grid->setColumnStretch(1, 1);
    grid->setRowStretch(0, 1);
}

void PlotPaper::setFocused(bool focused) {
    focused_ = focused;
    update();
}

void PlotPaper::paintEvent(QPaintEvent* /*event*/) {
    const LookColors& around = lookColors(QApplication::palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(focused_ ? around.accent : around.border, focused_ ? 2 : 1));
    painter.setBrush(Qt::white);
    painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 8, 8);
}

}  // namespace zorvel
