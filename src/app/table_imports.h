// Imports of tables, which a window shows before they are read: from a file that is chosen, opened
// or dropped, or from a text. Main thread; files are read in the background.
#pragma once

#include <QString>
#include <string>

namespace zorvel {

struct CommandWindow;
class MainWindowController;
class ProjectWindows;

// Asks for a file, and shows it as a table.
void runTableImport(ProjectWindows& windows, MainWindowController* window);

// Shows a file as a table, and imports it into the project of the window, or a new one.
void importTableFile(ProjectWindows& windows, const CommandWindow& command, const QString& path);

// The same for a text. name: what stands for a file.
void importTableText(ProjectWindows& windows, const CommandWindow& command, const QString& name,
                     std::string text);

}  // namespace zorvel
