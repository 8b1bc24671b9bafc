// The menu Window: minimise, zoom, the windows of the program by their titles, plots with the name
// of their census or project too, and all of them to the front. Main thread.
#pragma once

namespace zorvel {

class MainWindowController;

void addWindowMenu(MainWindowController& window);

}  // namespace zorvel
