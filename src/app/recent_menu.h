// File > Open Recent: the files opened or saved last, and the command that forgets them. Main
// thread.
#pragma once

class QMenu;

namespace zorvel {

class MainWindowController;
class ProjectWindows;

// Fills the menu each time that it is about to be shown, with what is known by then; a file that
// proves to be missing goes from it a moment later. Both must outlive it.
void keepRecentMenu(QMenu& menu, MainWindowController& window, ProjectWindows& windows);

}  // namespace zorvel
