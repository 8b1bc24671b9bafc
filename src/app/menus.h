// The menu bar of a project's window: only what works. Actions go to the project windows, the look
// choice, and the widget that has the focus. Main thread.
#pragma once

namespace zorvel {

class LookChoice;
class MainWindowController;
class ProjectWindows;

// Both must outlive the window.
void addMenus(MainWindowController& window, ProjectWindows& windows, LookChoice& look);

}  // namespace zorvel
