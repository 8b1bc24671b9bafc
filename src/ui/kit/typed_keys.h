// Which keys type a text, and which are commands. Pure.
#pragma once

class QKeyEvent;

namespace zorvel {

// A key that puts visible text or a space into a line, whatever made the character; not so a
// shortcut, nor a key that deletes or moves.
bool isTypedText(const QKeyEvent& key);

}  // namespace zorvel
