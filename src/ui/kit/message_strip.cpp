#include "ui/kit/message_strip.h"

#include <QAccessible>
#include <QAccessibleEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QToolButton>

#include "ui/kit/glyphs.h"
#include "ui/kit/look.h"
#include "ui/kit/shown_text.h"

namespace zorvel {

namespace {
constexpr int markRoom = 40;    // pixels left of the text
constexpr int shownAtMost = 4;  // messages
constexpr int longest = 300;    // characters of a message
}  // namespace

MessageStrip::MessageStrip(QWidget* parent)
    : QFrame(parent), text_(new QLabel(this)), dismissButton_(new QToolButton(this)) {
    text_->setObjectName("messageText");
    text_->setWordWrap(true);
    text_->setTextFormat(Qt::PlainText);
    text_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    dismissButton_->setObjectName("dismissMessageButton");
    dismissButton_->setIcon(glyphIcon(Glyph::cross));
    dismissButton_->setAutoRaise(true);
    dismissButton_->setToolTip(tr("Dismiss"));
    dismissButton_->setAccessibleName(tr("Dismiss message"));
    dismissButton_->setFocusPolicy(Qt::StrongFocus);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(markRoom, 8, 8, 8);
    row->addWidget(text_, 1);
    row->addWidget(dismissButton_, 0, Qt::AlignTop);
    connect(dismissButton_, &QToolButton::clicked, this, &MessageStrip::dismiss);
    hide();
}

void MessageStrip::addMessage(const QString& message) {
    messages_.append(shortened(message, longest));
    while (messages_.size() > shownAtMost) messages_.removeFirst();
    const QString all = messages_.join('\n');
    text_->setText(breakable(all));
    setAccessibleName(all);
    show();
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

void MessageStrip::dismiss() {
    messages_.clear();
    text_->clear();
    hide();
}

void MessageStrip::paintEvent(QPaintEvent* /*event*/) {
    const LookColors& colors = lookColors(palette());
    QPainter painter(this);
    painter.fillRect(rect(), colors.warning);
    painter.fillRect(0, 0, width(), 1, colors.hairline);
    const int top = text_->y() + (text_->fontMetrics().height() - 16) / 2;
    const bool single = text_->height() < 2 * text_->fontMetrics().lineSpacing();
    const int y = single ? text_->geometry().center().y() - 8 : top;
    paintGlyph(painter, Glyph::warning, QRectF(14, y, 16, 16), colors.warningMark);
}

}  // namespace zorvel
