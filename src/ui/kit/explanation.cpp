#include "ui/kit/explanation.h"

#include <QKeyEvent>
#include <QWidget>

#include "ui/kit/look.h"
#include "ui/kit/popover.h"

namespace zorvel {

namespace {

class OwnKey : public QObject {
  public:
    OwnKey(QWidget& widget, const QKeySequence& keys, std::function<void()> command)
        : QObject(&widget), keys_(keys), command_(std::move(command)) {
        widget.installEventFilter(this);
    }

  protected:
    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        const bool isPress = event->type() == QEvent::KeyPress;
        if (!isPress && event->type() != QEvent::ShortcutOverride) return false;
        const auto* key = static_cast<QKeyEvent*>(event);
        const auto modifiers = key->modifiers() & ~Qt::KeypadModifier;
        if (QKeySequence(QKeyCombination(modifiers, Qt::Key(key->key()))) != keys_) return false;
        event->accept();
        if (isPress) command_();
        return true;
    }

  private:
    QKeySequence keys_;
    std::function<void()> command_;
};

}  // namespace

void Explanation::showIn(Popover& popover, const QPalette& palette) const {
    QString rich;
    QStringList plain;
    const auto add = [&](const QString& text, const char* style) {
        if (text.isEmpty()) return;
        rich += QString("<p style=\"margin:0 0 8px 0;%1\">%2</p>").arg(style, text.toHtmlEscaped());
        plain.append(text);
    };
    add(name, "font-weight:600;font-size:large");
    add(value, "font-weight:600");
    for (const QString& paragraph : paragraphs) add(paragraph, "");
    rich += "<table cellspacing=\"0\" cellpadding=\"0\">";
    for (const auto& [label, text] : entries) {
        if (text.isEmpty()) continue;
        rich += QString(
                    "<tr><td style=\"padding:6px 12px 0 0;color:%1\">%2</td>"
                    "<td style=\"padding:6px 0 0 0\">%3</td></tr>")
                    .arg(lookColors(palette).secondary.name(), label.toHtmlEscaped(),
                         text.toHtmlEscaped());
        plain.append(label + ": " + text);
    }
    popover.setText(rich + "</table>", plain.join('\n'));
}

void addOwnKey(QWidget& widget, const QKeySequence& keys, std::function<void()> command) {
    new OwnKey(widget, keys, std::move(command));
}

}  // namespace zorvel
