// Imports of tables, which a window shows before they are read: from a file that is chosen, opened
// or dropped, or from a text. Main thread; files are read in the background.
#pragma once

#include <QString>
#include <memory>
#include <string>
#include <vector>

namespace zorvel {

struct CommandWindow;
class MainWindowController;
class ProjectWindows;
struct NamedFile;

// Asks for a file, and shows it as a table.
void runTableImport(ProjectWindows& windows, MainWindowController* window);

// Shows one file after the other as a table, and imports it into the project of the command's
// window, or a new one. parent: of the windows that show them, may be null.
void importTableFiles(ProjectWindows& windows, const CommandWindow& command,
                      const std::vector<std::shared_ptr<NamedFile>>& files,
                      MainWindowController* parent);

// The same for a text, into the project of the window. name: what stands for a file.
void importTableText(ProjectWindows& windows, MainWindowController& window, const QString& name,
                     std::string text);

}  // namespace zorvel
