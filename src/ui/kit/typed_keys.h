// Which keys type a text, and which are commands. Pure.
#pragma once

class QEvent;
class QKeyEvent;

namespace zorvel {

// A key that puts visible text or a space into a line, whatever made the character; not so a
// shortcut, nor a key that deletes or moves.
bool isTypedText(const QKeyEvent& key);

// The question, before a shortcut runs, whether the editor at hand takes a key for undo or redo.
// One that holds nothing of its own ignores it, which leaves the key to the window.
bool isTravelKey(const QEvent& event);

}  // namespace zorvel
