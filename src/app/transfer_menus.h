// The menus File > Import and File > Export of a project's window. Main thread.
#pragma once

class QMenu;

namespace zorvel {

class MainWindowController;
class ProjectWindows;

// At the end of the menu of files. All must outlive the window.
void addTransferMenus(QMenu& file, MainWindowController& window, ProjectWindows& windows);

}  // namespace zorvel
