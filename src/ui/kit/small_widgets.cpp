#include "ui/kit/small_widgets.h"

#include <QEvent>
#include <QFontMetrics>
#include <QGridLayout>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QPen>
#include <QStyle>
#include <QStyleOptionToolButton>
#include <QStylePainter>
#include <QTextDocument>
#include <QTextOption>
#include <QtMath>
#include <algorithm>

#include "ui/kit/glyphs.h"
#include "ui/kit/look.h"

namespace zorvel {

namespace {

constexpr int stepsPerTurn = 24;   // of the spinner
constexpr int narrowestLine = 12;  // of a wrapped label, in characters
constexpr int widestLine = 100;

bool breaksAnywhere(const QTextDocument& document) {
    return document.defaultTextOption().wrapMode() == QTextOption::WrapAtWordBoundaryOrAnywhere;
}

}  // namespace

Card::Card(QWidget* parent) : QFrame(parent) {
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

// The hairlines move with the rows.
bool Card::event(QEvent* event) {
    if (event->type() == QEvent::LayoutRequest) update();
    return QFrame::event(event);
}

void Card::paintEvent(QPaintEvent* /*event*/) {
    const LookColors& colors = lookColors(palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(colors.hairline);
    painter.setBrush(colors.raised);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 8, 8);
    const auto* grid = qobject_cast<const QGridLayout*>(layout());
    if (grid == nullptr) return;
    painter.setRenderHint(QPainter::Antialiasing, false);
    for (int row = 1; row < grid->rowCount(); ++row) {
        // Where the item stands: a cell does not know of the height that wrapped text takes.
        const QLayoutItem* item = grid->itemAtPosition(row, 0);
        if (item == nullptr) continue;
        const QRect room = grid->contentsRect();
        painter.fillRect(room.x(), item->geometry().y(), room.width(), 1, colors.hairline);
    }
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

ElidedLabel::ElidedLabel(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
}

QSize ElidedLabel::minimumSizeHint() const {
    return {fontMetrics().horizontalAdvance(u'\u2026'), QLabel::minimumSizeHint().height()};
}

void ElidedLabel::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const QRect room = contentsRect();
    const QString line = fontMetrics().elidedText(text(), Qt::ElideRight, room.width());
    style()->drawItemText(&painter, room, QStyle::visualAlignment(layoutDirection(), alignment()),
                          palette(), isEnabled(), line, foregroundRole());
}

WrappedLabel::WrappedLabel(QWidget* parent) : QLabel(parent) {
    setWordWrap(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse);
}

// QLabel lays its text out once, before it is measured or painted, and breaks between words only.
// After that, the document that it has while its text can be selected takes another way of
// breaking.
QTextDocument* WrappedLabel::laidOut() const {
    static_cast<void>(QLabel::heightForWidth(width()));
    auto* document = findChild<QTextDocument*>();
    if (document == nullptr) return nullptr;
    if (breaksAnywhere(*document)) return document;
    QTextOption option = document->defaultTextOption();
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    document->setDefaultTextOption(option);
    return document;
}

int WrappedLabel::heightForWidth(int width) const {
    QTextDocument* document = laidOut();
    if (document == nullptr) return QLabel::heightForWidth(width);
    const QMargins margins = contentsMargins();
    const double before = document->textWidth();
    document->setTextWidth(std::max(width - margins.left() - margins.right() - 2 * margin(), 1));
    const int height = qCeil(document->size().height());
    document->setTextWidth(before);
    return height + margins.top() + margins.bottom() + 2 * margin();
}

QSize WrappedLabel::minimumSizeHint() const {
    const QSize size = QLabel::minimumSizeHint();
    return {std::min(size.width(), narrowestLine * fontMetrics().averageCharWidth()),
            std::min(size.height(), fontMetrics().height())};
}

QSize WrappedLabel::sizeHint() const {
    const QSize size = QLabel::sizeHint();
    const int limit = widestLine * fontMetrics().averageCharWidth();
    return size.width() <= limit ? size : QSize(limit, heightForWidth(limit));
}

// Laying it out again would request another paint event, without end.
void WrappedLabel::paintEvent(QPaintEvent* event) {
    const auto* document = findChild<QTextDocument*>();
    if (document == nullptr || !breaksAnywhere(*document)) laidOut();
    QLabel::paintEvent(event);
}

PullDownButton::PullDownButton(QWidget* parent) : QToolButton(parent) {
    setMenu(new QMenu(this));
    setPopupMode(InstantPopup);
    setIcon(glyphIcon(Glyph::dots));
    setAutoRaise(true);
    setFocusPolicy(Qt::TabFocus);
}

QAction* PullDownButton::addItem(const char* name, const QString& title) {
    QAction* action = menu()->addAction(title);
    action->setObjectName(name);
    return action;
}

// Without the arrow that the style puts beside an icon.
void PullDownButton::paintEvent(QPaintEvent* /*event*/) {
    QStyleOptionToolButton option;
    initStyleOption(&option);
    option.features &= ~QStyleOptionToolButton::ToolButtonFeatures(QStyleOptionToolButton::HasMenu);
    QStylePainter(this).drawComplexControl(QStyle::CC_ToolButton, option);
}

void PullDownButton::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Down:
        case Qt::Key_Return:
        case Qt::Key_Enter:
            showMenu();
            return;
        default:
            QToolButton::keyPressEvent(event);
    }
}

}  // namespace zorvel
