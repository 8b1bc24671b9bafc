#include "ui/kit/popover.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollArea>
#include <QVBoxLayout>
#include <algorithm>

#include "ui/kit/look.h"
#include "ui/kit/small_widgets.h"

namespace zorvel {

namespace {

constexpr int widest = 420;   // pixels
constexpr int anchorGap = 6;  // between the anchor and the frame
constexpr int shade = 6;      // width of the shadow on every side
constexpr int padding = 16;   // around the text
constexpr int chrome = 2 * (shade + padding);

bool copies(const QKeyEvent& press) {
    return press.matches(QKeySequence::Copy) || press.matches(QKeySequence::SelectAll);
}

bool closes(const QKeyEvent& press) {
    return press.key() == Qt::Key_Escape || press.key() == Qt::Key_F1;
}

}  // namespace

QRect popoverPlace(const QSize& host, const QRect& anchor, const QSize& wanted) {
    const QSize size = wanted.boundedTo(host);
    const int left = anchor.left() - anchorGap - size.width();
    const int right = anchor.right() + 1 + anchorGap;
    const int farthest = host.width() - size.width();
    const int x = left >= 0 ? left : right <= farthest ? right : std::max(farthest, 0);
    const int y = anchor.center().y() - size.height() / 2;
    return {QPoint(x, std::clamp(y, 0, host.height() - size.height())), size};
}

Popover::Popover(QWidget* host)
    : QFrame(host), scroll_(new QScrollArea(this)), text_(new WrappedLabel) {
    setAccessibleRole<Popover, QAccessible::HelpBalloon>();
    text_->setObjectName("popoverText");
    text_->setTextFormat(Qt::RichText);
    text_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    text_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    text_->setFocusPolicy(Qt::StrongFocus);
    scroll_->setWidget(text_);
    scroll_->setWidgetResizable(true);
    scroll_->setFrameShape(QFrame::NoFrame);
    scroll_->setFocusPolicy(Qt::NoFocus);
    scroll_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll_->viewport()->setAutoFillBackground(false);
    text_->setAutoFillBackground(false);
    auto* layout = new QVBoxLayout(this);
    const int margin = shade + padding;
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->addWidget(scroll_);
    hide();
    connect(qApp, &QApplication::focusChanged, this,
            [this](QWidget* /*old*/, QWidget* now) { focusDidChange(now); });
}

Popover& Popover::of(QWidget& window) {
    auto* popover = window.findChild<Popover*>();
    return popover != nullptr ? *popover : *new Popover(&window);
}

// The focus moves while it is destroyed, which must not be handled then.
Popover::~Popover() {
    disconnect(qApp, nullptr, this, nullptr);
    qApp->removeEventFilter(this);
}

void Popover::setExplanation(const Explanation& explanation) {
    QString rich;
    QStringList plain;
    const auto add = [&](const QString& text, const char* style) {
        if (text.isEmpty()) return;
        rich += QString("<p style=\"margin:0 0 8px 0;%1\">%2</p>").arg(style, text.toHtmlEscaped());
        plain.append(text);
    };
    add(explanation.name, "font-weight:600;font-size:large");
    add(explanation.value, "font-weight:600");
    for (const QString& paragraph : explanation.paragraphs) add(paragraph, "");
    rich += "<table cellspacing=\"0\" cellpadding=\"0\">";
    for (const auto& [label, text] : explanation.entries) {
        if (text.isEmpty()) continue;
        rich += QString(
                    "<tr><td style=\"padding:6px 12px 0 0;color:%1\">%2</td>"
                    "<td style=\"padding:6px 0 0 0\">%3</td></tr>")
                    .arg(lookColors(QApplication::palette()).secondary.name(),
                         label.toHtmlEscaped(), text.toHtmlEscaped());
        plain.append(label + ": " + text);
    }
    text_->setText(rich + "</table>");
    text_->setAccessibleName(plain.join('\n'));
    setAccessibleName(plain.join('\n'));
    if (isVisible()) place();
}

void Popover::showBeside(const QRect& anchor) {
    anchor_ = anchor;
    if (!isVisible()) focusBefore_ = QApplication::focusWidget();
    place();
    show();
    raise();
    qApp->installEventFilter(this);
    text_->setFocus(Qt::PopupFocusReason);
}

void Popover::place() {
    const int width = std::min(widest, parentWidget()->width()) - chrome;
    const QSize wanted(width + chrome, text_->heightForWidth(width) + chrome);
    setGeometry(popoverPlace(parentWidget()->size(), anchor_, wanted));
    scroll_->ensureVisible(0, 0);
}

void Popover::dismiss() {
    if (!isVisible()) return;
    const QPointer<QWidget> before = focusBefore_;
    const QWidget* focus = QApplication::focusWidget();
    const bool mine = focus == nullptr || contains(focus);
    hide();
    if (mine && before) before->setFocus(Qt::PopupFocusReason);
}

void Popover::hideEvent(QHideEvent* event) {
    qApp->removeEventFilter(this);
    QFrame::hideEvent(event);
}

// Its context menu too, which is a window of its own.
bool Popover::contains(const QWidget* widget) const {
    while (widget != nullptr && widget != this) widget = widget->parentWidget();
    return widget != nullptr;
}

void Popover::focusDidChange(QWidget* now) {
    if (!isVisible() || now == nullptr || contains(now)) return;
    const QPoint middle = now->mapTo(now->window(), now->rect().center());
    if (now->window() == window() &&
        anchor_.translated(parentWidget()->mapTo(window(), QPoint())).contains(middle)) {
        return;
    }
    hide();
}

bool Popover::eventFilter(QObject* watched, QEvent* event) {
    if (watched == parentWidget() && event->type() == QEvent::Resize) dismiss();
    // The text is copied although the keys may be a shortcut of the window.
    if (watched == text_ && event->type() == QEvent::ShortcutOverride &&
        copies(*static_cast<QKeyEvent*>(event))) {
        event->accept();
        return true;
    }
    if (event->type() != QEvent::MouseButtonPress || !watched->isWidgetType()) return false;
    const auto* widget = static_cast<const QWidget*>(watched);
    if (contains(widget)) return false;
    const QPoint place = static_cast<QMouseEvent*>(event)->globalPosition().toPoint();
    if (!anchor_.contains(parentWidget()->mapFromGlobal(place))) dismiss();
    return false;
}

bool Popover::focusNextPrevChild(bool next) {
    dismiss();
    QWidget* window = parentWidget()->window();
    QWidget* from = window->focusWidget();
    // As if the key had been pressed in the widget that has the focus now.
    return from != nullptr && !contains(from) && QFrame::focusNextPrevChild(next);
}

// The keys that close it take precedence over the window's shortcuts.
bool Popover::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride && closes(*static_cast<QKeyEvent*>(event))) {
        event->accept();
        return true;
    }
    return QFrame::event(event);
}

void Popover::keyPressEvent(QKeyEvent* event) {
    if (closes(*event)) return dismiss();
    QFrame::keyPressEvent(event);
}

void Popover::paintEvent(QPaintEvent* /*event*/) {
    const LookColors& colors = lookColors(palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    QColor shadow = Qt::black;
    shadow.setAlpha(schemeOf(palette()) == ColorScheme::dark ? 24 : 5);
    painter.setBrush(shadow);
    for (int inset = 0; inset < shade; ++inset) {
        const double side = inset;
        painter.drawRoundedRect(QRectF(rect()).adjusted(side, side, -side, -side), 12, 12);
    }
    painter.setPen(colors.border);
    painter.setBrush(colors.raised);
    const double edge = shade + 0.5;
    painter.drawRoundedRect(QRectF(rect()).adjusted(edge, edge, -edge, -edge), 8, 8);
}

}  // namespace zorvel
