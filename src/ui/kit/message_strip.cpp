#include "ui/kit/message_strip.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

#include "ui/kit/glyphs.h"
#include "ui/kit/look.h"
#include "ui/kit/shown_text.h"
#include "ui/kit/small_widgets.h"

namespace zorvel {

namespace {
constexpr int markRoom = 40;         // pixels left of the text
constexpr int lineMargin = 8;        // pixels above and below it
constexpr int shownAtMost = 4;       // problems that can be dismissed
constexpr int longestMessage = 600;  // characters of a message

}  // namespace

MessageStrip::MessageStrip(QWidget* parent)
    : QFrame(parent),
      column_(new QVBoxLayout),
      others_(new QLabel(this)),
      actionButton_(new QPushButton(this)),
      dismissButton_(new QToolButton(this)) {
    setAccessibleRole<MessageStrip, QAccessible::AlertMessage>();
    actionButton_->setObjectName("messageActionButton");
    actionButton_->setAutoDefault(false);
    dismissButton_->setObjectName("dismissMessageButton");
    dismissButton_->setIcon(glyphIcon(Glyph::cross));
    dismissButton_->setAutoRaise(true);
    dismissButton_->setToolTip("Dismiss");
    dismissButton_->setAccessibleName("Dismiss message");
    dismissButton_->setFocusPolicy(Qt::StrongFocus);
    others_->setContentsMargins(markRoom, 0, 0, lineMargin);
    column_->setSpacing(0);
    column_->addWidget(others_);
    auto* buttons = new QHBoxLayout;
    buttons->setContentsMargins(0, lineMargin, lineMargin, lineMargin);
    buttons->addWidget(actionButton_, 0, Qt::AlignVCenter);
    buttons->addWidget(dismissButton_, 0, Qt::AlignTop);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addLayout(column_, 1);
    row->addLayout(buttons);
    connect(actionButton_, &QPushButton::clicked, this, [this] {
        // What it runs may replace the message.
        if (const Action* action = offeredAction()) std::function<void()>(action->run)();
    });
    connect(dismissButton_, &QToolButton::clicked, this, &MessageStrip::dismiss);
    hide();
}

QLabel* MessageStrip::addLine() {
    auto* line = new WrappedLabel(this);
    line->setObjectName("messageText");
    line->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    line->setContentsMargins(markRoom, lineMargin, 0, lineMargin);
    column_->insertWidget(static_cast<int>(lines_.size()), line, 0, Qt::AlignVCenter);
    lines_.append(line);
    return line;
}

void MessageStrip::addMessage(const QString& message, Tone tone) {
    add({{}, oneLine(shortened(message, longestMessage)), {}, tone});
}

void MessageStrip::setMessage(const QString& name, const QString& message, const Action& action,
                              Lasting lasting) {
    const Message set{name, oneLine(shortened(message, longestMessage)), action, Tone::problem,
                      lasting};
    const auto earlier = std::find_if(messages_.begin(), messages_.end(),
                                      [&](const Message& each) { return each.name == name; });
    if (earlier == messages_.end()) return add(set);
    const bool same = earlier->text == set.text;
    *earlier = set;
    showMessages();
    if (!same) announce();
}

// The oldest news goes if there are too many messages; the new one is read first.
void MessageStrip::add(const Message& message) {
    const auto isNews = [](const Message& each) { return each.tone == Tone::news; };
    while (messages_.size() >= shownAtMost) {
        const auto oldest = std::find_if(messages_.begin(), messages_.end(), isNews);
        if (oldest == messages_.end()) break;
        messages_.erase(oldest);
    }
    messages_.append(message);
    showMessages();
    announce();
}

void MessageStrip::withdraw(const QString& name) {
    messages_.removeIf([&](const Message& message) { return message.name == name; });
    showMessages();
}

void MessageStrip::dismiss() {
    messages_.removeIf([](const Message& message) {
        return message.isShown && message.lasting == Lasting::untilDismissed;
    });
    showMessages();
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
    const auto isProblem = [](const Message& message) { return message.tone == Tone::problem; };
    return std::any_of(messages_.begin(), messages_.end(), isProblem) ? Tone::problem : Tone::news;
}

void MessageStrip::showMessages() {
    int room = shownAtMost;
    std::for_each(messages_.rbegin(), messages_.rend(), [&](Message& message) {
        const bool counts =
            message.tone == Tone::problem && message.lasting == Lasting::untilDismissed;
        message.isShown = !counts || room-- > 0;
    });
    QStringList texts;
    bool canDismiss = false;
    for (const Message& message : messages_) {
        if (!message.isShown) continue;
        if (lines_.size() == texts.size()) addLine();
        lines_[texts.size()]->setText(message.text);
        texts.append(message.text);
        canDismiss = canDismiss || message.lasting == Lasting::untilDismissed;
    }
    for (qsizetype i = 0; i < lines_.size(); ++i) lines_[i]->setVisible(i < texts.size());
    const auto others = static_cast<int>(messages_.size() - texts.size());
    others_->setVisible(others > 0);
    others_->setText(
        others == 1
            ? "One earlier message is shown when these are dismissed."
            : QString("%L1 earlier messages are shown when these are dismissed.").arg(others));
    setAccessibleName(texts.join('\n'));
    const Action* action = offeredAction();
    actionButton_->setVisible(action != nullptr);
    if (action != nullptr) actionButton_->setText(action->title);
    dismissButton_->setVisible(canDismiss);
    setVisible(!messages_.isEmpty());
    update();
}

void MessageStrip::announce() {
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

// The ground of each message reaches to that of the next.
void MessageStrip::paintEvent(QPaintEvent* /*event*/) {
    const LookColors& colors = lookColors(palette());
    QPainter painter(this);
    qsizetype place = 0;
    for (const Message& message : messages_) {
        if (!message.isShown) continue;
        const QLabel& line = *lines_[place];
        const bool problem = message.tone == Tone::problem;
        const int top = place > 0 ? line.y() : 0;
        painter.fillRect(0, top, width(), height() - top,
                         problem ? colors.warning : colors.quietSelection);
        // Beside the first row of the text.
        const int row = line.y() + lineMargin + line.fontMetrics().height() / 2;
        paintGlyph(painter, problem ? Glyph::warning : Glyph::tick, QRectF(14, row - 8, 16, 16),
                   problem ? colors.warningMark : colors.accent);
        ++place;
    }
    painter.fillRect(0, 0, width(), 1, colors.hairline);
}

}  // namespace zorvel
