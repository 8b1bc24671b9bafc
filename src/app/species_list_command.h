// The command that reads a list of species names for completion. Main thread; the list is taken
// apart in the background.
#pragma once

namespace zorvel {

class MainWindowController;
class ProjectWindows;

// Asks for a file, and makes its names known to the completion of species names in that window, for
// as long as the window is open, whatever project it shows: no record has to bear them. The strip
// tells how many were new. A cancelled panel says nothing. Nothing without a window.
void importSpeciesList(ProjectWindows& windows, MainWindowController* window);

}  // namespace zorvel
