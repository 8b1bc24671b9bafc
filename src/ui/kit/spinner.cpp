#include "ui/kit/spinner.h"

#include <QPainter>
#include <QPen>

#include "ui/kit/look.h"

namespace zorvel {

namespace {
constexpr int stepsPerTurn = 24;
}

Spinner::Spinner(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    timer_.setInterval(1000 / stepsPerTurn);
    connect(&timer_, &QTimer::timeout, this, [this] {
        step_ = (step_ + 1) % stepsPerTurn;
        update();
    });
}

void Spinner::startAnimation() {
    timer_.start();
    update();
}

void Spinner::stopAnimation() {
    timer_.stop();
    update();
}

void Spinner::paintEvent(QPaintEvent* /*event*/) {
    if (!isAnimated()) return;
    const LookColors& colors = lookColors(palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF ring = QRectF(rect()).adjusted(2, 2, -2, -2);
    painter.setPen(QPen(colors.border, 2));
    painter.drawEllipse(ring);
    painter.setPen(QPen(colors.accent, 2, Qt::SolidLine, Qt::RoundCap));
    painter.drawArc(ring, -step_ * 16 * 360 / stepsPerTurn, 16 * 100);  // sixteenths of a degree
}

}  // namespace zorvel
