#include "ui/kit/typed_keys.h"

#include <QKeyEvent>

namespace zorvel {

bool isTypedText(const QKeyEvent& key) {
    // Control with Alt is how some keyboards make their third character.
    const Qt::KeyboardModifiers commands =
        key.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    const bool command =
        commands != Qt::NoModifier && commands != (Qt::ControlModifier | Qt::AltModifier);
    if (command || key.text().isEmpty()) return false;
    const QChar first = key.text().front();
    return first.isPrint() || first.isSurrogate();
}

bool isTravelKey(const QEvent& event) {
    if (event.type() != QEvent::ShortcutOverride) return false;
    const auto& key = static_cast<const QKeyEvent&>(event);
    return key.matches(QKeySequence::Undo) || key.matches(QKeySequence::Redo);
}

}  // namespace zorvel
