// Texts that come from files, made fit to be shown: a widget lays out all that it is given, so a
// text of a hundred megabytes must not reach it. Pure; any thread.
#pragma once

#include <QString>

namespace zorvel {

// At most limit characters, the last of them three dots where there were more.
QString shortened(const QString& text, qsizetype limit);

// In one line: a mark stands in place of each line break, tab and control character, and of what
// would turn the direction of the text that follows.
QString oneLine(const QString& text);

// With the middle of longer words left out: a label is at least as wide as its longest word.
QString withShortWords(const QString& text, qsizetype longest);

// For QWidget::setWindowTitle(), to which "[*]" is the place of the mark of changes.
QString asWindowTitle(const QString& text);

}  // namespace zorvel
