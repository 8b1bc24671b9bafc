// Texts made fit to be shown, and which keys type a text. Texts may come from files, and a widget
// lays out all that it is given: a text of a hundred megabytes must not reach it. Pure; any thread.
#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <cstddef>

class QEvent;
class QKeyEvent;

namespace zorvel {

// At most limit characters, the last of them three dots if there were more.
QString shortened(const QString& text, qsizetype limit);

// In one line: a mark stands in place of each line break, tab and control character, and of what
// would turn the direction of the text that follows.
QString oneLine(const QString& text);

// With the middle of longer words left out: a label is at least as wide as its longest word.
QString withShortWords(const QString& text, qsizetype longest);

// With line breaks added, between words where possible, so that no line is longer.
QString inLinesOf(qsizetype longest, const QString& text);

// A text with a number: of one, or of many, where %1 stands for the number.
QString countText(std::size_t count, const QString& ofOne, const QString& ofMany);

struct CountSentence {
    std::size_t count = 0;
    QString ofOne;
    QString ofMany;  // %1 stands for the number
};
// Those whose count is not 0.
QStringList countSentences(const QList<CountSentence>& sentences);

// For QWidget::setWindowTitle(), which replaces "[*]" by the mark of changes.
QString asWindowTitle(const QString& text);

// Whether the key puts visible text or a space into a line, whatever made the character; not for a
// shortcut, nor for a key that deletes or moves.
bool isTypedText(const QKeyEvent& key);

// Whether the event asks, before a shortcut runs, if an editor takes the key for undo or redo. An
// editor that has nothing to undo ignores it, which leaves the key to the window.
bool isUndoKey(const QEvent& event);

}  // namespace zorvel
