#include "ui/kit/pull_down_button.h"

#include <QKeyEvent>
#include <QMenu>
#include <QStyleOptionToolButton>
#include <QStylePainter>

#include "ui/kit/glyphs.h"

namespace zorvel {

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
