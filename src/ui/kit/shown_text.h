// Texts that come from files, made fit to be shown: a widget lays out all that it is given, so a
// text of a hundred megabytes must not reach it. Pure; any thread.
#pragma once

#include <QString>

namespace zorvel {

// At most limit characters, the last of them three dots where there were more.
QString shortened(const QString& text, qsizetype limit);

// The text with places to break a line within words too long for one: a label that wraps its words
// is otherwise at least as wide as the longest.
QString breakable(const QString& text);

}  // namespace zorvel
