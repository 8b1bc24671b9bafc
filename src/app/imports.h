// The commands that import a text file into a project. Main thread.
#pragma once

#include "interchange/file_kind.h"

namespace zorvel {

class Document;
class MainWindowController;
class ProjectWindows;

// The project of the window, or a new one in a window of its own where there is no window.
Document* currentOrNewDocument(ProjectWindows& windows, MainWindowController* window);

// Asks for a file, and imports it as one of that kind. A window that closes while its file is read
// gets nothing.
void runImport(ProjectWindows& windows, MainWindowController* window, FileKind kind);

}  // namespace zorvel
