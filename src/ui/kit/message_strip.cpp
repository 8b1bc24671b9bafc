#include "ui/kit/message_strip.h"

#include <QAccessible>
#include <QAccessibleEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QToolButton>
#include <algorithm>

#include "ui/kit/accessible_roles.h"
#include "ui/kit/glyphs.h"
#include "ui/kit/look.h"
#include "ui/kit/shown_text.h"

namespace zorvel {

namespace {
constexpr int markRoom = 40;         // pixels left of the text
constexpr int shownAtMost = 4;       // messages
constexpr int longestMessage = 300;  // characters of a message
}  // namespace

MessageStrip::MessageStrip(QWidget* parent)
    : QFrame(parent),
      text_(new QLabel(this)),
      actionButton_(new QPushButton(this)),
      dismissButton_(new QToolButton(this)) {
    installAccessibleRoles();
    text_->setObjectName("messageText");
    text_->setWordWrap(true);
    text_->setTextFormat(Qt::PlainText);
    text_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    actionButton_->setObjectName("messageActionButton");
    actionButton_->setAutoDefault(false);
    dismissButton_->setObjectName("dismissMessageButton");
    dismissButton_->setIcon(glyphIcon(Glyph::cross));
    dismissButton_->setAutoRaise(true);
    dismissButton_->setToolTip(tr("Dismiss"));
    dismissButton_->setAccessibleName(tr("Dismiss message"));
    dismissButton_->setFocusPolicy(Qt::StrongFocus);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(markRoom, 8, 8, 8);
    row->addWidget(text_, 1);
    row->addWidget(actionButton_, 0, Qt::AlignVCenter);
    row->addWidget(dismissButton_, 0, Qt::AlignTop);
    connect(actionButton_, &QPushButton::clicked, this, [this] {
        // What it runs may replace the message.
        if (const Action* action = offeredAction()) std::function<void()>(action->run)();
    });
    connect(dismissButton_, &QToolButton::clicked, this, &MessageStrip::dismiss);
    hide();
}

void MessageStrip::addMessage(const QString& message, Tone tone) {
    messages_.append({{}, shortened(message, longestMessage), {}, tone});
    while (messages_.size() > shownAtMost) messages_.removeFirst();
    showMessages();
    announce();
}

void MessageStrip::setMessage(const QString& name, const QString& message, const Action& action) {
    const QString text = shortened(message, longestMessage);
    const qsizetype place = placeOf(name);
    if (place >= 0 && messages_[place].text == text) return;
    if (place < 0) {
        messages_.append({name, text, action, Tone::problem});
        while (messages_.size() > shownAtMost) messages_.removeFirst();
    } else {
        messages_[place] = {name, text, action, Tone::problem};
    }
    showMessages();
    announce();
}

void MessageStrip::withdraw(const QString& name) {
    const qsizetype place = placeOf(name);
    if (place < 0) return;
    messages_.removeAt(place);
    showMessages();
}

qsizetype MessageStrip::placeOf(const QString& name) const {
    for (qsizetype i = 0; i < messages_.size(); ++i) {
        if (messages_[i].name == name) return i;
    }
    return -1;
}

const MessageStrip::Action* MessageStrip::offeredAction() const {
    const auto found =
        std::find_if(messages_.rbegin(), messages_.rend(),
                     [](const Message& message) { return bool(message.action.run); });
    return found == messages_.rend() ? nullptr : &found->action;
}

QStringList MessageStrip::messages() const {
    QStringList texts;
    for (const Message& message : messages_) texts.append(message.text);
    return texts;
}

MessageStrip::Tone MessageStrip::tone() const {
    const bool problem =
        std::any_of(messages_.begin(), messages_.end(),
                    [](const Message& message) { return message.tone == Tone::problem; });
    return problem ? Tone::problem : Tone::news;
}

void MessageStrip::showMessages() {
    const QString all = messages().join('\n');
    text_->setText(breakable(all));
    setAccessibleName(all);
    const Action* action = offeredAction();
    actionButton_->setVisible(action != nullptr);
    if (action != nullptr) actionButton_->setText(action->title);
    setVisible(!messages_.isEmpty());
    update();
}

void MessageStrip::announce() {
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

void MessageStrip::dismiss() {
    messages_.clear();
    showMessages();
}

void MessageStrip::paintEvent(QPaintEvent* /*event*/) {
    const LookColors& colors = lookColors(palette());
    QPainter painter(this);
    const bool problem = tone() == Tone::problem;
    painter.fillRect(rect(), problem ? colors.warning : colors.quietSelection);
    painter.fillRect(0, 0, width(), 1, colors.hairline);
    const int top = text_->y() + (text_->fontMetrics().height() - 16) / 2;
    const bool single = text_->height() < 2 * text_->fontMetrics().lineSpacing();
    const int y = single ? text_->geometry().center().y() - 8 : top;
    paintGlyph(painter, problem ? Glyph::warning : Glyph::tick, QRectF(14, y, 16, 16),
               problem ? colors.warningMark : colors.accent);
}

}  // namespace zorvel
