#include "ui/kit/message_strip.h"

#include <QAccessible>
#include <QAccessibleWidget>
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
constexpr int longestMessage = 300;  // characters of a message

// So that a screen reader takes the strip for an alert.
QAccessibleInterface* asAlert(const QString& /*className*/, QObject* object) {
    auto* strip = qobject_cast<MessageStrip*>(object);
    return strip ? new QAccessibleWidget(strip, QAccessible::AlertMessage) : nullptr;
}

}  // namespace

MessageStrip::MessageStrip(QWidget* parent)
    : QFrame(parent),
      column_(new QVBoxLayout),
      others_(new QLabel(this)),
      actionButton_(new QPushButton(this)),
      dismissButton_(new QToolButton(this)) {
    QAccessible::installFactory(asAlert);  // again does nothing
    actionButton_->setObjectName("messageActionButton");
    actionButton_->setAutoDefault(false);
    dismissButton_->setObjectName("dismissMessageButton");
    dismissButton_->setIcon(glyphIcon(Glyph::cross));
    dismissButton_->setAutoRaise(true);
    dismissButton_->setToolTip(tr("Dismiss"));
    dismissButton_->setAccessibleName(tr("Dismiss message"));
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
    add({{}, oneLine(shortened(message, longestMessage)), {}, tone, Lasting::untilDismissed});
}

void MessageStrip::setMessage(const QString& name, const QString& message, const Action& action,
                              Lasting lasting) {
    const Message set{name, oneLine(shortened(message, longestMessage)), action, Tone::problem,
                      lasting};
    const qsizetype place = placeOf(name);
    if (place < 0) return add(set);
    const bool same = messages_[place].text == set.text;
    messages_[place] = set;
    showMessages();
    if (!same) announce();
}

// The oldest news goes where there are too many messages; the new one is read first.
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
    const qsizetype place = placeOf(name);
    if (place < 0) return;
    messages_.removeAt(place);
    showMessages();
}

void MessageStrip::takeMessages(const MessageStrip& other) {
    messages_ = other.messages_ + messages_;
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

bool MessageStrip::isOrdinaryProblem(const Message& message) {
    return message.tone == Tone::problem && message.lasting == Lasting::untilDismissed;
}

qsizetype MessageStrip::hiddenCount() const {
    return std::count_if(messages_.begin(), messages_.end(), isOrdinaryProblem) - shownAtMost;
}

QList<MessageStrip::Message> MessageStrip::shown() const {
    QList<Message> shown;
    qsizetype hidden = hiddenCount();
    for (const Message& message : messages_) {
        if (!isOrdinaryProblem(message) || hidden-- <= 0) shown.append(message);
    }
    return shown;
}

MessageStrip::Tone MessageStrip::tone() const {
    const bool problem =
        std::any_of(messages_.begin(), messages_.end(),
                    [](const Message& message) { return message.tone == Tone::problem; });
    return problem ? Tone::problem : Tone::news;
}

void MessageStrip::showMessages() {
    const QList<Message> shown = this->shown();
    while (lines_.size() < shown.size()) addLine();
    QStringList texts;
    for (qsizetype i = 0; i < lines_.size(); ++i) {
        lines_[i]->setVisible(i < shown.size());
        if (i >= shown.size()) continue;
        lines_[i]->setText(shown[i].text);
        texts.append(shown[i].text);
    }
    const auto others = static_cast<int>(messages_.size() - shown.size());
    others_->setVisible(others > 0);
    others_->setText(
        others == 1
            ? tr("One earlier message comes into sight when these are dismissed.")
            : tr("%L1 earlier messages come into sight when these are dismissed.").arg(others));
    setAccessibleName(texts.join('\n'));
    const Action* action = offeredAction();
    actionButton_->setVisible(action != nullptr);
    if (action != nullptr) actionButton_->setText(action->title);
    dismissButton_->setVisible(std::any_of(shown.begin(), shown.end(), [](const Message& message) {
        return message.lasting == Lasting::untilDismissed;
    }));
    setVisible(!messages_.isEmpty());
    update();
}

void MessageStrip::announce() {
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

void MessageStrip::dismiss() {
    QList<Message> left;
    qsizetype hidden = hiddenCount();
    for (const Message& message : messages_) {
        const bool lasts = message.lasting == Lasting::untilWithdrawn;
        if (lasts || (isOrdinaryProblem(message) && hidden-- > 0)) left.append(message);
    }
    messages_ = left;
    showMessages();
}

void MessageStrip::paintEvent(QPaintEvent* /*event*/) {
    const LookColors& colors = lookColors(palette());
    const QList<Message> shown = this->shown();
    QPainter painter(this);
    painter.fillRect(rect(), tone() == Tone::problem ? colors.warning : colors.quietSelection);
    for (qsizetype i = 0; i < shown.size(); ++i) {
        const QLabel& line = *lines_[i];
        const bool problem = shown[i].tone == Tone::problem;
        const int top = i > 0 ? line.y() : 0;
        const int bottom = i + 1 < shown.size() ? lines_[i + 1]->y() : height();
        painter.fillRect(0, top, width(), bottom - top,
                         problem ? colors.warning : colors.quietSelection);
        // Beside the first row of the text.
        const int row = line.y() + lineMargin + line.fontMetrics().height() / 2;
        paintGlyph(painter, problem ? Glyph::warning : Glyph::tick, QRectF(14, row - 8, 16, 16),
                   problem ? colors.warningMark : colors.accent);
    }
    painter.fillRect(0, 0, width(), 1, colors.hairline);
}

}  // namespace zorvel
