// The keys of commands that not every desktop has a key for: where it has none, that of the others,
// so that the keyboard is enough under a bare window manager too. Needs the application object.
#pragma once

#include <QKeySequence>

namespace zorvel {

inline QKeySequence keyOr(QKeySequence::StandardKey standard, const QKeySequence& common) {
    const QKeySequence key(standard);
    return key.isEmpty() ? common : key;
}

inline QKeySequence closeKey() {
    return keyOr(QKeySequence::Close, Qt::CTRL | Qt::Key_W);
}

inline QKeySequence saveAsKey() {
    return keyOr(QKeySequence::SaveAs, Qt::CTRL | Qt::SHIFT | Qt::Key_S);
}

inline QKeySequence preferencesKey() {
    return keyOr(QKeySequence::Preferences, Qt::CTRL | Qt::Key_Comma);
}

}  // namespace zorvel
