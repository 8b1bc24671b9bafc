// Imports of tables, which a window shows before they are read: from a file that is chosen, opened
// or dropped, or from a text. Main thread; files are read in the background.
#pragma once

#include <QString>
#include <functional>
#include <memory>
#include <string>

namespace zorvel {

struct CommandWindow;
class MainWindowController;
class ProjectWindows;
struct NamedFile;

// Asks for a file, and shows it as a table.
void runTableImport(ProjectWindows& windows, MainWindowController* window);

// Shows the file as a table, and imports it into the project of the command's window, or a new one.
// parent: of the window that shows it, may be null. others: whether more files follow, so that the
// user may skip this one. ended is called later, unless the window is closed.
void importTableFile(ProjectWindows& windows, const CommandWindow& command,
                     const std::shared_ptr<NamedFile>& file, MainWindowController* parent,
                     bool others, std::function<void(bool cancelled)> ended);

// The same for a text, into the project of the window. name: what stands for a file.
void importTableText(ProjectWindows& windows, MainWindowController& window, const QString& name,
                     std::string text);

}  // namespace zorvel
